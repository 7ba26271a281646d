#include <CLI/CLI.hpp>

#include "provider/commands/update_commands.h"
#include "provider/exit_codes.h"

namespace kvl::provider {
namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  kvl update firmware 0b:00.0 --module /var/tmp/module --unique-name OCe11102 --dry-run\n"
    "  kvl update tool --module /var/tmp/tool-module\n"
    "\n";

}  // namespace

void addUpdateCommand(CLI::App& program, Request& request) {
    CLI::App* command = program.add_subcommand("update", "Update an adapter's firmware, or the management tool");
    command->footer(std::string(kExamples) + kUpdateExitCodesHelp);
    command->require_subcommand(1);
    addFirmwareUpdateCommand(*command, request);
    addToolUpdateCommand(*command, request);
}

}  // namespace kvl::provider
