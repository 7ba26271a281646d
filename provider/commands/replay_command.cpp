#include "provider/commands/replay_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>

#include "machines/private_root.h"
#include "machines/replay.h"
#include "provider/exit_codes.h"
#include "provider/provider_error.h"

namespace kvl::provider {
namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  kvl replay --list\n"
    "  kvl replay four-port -- report\n"
    "  kvl replay ./my-server -- report --format xml > report.xml\n"
    "  kvl replay one-port --root ./root -- report -o /root/report.txt\n"
    "\n"
    "The exit code is that of the command:\n";

// What a run with sanitizers is told by its caller.
constexpr const char* kPassedVariables[] = {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"};

struct ReplayOptions {
    std::string machine;
    std::string root;
    Arguments command;
    bool list = false;
};

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
    return kReportWritten;
}

int replay(const ReplayOptions& options) {
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
        throw ProviderError(kWrongUsage, error.what());
    }
}

[[noreturn]] void refuse(const std::string& sentence) {
    throw ProviderError(kWrongUsage, sentence);
}

/// Reads the command before anything is run, so that wrong usage is told by this process.
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
    CLI::App* command = program.add_subcommand("replay", "Run a command on a recorded server");
    command->footer(std::string(kExamples) + kExitCodesHelp);
    const auto options = std::make_shared<ReplayOptions>();
    command->add_option("machine", options->machine, "Name of a recorded server, or directory of a recording")
        ->type_name("NAME|DIR");
    command->add_option("command", options->command, "What to run, such as: report --format xml")->type_name("COMMAND");
    command->add_option("--root", options->root, "Directory that holds the server's files and keeps them between runs")
        ->type_name("DIR");
    command->add_flag("--list", options->list, "List the recorded servers that are known");
    command->callback([options, &request] {
        if (options->list) {
            request.run = listMachines;
            return;
        }
        checkCommand(*options);
        request.run = [options] { return replay(*options); };
    });
}

}  // namespace kvl::provider
