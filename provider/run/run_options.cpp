#include "provider/run/run_options.h"

#include <sys/ioctl.h>
#include <time.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <string>

namespace kvl::provider {
namespace {

constexpr int kLongestWait = 24 * 60 * 60;
constexpr unsigned long kPausesPerSecond = 10;
constexpr std::size_t kUsualWidth = 80;

}  // namespace

void addRunOptions(CLI::App& command, RunOptions& options) {
    command
        .add_option("--wait", options.waitSeconds,
                    "Longest wait for another kvl to end (default: " + std::to_string(options.waitSeconds) + ")")
        ->type_name("SECONDS")
        ->check(CLI::Range(0, kLongestWait).description(""));
    CLI::Option* verbose = command.add_flag("-v,--verbose", options.verbose, "Show the trace on standard error");
    command.add_flag("--quiet", options.quiet, "Show neither progress nor trace")->excludes(verbose);
}

CollectionDisplay::Mode displayMode(const RunOptions& options) {
    if (options.verbose) {
        return CollectionDisplay::Mode::kTrace;
    }
    const bool watched = !options.quiet && isatty(STDERR_FILENO) == 1;
    return watched ? CollectionDisplay::Mode::kProgress : CollectionDisplay::Mode::kNothing;
}

std::size_t terminalWidth() {
    struct winsize size {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsualWidth;
}

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
