#ifndef KVL_PROVIDER_COMMANDS_ARGUMENTS_H
#define KVL_PROVIDER_COMMANDS_ARGUMENTS_H

#include <string>

#include "provider/library/adapter_kinds.h"

namespace CLI {
class App;
}

namespace kvl::provider {

/// The arguments of the adapter and update commands. The library builds command lines for a shell out of some of them,
/// so each is checked against its form when the command line is read; anything else is wrong usage.

/// Adds DEVICE, a port's PCI location: bus:device.function in hexadecimal, and after a "-" a tail of characters that
/// a shell takes as they are.
/// @param device  receives the location in one spelling, such as 0b:00.1, without the tail: one port has one cache
void addDevice(CLI::App& command, std::string& device);

/// Adds an argument that names a version, such as 4.6.281.21 or 2.72a2; whether it has the form of one isn't looked at.
void addVersion(CLI::App& command, const std::string& name, std::string& version, const std::string& description);

/// Adds DRIVER, the name of a kernel module.
void addDriver(CLI::App& command, std::string& driver);

/// Adds --family.
/// @param family  receives kCna or kFc
void addFamily(CLI::App& command, std::string& family, const std::string& description);

/// Adds --family, which must be given.
void addRequiredFamily(CLI::App& command, std::string& family, const std::string& description);

/// Adds --kind, which must be given.
/// @param kind  receives the row
void addKind(CLI::App& command, const ModuleKind*& kind);

/// The same, for the kinds whose versions can be compared.
void addComparableKind(CLI::App& command, const ModuleKind*& kind);

/// Adds --module, the directory of an update module, which must be given.
/// @param directory  receives the absolute path
void addModule(CLI::App& command, std::string& directory);

/// Adds --unique-name, the family of an adapter as its update knows it, which must be given.
void addUniqueName(CLI::App& command, std::string& name);

/// Adds --scratch, a directory to unpack in.
/// @param directory  receives the absolute path
void addScratch(CLI::App& command, std::string& directory);

}  // namespace kvl::provider

#endif
