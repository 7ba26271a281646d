#ifndef KVL_PROVIDER_LIBRARY_ADAPTER_FAILURE_H
#define KVL_PROVIDER_LIBRARY_ADAPTER_FAILURE_H

#include <string>

#include "adapter/error_codes.h"
#include "provider/provider_error.h"

namespace kvl::provider {

/// Why something about the adapters failed or could not be read, for people and for programs.
struct Failure {
    std::string number;   ///< the library's last error, as it gives it to operator messages; empty if it has no part
    std::string name;     ///< short, lower case with "-" between words; empty if there is none
    std::string meaning;  ///< without a full stop
    std::string next;     ///< what to do next; empty if the meaning says it
};

/// The name of the failure that a new dump of a port can't cure: the port has no version of this kind.
constexpr const char* kNoVersionName = "no-version";

/// The name of the failure where the tool, asked for a dump, writes none that the library finds.
constexpr const char* kNoDumpName = "no-dump-file";

/// The failure that the library's last error stands for.
Failure lastFailure();

/// The failure of a code that this program has found itself; it becomes the library's last error.
Failure failureOf(AdapterError code);

/// A failure of the tool itself, for which the library has no code.
/// @param meaning  which command, and what became of it
Failure toolFailure(const std::string& meaning);

/// A failure that comes from the form of what the tool has printed.
Failure formFailure(const std::string& meaning);

/// A failure that this program has found without the library.
Failure ownFailure(const char* name, const std::string& meaning, const std::string& next);

/// Meaning, number and advice in one sentence.
std::string describe(const Failure& failure);

/// Ends the program with such a failure.
class AdapterFailure : public ProviderError {
public:
    explicit AdapterFailure(const Failure& failure) : ProviderError(describe(failure)), failure_(failure) {}

    const Failure& failure() const { return failure_; }

private:
    Failure failure_;
};

}  // namespace kvl::provider

#endif
