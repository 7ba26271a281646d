#include "reference_host/install_path.h"

#include <cstdlib>
#include <memory>
#include <mutex>

namespace kvl::host {
namespace {

/// The directory of the temporary installation; empty without one.
struct Temporary {
    std::mutex mutex;
    std::string directory;
};

// Never destroyed: objects that outlive this file's statics may still trace.
Temporary& temporary() {
    static Temporary& instance = *std::make_unique<Temporary>().release();
    return instance;
}

void setTemporary(const std::string& directory) {
    const std::lock_guard<std::mutex> lock(temporary().mutex);
    temporary().directory = directory;
}

std::string temporaryDirectory() {
    const std::lock_guard<std::mutex> lock(temporary().mutex);
    return temporary().directory;
}

}  // namespace

std::string configuredInstallPath() {
    const char* configured = std::getenv("KVL_INSTALL_PATH");
    std::string path = configured != nullptr && *configured != '\0' ? configured : "/opt/tarvenn/kvl";
    path.erase(path.find_last_not_of('/') + 1);
    return path;
}

std::string installPath() {
    const std::string directory = temporaryDirectory();
    return directory.empty() ? configuredInstallPath() : directory;
}

TemporaryInstallation::TemporaryInstallation(const std::string& directory) {
    setTemporary(directory);
}

TemporaryInstallation::~TemporaryInstallation() {
    setTemporary("");
}

bool isInstallationTemporary() {
    return !temporaryDirectory().empty();
}

}  // namespace kvl::host
