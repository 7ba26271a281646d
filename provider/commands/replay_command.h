#ifndef KVL_PROVIDER_COMMANDS_REPLAY_COMMAND_H
#define KVL_PROVIDER_COMMANDS_REPLAY_COMMAND_H

#include "provider/commands/command_line.h"

namespace kvl::provider {

/// `kvl replay`: any other command on a recorded server.
void addReplayCommand(CLI::App& program, Request& request);

}  // namespace kvl::provider

#endif
