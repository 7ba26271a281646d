#ifndef KVL_FOUNDATION_SHELL_CHILD_H
#define KVL_FOUNDATION_SHELL_CHILD_H

#include <sys/types.h>

#include <string>

namespace kvl {

constexpr unsigned long kRan = 0;
constexpr unsigned long kFailed = 1;
constexpr unsigned long kTimedOut = 255;
constexpr unsigned long kNoExitCode = 255;
constexpr unsigned long kNoTimeout = static_cast<unsigned long>(-1);

/// @return true if there is a command, and its directory, where one is named, can be opened
bool canRun(const std::string& command, const std::string& workDir);

/// Makes `descriptor` the standard output of this process, a forked child, and leaves standard error closed.
/// It works also where the descriptor itself, or the parent's 0, 1 or 2, stood in the way.
/// @return false if that failed
bool becomeStandardOutput(int descriptor);

/// Turns this process, a forked child, into `sh -c command`. Ends it with status 1 if that fails, without the
/// parent's exit handlers and buffers.
[[noreturn]] void becomeShell(const std::string& command);

/// Waits for a child.
/// @param timeout   milliseconds, polled once a second by the host's `Sleep`, or kNoTimeout
/// @param exitCode  set if the child exited by itself
/// @return kRan, kFailed or kTimedOut
unsigned long waitForChild(pid_t child, unsigned long timeout, unsigned long* exitCode);

}  // namespace kvl

#endif
