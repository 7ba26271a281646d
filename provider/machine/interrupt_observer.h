#ifndef KVL_PROVIDER_MACHINE_INTERRUPT_OBSERVER_H
#define KVL_PROVIDER_MACHINE_INTERRUPT_OBSERVER_H

#include <functional>

namespace kvl::provider {

/// Lets the program learn of the terminal's interrupts that come while libc's system waits for a command, and don't end
/// the program there. Ignored and blocked signals don't count.
/// @param observer  is called after the command's end with SIGINT or SIGQUIT; an empty one ends the watching
void setInterruptObserver(std::function<void(int signal)> observer);

}  // namespace kvl::provider

#endif
