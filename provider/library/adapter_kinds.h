#ifndef KVL_PROVIDER_LIBRARY_ADAPTER_KINDS_H
#define KVL_PROVIDER_LIBRARY_ADAPTER_KINDS_H

#include <string>

#include "adapter/CEmulexCommon.h"

namespace kvl::provider {

/// An adapter family, as the library's module name.
constexpr const char* kCna = "cna";
constexpr const char* kFc = "fc";

/// The module of an adapter, with its name on the command line.
struct ModuleKind {
    const char* name;
    const char* title;
    EMULEX_MODULE_KIND value;
};

/// The kinds whose version an adapter reports, in the order in which they are shown.
constexpr ModuleKind kModuleKinds[] = {
    {"firmware", "FIRMWARE", EMULEX_MODULE_FIRMWARE},
    {"driver", "DRIVER", EMULEX_MODULE_DRIVER},
    {"boot", "BOOT CODE", EMULEX_MODULE_BOOT_BIOS},
    {"tool", "TOOL", EMULEX_MODULE_OCM},
};

/// @return the row of a kind that is in the table
const ModuleKind& moduleKind(EMULEX_MODULE_KIND value);

/// @return true for a path that a shell takes as it is, in quotes or without: letters, digits and "/._+-"
bool isPlainPath(const std::string& path);

/// @return true for a port's WWN or MAC as the tool spells them, which a shell takes as they are
bool isPlainAddress(const std::string& address);

}  // namespace kvl::provider

#endif
