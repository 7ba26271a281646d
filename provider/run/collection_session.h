#ifndef KVL_PROVIDER_RUN_COLLECTION_SESSION_H
#define KVL_PROVIDER_RUN_COLLECTION_SESSION_H

#include <set>
#include <string>
#include <vector>

#include "provider/library/collection_watch.h"
#include "provider/run/collection_display.h"

namespace kvl::provider {

/// Watches the library for as long as the object lives: shows the operator what it does, notes what failed, and in the
/// end removes the result files that are left. One at a time.
class CollectionSession {
public:
    explicit CollectionSession(CollectionDisplay& display);
    ~CollectionSession();

    CollectionSession(const CollectionSession&) = delete;
    CollectionSession& operator=(const CollectionSession&) = delete;

    const CollectionWatch& watch() const { return watch_; }

private:
    void takeTrace(TRACE_DBG_LEVEL level, const std::string& text);
    void passInterruptOn();
    void removeResultFiles();

    CollectionDisplay& display_;
    CollectionWatch watch_;
    std::set<std::string> commands_;
};

}  // namespace kvl::provider

#endif
