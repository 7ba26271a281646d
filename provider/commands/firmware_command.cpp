#include <memory>

#include "provider/commands/arguments.h"
#include "provider/commands/commands.h"
#include "provider/commands/options.h"
#include "provider/commands/performed_update.h"
#include "provider/update/firmware_update.h"

namespace kvl::provider {
namespace {

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl update firmware 0b:00.0 --module /var/tmp/module --unique-name OCe11102 --dry-run\n"
    "  kvl update firmware 15:00.1 --module /var/tmp/fc --unique-name fcelx_8g2p --yes\n"
    "\n"
    "The module is a directory with an archive, as the adapter's maker ships it. Everything is\n"
    "looked at first, then the plan is shown, then you are asked. Once the adapter's tool writes,\n"
    "nothing breaks it off: a signal is noted and told in the end.\n"
    "\n";

struct FirmwareOptions {
    FirmwareRequest request;
    UpdateOptions update;
};

int updateFirmware(const FirmwareOptions& options) {
    requireAgreement(options.update);
    return performUpdate(options.update,
                         [&options](Run& run) { return std::make_unique<FirmwareUpdate>(options.request, run); });
}

}  // namespace

void addFirmwareUpdateCommand(CLI::App& update, Request& request) {
    CLI::App& command = addCommand(update, "firmware", "Update the firmware and boot code of an adapter",
                                   std::string(kHelp) + kUpdateExitHelp);
    const auto options = std::make_shared<FirmwareOptions>();
    addDevice(command, options->request.device);
    addModule(command, options->request.moduleDirectory);
    addUniqueName(command, options->request.uniqueName);
    addFamily(command, options->request.family, "The adapter's family (default: by the port's type)");
    addScratch(command, options->request.scratch);
    addUpdateOptions(command, options->update, Agreement::kNeeded);
    whenChosen(command, [options, &request] {
        request.failureCode = kFailedUnchanged;
        request.run = [options] { return updateFirmware(*options); };
    });
}

}  // namespace kvl::provider
