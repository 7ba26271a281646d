#ifndef KVL_PROVIDER_RUN_RUN_OPTIONS_H
#define KVL_PROVIDER_RUN_RUN_OPTIONS_H

#include <cstddef>

#include "provider/machine/collection_lock.h"
#include "provider/run/collection_display.h"

namespace CLI {
class App;
}

namespace kvl::provider {

/// What every command that takes its turn on the machine can be told.
struct RunOptions {
    unsigned waitSeconds = 60;
    bool verbose = false;
    bool quiet = false;
    bool takesTurn = true;  ///< false for a command that changes nothing, and so keeps nobody away
};

/// Adds the options to the command.
/// @param options  holds the defaults and receives what was given; must live as long as the command
void addRunOptions(CLI::App& command, RunOptions& options);

/// What the operator is to see while the command runs: progress on a terminal alone.
CollectionDisplay::Mode displayMode(const RunOptions& options);

/// Columns of the terminal that standard error is.
std::size_t terminalWidth();

/// Takes the machine's lock and tells the operator about the wait for it, if there is one.
/// @throws ProviderError if it isn't had in time
CollectionLock takeTurn(unsigned waitSeconds);

}  // namespace kvl::provider

#endif
