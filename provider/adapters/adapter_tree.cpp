#include "provider/adapters/adapter_tree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "adapter/CEmulexCommon.h"
#include "host/CFileUtility.h"
#include "provider/adapters/adapter_failure.h"
#include "provider/adapters/adapter_words.h"
#include "provider/machine/provider_environment.h"

namespace kvl::provider {
namespace {

constexpr mode_t kOthersWrite = 022;

[[noreturn]] void refuse(const std::string& directory, const std::string& why) {
    throw ProviderError(kNothingCollected, "the adapters' directory " + directory + " " + why);
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

}  // namespace

std::string adapterTree() {
    return CFileUtility::GetInstallPath(0) + "/tmp/EMULEX";
}

std::string adapterListFile() {
    return adapterTree() + "/temp/Listhbas.txt";
}

std::string dumpDirectoryFile() {
    return adapterTree() + "/temp/DumpDirectory.txt";
}

bool isCached(const std::string& device, const std::string& family) {
    return CFileUtility::IsFileExist(adapterTree() + "/cache/" + (family == kCna ? "CNA" : "FC") + "/CacheDump_" +
                                     CONVERT_DEVID(device) + ".txt");
}

void needAdapterTree() {
    const std::string tree = adapterTree();
    if (!isPlainPath(tree)) {
        refuse(tree, "holds characters that a shell would not take as they are: choose another install directory");
    }
    needSafeParents(tree, "adapters' directory");
    makeParents(tree);
    CEmulexCommon::SetLastError(0);
    if (!CEmulexCommon::CreateLocalDirectory()) {
        Failure failure = lastFailure();
        if (isDenied(tree + "/cache") || isDenied(tree + "/temp")) {
            failure.next = "run kvl as root";
        }
        throw AdapterFailure(failure);
    }
    for (const char* directory : {"", "/cache", "/cache/FC", "/cache/CNA", "/temp"}) {
        checkOwnership(tree + directory);
    }
}

}  // namespace kvl::provider
