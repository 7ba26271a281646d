#include "reference_host/wait_observer.h"

#include <memory>
#include <utility>

#include "reference_host/observer_slot.h"

namespace kvl::host {
namespace {

using Slot = ObserverSlot<unsigned long>;

// Never destroyed: objects that outlive this file's statics may still wait.
Slot& slot() {
    static Slot& instance = *std::make_unique<Slot>().release();
    return instance;
}

}  // namespace

void setWaitObserver(std::function<void(unsigned long milliseconds)> observer) {
    slot().set(std::move(observer));
}

void notifyWaitObserver(unsigned long milliseconds) noexcept {
    slot().notify(milliseconds);
}

}  // namespace kvl::host
