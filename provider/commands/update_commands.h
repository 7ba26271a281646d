#ifndef KVL_PROVIDER_COMMANDS_UPDATE_COMMANDS_H
#define KVL_PROVIDER_COMMANDS_UPDATE_COMMANDS_H

#include "provider/commands/command_line.h"

namespace kvl::provider {

/// `kvl update`: what is updated is a command of its own.
void addUpdateCommand(CLI::App& program, Request& request);

/// `kvl update firmware`: firmware and boot code of an adapter.
void addFirmwareUpdateCommand(CLI::App& update, Request& request);

/// `kvl update tool`: the management tool.
void addToolUpdateCommand(CLI::App& update, Request& request);

/// `kvl tool-check`: whether the management tool stands as a silent install left it.
void addToolCheckCommand(CLI::App& program, Request& request);

/// `kvl pending`: the kinds of updates that are marked.
void addPendingCommand(CLI::App& program, Request& request);

/// `kvl boot-files`: driver overrides and the RAM disk image.
void addBootFilesCommand(CLI::App& program, Request& request);

}  // namespace kvl::provider

#endif
