#ifndef KVL_PROVIDER_MACHINE_COMMAND_OUTPUT_H
#define KVL_PROVIDER_MACHINE_COMMAND_OUTPUT_H

#include <set>
#include <string>
#include <string_view>

#include "provider/machine/plain_command.h"

namespace kvl::provider {

/// The names of interfaces that the library takes from a command's output into other command lines.
/// @param command  one of the collection; the output of any other holds no such names
std::set<std::string> interfaceNamesIn(const PlainCommand& command, const std::string& output);

/// @return true if the command's output names interfaces
bool namesInterfaces(const PlainCommand& command);

/// Takes the bus information out of what `ethtool -i` prints if it is not the address of a PCI device
/// (domain:bus:device.function): the library puts a part of it into shell lines.
/// @param pciAddress  of the interface; takes the place of what is taken out, unless it is empty
/// @param output      loses the line
/// @return the bus information that was taken out; empty if none was
std::string withholdForeignBusInfo(const PlainCommand& command, const std::string& pciAddress, std::string& output);

/// @return the bus information in what `ethtool -i` prints; empty without one
std::string busInfoIn(const std::string& output);

/// @return true for the kernel's form of a PCI address: 0000:03:00.0, the domain with more digits where it needs them
bool isPciAddress(std::string_view text);

}  // namespace kvl::provider

#endif
