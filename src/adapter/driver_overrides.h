#ifndef KVL_ADAPTER_DRIVER_OVERRIDES_H
#define KVL_ADAPTER_DRIVER_OVERRIDES_H

#include <array>

// For providers too: constants, and functions that use only their arguments. Any thread may call; nothing blocks.

namespace kvl {

/// The configuration file by which `depmod` prefers a driver's updated modules.
struct DriverOverride {
    const char* driver;
    const char* path;
    const char* search;  ///< A file that holds this anywhere is taken to have its lines.
    std::array<const char*, 2> lines;
};

// kept: the modules of one driver lie in a directory of another name, and the newer ones come first.
constexpr std::array<DriverOverride, 3> kDriverOverrides = {{
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

}  // namespace kvl

#endif
