#include "provider/machine/own_directory.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "provider/provider_error.h"

namespace kvl::provider {
namespace {

constexpr mode_t kOthers = 077;
constexpr mode_t kOwnMode = 0700;
constexpr mode_t kParentMode = 0755;

/// Speaks of one directory by what it is for.
class Refusal {
public:
    Refusal(const std::string& directory, const std::string& role) : subject_("the " + role + " " + directory + " ") {}

    [[noreturn]] void because(const std::string& why) const { throw ProviderError(subject_ + why); }

private:
    const std::string subject_;
};

/// Makes one directory with exactly this mode. @return 0, or the errno
int makeDirectory(const std::string& path, mode_t mode) {
    const mode_t before = umask(0);
    const int error = mkdir(path.c_str(), mode) == 0 ? 0 : errno;
    umask(before);
    return error;
}

/// Root can do what this user was denied. For other errors there is no advice.
std::string adviceFor(int error) {
    const bool isDenied = error == EACCES || error == EPERM;
    return isDenied ? ": as root, make it for this user, with mode 0700" : "";
}

void makeMissing(const std::string& directory, const Refusal& refusal) {
    const int parentError = makeParents(directory);
    const int error = parentError != 0 ? parentError : makeDirectory(directory, kOwnMode);
    if (error != 0 && error != EEXIST) {
        refusal.because(std::string("isn't there and can't be made (") + std::strerror(error) + ")" + adviceFor(error));
    }
}

/// A user's own directories are often open to a group of his own.
bool othersCanWrite(const struct stat& status) {
    const bool isOwnGroup = status.st_uid == geteuid() && status.st_gid == getegid();
    return (status.st_mode & (isOwnGroup ? S_IWOTH : S_IWOTH | S_IWGRP)) != 0;
}

void needSafeParent(const std::string& parent, const Refusal& refusal) {
    struct stat status {};
    if (lstat(parent.c_str(), &status) != 0) {
        return;
    }
    if (status.st_uid != geteuid() && status.st_uid != 0) {
        refusal.because("lies in " + parent + ", which belongs to another user (" + std::to_string(status.st_uid) +
                        "): as root, 'chown -h root " + parent + "', or move it");
    }
    if (S_ISDIR(status.st_mode) && othersCanWrite(status) && (status.st_mode & S_ISVTX) == 0) {
        refusal.because("lies in " + parent + ", where other users can write: 'chmod go-w " + parent + "'");
    }
}

void needSafeDirectoriesAbove(const std::string& path, const Refusal& refusal) {
    needSafeParent("/", refusal);
    for (auto slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1)) {
        needSafeParent(path.substr(0, slash), refusal);
    }
}

}  // namespace

int makeParents(const std::string& path) {
    int firstError = 0;
    for (auto slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1)) {
        const int error = makeDirectory(path.substr(0, slash), kParentMode);
        struct stat status {};
        if (firstError == 0 && error != 0 && stat(path.substr(0, slash).c_str(), &status) != 0) {
            firstError = error;
        }
    }
    return firstError;
}

void needSafeParents(const std::string& path, const std::string& role) {
    const Refusal refusal(path, role);
    needSafeDirectoriesAbove(path, refusal);
    const std::string parent = path.substr(0, path.rfind('/') + 1);
    std::array<char, PATH_MAX> real{};
    if (realpath(parent.c_str(), real.data()) != nullptr && parent != std::string(real.data()) + "/") {
        needSafeDirectoriesAbove(std::string(real.data()) + "/", refusal);
    }
}

void needOwnDirectory(const std::string& directory, const std::string& role) {
    const Refusal refusal(directory, role);
    needSafeParents(directory, role);
    makeMissing(directory, refusal);
    struct stat status {};
    if (lstat(directory.c_str(), &status) != 0) {
        refusal.because(std::string("can't be looked at: ") + std::strerror(errno));
    }
    if (S_ISLNK(status.st_mode)) {
        refusal.because("is a link: remove it, and kvl makes a directory");
    }
    if (!S_ISDIR(status.st_mode)) {
        refusal.because("is no directory: remove it, and kvl makes one");
    }
    if (status.st_uid != geteuid()) {
        refusal.because("belongs to another user (" + std::to_string(status.st_uid) +
                        "): run kvl as that user, or 'chown " + std::to_string(geteuid()) + " " + directory + "'");
    }
    if ((status.st_mode & kOthers) != 0) {
        refusal.because("is open to other users: 'chmod 700 " + directory + "'");
    }
}

}  // namespace kvl::provider
