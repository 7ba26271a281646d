#ifndef KVL_TESTS_PROVIDER_DOCUMENTS_CHECKED_COMMANDS_H
#define KVL_TESTS_PROVIDER_DOCUMENTS_CHECKED_COMMANDS_H

#include <string>
#include <vector>

namespace kvl::test {

/// What became of a command.
struct CheckedCommand {
    std::string command;  ///< its words
    int exitCode = -1;
    std::string answer;             ///< what it printed on standard output
    std::vector<std::string> told;  ///< the lines on standard error, but for the steps of an update
};

/// A script for a server of its own, as updateOnServer has it, with more functions:
///
///   check COMMAND...         runs a command and notes what became of it
///   both COMMAND...          checks one, and the same with `--format json`
///   full COMMAND...          runs one with a standard output without room
///   beside_odd_interfaces ARGUMENT...
///                            runs kvl where the kernel lists eth0 and an interface with a name that a shell takes
///                            apart
///   boot_files [OPTION...]   runs `kvl boot-files`
///   /tmp/signal_group NAME   for another command's script: sends a signal to the group of group_kvl, and waits until
///                            that is noted
///
/// $image and $conf are the boot files. What runs a command prints no word of its own here.
struct CheckScript {
    const char* row;  ///< what names the row in its table
    const char* script;
    const char* typed = nullptr;  ///< on a terminal; null without one
    bool hasOddModules = false;   ///< /modules holds those that somebody has thought up, instead of the sound ones
};

/// @return the script of a row, null if there is none
const CheckScript* scriptOf(const std::string& row, const std::vector<CheckScript>& scripts);

/// Runs such a script. @return the commands that it has checked
std::vector<CheckedCommand> runChecks(const CheckScript& script);

}  // namespace kvl::test

#endif
