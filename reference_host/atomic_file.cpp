#include "reference_host/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace kvl::host {
namespace {

// A killed process leaves its temporary file, and a later process may have the same number.
constexpr int kNameAttempts = 1000;

// The file to replace, or an empty text for what must not be replaced.
std::string replaceableTarget(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode)) {
        return path;
    }
    if (!S_ISLNK(status.st_mode) || ::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return {};
    }
    std::error_code error;
    return std::filesystem::canonical(path, error).string();
}

// With its closing "/"; empty for the current directory.
std::string directoryOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

std::string temporaryName(const std::string& directory) {
    static std::atomic<unsigned long> counter{0};
    return directory + ".kvl-" + std::to_string(::getpid()) + "-" + std::to_string(counter.fetch_add(1)) + ".tmp";
}

bool synchronize(int file) {
    int result = 0;
    do {
        result = ::fsync(file);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

// As far as the file system can: by now the new file is in its place for every reader.
void synchronizeDirectory(const std::string& directory) {
    const char* path = directory.empty() ? "." : directory.c_str();
    const FileDescriptor file(::open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (file.isOpen()) {
        synchronize(file.number());
    }
}

}  // namespace

AtomicFile::AtomicFile(const std::string& path, mode_t mode) : target_(replaceableTarget(path)) {
    if (!target_.empty() && target_.back() != '/') {
        open(mode);
    }
}

AtomicFile::~AtomicFile() {
    discard();
}

bool AtomicFile::write(const void* data, std::size_t size) {
    const char* next = static_cast<const char*>(data);
    while (good_ && size > 0) {
        const ssize_t count = ::write(file_.number(), next, size);
        if (count >= 0) {
            next += count;
            size -= static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            good_ = false;
        }
    }
    return good_;
}

bool AtomicFile::setPermissions(mode_t mode) {
    good_ = good_ && ::fchmod(file_.number(), mode) == 0;
    return good_;
}

bool AtomicFile::commit(Existing existing) {
    const bool done = good_ && synchronize(file_.number()) && file_.close() && rename(existing);
    if (done) {
        temporary_.clear();
        synchronizeDirectory(directoryOf(target_));
    }
    good_ = false;
    discard();
    return done;
}

void AtomicFile::open(mode_t mode) {
    for (int attempt = 0; attempt < kNameAttempts && !good_; ++attempt) {
        std::string name = temporaryName(directoryOf(target_));
        file_ = FileDescriptor(::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
        if (file_.isOpen()) {
            temporary_ = std::move(name);
            good_ = true;
            takeAfterTarget();
        } else if (errno != EEXIST && errno != EINTR) {
            return;
        }
    }
}

void AtomicFile::takeAfterTarget() {
    struct stat status {};
    if (::lstat(target_.c_str(), &status) != 0) {
        return;
    }
    if (::fchown(file_.number(), status.st_uid, status.st_gid) != 0) {
        // Only root may give files away; the content is what counts.
    }
    good_ = ::fchmod(file_.number(), status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO)) == 0;
}

bool AtomicFile::rename(Existing existing) {
    const unsigned flags = existing == Existing::kKeep ? RENAME_NOREPLACE : 0;
    return flags == 0 ? ::rename(temporary_.c_str(), target_.c_str()) == 0
                      : ::renameat2(AT_FDCWD, temporary_.c_str(), AT_FDCWD, target_.c_str(), flags) == 0;
}

void AtomicFile::discard() {
    file_.close();
    if (!temporary_.empty()) {
        ::unlink(temporary_.c_str());
        temporary_.clear();
    }
}

}  // namespace kvl::host
