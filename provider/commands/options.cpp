#include "provider/commands/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>

namespace kvl::provider {
namespace {

constexpr int kLongestTime = 24 * 60 * 60;  // seconds

std::size_t placeOf(const std::string& name, const Names& names) {
    return static_cast<std::size_t>(std::find(names.begin(), names.end(), name) - names.begin());
}

/// The parser puts the option's name in front of what a validator says.
CLI::Validator isOneOf(const Names& names, const std::string& separator) {
    return {[names, separator](const std::string& given) {
                const bool isKnown = placeOf(given, names) < names.size();
                return isKnown ? "" : "'" + given + "' is none of " + listed(names, separator);
            },
            ""};
}

}  // namespace

CLI::App& addCommand(CLI::App& program, const std::string& name, const std::string& description,
                     const std::string& help) {
    CLI::App* command = program.add_subcommand(name, description);
    command->footer(help);
    return *command;
}

void requireSubcommand(CLI::App& command) {
    command.require_subcommand(1);
}

void whenChosen(CLI::App& command, std::function<void()> prepare) {
    command.callback(std::move(prepare));
}

void refuseUsage(const std::string& sentence) {
    throw CLI::ValidationError(sentence);
}

CLI::Option* addFlag(CLI::App& command, const std::string& names, bool& flag, const std::string& description) {
    return command.add_flag(names, flag, description);
}

CLI::Option* addFlag(CLI::App& command, const std::string& names, const std::string& description) {
    return command.add_flag(names, description);
}

void addRest(CLI::App& command, const std::string& name, std::vector<std::string>& rest, const std::string& description,
             const std::string& typeName) {
    command.add_option(name, rest, description)->type_name(typeName);
}

CLI::Option* addText(CLI::App& command, const std::string& names, const ReceiveText& receive,
                     const std::string& description, const std::string& typeName) {
    return command.add_option_function<std::string>(names, receive, description)->type_name(typeName);
}

CLI::Option* addOneOf(CLI::App& command, const std::string& option, const Names& names, const std::string& separator,
                      const std::function<void(std::size_t place)>& receive, const std::string& description) {
    const auto receiveGiven = [names, receive](const std::string& given) { receive(placeOf(given, names)); };
    return addText(command, option, receiveGiven, description, listed(names, "|"))->check(isOneOf(names, separator));
}

CLI::Option* addListOf(CLI::App& command, const std::string& option, const Names& names,
                       const std::function<void(const std::vector<std::size_t>& places)>& receive,
                       const std::string& description) {
    const auto receiveGiven = [names, receive](const Names& given) {
        std::vector<std::size_t> places;
        for (std::size_t place = 0; place < names.size(); ++place) {
            if (placeOf(names[place], given) < given.size()) {
                places.push_back(place);
            }
        }
        receive(places);
    };
    return command.add_option_function<Names>(option, receiveGiven, description)
        ->delimiter(',')
        ->type_name("LIST")
        ->allow_extra_args(false)
        ->check(isOneOf(names, ","));
}

CLI::Option* addRepeatable(CLI::App& command, const std::string& option, const ReceiveText& receive,
                           const std::string& description, const std::string& typeName) {
    const auto receiveGiven = [receive](const std::vector<std::string>& given) {
        for (const std::string& value : given) {
            receive(value);
        }
    };
    return command.add_option_function<std::vector<std::string>>(option, receiveGiven, description)
        ->type_name(typeName)
        ->allow_extra_args(false);
}

CLI::Option* addRepeatableOneOf(CLI::App& command, const std::string& option, const Names& names,
                                const std::function<void(std::size_t place)>& receive, const std::string& description) {
    const auto receiveGiven = [names, receive](const std::string& given) { receive(placeOf(given, names)); };
    return addRepeatable(command, option, receiveGiven, description, listed(names, "|"))->check(isOneOf(names, "|"));
}

void forbidTogether(CLI::Option& option, CLI::Option& other) {
    option.excludes(&other);
}

void allowOnlyWith(CLI::Option& option, CLI::Option& other) {
    option.needs(&other);
}

bool isGiven(const CLI::App& command, const std::string& option) {
    return command.count(option) > 0;
}

std::string listed(const Names& names, const std::string& separator) {
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : separator) + name;
    }
    return text;
}

void addSeconds(CLI::App& command, const std::string& option, unsigned& seconds, const std::string& description) {
    command.add_option(option, seconds, description)
        ->type_name("SECONDS")
        ->check(CLI::Range(0, kLongestTime).description(""));
}

void addHiddenNumber(CLI::App& command, const std::string& option, int& number) {
    command.add_option(option, number)->group("");
}

void addHiddenText(CLI::App& command, const std::string& option, std::string& text) {
    command.add_option(option, text)->group("");
}

void addRunOptions(CLI::App& command, RunOptions& options) {
    addSeconds(command, "--wait", options.waitSeconds,
               "Longest wait for another kvl to end (default: " + std::to_string(options.waitSeconds) + ")");
    CLI::Option* verbose = addFlag(command, "-v,--verbose", options.verbose, "Show the trace on standard error");
    forbidTogether(*addFlag(command, "--quiet", options.quiet, "Show neither progress nor trace"), *verbose);
}

}  // namespace kvl::provider
