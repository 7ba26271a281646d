#include "reference_host/trace_observer.h"

#include <memory>
#include <utility>

#include "reference_host/observer_slot.h"

namespace kvl::host {
namespace {

using Slot = ObserverSlot<const std::string&, TRACE_DBG_LEVEL, const std::string&>;

// Never destroyed: objects that outlive this file's statics may still trace.
Slot& slot() {
    static Slot& instance = *std::make_unique<Slot>().release();
    return instance;
}

}  // namespace

void setTraceObserver(TraceObserver observer) {
    slot().set(std::move(observer));
}

bool hasTraceObserver() {
    return slot().isTaken();
}

void notifyTraceObserver(const std::string& module, TRACE_DBG_LEVEL level, const std::string& text) noexcept {
    slot().notify(module, level, text);
}

}  // namespace kvl::host
