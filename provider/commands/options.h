#ifndef KVL_PROVIDER_COMMANDS_OPTIONS_H
#define KVL_PROVIDER_COMMANDS_OPTIONS_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "provider/run/run_options.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace kvl::provider {

/// What the options of all commands are made of. What is given is checked when the command line is read; what doesn't
/// fit is wrong usage. Receivers must live as long as the command.

using Names = std::vector<std::string>;
using ReceiveText = std::function<void(const std::string& given)>;

/// Adds a command.
/// @param help  what its help says after the options
CLI::App& addCommand(CLI::App& program, const std::string& name, const std::string& description,
                     const std::string& help);

/// Makes it wrong usage to give a command without one of the commands that are added to it.
void requireSubcommand(CLI::App& command);

/// Sets what is done when the command is chosen, after all its options are read.
void whenChosen(CLI::App& command, std::function<void()> prepare);

/// Refuses the command line with a sentence.
[[noreturn]] void refuseUsage(const std::string& sentence);

/// Adds an option without a value.
CLI::Option* addFlag(CLI::App& command, const std::string& names, bool& flag, const std::string& description);

/// The same where the flag is only there to be forbidden together with another option.
CLI::Option* addFlag(CLI::App& command, const std::string& names, const std::string& description);

/// Adds an argument that takes all words that are left.
void addRest(CLI::App& command, const std::string& name, std::vector<std::string>& rest, const std::string& description,
             const std::string& typeName);

/// Adds an option with a value.
/// @param receive  is given the value, and may refuse it
CLI::Option* addText(CLI::App& command, const std::string& names, const ReceiveText& receive,
                     const std::string& description, const std::string& typeName);

/// Adds an option whose value is one of some names.
/// @param names      what can be given
/// @param separator  stands between the names where they are listed
/// @param receive    is given the place of the name
CLI::Option* addOneOf(CLI::App& command, const std::string& option, const Names& names, const std::string& separator,
                      const std::function<void(std::size_t place)>& receive, const std::string& description);

/// Adds an option whose value is a list of some names, with ',' between them.
/// @param receive  is given the places of the names in rising order, each once
CLI::Option* addListOf(CLI::App& command, const std::string& option, const Names& names,
                       const std::function<void(const std::vector<std::size_t>& places)>& receive,
                       const std::string& description);

/// Adds an option that may be repeated, with a value each time.
CLI::Option* addRepeatable(CLI::App& command, const std::string& option, const ReceiveText& receive,
                           const std::string& description, const std::string& typeName);

/// The same for one of some names, as in nic|fcoe|iscsi.
CLI::Option* addRepeatableOneOf(CLI::App& command, const std::string& option, const Names& names,
                                const std::function<void(std::size_t place)>& receive, const std::string& description);

/// Forbids the first together with the second.
void forbidTogether(CLI::Option& option, CLI::Option& other);

/// Allows the first only together with the second.
void allowOnlyWith(CLI::Option& option, CLI::Option& other);

/// @return true if the option was given
bool isGiven(const CLI::App& command, const std::string& option);

/// The names with a separator between them.
std::string listed(const Names& names, const std::string& separator);

/// The names of a table's rows.
template <typename Table>
Names namesOf(const Table& table) {
    Names names;
    for (const auto& row : table) {
        names.emplace_back(row.name);
    }
    return names;
}

/// Adds an option whose value is a time in seconds, of a day at most.
void addSeconds(CLI::App& command, const std::string& option, unsigned& seconds, const std::string& description);

/// Adds options for this program itself, which no help lists.
void addHiddenNumber(CLI::App& command, const std::string& option, int& number);
void addHiddenText(CLI::App& command, const std::string& option, std::string& text);

/// Adds --wait, -v and --quiet.
/// @param options  holds the defaults and receives what was given
void addRunOptions(CLI::App& command, RunOptions& options);

}  // namespace kvl::provider

#endif
