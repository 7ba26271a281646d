#ifndef KVL_REFERENCE_HOST_WAIT_OBSERVER_H
#define KVL_REFERENCE_HOST_WAIT_OBSERVER_H

#include <functional>

namespace kvl::host {

/// Lets the program show waits: the observer is called before each Sleep, on the thread that is about to sleep.
/// What it throws is dropped. May be called at any time on any thread.
/// @param observer  an empty one ends the watching
void setWaitObserver(std::function<void(unsigned long milliseconds)> observer);

/// Reports one wait to the observer, if there is one.
void notifyWaitObserver(unsigned long milliseconds) noexcept;

}  // namespace kvl::host

#endif
