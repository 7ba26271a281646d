#include "provider/operation/update_run.h"

#include <stdlib.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>

#include "host/CTraceUtility.h"
#include "provider/provider_error.h"
#include "reference_host/trace_log.h"

namespace kvl::provider {

void addUpdateOptions(CLI::App& command, UpdateOptions& options) {
    command.add_flag("--dry-run", options.dryRun, "Look and show the plan, and change nothing");
    command.add_flag("--yes", options.yes, "Don't ask");
    addRunOptions(command, options.run);
}

int runUpdate(const std::function<int()>& command) {
    try {
        return command();
    } catch (const ProviderError& error) {
        const bool isTold = error.exitCode() == kWrongUsage || error.exitCode() == kChanged;
        throw ProviderError(isTold ? error.exitCode() : kNothingChanged, error.what());
    } catch (const std::exception& error) {
        throw ProviderError(kNothingChanged, error.what());
    }
}

void needConsent(const UpdateOptions& options) {
    if (!options.dryRun && !options.yes && isatty(STDIN_FILENO) != 1) {
        throw ProviderError(kWrongUsage,
                            "there is no terminal to ask on: look at the plan with --dry-run, and give --yes to do it");
    }
}

bool isWanted(const UpdateOptions& options, AdapterSession& session, const std::string& question) {
    if (options.yes) {
        return true;
    }
    if (session.display() != nullptr) {
        session.display()->clear();
    }
    std::cerr << question << " [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

std::string describePlan(const std::string& title, const std::vector<std::string>& facts,
                         const std::vector<std::string>& steps) {
    std::string text = title + "\n";
    for (const std::string& fact : facts) {
        text += "  " + fact + "\n";
    }
    std::size_t number = 0;
    for (const std::string& step : steps) {
        text += "  " + std::to_string(++number) + ". " + step + "\n";
    }
    return text;
}

void UpdateRecord::begun(const std::string& with) const {
    CTraceUtility::WriteDebug(module_.c_str(), TRACE_DBG_BOUNDARY, "kvl update of %s [START]", subject_.c_str());
    CTraceUtility::WriteDebug(module_.c_str(), TRACE_DBG_FLOW, "%s", with.c_str());
    CTraceUtility::WriteTrace(module_.c_str(), "MSGID_KVL_UPDATE_BEGUN_I", subject_.c_str(), with.c_str());
}

void UpdateRecord::done(const std::string& how) const {
    CTraceUtility::WriteTrace(module_.c_str(), "MSGID_KVL_UPDATE_DONE_I", subject_.c_str(), how.c_str());
    CTraceUtility::WriteDebug(module_.c_str(), TRACE_DBG_BOUNDARY, "kvl update of %s [END]", subject_.c_str());
}

void UpdateRecord::skipped(const std::string& why) const {
    CTraceUtility::WriteTrace(module_.c_str(), "MSGID_KVL_UPDATE_SKIPPED_I", subject_.c_str(), why.c_str());
}

void UpdateRecord::failed(const std::string& why) const {
    CTraceUtility::WriteDebug(module_.c_str(), TRACE_DBG_ERROR, "%s", why.c_str());
    CTraceUtility::WriteTrace(module_.c_str(), "MSGID_KVL_UPDATE_FAILED_F", subject_.c_str(), why.c_str());
    CTraceUtility::WriteDebug(module_.c_str(), TRACE_DBG_BOUNDARY, "kvl update of %s [END]", subject_.c_str());
}

void UpdateRecord::signalled(int signal) const {
    if (signal != 0) {
        CTraceUtility::WriteTrace(module_.c_str(), "MSGID_KVL_UPDATE_SIGNAL_I", subject_.c_str(), strsignal(signal));
    }
}

void showPlan(const AdapterSession& session, const std::string& plan) {
    if (!session.print(plan)) {
        throw ProviderError(kNothingChanged, "the plan could not be written to standard output");
    }
}

void tellResult(AdapterSession& session, const std::string& result) {
    if (!session.print(result + "\n")) {
        tellError(session, "this could not be written to standard output: " + result);
    }
}

std::function<void(int signal)> tellingSignals(AdapterSession& session) {
    return [&session](int number) {
        session.note(std::string("kvl: ") + strsignal(number) +
                     ": noted, and the update goes on to its end; an updater that is broken off can leave an adapter "
                     "or a tool that doesn't work");
    };
}

void tellError(AdapterSession& session, const std::string& sentence) {
    if (session.display() != nullptr) {
        session.display()->clear();
    }
    std::cerr << "kvl: " << sentence << std::endl;
}

std::unique_ptr<PassingTree> passingTree(UpdateOptions& options) {
    options.run.takesTurn = !options.dryRun;
    return options.dryRun ? std::make_unique<PassingTree>() : nullptr;
}

PassingTree::PassingTree() {
    std::string name = std::filesystem::temp_directory_path().string() + "/kvl-dry-run-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
        throw ProviderError(kNothingChanged, "no temporary directory can be made: " + std::string(strerror(errno)));
    }
    directory_ = name;
    setenv("KVL_INSTALL_PATH", directory_.c_str(), 1);
    setenv("KVL_TRACE_FILE", "/dev/null", 1);
    setenv("KVL_SYSTEM_LOG", "no", 1);
    host::reloadTraceSettings();
}

PassingTree::~PassingTree() {
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
}

}  // namespace kvl::provider
