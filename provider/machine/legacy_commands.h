#ifndef KVL_PROVIDER_MACHINE_LEGACY_COMMANDS_H
#define KVL_PROVIDER_MACHINE_LEGACY_COMMANDS_H

#include <map>
#include <string>

namespace kvl::provider {

/// Commands by their names in /sbin, with the programs that stand in for them there.
using SuppliedCommands = std::map<std::string, std::string>;

/// Looks for the commands that the library calls in /sbin and that this machine lacks there, and for programs that do
/// the same.
/// @return empty if all is well, or nothing can be done
/// @throws ProviderError if such a program isn't installed, with what to do
SuppliedCommands findCommandsToSupply();

/// The path of a program that is found by its name; empty if it isn't there.
std::string findProgram(const std::string& name);

}  // namespace kvl::provider

#endif
