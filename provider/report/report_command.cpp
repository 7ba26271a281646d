#include "provider/report/report_command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "machines/private_root.h"
#include "provider/exit_codes.h"
#include "provider/machine/collection_lock.h"
#include "provider/machine/legacy_commands.h"
#include "provider/machine/private_view.h"
#include "provider/machine/provider_environment.h"
#include "provider/machine/run_options.h"
#include "provider/provider_error.h"
#include "provider/report/collection_session.h"
#include "provider/report/lan_collection.h"
#include "provider/report/report_options.h"
#include "provider/report/report_output.h"

namespace kvl::provider {
namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  kvl report\n"
    "  kvl report --vendor 8086 --vendor 14e4 --section physical,team\n"
    "  kvl report --skip offload,coalesce --format xml -o /var/tmp/lan.xml\n"
    "\n";

[[noreturn]] void refuse(const ReportOptions& options, const CollectionWatch& watch, const std::string& sentence) {
    const bool mayHelp = options.legacyCommands == LegacyCommands::kNever && watch.command() == "/sbin/ifconfig -a";
    throw ProviderError(kNothingCollected,
                        sentence + (mayHelp ? "; '--legacy-commands auto' reads the form of newer systems too" : ""));
}

[[noreturn]] void refuseEmptyMachine(const ReportOptions& options, const CollectionWatch& watch) {
    const bool failed = !watch.failures().empty() && watch.failures().back().command == watch.command();
    refuse(options, watch,
           "nothing could be collected: " + watch.command() + " " +
               (failed ? watch.failures().back().outcome : "told no interface"));
}

/// Collects and writes the report.
/// @param file  where it goes; empty for standard output
/// @return what could not be collected, a sentence each
std::vector<std::string> makeReport(const ReportOptions& options, const std::string& file) {
    CollectionDisplay display(displayMode(options.run), std::cerr, terminalWidth());
    const MachineLayer::Rules rules = {std::chrono::seconds(options.commandLimitSeconds),
                                       options.legacyCommands == LegacyCommands::kAuto};
    const CollectionSession session(display, rules);
    ReportOutput output(options, file);
    try {
        LanCollection collection(options);
        if (!collection.collect([&](const auto& interfaces) { display.setInterfaces(interfaces); })) {
            refuseEmptyMachine(options, session.watch());
        }
        const bool written = collection.write(output.documentFile());
        display.clear();
        output.finish(written, collection.vendors(), session.names());
    } catch (const std::logic_error&) {
        refuse(options, session.watch(),
               "no report: the output of " + session.watch().command() + " does not have the expected form");
    }
    return session.failures();
}

int collectAndReport(const ReportOptions& options, const std::string& file) {
    needResultDirectory();
    const std::vector<std::string> failures = makeReport(options, file);
    for (const std::string& failure : failures) {
        std::cerr << "kvl: " << failure << '\n';
    }
    return failures.empty() ? kReportWritten : kPartlyCollected;
}

SuppliedCommands commandsToSupply(const ReportOptions& options) {
    const bool wanted = options.legacyCommands == LegacyCommands::kAuto && !machines::insidePrivateRoot();
    return wanted ? findCommandsToSupply() : SuppliedCommands();
}

int report(const ReportOptions& options, const Arguments& arguments) {
    enterProviderEnvironment();
    if (auto lock = CollectionLock::handedDown(collectionLockFile())) {
        lock->shareWithCommands();
        // This is the run in the private view, and all that comes below is done.
        return collectAndReport(options, placeOfOutput(options.outputFile));
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
    lock.handDown();
    return runInPrivateView(supplied, arguments, options.outputFile);
}

}  // namespace

void addReportCommand(CLI::App& program, Request& request) {
    CLI::App* command = program.add_subcommand("report", "Report the LAN configuration of this machine");
    command->footer(std::string(kExamples) + kExitCodesHelp);
    const auto options = std::make_shared<ReportOptions>();
    addReportOptions(*command, *options);
    command->callback([options, &request] {
        request.fileToWrite = options->outputFile;
        request.run = [options, arguments = request.arguments] { return report(*options, arguments); };
    });
}

}  // namespace kvl::provider
