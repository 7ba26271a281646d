#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>

#include "machines/private_root.h"
#include "machines/replay.h"
#include "provider/commands/commands.h"
#include "provider/commands/options.h"
#include "provider/commands/report_options.h"
#include "provider/provider_error.h"

namespace kvl::provider {
namespace {

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl replay --list\n"
    "  kvl replay four-port -- report\n"
    "  kvl replay ./my-server -- report --format xml > report.xml\n"
    "  kvl replay one-port --root ./root -- report -o /root/report.txt\n"
    "\n"
    "The exit code is that of the command:\n";

// The variables by which a caller sets the sanitizers up.
constexpr const char* kPassedVariables[] = {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"};

/// The exit code if the other command could not be started; any other code is that command's.
enum ReplayExit : int {
    kNoReplay = 3,
};

struct ReplayOptions {
    std::string machine;
    std::string root;
    Arguments command;
    bool list = false;
};

[[noreturn]] void refuse(const std::string& sentence) {
    throw WrongUsage(sentence);
}

/// What the README of a recording says the server is: its title.
std::string titleOf(const std::string& recording) {
    std::ifstream readme(recording + "/README.md");
    std::string line;
    std::getline(readme, line);
    return line.substr(std::min(line.size(), line.find_first_not_of("# ")));
}

int listMachines() {
    const std::vector<std::string> names = machines::knownMachines();
    std::size_t width = 0;
    for (const std::string& name : names) {
        width = std::max(width, name.size());
    }
    for (const std::string& name : names) {
        std::cout << name << std::string(width - name.size() + 2, ' ') << titleOf(machines::findRecording(name))
                  << '\n';
    }
    return kDone;
}

/// A server's files are kept in a directory that was made for them alone.
void checkKeptRoot(const std::string& directory) {
    std::error_code none;
    const bool isFree = directory.empty() || !std::filesystem::exists(directory, none) ||
                        std::filesystem::is_empty(directory, none) || machines::isKeptRoot(directory);
    if (!isFree) {
        refuse("--root " + directory +
               ": the directory holds other files than a recorded server's: name an empty one, or one that isn't "
               "there");
    }
}

int replay(const ReplayOptions& options) {
    checkKeptRoot(options.root);
    machines::ReplayRequest request;
    request.machine = options.machine;
    request.arguments = options.command;
    request.keptRoot = options.root;
    for (const char* name : kPassedVariables) {
        if (const char* value = std::getenv(name)) {
            request.environment[name] = value;
        }
    }
    try {
        return machines::replay(request);
    } catch (const machines::UnknownMachine& error) {
        throw WrongUsage(error.what());
    }
}

/// Reads the command before anything is run, so that this process reports wrong usage.
void checkCommand(const ReplayOptions& options) {
    if (options.machine.empty()) {
        refuse("replay needs the name or the directory of a recorded server; 'kvl replay --list' lists them");
    }
    if (options.command.empty()) {
        refuse("replay needs a command behind '--', as in 'kvl replay " + options.machine + " -- report'");
    }
    if (options.command.front() == "replay") {
        refuse("a replay can't be replayed");
    }
    if (!readCommandLine(options.command).fileToWrite.empty() && options.root.empty()) {
        refuse(
            "-o writes into the recorded server's own files, which are gone when it ends: redirect standard output "
            "instead, or keep them with 'kvl replay NAME --root DIR -- ...'");
    }
}

}  // namespace

void addReplayCommand(CLI::App& program, Request& request) {
    CLI::App& command =
        addCommand(program, "replay", "Run a command on a recorded server", std::string(kHelp) + kReportExitHelp);
    const auto options = std::make_shared<ReplayOptions>();
    addText(
        command, "machine", [options](const std::string& given) { options->machine = given; },
        "Name of a recorded server, or directory of a recording", "NAME|DIR");
    addRest(command, "command", options->command, "What to run, such as: report --format xml", "COMMAND");
    addText(
        command, "--root", [options](const std::string& given) { options->root = given; },
        "Directory that holds the server's files and keeps them between runs", "DIR");
    addFlag(command, "--list", options->list, "List the recorded servers that are known");
    whenChosen(command, [options, &request] {
        request.failureCode = kNoReplay;
        if (options->list) {
            request.run = listMachines;
            return;
        }
        checkCommand(*options);
        request.run = [options] { return replay(*options); };
    });
}

}  // namespace kvl::provider
