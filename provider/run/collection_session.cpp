#include "provider/run/collection_session.h"

#include <signal.h>
#include <unistd.h>

#include "provider/machine/provider_environment.h"
#include "provider/machine/sleep_observer.h"
#include "reference_host/trace_observer.h"
#include "reference_host/wait_observer.h"

namespace kvl::provider {

CollectionSession::CollectionSession(CollectionDisplay& display) : display_(display) {
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
    display_.showTrace(level, text);
    switch (watch_.take(level, text)) {
        case CollectionWatch::Event::kCommandBegins:
            commands_.insert(watch_.command());
            display_.showCommand(watch_.command());
            break;
        case CollectionWatch::Event::kCommandEnds:
            passInterruptOn();
            break;
        case CollectionWatch::Event::kNone:
            break;
    }
}

/// While a command runs, the terminal's interrupt ends the command alone. The operator meant the program.
void CollectionSession::passInterruptOn() {
    const int ending = watch_.signal();
    if (ending == SIGINT || ending == SIGQUIT) {
        display_.clear();
        removeResultFiles();
        signal(ending, SIG_DFL);
        raise(ending);
    }
}

void CollectionSession::removeResultFiles() {
    for (const std::string& command : commands_) {
        const std::string program = command.substr(0, command.find(' '));
        unlink((std::string(kResultDirectory) + "/" + program.substr(program.rfind('/') + 1)).c_str());
    }
}

}  // namespace kvl::provider
