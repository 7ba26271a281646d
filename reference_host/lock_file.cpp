#include "reference_host/lock_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace kvl::host {
namespace {

constexpr std::chrono::milliseconds kPollInterval(2);

FileDescriptor openOrCreate(const std::string& path, int extraFlags) {
    // A lock needs no right to write, so one user can take the file that another has made.
    return FileDescriptor(
        ::open(path.c_str(), O_RDONLY | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | extraFlags, 0644));
}

bool isOwnRegularFile(int file) {
    struct stat status {};
    return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid();
}

}  // namespace

FileDescriptor openLockFile(const std::string& productFile, const std::string& userFile) {
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(productFile).parent_path(), ignored);
    FileDescriptor file = openOrCreate(productFile, 0);
    if (!file.isOpen()) {
        file = openOrCreate(userFile, O_NOFOLLOW);
        if (file.isOpen() && !isOwnRegularFile(file.number())) {
            file.close();
        }
    }
    return file;
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
