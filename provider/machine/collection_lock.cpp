#include "provider/machine/collection_lock.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "provider/machine/own_directory.h"
#include "provider/provider_error.h"

namespace kvl::provider {
namespace {

constexpr mode_t kLockMode = 0600;

[[noreturn]] void refuse(const std::string& file, const std::string& why) {
    throw ProviderError("the lock file " + file + " " + why);
}

host::FileDescriptor openLockFile(const std::string& file) {
    constexpr int kCarefully = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    host::FileDescriptor opened(open(file.c_str(), O_RDWR | O_CREAT | kCarefully, kLockMode));
    struct stat status {};
    if (!opened.isOpen() || fstat(opened.number(), &status) != 0) {
        refuse(file, std::string("can't be opened: ") + std::strerror(errno));
    }
    if (!S_ISREG(status.st_mode)) {
        refuse(file, "is no regular file: remove it");
    }
    return opened;
}

/// A file that has another name too may be somebody else's, and must not be overwritten.
bool hasOneName(int file) {
    struct stat status {};
    return fstat(file, &status) == 0 && status.st_nlink == 1;
}

void note(int file, const std::string& text) {
    if (ftruncate(file, 0) != 0 || pwrite(file, text.data(), text.size(), 0) < 0) {
        // The note only helps whoever waits.
    }
}

/// @return the process that noted itself in the file, if it still lives; else 0
pid_t holderOf(int file) {
    std::array<char, 16> text{};
    if (pread(file, text.data(), text.size() - 1, 0) <= 0) {
        return 0;
    }
    const long number = std::strtol(text.data(), nullptr, 10);
    const auto process = static_cast<pid_t>(number);
    const bool lives = number > 0 && process == number && (kill(process, 0) == 0 || errno == EPERM);
    return lives ? process : 0;
}

/// The same, with a little patience: who has just taken the lock has not noted itself yet.
pid_t patientHolderOf(int file) {
    constexpr int kLooks = 20;
    const struct timespec pause = {0, 5'000'000};
    pid_t holder = holderOf(file);
    for (int look = 0; holder == 0 && look < kLooks; ++look) {
        nanosleep(&pause, nullptr);
        holder = holderOf(file);
    }
    return holder;
}

std::string describeHolder(pid_t holder) {
    return holder > 0 ? "another kvl (process " + std::to_string(holder) + ")"
                      : "another kvl, or a command that one has left behind,";
}

bool isDirectory(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool isSameFile(int opened, const std::string& file) {
    struct stat one {};
    struct stat other {};
    return fstat(opened, &one) == 0 && lstat(file.c_str(), &other) == 0 && one.st_dev == other.st_dev &&
           one.st_ino == other.st_ino;
}

}  // namespace

std::string collectionLockFile() {
    const std::string user = std::to_string(geteuid());
    if (geteuid() == 0) {
        return std::string(isDirectory("/run") || !isDirectory("/var/run") ? "/run" : "/var/run") + "/kvl/lock";
    }
    const std::string ofSession = "/run/user/" + user;
    return (isDirectory(ofSession) ? ofSession + "/kvl" : "/tmp/kvl-" + user) + "/lock";
}

CollectionLock CollectionLock::take(const std::string& file, unsigned long longestPauses, const Waiting& waiting) {
    needOwnDirectory(file.substr(0, file.rfind('/')), "lock directory");
    host::FileDescriptor opened = openLockFile(file);
    for (unsigned long pauses = 0; flock(opened.number(), LOCK_EX | LOCK_NB) != 0; ++pauses) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            refuse(file, std::string("can't be locked: ") + std::strerror(errno));
        }
        if (pauses == longestPauses) {
            throw ProviderError(describeHolder(patientHolderOf(opened.number())) +
                                " still works on this machine: try again when it has ended, or "
                                "wait longer with --wait SECONDS");
        }
        if (pauses == 0) {
            waiting.begin(holderOf(opened.number()));
        }
        waiting.pause();
    }
    if (!isSameFile(opened.number(), file)) {  // removed while it was waited for
        return take(file, longestPauses, waiting);
    }
    const bool notes = hasOneName(opened.number());
    if (notes) {
        note(opened.number(), std::to_string(getpid()) + "\n");
    }
    return CollectionLock(std::move(opened), notes);
}

std::optional<CollectionLock> CollectionLock::handedDown(const std::string& file, int number) {
    if (number <= STDERR_FILENO || !isSameFile(number, file) || fcntl(number, F_SETFD, FD_CLOEXEC) != 0 ||
        flock(number, LOCK_EX | LOCK_NB) != 0) {
        return std::nullopt;
    }
    return CollectionLock(host::FileDescriptor(number), false);
}

int CollectionLock::handDown() const {
    fcntl(file_.number(), F_SETFD, 0);
    return file_.number();
}

void CollectionLock::shareWithCommands() {
    fcntl(file_.number(), F_SETFD, 0);
    isShared_ = true;
}

CollectionLock::~CollectionLock() {
    if (file_.isOpen() && notes_) {
        note(file_.number(), "");
    }
    if (file_.isOpen() && isShared_) {
        flock(file_.number(), LOCK_UN);
    }
}

}  // namespace kvl::provider
