#include "provider/report/collection_session.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>

#include "provider/machine/provider_environment.h"
#include "provider/machine/sleep_observer.h"
#include "provider/output/text_block.h"
#include "reference_host/trace_observer.h"
#include "reference_host/wait_observer.h"

namespace kvl::provider {
namespace {

/// Bus information that the library takes a PCI location from has at least this many characters.
constexpr std::size_t kShortestBusInfo = 5;

/// @return true for an interface that the library would have taken for a port, and looked for in the wrong place
bool isMissedPort(const WithheldBusInfo& withheld) {
    return withheld.busInfo.size() >= kShortestBusInfo && withheld.interface.find("eth") != std::string::npos &&
           withheld.interface.find_first_of(".:") == std::string::npos;
}

/// The text as people may read it: with the machine's names, and without anything that acts on a terminal.
std::string shownText(const std::string& text, const InterfaceNames& names) {
    return printable(names.textForPeople(text, [](const std::string& name) { return name; }));
}

std::string secondsOf(std::chrono::milliseconds duration) {
    return std::to_string(std::chrono::duration_cast<std::chrono::seconds>(duration).count());
}

}  // namespace

CollectionSession::CollectionSession(CollectionDisplay& display, const MachineLayer::Rules& rules)
    : display_(display), layer_(rules, [this](int signal) { endBy(signal); }) {
    host::setTraceObserver(
        [this](const std::string&, TRACE_DBG_LEVEL level, const std::string& text) { takeTrace(level, text); });
    host::setWaitObserver([this](unsigned long milliseconds) { display_.showPause(milliseconds); });
    setSleepObserver([this](unsigned) { display_.showWait(watch_.command()); });
}

CollectionSession::~CollectionSession() {
    setSleepObserver({});
    host::setWaitObserver({});
    host::setTraceObserver({});
    display_.clear();
    removeResultFiles();
}

void CollectionSession::takeTrace(TRACE_DBG_LEVEL level, const std::string& text) {
    display_.showTrace(level, shownText(text, names()));
    if (watch_.take(level, text) == CollectionWatch::Event::kCommandBegins) {
        commands_.insert(watch_.command());
        display_.showCommand(shownText(watch_.command(), names()));
    }
}

/// The command is ended already. This process ends as if nobody had looked at the signal.
void CollectionSession::endBy(int signal) {
    display_.clear();
    removeResultFiles();
    ::signal(signal, SIG_DFL);
    raise(signal);
}

std::vector<std::string> CollectionSession::failures() const {
    std::vector<std::string> sentences;
    for (const FailedCommand& failure : watch_.failures()) {
        FailedCommand known = failure;
        for (const CommandObservation& observation : layer_.observations()) {
            if (observation.command == failure.command && observation.reachedLimit) {
                known.outcome =
                    "ended after " + secondsOf(observation.duration) + " s (limit); the driver may hang: see dmesg";
            } else if (observation.command == failure.command && observation.signal != 0) {
                known.outcome = "was ended by signal " + std::to_string(observation.signal);
            } else if (observation.command == failure.command && observation.wasLeftOut) {
                known.outcome = "was not run, since an earlier command about it did not end in time";
            }
        }
        sentences.push_back(shownText(describeFailure(known), names()));
    }
    for (const WithheldBusInfo& withheld : layer_.withheld()) {
        if (isMissedPort(withheld)) {
            sentences.push_back(printable(withheld.interface + ": not in the report: its bus information '" +
                                          withheld.busInfo + "' is not the address of a PCI device"));
        }
    }
    sentences.erase(std::unique(sentences.begin(), sentences.end()), sentences.end());
    return sentences;
}

void CollectionSession::removeResultFiles() {
    for (const std::string& command : commands_) {
        const std::string program = command.substr(0, command.find(' '));
        unlink((std::string(kResultDirectory) + "/" + program.substr(program.rfind('/') + 1)).c_str());
    }
}

}  // namespace kvl::provider
