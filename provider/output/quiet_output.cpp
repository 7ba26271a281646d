#include "provider/output/quiet_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <iostream>
#include <memory>

namespace kvl::provider {
namespace {

constexpr off_t kLastBytes = 1024;

/// @return a nameless file, or where that can't be had, the device that takes everything
host::FileDescriptor makeSink() {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), std::fclose);
    return host::FileDescriptor(file ? fcntl(fileno(file.get()), F_DUPFD_CLOEXEC, STDERR_FILENO + 1)
                                     : open("/dev/null", O_RDWR | O_CLOEXEC));
}

std::string lastLineOf(const std::string& text) {
    const auto end = text.find_last_not_of(" \r\n");
    if (end == std::string::npos) {
        return "";
    }
    const auto before = text.find_last_of('\n', end);
    const auto begin = before == std::string::npos ? 0 : before + 1;
    return text.substr(begin, end + 1 - begin);
}

}  // namespace

QuietOutput::QuietOutput() {
    std::cout.flush();
    const host::FileDescriptor sink = makeSink();
    if (sink.isOpen()) {
        kept_ = host::FileDescriptor(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
        dup2(sink.number(), STDOUT_FILENO);
    }
}

QuietOutput::~QuietOutput() {
    if (kept_.isOpen()) {
        dup2(kept_.number(), STDOUT_FILENO);
    }
}

void QuietOutput::write(const std::string& text) const {
    const int output = kept_.isOpen() ? kept_.number() : STDOUT_FILENO;
    for (std::size_t written = 0; written < text.size();) {
        const ssize_t count = ::write(output, text.data() + written, text.size() - written);
        if (count < 0 && errno != EINTR) {
            return;
        }
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

void QuietOutput::forget() {
    if (kept_.isOpen() && ftruncate(STDOUT_FILENO, 0) == 0) {
        lseek(STDOUT_FILENO, 0, SEEK_SET);
    }
}

std::string QuietOutput::lastLine() const {
    const off_t size = kept_.isOpen() ? lseek(STDOUT_FILENO, 0, SEEK_END) : 0;
    std::array<char, kLastBytes> text{};
    const ssize_t count =
        size > 0 ? pread(STDOUT_FILENO, text.data(), text.size(), size > kLastBytes ? size - kLastBytes : 0) : 0;
    return lastLineOf(std::string(text.data(), count > 0 ? static_cast<std::size_t>(count) : 0));
}

}  // namespace kvl::provider
