#include "provider/machine/provider_environment.h"

#include <sys/stat.h>

#include <cstdlib>

namespace kvl::provider {
namespace {

constexpr mode_t kOwnFilesOnly = 077;

}  // namespace

void enterProviderEnvironment() {
    setenv("LC_ALL", "C", 1);
    setenv("PATH", "/sbin:/usr/sbin:/bin:/usr/bin", 1);
    umask(kOwnFilesOnly);
}

void needResultDirectory(const std::string& directory) {
    needOwnDirectory(directory, "result directory");
}

}  // namespace kvl::provider
