#ifndef KVL_PROVIDER_COMMANDS_ADAPTER_WORDS_H
#define KVL_PROVIDER_COMMANDS_ADAPTER_WORDS_H

#include <string>

#include "adapter/CEmulexCommon.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace kvl::provider {

/// The words that the adapter commands take. The library builds command lines for a shell out of some of them, so each
/// is checked against its form when the command line is read; anything else is wrong usage.

/// An adapter family, as the library's module name.
constexpr const char* kCna = "cna";
constexpr const char* kFc = "fc";

/// The module of an adapter, with its name on the command line.
struct ModuleKind {
    const char* name;
    const char* title;
    EMULEX_MODULE_KIND value;
};

/// The kinds whose version an adapter tells, in the order in which they are shown.
constexpr ModuleKind kModuleKinds[] = {
    {"firmware", "FIRMWARE", EMULEX_MODULE_FIRMWARE},
    {"driver", "DRIVER", EMULEX_MODULE_DRIVER},
    {"boot", "BOOT CODE", EMULEX_MODULE_BOOT_BIOS},
    {"tool", "TOOL", EMULEX_MODULE_OCM},
};

/// @return true for a path that a shell takes as it is, in quotes or without: letters, digits and "/._+-"
bool isPlainPath(const std::string& path);

/// @return true for a port's WWN or MAC as the tool spells them, which a shell takes as they are
bool isPlainAddress(const std::string& address);

/// @return the row of a kind that is in the table
const ModuleKind& moduleKind(EMULEX_MODULE_KIND value);

/// Adds DEVICE, a port's PCI location: bus:device.function in hexadecimal, and behind a "-" a tail of characters that
/// a shell takes as they are.
/// @param device  receives the location in one spelling, such as 0b:00.1, without the tail: one port has one cache
void addDevice(CLI::App& command, std::string& device);

/// Adds a word that names a version, such as 4.6.281.21 or 2.72a2; whether it has the form of one isn't looked at.
void addVersion(CLI::App& command, const std::string& name, std::string& version, const std::string& description);

/// Adds DRIVER, the name of a kernel module.
void addDriver(CLI::App& command, std::string& driver);

/// Adds --family.
/// @param family  receives kCna or kFc
CLI::Option* addFamily(CLI::App& command, std::string& family, const std::string& description);

/// Adds --kind, which must be given.
/// @param kind  receives the row
void addKind(CLI::App& command, const ModuleKind*& kind);

/// The same, for the kinds whose versions can be compared.
void addComparableKind(CLI::App& command, const ModuleKind*& kind);

}  // namespace kvl::provider

#endif
