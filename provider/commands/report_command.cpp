#include <iostream>
#include <memory>
#include <stdexcept>

#include "machines/private_root.h"
#include "provider/commands/commands.h"
#include "provider/commands/options.h"
#include "provider/commands/report_options.h"
#include "provider/commands/report_output.h"
#include "provider/library/collection_progress.h"
#include "provider/library/lan_collection.h"
#include "provider/machine/collection_lock.h"
#include "provider/machine/legacy_commands.h"
#include "provider/machine/private_view.h"
#include "provider/machine/provider_environment.h"
#include "provider/provider_error.h"
#include "provider/run/run.h"

namespace kvl::provider {
namespace {

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl report\n"
    "  kvl report --vendor 8086 --vendor 14e4 --section physical,team\n"
    "  kvl report --skip offload,coalesce --format xml -o /var/tmp/lan.xml\n"
    "\n";

[[noreturn]] void refuse(const ReportOptions& options, const CommandFollower& commands, const std::string& sentence) {
    const bool mayHelp = !options.translates && commands.command() == "/sbin/ifconfig -a";
    throw ProviderError(sentence + (mayHelp ? "; '--translate auto' reads the form of newer systems too" : ""));
}

[[noreturn]] void refuseEmptyMachine(const ReportOptions& options, const CommandFollower& commands) {
    const bool failed = !commands.failures().empty() && commands.failures().back().command == commands.command();
    refuse(options, commands,
           "nothing could be collected: " + commands.command() + " " +
               (failed ? commands.failures().back().outcome : "told no interface"));
}

/// Collects and writes the report.
/// @param file  where it goes; empty for standard output
/// @return what could not be collected, a sentence each
std::vector<std::string> makeReport(const ReportOptions& options, const std::string& file) {
    Run run(options.run, Turn::kHeld);
    const MachineLayer::Rules rules = {std::chrono::seconds(options.commandLimitSeconds), options.translates};
    CollectionProgress progress(run, rules);
    ReportOutput output(options, file, run);
    try {
        LanCollection collection(options.lan);
        if (!collection.collect([&](const auto& interfaces) { progress.setInterfaces(interfaces); })) {
            refuseEmptyMachine(options, progress.commands());
        }
        const bool written = collection.write(output.documentFile());
        run.display().clear();
        output.finish(written, collection.vendors(), progress.names());
    } catch (const std::logic_error&) {
        refuse(options, progress.commands(),
               "no report: the output of " + progress.commands().command() + " does not have the expected form");
    }
    return progress.failures();
}

int collectAndReport(const ReportOptions& options, const std::string& file) {
    needResultDirectory();
    const std::vector<std::string> failures = makeReport(options, file);
    for (const std::string& failure : failures) {
        std::cerr << "kvl: " << failure << '\n';
    }
    return failures.empty() ? kReportWritten : kReportIncomplete;
}

SuppliedCommands commandsToSupply(const ReportOptions& options) {
    const bool wanted = options.translates && !machines::insidePrivateRoot();
    return wanted ? findCommandsToSupply() : SuppliedCommands();
}

int report(const ReportOptions& options, const Arguments& arguments) {
    enterProviderEnvironment();
    if (auto lock = CollectionLock::handedDown(collectionLockFile(), options.heldLock)) {
        lock->shareWithCommands();
        // This is the run in the private view, and all that comes below is done.
        return collectAndReport(options, options.placeInView);
    }
    checkOutputFile(options.outputFile);
    const SuppliedCommands supplied = commandsToSupply(options);
    if (supplied.empty()) {
        needResultDirectory();
    }
    CollectionLock lock = takeTurn(options.run.waitSeconds);
    if (supplied.empty()) {
        lock.shareWithCommands();
        return collectAndReport(options, options.outputFile);
    }
    return runInPrivateView(supplied, argumentsInView(arguments, lock.handDown(), placeInView(options.outputFile)),
                            options.outputFile);
}

}  // namespace

void addReportCommand(CLI::App& program, Request& request) {
    CLI::App& command = addCommand(program, "report", "Report the LAN configuration of this machine",
                                   std::string(kHelp) + kReportExitHelp);
    const auto options = std::make_shared<ReportOptions>();
    addReportOptions(command, *options);
    whenChosen(command, [options, &request] {
        request.failureCode = kNoReport;
        request.fileToWrite = options->outputFile;
        request.run = [options, arguments = request.arguments] { return report(*options, arguments); };
    });
}

}  // namespace kvl::provider
