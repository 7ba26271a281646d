#include "provider/commands/commands.h"
#include "provider/commands/options.h"
#include "provider/commands/performed_update.h"

namespace kvl::provider {
namespace {

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl update firmware 0b:00.0 --module /var/tmp/module --unique-name OCe11102 --dry-run\n"
    "  kvl update tool --module /var/tmp/tool-module\n"
    "\n";

}  // namespace

void addUpdateCommand(CLI::App& program, Request& request) {
    CLI::App& command = addCommand(program, "update", "Update an adapter's firmware, or the management tool",
                                   std::string(kHelp) + kUpdateExitHelp);
    requireSubcommand(command);
    addFirmwareUpdateCommand(command, request);
    addToolUpdateCommand(command, request);
}

}  // namespace kvl::provider
