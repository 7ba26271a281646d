#include <memory>

#include "provider/commands/commands.h"
#include "provider/commands/options.h"
#include "provider/commands/performed_update.h"
#include "provider/update/boot_files_update.h"

namespace kvl::provider {
namespace {

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl boot-files --override be2net,lpfc --dry-run\n"
    "  kvl boot-files --override be2net,lpfc,be2iscsi --rebuild-initramfs\n"
    "  kvl boot-files --rebuild-initramfs --restore-on-failure\n"
    "\n"
    "The overrides make depmod prefer the updated drivers. The RAM disk image is that of the\n"
    "running kernel; it is rebuilt on a release 6 alone, and the former one stays beside it with\n"
    "\".org\" behind its name. A signal that comes meanwhile is noted, and told in the end.\n"
    "\n";

struct BootFilesOptions {
    BootFilesRequest request;
    UpdateOptions update;
};

Names driverNames() {
    Names names;
    for (const DriverOverride& row : kDriverOverrides) {
        names.emplace_back(row.driver);
    }
    return names;
}

void addTasks(CLI::App& command, BootFilesRequest& request) {
    const auto receive = [&request](const std::vector<std::size_t>& places) {
        for (const std::size_t place : places) {
            request.isOverridden[place] = true;
        }
    };
    addListOf(command, "--override", driverNames(), receive,
              "Have depmod prefer the updated drivers: " + listed(driverNames(), ","));
    CLI::Option* rebuild =
        addFlag(command, "--rebuild-initramfs", request.rebuilds, "Rebuild the RAM disk image of the running kernel");
    allowOnlyWith(
        *addFlag(command, "--restore-on-failure", request.restores, "Move the former image back if that fails"),
        *rebuild);
}

}  // namespace

void addBootFilesCommand(CLI::App& program, Request& request) {
    CLI::App& command = addCommand(program, "boot-files", "Make the boot files fit the updated drivers",
                                   std::string(kHelp) + kUpdateExitHelp);
    const auto options = std::make_shared<BootFilesOptions>();
    addTasks(command, options->request);
    addUpdateOptions(command, options->update, Agreement::kNotNeeded);
    whenChosen(command, [&command, options, &request] {
        if (!isGiven(command, "--override") && !isGiven(command, "--rebuild-initramfs")) {
            refuseUsage("boot-files needs --override or --rebuild-initramfs, or both");
        }
        request.failureCode = kFailedUnchanged;
        request.run = [options] {
            return performUpdate(options->update, [options](Run& run) {
                return std::make_unique<BootFilesUpdate>(options->request, run);
            });
        };
    });
}

}  // namespace kvl::provider
