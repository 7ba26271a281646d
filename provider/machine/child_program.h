#ifndef KVL_PROVIDER_MACHINE_CHILD_PROGRAM_H
#define KVL_PROVIDER_MACHINE_CHILD_PROGRAM_H

#include <string>
#include <vector>

namespace kvl::provider {

/// How a run of bubblewrap has ended.
struct SandboxEnding {
    bool programRan = false;  ///< false if bubblewrap gave up before, for which it has no exit code of its own
    int status = 0;           ///< exit code, or 128 and a signal
};

/// Runs bubblewrap with this process's standard streams and waits for its end. Meanwhile the signals that ask a process
/// to end are passed on to it.
/// @param words  the path of bubblewrap and its arguments
/// @throws std::system_error if there is no process to be had
SandboxEnding runSandbox(std::vector<std::string> words);

}  // namespace kvl::provider

#endif
