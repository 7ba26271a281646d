#include "provider/run/scratch_installation.h"

#include <stdlib.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "provider/provider_error.h"
#include "reference_host/trace_log.h"

namespace kvl::provider {

ScratchInstallation::ScratchInstallation()
    : directory_(std::filesystem::temp_directory_path().string() + "/kvl-dry-run-XXXXXX") {
    if (mkdtemp(directory_.data()) == nullptr) {
        throw ProviderError("no temporary directory can be made: " + std::string(std::strerror(errno)));
    }
    inUse_.emplace(directory_);
    host::reloadTraceSettings();
}

ScratchInstallation::~ScratchInstallation() {
    inUse_.reset();
    host::reloadTraceSettings();
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
}

}  // namespace kvl::provider
