#ifndef KVL_REFERENCE_HOST_OBSERVER_SLOT_H
#define KVL_REFERENCE_HOST_OBSERVER_SLOT_H

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace kvl::host {

/// Room for one observer, for any number of threads. The observer is called outside the slot's lock, so it may
/// use every service and replace itself. What it causes on its own thread isn't reported to it again.
template <typename... Arguments>
class ObserverSlot {
public:
    using Observer = std::function<void(Arguments...)>;

    /// Sets the observer; an empty one leaves the slot empty. A call that is under way may end later.
    void set(Observer observer) {
        std::shared_ptr<const Observer> next;
        if (observer) {
            next = std::make_shared<const Observer>(std::move(observer));
        }
        const std::lock_guard<std::mutex> lock(mutex_);
        observer_.swap(next);
        taken_.store(observer_ != nullptr);
    }

    bool isTaken() const { return taken_.load(); }

    /// Calls the observer, if there is one. What it throws stays here.
    void notify(Arguments... arguments) noexcept {
        static thread_local bool inside = false;
        if (!isTaken() || inside) {
            return;
        }
        const std::shared_ptr<const Observer> observer = current();
        if (!observer) {
            return;
        }
        inside = true;
        try {
            (*observer)(arguments...);
        } catch (...) {
        }
        inside = false;
    }

private:
    std::shared_ptr<const Observer> current() const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return observer_;
    }

    mutable std::mutex mutex_;
    std::shared_ptr<const Observer> observer_;
    std::atomic<bool> taken_{false};
};

}  // namespace kvl::host

#endif
