#ifndef KVL_PROVIDER_RUN_QUIET_OUTPUT_H
#define KVL_PROVIDER_RUN_QUIET_OUTPUT_H

#include <sys/types.h>

#include <string>

#include "provider/run/descriptor_buffer.h"
#include "reference_host/file_descriptor.h"

namespace kvl::provider {

/// Points one of the process's descriptors at a file, for as long as the object lives.
class DivertedDescriptor {
public:
    DivertedDescriptor(int number, const host::FileDescriptor& file);

    /// Points the descriptor where it pointed before, or closes it if it was closed.
    ~DivertedDescriptor();

    DivertedDescriptor(const DivertedDescriptor&) = delete;
    DivertedDescriptor& operator=(const DivertedDescriptor&) = delete;

    /// Where it pointed before; -1 if it was closed.
    int kept() const { return kept_.number(); }

private:
    const int number_;
    const host::FileDescriptor kept_;
};

/// Keeps what the commands of the library print on either stream away from this program's own output and from its
/// operator, for as long as the object lives. The library hands its streams on to its commands. What goes to std::cerr
/// arrives as before.
class QuietOutput {
public:
    QuietOutput();
    ~QuietOutput();

    QuietOutput(const QuietOutput&) = delete;
    QuietOutput& operator=(const QuietOutput&) = delete;

    /// Writes to this program's own output all the same. @return false if that failed
    bool write(const std::string& text) const;

    /// Shows the operator what was printed and not yet shown or forgotten.
    void show();

    /// Forgets what was printed so far.
    void forget();

    /// The last line with something on it that was printed since; empty if there is none.
    std::string lastLine() const;

private:
    const host::FileDescriptor sink_;
    const DivertedDescriptor output_;
    const DivertedDescriptor errors_;
    DescriptorBuffer buffer_;
    std::streambuf* const before_;  // of std::cerr
    off_t shown_ = 0;
};

}  // namespace kvl::provider

#endif
