#include "provider/library/collection_progress.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>

#include "provider/library/collected_command.h"
#include "provider/machine/provider_environment.h"

namespace kvl::provider {

CollectionProgress::CollectionProgress(Run& run)
    : run_(run),
      listening_(run, {[this](TRACE_DBG_LEVEL level, const std::string& text) { follow(level, text); },
                       [this] { run_.display().show(follower_.countSecond("", follower_.command())); },
                       [this](unsigned long milliseconds) {
                           run_.display().show("pausing for " + std::to_string(milliseconds) + " ms");
                       },
                       [this] { removeResultFiles(); }}) {}

CollectionProgress::~CollectionProgress() {
    run_.display().clear();
    removeResultFiles();
}

void CollectionProgress::follow(TRACE_DBG_LEVEL level, const std::string& text) {
    const CommandFollower::Event event = follower_.follow(level, text);
    if (event == CommandFollower::Event::kCommandBegins) {
        commandLines_.insert(follower_.command());
        run_.display().show(place(describeCommand(follower_.command()).subject) + follower_.command());
    }
    // An operator who interrupts a command means the program.
    const int ending = event == CommandFollower::Event::kCommandEnds ? follower_.signal() : 0;
    if (ending == SIGINT || ending == SIGQUIT) {
        run_.endBySignal(ending);
    }
}

/// Where the walk over the interfaces is, such as "eth1 (2 of 4): "; empty for a command about something else.
std::string CollectionProgress::place(const std::string& interface) const {
    const auto found = std::find(interfaces_.begin(), interfaces_.end(), interface);
    if (found == interfaces_.end()) {
        return "";
    }
    return interface + " (" + std::to_string(found - interfaces_.begin() + 1) + " of " +
           std::to_string(interfaces_.size()) + "): ";
}

void CollectionProgress::removeResultFiles() const {
    for (const std::string& line : commandLines_) {
        const std::string program = line.substr(0, line.find(' '));
        unlink((std::string(kResultDirectory) + "/" + program.substr(program.rfind('/') + 1)).c_str());
    }
}

}  // namespace kvl::provider
