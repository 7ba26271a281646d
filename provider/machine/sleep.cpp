#include <time.h>

#include <cerrno>
#include <utility>

#include "provider/machine/command_runner.h"
#include "provider/machine/sleep_observer.h"

namespace kvl::provider {
namespace {

std::function<void(unsigned)>& observer() {
    static std::function<void(unsigned)> current;
    return current;
}

}  // namespace

void setSleepObserver(std::function<void(unsigned seconds)> next) {
    observer() = std::move(next);
}

}  // namespace kvl::provider

/// Stands in front of libc's own. The program exports it, so the library's waits for the output of a command, up to ten
/// seconds that nothing else reports, come through here and can be shown. Where everything that the command has
/// started has ended, no output can appear any more, and there is nothing to wait for.
extern "C" unsigned sleep(unsigned seconds) {
    kvl::provider::CommandRunner* const runner = kvl::provider::commandRunner();
    if (runner != nullptr && !runner->mayStillWrite()) {
        return 0;
    }
    if (const auto& observer = kvl::provider::observer()) {
        observer(seconds);
    }
    struct timespec left {};
    left.tv_sec = static_cast<time_t>(seconds);
    if (clock_nanosleep(CLOCK_MONOTONIC, 0, &left, &left) != EINTR) {
        return 0;
    }
    return static_cast<unsigned>(left.tv_sec) + (left.tv_nsec > 0 ? 1U : 0U);
}
