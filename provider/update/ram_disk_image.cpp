#include "provider/update/ram_disk_image.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

#include "reference_host/atomic_file.h"

namespace kvl::provider {
namespace {

std::optional<struct stat> lookAt(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) ? std::optional(status) : std::nullopt;
}

/// What identifies a file, whatever its name: a move keeps it.
std::string identity(const std::string& path) {
    const auto status = lookAt(path);
    return !status ? ""
                   : std::to_string(status->st_ino) + " " + std::to_string(status->st_size) + " " +
                         std::to_string(status->st_mtim.tv_sec) + "." + std::to_string(status->st_mtim.tv_nsec);
}

}  // namespace

RamDiskImage::RamDiskImage(const std::string& kernel, const std::string& noteDirectory)
    : path_("/boot/initramfs-" + kernel + ".img"), noteFile_(noteDirectory + "/initramfs-" + kernel + ".txt") {
    std::ifstream note(noteFile_);
    std::getline(note, noted_);
    std::string left;
    if (std::getline(note, left)) {
        left_ = left;
    }
    struct stat status {};
    if (lstat(path_.c_str(), &status) != 0) {
        noted_ = identity(formerPath());
        left_.reset();
    }
}

bool RamDiskImage::isBrokenOff() const {
    const bool isOfThatRebuild = !left_ || identity(path_) == *left_;
    return !noted_.empty() && identity(formerPath()) == noted_ && !isUntouched() && isOfThatRebuild;
}

std::optional<std::uint64_t> RamDiskImage::size() const {
    const auto status = lookAt(isBrokenOff() ? formerPath() : path_);
    return status ? std::optional(static_cast<std::uint64_t>(status->st_size)) : std::nullopt;
}

std::uint64_t RamDiskImage::presentSize() const {
    const auto status = lookAt(path_);
    return status ? static_cast<std::uint64_t>(status->st_size) : 0;
}

bool RamDiskImage::note() {
    noted_ = identity(path_);
    left_.reset();
    return writeNote(noted_ + "\n");
}

void RamDiskImage::noteFailure() const {
    // Where that can't be written, the image is moved back at the next rebuild.
    static_cast<void>(writeNote(noted_ + "\n" + identity(path_) + "\n"));
}

bool RamDiskImage::writeNote(const std::string& text) const {
    host::AtomicFile file(noteFile_);
    return file.write(text.data(), text.size()) && file.commit();
}

void RamDiskImage::forgetNote() const {
    unlink(noteFile_.c_str());
}

bool RamDiskImage::isUntouched() const {
    return identity(path_) == noted_;
}

bool RamDiskImage::isRebuilt() const {
    return identity(formerPath()) == noted_ && presentSize() > 0;
}

std::string RamDiskImage::restore() const {
    if (identity(formerPath()) != noted_) {
        return formerPath() + " is not the former image";
    }
    if (std::rename(formerPath().c_str(), path_.c_str()) != 0) {
        return std::strerror(errno);
    }
    return isUntouched() ? "" : path_ + " is not the former image";
}

}  // namespace kvl::provider
