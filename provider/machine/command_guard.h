#ifndef KVL_PROVIDER_MACHINE_COMMAND_GUARD_H
#define KVL_PROVIDER_MACHINE_COMMAND_GUARD_H

#include <sys/types.h>

#include "reference_host/file_descriptor.h"

namespace kvl::provider {

/// A small process beside this one. When this one ends, in whatever way, it kills the process group that is watched
/// then. It holds the descriptors that commands inherit, so that a lock among them is free only after the group is
/// gone.
class CommandGuard {
public:
    /// Starts the process. Without one, watching does nothing: the commands still run.
    CommandGuard();

    /// Ends the process and waits for it.
    ~CommandGuard();

    CommandGuard(const CommandGuard&) = delete;
    CommandGuard& operator=(const CommandGuard&) = delete;

    /// Names the group to kill, in place of the one named before. May be called between fork and exec.
    /// @param group  0: none
    void watch(pid_t group) const;

private:
    host::FileDescriptor groups_;
    pid_t process_ = -1;
};

}  // namespace kvl::provider

#endif
