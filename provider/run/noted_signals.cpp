#include "provider/run/noted_signals.h"

#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <system_error>
#include <utility>

namespace kvl::provider {
namespace {

host::FileDescriptor needed(int descriptor) {
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "watching for signals");
    }
    return host::FileDescriptor(descriptor);
}

/// A reader that goes away must not end the program; a command gets the usual disposition back.
extern "C" void passOverBrokenPipe(int) {}

}  // namespace

sigset_t NotedSignals::notedSet() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : kNoted) {
        sigaddset(&set, number);
    }
    return set;
}

void NotedSignals::ignore() {
    struct sigaction action {};
    action.sa_handler = SIG_IGN;
    for (std::size_t index = 0; index < kNoted.size(); ++index) {
        sigaction(kNoted[index], &action, &dispositions_[index]);
    }
    action.sa_handler = passOverBrokenPipe;
    action.sa_flags = SA_RESTART;
    sigaction(SIGPIPE, &action, &brokenPipe_);
}

NotedSignals::NotedSignals(std::function<void(int signal)> told) : told_(std::move(told)) {
    const sigset_t set = notedSet();
    signals_ = needed(signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
    end_ = needed(eventfd(0, EFD_CLOEXEC));
    pthread_sigmask(SIG_BLOCK, &set, &before_);
    ignore();
    watcher_ = std::thread([this] { watch(); });
}

NotedSignals::~NotedSignals() {
    const std::uint64_t one = 1;
    while (write(end_.number(), &one, sizeof one) < 0 && errno == EINTR) {
    }
    watcher_.join();
    const sigset_t set = notedSet();
    const struct timespec atOnce {};
    while (sigtimedwait(&set, nullptr, &atOnce) > 0) {
    }
    for (std::size_t index = 0; index < kNoted.size(); ++index) {
        sigaction(kNoted[index], &dispositions_[index], nullptr);
    }
    sigaction(SIGPIPE, &brokenPipe_, nullptr);
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

int NotedSignals::first() const {
    readSignal();
    const std::lock_guard<std::mutex> lock(mutex_);
    return first_;
}

void NotedSignals::watch() const {
    std::array<struct pollfd, 2> watched = {{{signals_.number(), POLLIN, 0}, {end_.number(), POLLIN, 0}}};
    while (poll(watched.data(), watched.size(), -1) < 0 || watched[1].revents == 0) {
        readSignal();
    }
}

/// Reads a signal that has come, if there is one.
void NotedSignals::readSignal() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    struct signalfd_siginfo signal {};
    if (read(signals_.number(), &signal, sizeof signal) == static_cast<ssize_t>(sizeof signal) && first_ == 0) {
        first_ = static_cast<int>(signal.ssi_signo);
        told_(first_);
    }
}

std::string signalName(int signal) {
    const char* name = sigabbrev_np(signal);
    return name != nullptr ? std::string("SIG") + name : std::to_string(signal);
}

}  // namespace kvl::provider
