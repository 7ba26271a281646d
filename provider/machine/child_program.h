#ifndef KVL_PROVIDER_MACHINE_CHILD_PROGRAM_H
#define KVL_PROVIDER_MACHINE_CHILD_PROGRAM_H

#include <string>
#include <vector>

#include "machines/bubblewrap.h"

namespace kvl::provider {

/// Runs bubblewrap with this process's standard streams and waits for its end. Meanwhile the signals that ask a process
/// to end are passed on to it.
/// @param words  the path of bubblewrap and its arguments
/// @throws std::system_error if no process can be started
machines::BubblewrapEnding runSandbox(const std::vector<std::string>& words);

}  // namespace kvl::provider

#endif
