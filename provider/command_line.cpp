#include "provider/command_line.h"

#include <CLI/CLI.hpp>
#include <array>
#include <iostream>
#include <optional>
#include <sstream>
#include <string_view>

#include "provider/adapters/adapter_commands.h"
#include "provider/exit_codes.h"
#include "provider/provider_error.h"
#include "provider/replay_command.h"
#include "provider/report/report_command.h"
#include "provider/update/update_commands.h"

namespace kvl::provider {
namespace {

// The program's commands, in the order of the help.
constexpr std::array<AddCommand, 15> kCommands = {
    addReportCommand,    addAdaptersCommand, addAdapterInfoCommand, addVersionCommand,   addCompareCommand,
    addSupportedCommand, addSlotCommand,     addDriverCheckCommand, addBootImageCommand, addComponentsCommand,
    addToolCheckCommand, addUpdateCommand,   addPendingCommand,     addBootFilesCommand, addReplayCommand,
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

/// A sentence around two words: what stands in front of, between and behind them.
struct Sentence {
    std::string_view begins;
    std::string_view goesOn;
    std::string_view ends;
};

/// What the parser says, and what is said instead.
struct Rewording {
    Sentence parsers;
    Sentence ours;
};

constexpr std::array<Rewording, 2> kRewordings = {{
    {{"", ": 1 required ", " missing"}, {"", " needs a value: ", ""}},
    {{"Could not convert: ", " = ", ""}, {"", " doesn't take '", "'"}},
}};

/// Help and version are told by the parser as errors that succeed.
std::function<int()> printingRequest(const CLI::App& program, const CLI::ParseError& parsed) {
    std::ostringstream text;
    program.exit(parsed, text, text);
    return [printed = text.str()] {
        std::cout << printed << std::flush;
        if (!std::cout) {
            throw ProviderError(kNothingCollected, "the help could not be written to standard output");
        }
        return static_cast<int>(kReportWritten);
    };
}

/// The words by which the command was chosen, each with a blank behind it.
std::string chosenCommand(const CLI::App& program) {
    const auto chosen = program.get_subcommands();
    return chosen.empty() ? "" : chosen.front()->get_name() + " " + chosenCommand(*chosen.front());
}

/// The words on the command line that no command takes, in their order.
std::string wordsLeft(const CLI::App& program) {
    std::string words;
    for (const std::string& word : program.remaining(true)) {
        words += (words.empty() ? "" : " ") + word;
    }
    return words;
}

/// @return nothing if the parser has said something else
std::optional<std::string> reworded(const Rewording& row, std::string_view words) {
    const auto& [begins, goesOn, ends] = row.parsers;
    const auto middle = words.find(goesOn);
    if (middle == words.npos || words.substr(0, begins.size()) != begins ||
        words.substr(words.size() - ends.size()) != ends) {
        return std::nullopt;
    }
    std::string sentence(row.ours.begins);
    sentence += words.substr(begins.size(), middle - begins.size());
    sentence += row.ours.goesOn;
    words.remove_suffix(ends.size());
    sentence += words.substr(middle + goesOn.size());
    return sentence += row.ours.ends;
}

/// The parser's own words, but for those that a reader couldn't make sense of.
std::string wordsOf(const CLI::App& program, const CLI::ParseError& error) {
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
        return "not expected: " + wordsLeft(program);
    }
    const std::string words = error.what();
    if (words == "A subcommand is required") {
        return "a command is missing";
    }
    for (const Rewording& row : kRewordings) {
        if (const auto ours = reworded(row, words)) {
            return *ours;
        }
    }
    return words;
}

/// Tells what is wrong, and where the usage is told.
std::string describe(const CLI::App& program, const Arguments& arguments, const CLI::ParseError& error) {
    const std::string command = chosenCommand(program);
    const std::string what = !command.empty()    ? wordsOf(program, error)
                             : arguments.empty() ? "a command is missing"
                                                 : "there is no command '" + arguments.front() + "'";
    return what + " ('kvl " + command + "--help' tells the usage)";
}

}  // namespace

Request readCommandLine(const Arguments& arguments) {
    CLI::App program(kDescription, "kvl");
    program.set_version_flag("--version", "kvl " KVL_VERSION);
    program.footer(std::string(kExamples) + kProgramExitCodesHelp);
    program.require_subcommand(1);
    program.get_formatter()->column_width(34);
    program.get_formatter()->label("Excludes", "not with");
    program.get_formatter()->label("Needs", "with");

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
