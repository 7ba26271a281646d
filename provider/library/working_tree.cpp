#include "provider/library/working_tree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "adapter/CEmulexCommon.h"
#include "host/CFileUtility.h"
#include "provider/library/adapter_failure.h"
#include "provider/library/adapter_kinds.h"
#include "provider/machine/provider_environment.h"
#include "reference_host/install_path.h"

namespace kvl::provider {
namespace {

constexpr mode_t kOthersWrite = 022;

[[noreturn]] void refuse(const std::string& directory, const std::string& why) {
    throw ProviderError("the adapters' directory " + directory + " " + why);
}

void checkOwnership(const std::string& directory) {
    struct stat status {};
    if (lstat(directory.c_str(), &status) != 0) {
        refuse(directory, std::string("can't be looked at: ") + std::strerror(errno));
    }
    if (!S_ISDIR(status.st_mode)) {
        refuse(directory, "is no directory: remove it, and kvl makes one");
    }
    if (status.st_uid != geteuid()) {
        refuse(directory, "belongs to another user (" + std::to_string(status.st_uid) + "): run kvl as that user");
    }
    if ((status.st_mode & kOthersWrite) != 0) {
        refuse(directory, "can be written by other users: 'chmod go-w " + directory + "'");
    }
}

/// @return true if the user lacks the permission to make directories below this one, or to make it
bool isDenied(const std::string& directory) {
    struct stat status {};
    for (std::string path = directory; !path.empty(); path.erase(path.rfind('/'))) {
        if (lstat(path.c_str(), &status) == 0) {
            return S_ISDIR(status.st_mode) && faccessat(AT_FDCWD, path.c_str(), W_OK | X_OK, AT_EACCESS) != 0 &&
                   errno == EACCES;
        }
        if (errno == EACCES) {
            return true;
        }
    }
    return false;
}

/// What the library calls the directories of a family.
const char* directoryOf(const std::string& family) {
    return family == kCna ? "CNA" : "FC";
}

}  // namespace

WorkingTree WorkingTree::inUse() {
    return WorkingTree(host::installPath());
}

WorkingTree WorkingTree::installed() {
    return WorkingTree(host::configuredInstallPath());
}

std::string WorkingTree::updateDirectory(const std::string& family) const {
    return temporary(directoryOf(family));
}

bool WorkingTree::isCached(const std::string& device, const std::string& family) const {
    return CFileUtility::IsFileExist(path_ + "/cache/" + directoryOf(family) + "/CacheDump_" + CONVERT_DEVID(device) +
                                     ".txt");
}

void WorkingTree::make() const {
    if (!isPlainPath(path_)) {
        refuse(path_, "holds characters that a shell would not take as they are: choose another install directory");
    }
    needSafeParents(path_, "adapters' directory");
    makeParents(path_);
    CEmulexCommon::SetLastError(0);
    if (!CEmulexCommon::CreateLocalDirectory()) {
        Failure failure = lastFailure();
        if (isDenied(path_ + "/cache") || isDenied(path_ + "/temp")) {
            failure.next = "run kvl as root";
        }
        throw AdapterFailure(failure);
    }
    for (const char* directory : {"", "/cache", "/cache/FC", "/cache/CNA", "/temp"}) {
        checkOwnership(path_ + directory);
    }
}

}  // namespace kvl::provider
