#ifndef KVL_ADAPTER_MODULE_DIRECTORIES_H
#define KVL_ADAPTER_MODULE_DIRECTORIES_H

#include <array>
#include <string>

// For providers too: constants, and functions that use only their arguments. Any thread may call; nothing blocks.

namespace kvl {

/// The directory of a management tool module that holds the scripts for a machine.
struct ModuleDirectory {
    const char* machine;
    const char* directory;
};

constexpr std::array<ModuleDirectory, 3> kModuleDirectories = {{
    {"i386", "x86"},
    {"i686", "x86"},
    {"x86_64", "x64"},
}};

/// @param machine  as `uname -m` prints it
/// @return null if a module has nothing for such a machine
inline const char* findModuleDirectory(const std::string& machine) {
    for (const ModuleDirectory& row : kModuleDirectories) {
        if (machine.find(row.machine) != std::string::npos) {
            return row.directory;
        }
    }
    return nullptr;
}

}  // namespace kvl

#endif
