#ifndef KVL_PROVIDER_COMMANDS_COMMANDS_H
#define KVL_PROVIDER_COMMANDS_COMMANDS_H

#include "provider/commands/command_line.h"

namespace kvl::provider {

/// `kvl report`: the LAN report of this machine.
void addReportCommand(CLI::App& program, Request& request);

/// `kvl adapters`: the ports that the adapter tool lists, and their versions.
void addAdaptersCommand(CLI::App& program, Request& request);

/// `kvl adapter-info`: what describes one port.
void addAdapterInfoCommand(CLI::App& program, Request& request);

/// `kvl version`: the version of a module that runs on a port.
void addVersionCommand(CLI::App& program, Request& request);

/// `kvl compare`: which of two versions is the newer.
void addCompareCommand(CLI::App& program, Request& request);

/// `kvl supported`: the device catalogue.
void addSupportedCommand(CLI::App& program, Request& request);

/// `kvl slot`: the slot number of a location.
void addSlotCommand(CLI::App& program, Request& request);

/// `kvl driver-check`: whether a driver has a version.
void addDriverCheckCommand(CLI::App& program, Request& request);

/// `kvl boot-image`: whether the machine will start the kernel that runs.
void addBootImageCommand(CLI::App& program, Request& request);

/// `kvl components`: what is missing.
void addComponentsCommand(CLI::App& program, Request& request);

/// `kvl tool-check`: whether the management tool stands as a silent install left it.
void addToolCheckCommand(CLI::App& program, Request& request);

/// `kvl update`: has a command for each thing that can be updated.
void addUpdateCommand(CLI::App& program, Request& request);

/// `kvl update firmware`: firmware and boot code of an adapter.
void addFirmwareUpdateCommand(CLI::App& update, Request& request);

/// `kvl update tool`: the management tool.
void addToolUpdateCommand(CLI::App& update, Request& request);

/// `kvl pending`: the kinds of updates that are marked.
void addPendingCommand(CLI::App& program, Request& request);

/// `kvl boot-files`: driver overrides and the RAM disk image.
void addBootFilesCommand(CLI::App& program, Request& request);

/// `kvl replay`: any other command on a recorded server.
void addReplayCommand(CLI::App& program, Request& request);

}  // namespace kvl::provider

#endif
