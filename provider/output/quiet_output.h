#ifndef KVL_PROVIDER_OUTPUT_QUIET_OUTPUT_H
#define KVL_PROVIDER_OUTPUT_QUIET_OUTPUT_H

#include <string>

#include "reference_host/file_descriptor.h"

namespace kvl::provider {

/// Keeps what the commands of the library print out of this program's own output, for as long as the object lives. The
/// library hands its standard output on to some of them.
class QuietOutput {
public:
    QuietOutput();
    ~QuietOutput();

    QuietOutput(const QuietOutput&) = delete;
    QuietOutput& operator=(const QuietOutput&) = delete;

    /// Writes to this program's own output all the same.
    void write(const std::string& text) const;

    /// Forgets what was printed so far.
    void forget();

    /// The last line with something on it that was printed since; empty if there is none.
    std::string lastLine() const;

private:
    host::FileDescriptor kept_;  // the standard output
};

}  // namespace kvl::provider

#endif
