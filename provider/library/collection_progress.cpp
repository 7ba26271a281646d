#include "provider/library/collection_progress.h"

#include <unistd.h>

#include <algorithm>

#include "provider/library/collected_command.h"
#include "provider/machine/provider_environment.h"
#include "provider/output/text_block.h"

namespace kvl::provider {

namespace {

/// Of EOPNOTSUPP, in the language that the provider environment sets.
constexpr const char* kNotSupported = "Operation not supported";

/// Bus information that the library takes a PCI location from has at least this many characters.
constexpr std::size_t kShortestBusInfo = 5;

/// @return true for an interface that the library would have taken for a port, and looked for in the wrong place
bool isMissedPort(const WithheldBusInfo& withheld) {
    return withheld.busInfo.size() >= kShortestBusInfo && withheld.interface.find("eth") != std::string::npos &&
           withheld.interface.find_first_of(".:") == std::string::npos;
}

std::string secondsOf(std::chrono::milliseconds duration) {
    return std::to_string(std::chrono::duration_cast<std::chrono::seconds>(duration).count());
}

}  // namespace

CollectionProgress::CollectionProgress(Run& run, const MachineLayer::Rules& rules)
    : run_(run),
      layer_(rules, [this](int signal) { run_.endBySignal(signal); }),
      listening_(run, {[this](TRACE_DBG_LEVEL level, const std::string& text) { follow(level, text); },
                       [this] { run_.display().show(follower_.countSecond("", shown(follower_.command()))); },
                       [this](unsigned long milliseconds) {
                           run_.display().show("pausing for " + std::to_string(milliseconds) + " ms");
                       },
                       [this] { removeResultFiles(); }}) {
    run_.setShownTrace([this](const std::string& text) { return shown(text); });
}

CollectionProgress::~CollectionProgress() {
    run_.setShownTrace({});
    run_.display().clear();
    removeResultFiles();
}

void CollectionProgress::follow(TRACE_DBG_LEVEL level, const std::string& text) {
    if (follower_.follow(level, text) == CommandFollower::Event::kCommandBegins) {
        commandLines_.insert(follower_.command());
        run_.display().show(shown(place(describeCommand(follower_.command()).subject) + follower_.command()));
    }
}

/// The text as people may read it: with the machine's names, and without anything that acts on a terminal.
std::string CollectionProgress::shown(const std::string& text) const {
    return printable(names().textForPeople(text, [](const std::string& name) { return name; }));
}

/// A driver that says that it doesn't support a setting has answered: the report has no value, and nothing is missing.
bool CollectionProgress::isAnswer(const FailedCommand& failure) const {
    const auto& observations = layer_.observations();
    return std::any_of(observations.begin(), observations.end(), [&failure](const CommandObservation& observation) {
        return observation.command == failure.command && observation.lastWords.find(kNotSupported) != std::string::npos;
    });
}

/// What the machine layer knows of the command is more than the library's trace has.
std::string CollectionProgress::outcomeOf(const FailedCommand& failure) const {
    for (const CommandObservation& observation : layer_.observations()) {
        if (observation.command != failure.command) {
            continue;
        }
        if (observation.reachedLimit) {
            return "ended after " + secondsOf(observation.duration) + " s (limit); the driver may hang: see dmesg";
        }
        if (observation.signal != 0) {
            return "was ended by signal " + std::to_string(observation.signal);
        }
        if (observation.wasLeftOut) {
            return "was not run, since an earlier command about it did not end in time";
        }
    }
    return failure.outcome;
}

std::vector<std::string> CollectionProgress::failures() const {
    std::vector<std::string> sentences;
    for (const FailedCommand& failure : follower_.failures()) {
        if (!isAnswer(failure)) {
            sentences.push_back(shown(describeFailure({failure.command, outcomeOf(failure)})));
        }
    }
    for (const WithheldBusInfo& withheld : layer_.withheld()) {
        if (isMissedPort(withheld)) {
            sentences.push_back(printable(withheld.interface + ": not in the report: its bus information '" +
                                          withheld.busInfo + "' is not the address of a PCI device"));
        }
    }
    for (const NamedGateway& gateway : layer_.namedGateways()) {
        sentences.push_back(printable(gateway.interface + ": IPv4 gateway: /sbin/route prints its name '" +
                                      gateway.name + "', and no address"));
    }
    sentences.erase(std::unique(sentences.begin(), sentences.end()), sentences.end());
    return sentences;
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
