#ifndef KVL_PROVIDER_UPDATE_UPDATE_COMMANDS_H
#define KVL_PROVIDER_UPDATE_UPDATE_COMMANDS_H

#include "provider/command_line.h"

namespace kvl::provider {

/// `kvl update`: what is updated is a command of its own.
void addUpdateCommand(CLI::App& program, Request& request);

/// `kvl update firmware`: firmware and boot code of an adapter.
void addFirmwareUpdateCommand(CLI::App& update, Request& request);

/// `kvl update tool`: the management tool.
void addToolUpdateCommand(CLI::App& update, Request& request);

}  // namespace kvl::provider

#endif
