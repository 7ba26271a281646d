#ifndef KVL_PROVIDER_PROVIDER_ERROR_H
#define KVL_PROVIDER_PROVIDER_ERROR_H

#include <stdexcept>
#include <string>

namespace kvl::provider {

/// Why the program can't do what it was asked for: a sentence for the operator, which says what to do. Each command has
/// an exit code of its own for it.
class ProviderError : public std::runtime_error {
public:
    explicit ProviderError(const std::string& sentence) : std::runtime_error(sentence) {}
};

/// The command line can't be carried out. Nothing was done.
class WrongUsage : public ProviderError {
public:
    using ProviderError::ProviderError;
};

}  // namespace kvl::provider

#endif
