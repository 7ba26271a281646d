#ifndef KVL_PROVIDER_COMMANDS_COMMAND_LINE_H
#define KVL_PROVIDER_COMMANDS_COMMAND_LINE_H

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kvl::provider {

using Arguments = std::vector<std::string>;

/// The exit codes that all commands share. All others are the command's own, beside it. Scripts rely on the numbers.
enum ProgramExit : int {
    kDone = 0,
    kWrongUsage = 2,  ///< The command line can't be carried out. Nothing was done.
    kNotPrinted = 3,  ///< Help or version could not be written.
};

/// What a command line asks for.
struct Request {
    Arguments arguments;            ///< the command line, without the program's name
    std::function<int()> run;       ///< does it; returns the exit code, or throws
    int failureCode = kNotPrinted;  ///< the command's exit code where that throws
    std::string fileToWrite;        ///< where it leaves a file; empty if it leaves none
};

/// Adds a command to the program: its options, its help, and what to put into the request when it is chosen. The
/// request lives as long as the program's command line.
using AddCommand = void (*)(CLI::App& program, Request& request);

/// Reads a command line. Help and version are requests like any other.
/// @param arguments  without the program's name
/// @throws WrongUsage
Request readCommandLine(const Arguments& arguments);

}  // namespace kvl::provider

#endif
