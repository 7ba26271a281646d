#include "reference_host/lock_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace kvl::host {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds kPollInterval(2);

constexpr mode_t kFileMode = 0644;  // whoever can read it can lock it
constexpr fs::perms kDirectoryMode = static_cast<fs::perms>(0755);

// Every user must reach the file, whatever the umask of the process that made it.
void makeDirectories(const fs::path& directory) {
    fs::path made;
    for (const fs::path& part : directory) {
        made /= part;
        std::error_code error;
        if (fs::create_directory(made, error)) {
            fs::permissions(made, kDirectoryMode, error);
        }
    }
}

FileDescriptor openExisting(const std::string& path) {
    return FileDescriptor(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
}

FileDescriptor create(const std::string& path) {
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode));
    if (file.isOpen()) {
        ::fchmod(file.number(), kFileMode);
    }
    return file;
}

bool isRegularFile(int file) {
    struct stat status {};
    return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

// Others may have put anything at the path. Opened without O_CREAT first, which may be refused for another user's file.
FileDescriptor openOrCreate(const std::string& path) {
    FileDescriptor file = openExisting(path);
    if (!file.isOpen() && errno == ENOENT) {
        file = create(path);
        if (!file.isOpen() && errno == EEXIST) {
            file = openExisting(path);
        }
    }
    return file.isOpen() && isRegularFile(file.number()) ? std::move(file) : FileDescriptor();
}

}  // namespace

FileDescriptor openLockFile(const std::string& productFile, const std::string& commonFile) {
    makeDirectories(fs::path(productFile).parent_path());
    FileDescriptor file = openOrCreate(productFile);
    return file.isOpen() ? std::move(file) : openOrCreate(commonFile);
}

bool lockFile(int file, const Deadline& deadline) {
    const int operation = deadline ? LOCK_EX | LOCK_NB : LOCK_EX;
    while (::flock(file, operation) != 0) {
        if (errno == EWOULDBLOCK) {
            if (std::chrono::steady_clock::now() >= *deadline) {
                return false;
            }
            std::this_thread::sleep_for(kPollInterval);
        } else if (errno != EINTR) {
            return true;
        }
    }
    return true;
}

void unlockFile(int file) {
    ::flock(file, LOCK_UN);
}

}  // namespace kvl::host
