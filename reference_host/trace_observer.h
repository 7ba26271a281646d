#ifndef KVL_REFERENCE_HOST_TRACE_OBSERVER_H
#define KVL_REFERENCE_HOST_TRACE_OBSERVER_H

#include <functional>
#include <string>

#include "host/CTraceUtility.h"

namespace kvl::host {

using TraceObserver = std::function<void(const std::string& module, TRACE_DBG_LEVEL level, const std::string& text)>;

/// Lets the program watch the lines of the debug trace as they are written: every level, whatever the trace file
/// takes, with the text whole and unescaped. May be called at any time on any thread; the observer is called on
/// the tracing thread. Lines that the observer itself traces aren't reported to it, and what it throws is dropped.
/// @param observer  an empty one ends the watching
void setTraceObserver(TraceObserver observer);

/// @return true if somebody watches
bool hasTraceObserver();

/// Reports one line to the observer, if there is one.
void notifyTraceObserver(const std::string& module, TRACE_DBG_LEVEL level, const std::string& text) noexcept;

}  // namespace kvl::host

#endif
