#include "provider/commands/command_line.h"

#include <CLI/CLI.hpp>
#include <array>
#include <iostream>
#include <optional>
#include <sstream>
#include <string_view>

#include "provider/commands/commands.h"
#include "provider/provider_error.h"

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

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl report                                 this machine, for eyes\n"
    "  kvl report --format xml -o report.xml      this machine, as a document\n"
    "  kvl adapters --versions                    its Emulex adapters\n"
    "  kvl replay four-port -- report             a recorded server\n"
    "\n"
    "'kvl COMMAND --help' explains a command.\n"
    "\n"
    "Exit codes:\n"
    "  0  done, and nothing is missing\n"
    "  2  wrong usage; nothing was done\n"
    "  All others are the command's own: 'kvl COMMAND --help' tells them.\n";

/// A sentence around two parts: what stands before, between and after them.
struct Sentence {
    std::string_view begins;
    std::string_view goesOn;
    std::string_view ends;
};

/// What the parser says, and what kvl says instead.
struct Rewording {
    Sentence parsers;
    Sentence ours;
};

constexpr std::array<Rewording, 2> kRewordings = {{
    {{"", ": 1 required ", " missing"}, {"", " needs a value: ", ""}},
    {{"Could not convert: ", " = ", ""}, {"", " doesn't take '", "'"}},
}};

/// The parser reports help and version as errors that succeed.
std::function<int()> printingRequest(const CLI::App& program, const CLI::ParseError& parsed) {
    std::ostringstream text;
    program.exit(parsed, text, text);
    return [printed = text.str()] {
        std::cout << printed << std::flush;
        if (!std::cout) {
            throw ProviderError("the help could not be written to standard output");
        }
        return static_cast<int>(kDone);
    };
}

/// The commands that were chosen, one below the other, each followed by a blank.
std::string chosenCommand(const CLI::App& program) {
    const auto chosen = program.get_subcommands();
    return chosen.empty() ? "" : chosen.front()->get_name() + " " + chosenCommand(*chosen.front());
}

/// The words of the command line that no command takes, in their order.
std::string argumentsLeft(const CLI::App& program) {
    std::string text;
    for (const std::string& argument : program.remaining(true)) {
        text += (text.empty() ? "" : " ") + argument;
    }
    return text;
}

/// @return nothing if the parser has said something else
std::optional<std::string> reworded(const Rewording& row, std::string_view text) {
    const auto& [begins, goesOn, ends] = row.parsers;
    const auto middle = text.find(goesOn);
    if (middle == text.npos || text.substr(0, begins.size()) != begins ||
        text.substr(text.size() - ends.size()) != ends) {
        return std::nullopt;
    }
    std::string sentence(row.ours.begins);
    sentence += text.substr(begins.size(), middle - begins.size());
    sentence += row.ours.goesOn;
    text.remove_suffix(ends.size());
    sentence += text.substr(middle + goesOn.size());
    return sentence += row.ours.ends;
}

/// The parser's own sentence, except where a reader couldn't make sense of it.
std::string sentenceOf(const CLI::App& program, const CLI::ParseError& error) {
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
        return "not expected: " + argumentsLeft(program);
    }
    const std::string text = error.what();
    if (text == "A subcommand is required") {
        return "a command is missing";
    }
    for (const Rewording& row : kRewordings) {
        if (const auto ours = reworded(row, text)) {
            return *ours;
        }
    }
    return text;
}

/// Says what is wrong, and how to print the usage.
std::string describe(const CLI::App& program, const Arguments& arguments, const CLI::ParseError& error) {
    const std::string command = chosenCommand(program);
    const std::string what = !command.empty()    ? sentenceOf(program, error)
                             : arguments.empty() ? "a command is missing"
                                                 : "there is no command '" + arguments.front() + "'";
    return what + " ('kvl " + command + "--help' tells the usage)";
}

}  // namespace

Request readCommandLine(const Arguments& arguments) {
    CLI::App program(kDescription, "kvl");
    program.set_version_flag("--version", "kvl " KVL_VERSION);
    program.footer(kHelp);
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
            throw WrongUsage(describe(program, arguments, error));
        }
        request.run = printingRequest(program, error);
    }
    return request;
}

}  // namespace kvl::provider
