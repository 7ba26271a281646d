#include "provider/update/requirements.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "machines/programs.h"
#include "provider/provider_error.h"

namespace kvl::provider {
namespace {

constexpr std::uint64_t kMargin = 1024ULL * 1024;
constexpr std::uint64_t kMebibyte = 1024ULL * 1024;
constexpr mode_t kOthersWrite = 022;

[[noreturn]] void refuse(const std::string& sentence) {
    throw ProviderError(sentence);
}

std::string inMebibytes(std::uint64_t bytes) {
    return std::to_string((bytes + kMebibyte - 1) / kMebibyte) + " MiB";
}

/// The directory itself, or the nearest above it that is there.
std::string existing(std::filesystem::path directory) {
    std::error_code error;
    while (!std::filesystem::exists(directory, error) && directory.has_relative_path()) {
        directory = directory.parent_path();
    }
    return directory.string();
}

}  // namespace

std::string findCommand(const std::string& name) {
    const char* directories = getenv("PATH");
    return machines::findProgram(name, directories != nullptr ? directories : "");
}

void requireCommand(const std::string& name) {
    if (findCommand(name).empty()) {
        refuse("'" + name + "' isn't installed: install the package that brings it");
    }
}

void requireRoom(const std::string& directory, std::uint64_t bytes) {
    const std::string place = existing(directory);
    struct statvfs status {};
    if (statvfs(place.c_str(), &status) != 0) {
        refuse("the disk of " + place + " can't be looked at: " + std::strerror(errno));
    }
    const std::uint64_t free = std::uint64_t{status.f_bavail} * status.f_frsize;
    if (free < bytes + kMargin) {
        refuse("the disk of " + place + " has too little room: " + inMebibytes(bytes + kMargin) + " are needed, " +
               inMebibytes(free) + " are free");
    }
    if (access(place.c_str(), W_OK) != 0) {
        refuse(place + " can't be written: " + std::strerror(errno));
    }
}

void requireOutside(const std::string& directory, const std::string& deleted) {
    std::error_code error;
    const auto inner = std::filesystem::weakly_canonical(directory, error);
    const auto outer = std::filesystem::weakly_canonical(deleted, error);
    const auto ends = std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end());
    if (error || ends.first == outer.end()) {
        refuse(directory + " lies in " + deleted + ", which is deleted first: move the module elsewhere");
    }
}

void requireOwnDirectory(const std::string& directory) {
    struct stat status {};
    if (lstat(directory.c_str(), &status) != 0) {
        refuse(directory + " can't be looked at: " + std::strerror(errno));
    }
    if (!S_ISDIR(status.st_mode)) {
        refuse(directory + " is no directory");
    }
    if (status.st_uid != geteuid() || (status.st_mode & kOthersWrite) != 0) {
        refuse(directory + " belongs to another user, or others can write there: choose a directory of your own");
    }
}

}  // namespace kvl::provider
