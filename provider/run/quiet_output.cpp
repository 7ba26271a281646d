#include "provider/run/quiet_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <memory>

/// Sets where a sanitizer's report goes. Only a program with a sanitizer has this.
extern "C" void __sanitizer_set_report_fd(void* descriptor) __attribute__((weak));

namespace kvl::provider {
namespace {

constexpr off_t kLastBytes = 1024;
constexpr std::size_t kStep = 4096;

/// @return a nameless file, or /dev/null if none can be made
host::FileDescriptor makeSink() {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), std::fclose);
    if (!file) {
        return host::FileDescriptor(open("/dev/null", O_RDWR | O_CLOEXEC));
    }
    host::FileDescriptor sink(fcntl(fileno(file.get()), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    fcntl(sink.number(), F_SETFL, O_APPEND);  // a command may open its stream anew
    return sink;
}

void sendReportsTo(int descriptor) {
    if (__sanitizer_set_report_fd != nullptr) {
        // The run-time's interface has a number in a pointer's place. NOLINTNEXTLINE(performance-no-int-to-ptr)
        __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<std::intptr_t>(descriptor)));
    }
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

DivertedDescriptor::DivertedDescriptor(int number, const host::FileDescriptor& file)
    : number_(number), kept_(fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)) {
    std::cout.flush();  // what it holds back belongs where the descriptor still leads
    dup2(file.number(), number);
}

DivertedDescriptor::~DivertedDescriptor() {
    if (kept_.isOpen()) {
        dup2(kept_.number(), number_);
    } else {
        close(number_);
    }
}

QuietOutput::QuietOutput()
    : sink_(makeSink()),
      output_(STDOUT_FILENO, sink_),
      errors_(STDERR_FILENO, sink_),
      buffer_(errors_.kept()),
      before_(std::cerr.rdbuf(&buffer_)) {
    sendReportsTo(errors_.kept());
}

QuietOutput::~QuietOutput() {
    sendReportsTo(STDERR_FILENO);
    std::cerr.rdbuf(before_);
}

bool QuietOutput::write(const std::string& text) const {
    return writeAll(output_.kept(), text);
}

void QuietOutput::show() {
    std::array<char, kStep> text{};
    ssize_t count = 0;
    while ((count = pread(sink_.number(), text.data(), text.size(), shown_)) > 0) {
        writeAll(errors_.kept(), {text.data(), static_cast<std::size_t>(count)});
        shown_ += count;
    }
}

void QuietOutput::forget() {
    shown_ = 0;
    static_cast<void>(ftruncate(sink_.number(), 0) == 0);  // /dev/null has nothing to forget
}

std::string QuietOutput::lastLine() const {
    const off_t size = lseek(sink_.number(), 0, SEEK_END);
    std::array<char, kLastBytes> text{};
    const ssize_t count =
        size > 0 ? pread(sink_.number(), text.data(), text.size(), size > kLastBytes ? size - kLastBytes : 0) : 0;
    return lastLineOf(std::string(text.data(), count > 0 ? static_cast<std::size_t>(count) : 0));
}

}  // namespace kvl::provider
