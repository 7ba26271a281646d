#ifndef KVL_PROVIDER_RUN_RUN_OPTIONS_H
#define KVL_PROVIDER_RUN_RUN_OPTIONS_H

#include "provider/machine/collection_lock.h"

namespace kvl::provider {

/// What an operator can ask of every run.
struct RunOptions {
    unsigned waitSeconds = 60;  ///< longest wait for the machine's turn
    bool verbose = false;       ///< the trace on standard error
    bool quiet = false;         ///< neither progress nor trace
};

/// Takes the machine's lock. A wait for it is reported to the operator.
/// @throws ProviderError if it isn't free in time
CollectionLock takeTurn(unsigned waitSeconds);

}  // namespace kvl::provider

#endif
