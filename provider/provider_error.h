#ifndef KVL_PROVIDER_PROVIDER_ERROR_H
#define KVL_PROVIDER_PROVIDER_ERROR_H

#include <stdexcept>
#include <string>

#include "provider/exit_codes.h"

namespace kvl::provider {

/// Ends the program: with a sentence for the operator, which says what to do, and an exit code.
class ProviderError : public std::runtime_error {
public:
    ProviderError(ExitCode exitCode, const std::string& sentence) : std::runtime_error(sentence), exitCode_(exitCode) {}

    ExitCode exitCode() const { return exitCode_; }

private:
    ExitCode exitCode_;
};

}  // namespace kvl::provider

#endif
