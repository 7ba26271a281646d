#include "reference_host/ini_cache.h"

#include <SimpleIni.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <tuple>
#include <utility>

#include "reference_host/file_descriptor.h"

namespace kvl::host {
namespace {

constexpr std::size_t kKeptFiles = 4;

bool isEarlier(const timespec& left, const timespec& right) {
    return std::tie(left.tv_sec, left.tv_nsec) < std::tie(right.tv_sec, right.tv_nsec);
}

bool isEqual(const timespec& left, const timespec& right) {
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

bool isSameState(const struct stat& left, const struct stat& right) {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino && left.st_size == right.st_size &&
           isEqual(left.st_mtim, right.st_mtim) && isEqual(left.st_ctim, right.st_ctim);
}

// The clock that file systems take their time stamps from.
timespec fileClock() {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return now;
}

bool readAll(int file, std::string& content) {
    std::array<char, 65536> buffer{};
    for (;;) {
        const ssize_t count = ::read(file, buffer.data(), buffer.size());
        if (count > 0) {
            content.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0) {
            return true;
        } else if (errno != EINTR) {
            return false;
        }
    }
}

std::string withoutQuotes(std::string text) {
    const bool isQuoted =
        text.size() >= 2 && text.front() == text.back() && (text.front() == '"' || text.front() == '\'');
    return isQuoted ? text.substr(1, text.size() - 2) : text;
}

}  // namespace

struct IniCache::File {
    std::string path;
    struct stat status {};
    bool isSettled = false;  // a later change would show in the time stamps
    std::unique_ptr<CSimpleIniA> values;
};

IniCache::IniCache() = default;
IniCache::~IniCache() = default;

std::optional<std::string> IniCache::value(const char* section, const char* key, const char* path) {
    if (section == nullptr || key == nullptr || path == nullptr) {
        return std::nullopt;
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    const File* file = current(path);
    const char* text = file != nullptr ? file->values->GetValue(section, key, nullptr) : nullptr;
    return text != nullptr ? std::optional<std::string>(withoutQuotes(text)) : std::nullopt;
}

std::size_t IniCache::loadCount() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return loadCount_;
}

IniCache::File* IniCache::current(const std::string& path) {
    const auto known =
        std::find_if(files_.begin(), files_.end(), [&path](const File& file) { return file.path == path; });
    if (known != files_.end()) {
        struct stat status {};
        if (known->isSettled && ::stat(path.c_str(), &status) == 0 && isSameState(known->status, status)) {
            files_.splice(files_.begin(), files_, known);
            return &files_.front();
        }
        files_.erase(known);
    }
    return load(path);
}

IniCache::File* IniCache::load(const std::string& path) {
    const timespec start = fileClock();
    const FileDescriptor descriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    File file;
    file.path = path;
    if (!descriptor.isOpen() || ::fstat(descriptor.number(), &file.status) != 0 || !S_ISREG(file.status.st_mode)) {
        return nullptr;
    }
    std::string content;
    file.values = std::make_unique<CSimpleIniA>();
    file.values->SetMultiKey(true);
    if (!readAll(descriptor.number(), content) || file.values->LoadData(content) < 0) {
        return nullptr;
    }
    file.isSettled = isEarlier(file.status.st_ctim, start);
    ++loadCount_;
    files_.push_front(std::move(file));
    if (files_.size() > kKeptFiles) {
        files_.pop_back();
    }
    return &files_.front();
}

IniCache& iniCache() {
    static IniCache& instance = *std::make_unique<IniCache>().release();
    return instance;
}

}  // namespace kvl::host
