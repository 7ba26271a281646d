#include "reference_host/process_gate.h"

#include <unistd.h>

namespace kvl::host {

ProcessGate::Outcome ProcessGate::enter(const void* owner, const Deadline& deadline) {
    std::unique_lock<std::mutex> lock(mutex_);
    if (isInside(owner) && thread_ == std::this_thread::get_id()) {
        return Outcome::kAlreadyInside;
    }
    const auto isNowOpen = [this] { return isOpen(); };
    if (!deadline) {
        opened_.wait(lock, isNowOpen);
    } else if (!opened_.wait_until(lock, *deadline, isNowOpen)) {
        return Outcome::kTimedOut;
    }
    owner_ = owner;
    thread_ = std::this_thread::get_id();
    process_ = ::getpid();
    return Outcome::kEntered;
}

bool ProcessGate::holds(const void* owner) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return isInside(owner);
}

void ProcessGate::leave(const void* owner) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (isInside(owner)) {
        owner_ = nullptr;
        opened_.notify_one();
    }
}

bool ProcessGate::isOpen() const {
    return owner_ == nullptr || process_ != ::getpid();
}

}  // namespace kvl::host
