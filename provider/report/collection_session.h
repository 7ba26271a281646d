#ifndef KVL_PROVIDER_REPORT_COLLECTION_SESSION_H
#define KVL_PROVIDER_REPORT_COLLECTION_SESSION_H

#include <set>
#include <string>
#include <vector>

#include "provider/machine/machine_layer.h"
#include "provider/output/collection_display.h"
#include "provider/report/collection_watch.h"

namespace kvl::provider {

/// Watches the library for as long as the object lives: shows the operator what it does, notes what failed, and in the
/// end removes the result files that are left. One at a time.
class CollectionSession {
public:
    CollectionSession(CollectionDisplay& display, const MachineLayer::Rules& rules);
    ~CollectionSession();

    CollectionSession(const CollectionSession&) = delete;
    CollectionSession& operator=(const CollectionSession&) = delete;

    const CollectionWatch& watch() const { return watch_; }

    /// The names by which the library knows the interfaces.
    const InterfaceNames& names() const { return layer_.names(); }

    /// What could not be collected, a sentence each, with the machine's own names.
    std::vector<std::string> failures() const;

private:
    void takeTrace(TRACE_DBG_LEVEL level, const std::string& text);
    void endBy(int signal);
    void removeResultFiles();

    CollectionDisplay& display_;
    MachineLayer layer_;
    CollectionWatch watch_;
    std::set<std::string> commands_;
};

}  // namespace kvl::provider

#endif
