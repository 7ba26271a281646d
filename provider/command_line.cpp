#include "provider/command_line.h"

#include <CLI/CLI.hpp>
#include <array>
#include <iostream>
#include <sstream>

#include "provider/adapters/adapter_commands.h"
#include "provider/exit_codes.h"
#include "provider/provider_error.h"
#include "provider/replay_command.h"
#include "provider/report/report_command.h"
#include "provider/update/update_commands.h"

namespace kvl::provider {
namespace {

// The program's commands, in the order of the help.
constexpr std::array<AddCommand, 12> kCommands = {
    addReportCommand,    addAdaptersCommand,   addAdapterInfoCommand, addVersionCommand,
    addCompareCommand,   addSupportedCommand,  addSlotCommand,        addDriverCheckCommand,
    addBootImageCommand, addComponentsCommand, addUpdateCommand,      addReplayCommand,
};

constexpr const char* kDescription =
    "Reports the LAN configuration of this machine: its ports, teams (bonds) and VLANs,\n"
    "their addresses and the settings of their drivers. Lists its Emulex adapters and the\n"
    "versions that run on them.";

constexpr const char* kExamples =
    "Examples:\n"
    "  kvl report                                 this machine, for eyes\n"
    "  kvl report --format xml -o report.xml      this machine, as a document\n"
    "  kvl adapters --versions                    its Emulex adapters\n"
    "  kvl replay four-port -- report             a recorded server\n"
    "\n"
    "'kvl COMMAND --help' explains a command.\n"
    "\n";

/// Help and version are told by the parser as errors that succeed.
std::function<int()> printingRequest(const CLI::App& program, const CLI::ParseError& parsed) {
    std::ostringstream text;
    program.exit(parsed, text, text);
    return [printed = text.str()] {
        std::cout << printed << std::flush;
        return static_cast<int>(kReportWritten);
    };
}

/// The words by which the command was chosen, each with a blank behind it.
std::string chosenCommand(const CLI::App& program) {
    const auto chosen = program.get_subcommands();
    return chosen.empty() ? "" : chosen.front()->get_name() + " " + chosenCommand(*chosen.front());
}

/// Tells what is wrong, and where the usage is told.
std::string describe(const CLI::App& program, const Arguments& arguments, const CLI::ParseError& error) {
    const std::string command = chosenCommand(program);
    const std::string what = !command.empty()    ? error.what()
                             : arguments.empty() ? "a command is missing"
                                                 : "there is no command '" + arguments.front() + "'";
    return what + " ('kvl " + command + "--help' tells the usage)";
}

}  // namespace

Request readCommandLine(const Arguments& arguments) {
    CLI::App program(kDescription, "kvl");
    program.set_version_flag("--version", "kvl " KVL_VERSION);
    program.footer(std::string(kExamples) + kExitCodesHelp);
    program.require_subcommand(1);
    program.get_formatter()->column_width(34);
    program.get_formatter()->label("Excludes", "not with");

    Request request;
    request.arguments = arguments;
    for (const AddCommand add : kCommands) {
        add(program, request);
    }
    try {
        program.parse(Arguments(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::Success)) {
            throw ProviderError(kWrongUsage, describe(program, arguments, error));
        }
        request.run = printingRequest(program, error);
    }
    return request;
}

}  // namespace kvl::provider
