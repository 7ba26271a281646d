#ifndef KVL_PROVIDER_RUN_SCRATCH_INSTALLATION_H
#define KVL_PROVIDER_RUN_SCRATCH_INSTALLATION_H

#include <optional>
#include <string>

#include "reference_host/install_path.h"

namespace kvl::provider {

/// An installation for the library below a temporary directory that is gone in the end, so that a run leaves nothing
/// behind, not even a list of the adapters or a trace.
class ScratchInstallation {
public:
    /// @throws ProviderError if it can't be made
    ScratchInstallation();
    ~ScratchInstallation();

    ScratchInstallation(const ScratchInstallation&) = delete;
    ScratchInstallation& operator=(const ScratchInstallation&) = delete;

private:
    std::string directory_;
    std::optional<host::TemporaryInstallation> inUse_;
};

}  // namespace kvl::provider

#endif
