#include "provider/machine/provider_environment.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "provider/provider_error.h"

namespace kvl::provider {
namespace {

constexpr mode_t kOwnFilesOnly = 077;
constexpr mode_t kResultDirectoryMode = 0700;
constexpr mode_t kParentMode = 0755;

[[noreturn]] void refuse(const std::string& directory, const std::string& why) {
    throw ProviderError("the result directory " + directory + " " + why);
}

/// Makes one directory with exactly this mode. @return 0, or the errno
int makeDirectory(const std::string& path, mode_t mode) {
    if (mkdir(path.c_str(), mode) != 0) {
        return errno;
    }
    return chmod(path.c_str(), mode) == 0 ? 0 : errno;
}

void makeMissing(const std::string& directory) {
    makeParents(directory);
    const int error = makeDirectory(directory, kResultDirectoryMode);
    if (error != 0 && error != EEXIST) {
        refuse(directory, std::string("isn't there and can't be made (") + std::strerror(error) +
                              "): as root, make it for this user, with mode 0700");
    }
}

}  // namespace

void enterProviderEnvironment() {
    setenv("LC_ALL", "C", 1);
    setenv("PATH", "/sbin:/usr/sbin:/bin:/usr/bin", 1);
    umask(kOwnFilesOnly);
}

void makeParents(const std::string& path) {
    for (auto slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1)) {
        makeDirectory(path.substr(0, slash), kParentMode);
    }
}

void needResultDirectory(const std::string& directory) {
    makeMissing(directory);
    struct stat status {};
    if (lstat(directory.c_str(), &status) != 0) {
        refuse(directory, std::string("can't be looked at: ") + std::strerror(errno));
    }
    if (S_ISLNK(status.st_mode)) {
        refuse(directory, "is a link: remove it, and kvl makes a directory");
    }
    if (!S_ISDIR(status.st_mode)) {
        refuse(directory, "is no directory: remove it, and kvl makes one");
    }
    if (status.st_uid != geteuid()) {
        refuse(directory, "belongs to another user (" + std::to_string(status.st_uid) +
                              "): run kvl as that user, or 'chown " + std::to_string(geteuid()) + " " + directory +
                              "'");
    }
    if ((status.st_mode & kOwnFilesOnly) != 0) {
        refuse(directory, "is open to other users: 'chmod 700 " + directory + "'");
    }
}

}  // namespace kvl::provider
