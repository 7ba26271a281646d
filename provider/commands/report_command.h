#ifndef KVL_PROVIDER_COMMANDS_REPORT_COMMAND_H
#define KVL_PROVIDER_COMMANDS_REPORT_COMMAND_H

#include "provider/commands/command_line.h"

namespace kvl::provider {

/// `kvl report`: the LAN report of this machine.
void addReportCommand(CLI::App& program, Request& request);

}  // namespace kvl::provider

#endif
