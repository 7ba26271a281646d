#include "provider/machine/command_signals.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <system_error>

#include "reference_host/file_descriptor.h"

namespace kvl::provider {
namespace {

std::atomic<int> endingSignal{0};
std::atomic<int> wakeUp{-1};

extern "C" void noteSignal(int number) {
    const int savedErrno = errno;
    if (number != SIGCHLD && endingSignal.load() == 0) {
        endingSignal = number;
    }
    const char byte = 0;
    if (write(wakeUp.load(), &byte, 1) < 0) {
        // The pipe is full of bytes that say the same.
    }
    errno = savedErrno;
}

/// A pipe that carries a byte for each signal. It lives as long as the program.
struct SignalPipe {
    SignalPipe() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
            throw std::system_error(errno, std::generic_category(), "watching a command");
        }
        readEnd = host::FileDescriptor(ends[0]);
        writeEnd = host::FileDescriptor(ends[1]);
        wakeUp = ends[1];
    }

    host::FileDescriptor readEnd;
    host::FileDescriptor writeEnd;
};

const SignalPipe& signalPipe() {
    static const SignalPipe pipe;
    return pipe;
}

void drain(int descriptor) {
    std::array<char, 64> bytes{};
    while (read(descriptor, bytes.data(), bytes.size()) > 0) {
    }
}

}  // namespace

CommandSignals::CommandSignals() {
    drain(signalPipe().readEnd.number());
    endingSignal = 0;
    for (std::size_t index = 0; index < kNoted.size(); ++index) {
        sigaction(kNoted[index], nullptr, &before_[index]);
        if (before_[index].sa_handler != SIG_IGN || kNoted[index] == SIGCHLD) {
            struct sigaction action {};
            action.sa_handler = noteSignal;
            action.sa_flags = SA_RESTART | SA_NOCLDSTOP;
            sigaction(kNoted[index], &action, nullptr);
        }
    }
}

CommandSignals::~CommandSignals() {
    for (std::size_t index = 0; index < kNoted.size(); ++index) {
        sigaction(kNoted[index], &before_[index], nullptr);
    }
}

void CommandSignals::wait(int descriptor, std::chrono::milliseconds longest) const {
    std::array<struct pollfd, 2> watched = {{{signalPipe().readEnd.number(), POLLIN, 0}, {descriptor, POLLIN, 0}}};
    if (poll(watched.data(), watched.size(), static_cast<int>(longest.count())) > 0 && watched[0].revents != 0) {
        drain(watched[0].fd);
    }
}

int CommandSignals::ending() const {
    return endingSignal.load();
}

}  // namespace kvl::provider
