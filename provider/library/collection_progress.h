#ifndef KVL_PROVIDER_LIBRARY_COLLECTION_PROGRESS_H
#define KVL_PROVIDER_LIBRARY_COLLECTION_PROGRESS_H

#include <set>
#include <string>
#include <vector>

#include "provider/library/command_follower.h"
#include "provider/machine/machine_layer.h"
#include "provider/run/run.h"

namespace kvl::provider {

/// A collection's commands, for as long as the object lives: has them run by the machine layer, shows them on the
/// display, keeps what failed, and in the end removes the result files that are left.
class CollectionProgress {
public:
    CollectionProgress(Run& run, const MachineLayer::Rules& rules);
    ~CollectionProgress();

    CollectionProgress(const CollectionProgress&) = delete;
    CollectionProgress& operator=(const CollectionProgress&) = delete;

    /// Names the interfaces whose drivers are asked one after the other.
    void setInterfaces(const std::vector<std::string>& interfaces) { interfaces_ = interfaces; }

    const CommandFollower& commands() const { return follower_; }

    /// The names by which the library knows the interfaces.
    const InterfaceNames& names() const { return layer_.names(); }

    /// What could not be collected, a sentence each, with the machine's own names.
    std::vector<std::string> failures() const;

private:
    void follow(TRACE_DBG_LEVEL level, const std::string& text);
    std::string shown(const std::string& text) const;
    bool isAnswer(const FailedCommand& failure) const;
    std::string outcomeOf(const FailedCommand& failure) const;
    std::string place(const std::string& interface) const;
    void removeResultFiles() const;

    Run& run_;
    MachineLayer layer_;
    CommandFollower follower_;
    std::vector<std::string> interfaces_;
    std::set<std::string> commandLines_;
    const Listening listening_;
};

}  // namespace kvl::provider

#endif
