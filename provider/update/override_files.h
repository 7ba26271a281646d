#ifndef KVL_PROVIDER_UPDATE_OVERRIDE_FILES_H
#define KVL_PROVIDER_UPDATE_OVERRIDE_FILES_H

#include <array>
#include <string>
#include <vector>

namespace kvl::provider {

/// The configuration file by which `depmod` prefers a driver's updated modules.
struct OverrideFile {
    const char* driver;
    const char* path;
    const char* search;  ///< A file that holds this anywhere gets no lines from the library.
    std::array<const char*, 2> lines;
};

/// In the order of the library's arguments.
constexpr std::array<OverrideFile, 3> kOverrideFiles = {{
    {"be2net",
     "/etc/depmod.d/elxbe2net.conf",
     "override be2net",
     {"override be2net * weak-updates/updates/be2net", "override be2net * weak-updates/be2net"}},
    {"lpfc",
     "/etc/depmod.d/elxlpfc.conf",
     "override lpfc",
     {"override lpfc * weak-updates/updates/elx-lpfc", "override lpfc * weak-updates/elx-lpfc"}},
    {"be2iscsi",
     "/etc/depmod.d/elxbe2iscsi.conf",
     "override be2iscsi",
     {"override be2iscsi * weak-updates/updates/be2iscsi", "override be2iscsi * weak-updates/be2iscsi"}},
}};

using OverrideFiles = std::vector<const OverrideFile*>;

/// The lines that a file doesn't hold as lines of their own.
std::vector<std::string> missingLines(const OverrideFile& file);

/// Sees to it that the lines can be added where they are missing, and that the library will add them.
/// @throws ProviderError otherwise, with what to do
void needOverrideFile(const OverrideFile& file);

}  // namespace kvl::provider

#endif
