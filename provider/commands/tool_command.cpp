#include <memory>

#include "provider/commands/arguments.h"
#include "provider/commands/commands.h"
#include "provider/commands/options.h"
#include "provider/commands/performed_update.h"
#include "provider/update/tool_update.h"

namespace kvl::provider {
namespace {

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl update tool --module /var/tmp/tool-module --dry-run\n"
    "  kvl update tool --module /var/tmp/tool-module --again --yes\n"
    "\n"
    "The module's uninstall.sh removes the installed tool, and its install.sh -q brings the new\n"
    "one. An update that was tried is not tried again, whatever its outcome, without --again.\n"
    "\n";

struct ToolOptions {
    ToolRequest request = {"", kCna, false};
    UpdateOptions update;
};

int updateTool(const ToolOptions& options) {
    requireAgreement(options.update);
    return performUpdate(options.update,
                         [&options](Run& run) { return std::make_unique<ToolUpdate>(options.request, run); });
}

}  // namespace

void addToolUpdateCommand(CLI::App& update, Request& request) {
    CLI::App& command = addCommand(update, "tool", "Replace the management tool", std::string(kHelp) + kUpdateExitHelp);
    const auto options = std::make_shared<ToolOptions>();
    addModule(command, options->request.moduleDirectory);
    addFlag(command, "--again", options->request.again, "Try it also if it was tried before");
    addFamily(command, options->request.family, "The family whose operator messages are sent (default: cna)");
    addUpdateOptions(command, options->update, Agreement::kNeeded);
    whenChosen(command, [options, &request] {
        request.failureCode = kFailedUnchanged;
        request.run = [options] { return updateTool(*options); };
    });
}

}  // namespace kvl::provider
