#ifndef KVL_PROVIDER_MACHINE_SLEEP_OBSERVER_H
#define KVL_PROVIDER_MACHINE_SLEEP_OBSERVER_H

#include <functional>

namespace kvl::provider {

/// Lets the program report libc's sleep to the operator, in which the library waits for a command's output.
/// @param observer  is called before each sleep, with its seconds; an empty one ends the watching
void setSleepObserver(std::function<void(unsigned seconds)> observer);

}  // namespace kvl::provider

#endif
