#ifndef KVL_PROVIDER_MACHINE_COMMAND_OUTPUT_H
#define KVL_PROVIDER_MACHINE_COMMAND_OUTPUT_H

#include <set>
#include <string>

#include "provider/machine/plain_command.h"

namespace kvl::provider {

/// The names of interfaces that the library takes from a command's output into other command lines.
/// @param command  one of the collection; the output of any other holds no such names
std::set<std::string> interfaceNamesIn(const PlainCommand& command, const std::string& output);

/// @return true if the command's output names interfaces
bool namesInterfaces(const PlainCommand& command);

/// Takes the bus information out of what `ethtool -i` prints if it is not the address of a PCI device
/// (domain:bus:device.function): the library puts a part of it into shell lines.
/// @param output  loses the line
/// @return the bus information that was taken out; empty if none was
std::string withholdForeignBusInfo(const PlainCommand& command, std::string& output);

}  // namespace kvl::provider

#endif
