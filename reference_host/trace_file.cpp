#include "reference_host/trace_file.h"

#include <fcntl.h>
#include <spdlog/details/log_msg.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "reference_host/file_descriptor.h"

namespace kvl::host {
namespace {

constexpr std::size_t kOlderFiles = 3;

// True for a file that takes lines at once; a pipe could block for ever.
bool isWritable(const std::string& path) {
    const FileDescriptor file(
        ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666));
    struct stat status {};
    return file.isOpen() && ::fstat(file.number(), &status) == 0 &&
           (S_ISREG(status.st_mode) || S_ISCHR(status.st_mode));
}

// Without the check spdlog would try an unwritable file again and again before it gives up.
spdlog::file_event_handlers fileHandlers() {
    spdlog::file_event_handlers handlers;
    handlers.before_open = [](const spdlog::filename_t& path) {
        if (!isWritable(path)) {
            throw std::runtime_error("not writable: " + path);
        }
    };
    handlers.after_open = [](const spdlog::filename_t&, std::FILE* stream) {
        ::fcntl(::fileno(stream), F_SETFD, FD_CLOEXEC);
    };
    return handlers;
}

bool isNewOrRegularFile(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode);
}

}  // namespace

TraceFile::TraceFile(std::string path, std::size_t limit) : path_(std::move(path)), limit_(limit) {}

TraceFile::~TraceFile() = default;

void TraceFile::write(const std::string& line) noexcept {
    try {
        const std::lock_guard<std::mutex> lock(mutex_);
        try {
            if (!sink_) {
                sink_ = open();
            }
            sink_->log(spdlog::details::log_msg(spdlog::string_view_t(), spdlog::level::info, line));
            sink_->flush();
        } catch (...) {
            sink_.reset();
        }
    } catch (...) {
    }
}

std::unique_ptr<spdlog::sinks::sink> TraceFile::open() const {
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path_).parent_path(), ignored);
    std::unique_ptr<spdlog::sinks::sink> sink;
    if (isNewOrRegularFile(path_)) {
        sink =
            std::make_unique<spdlog::sinks::rotating_file_sink_st>(path_, limit_, kOlderFiles, false, fileHandlers());
    } else {
        sink = std::make_unique<spdlog::sinks::basic_file_sink_st>(path_, false, fileHandlers());
    }
    sink->set_pattern("%Y-%m-%d %H:%M:%S.%e %v");
    return sink;
}

}  // namespace kvl::host
