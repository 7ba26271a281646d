#include "provider/run/run_options.h"

#include <time.h>

#include <iostream>
#include <string>

namespace kvl::provider {
namespace {

constexpr unsigned long kPausesPerSecond = 10;

}  // namespace

CollectionLock takeTurn(unsigned waitSeconds) {
    CollectionLock::Waiting waiting;
    waiting.begin = [waitSeconds](pid_t holder) {
        std::cerr << "kvl: another kvl works on this machine"
                  << (holder > 0 ? " (process " + std::to_string(holder) + ")" : "") << ": waiting up to "
                  << waitSeconds << " s for its end\n";
    };
    waiting.pause = [] {
        const struct timespec pause = {0, 1'000'000'000 / static_cast<long>(kPausesPerSecond)};
        nanosleep(&pause, nullptr);
    };
    return CollectionLock::take(collectionLockFile(), waitSeconds * kPausesPerSecond, waiting);
}

}  // namespace kvl::provider
