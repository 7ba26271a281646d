#ifndef KVL_MACHINES_ROOT_LAYOUT_H
#define KVL_MACHINES_ROOT_LAYOUT_H

#include <string>
#include <vector>

namespace kvl::machines {

/// What a freshly made private root holds besides its mounts. bubblewrap makes it from outside, and
/// LaidDownMachine::reset makes it anew from inside; both walk these lists.

struct LayoutDirectory {
    const char* path;
    unsigned mode;
};

struct LayoutLink {
    std::string path;
    std::string target;
};

struct LayoutFile {
    std::string path;
    unsigned mode;
    std::string text;
};

/// The directories, each one after its parent.
const std::vector<LayoutDirectory>& layoutDirectories();

/// The symbolic links: the ordinary tools, all of them busybox, and the parts of procfs.
const std::vector<LayoutLink>& layoutLinks();

/// The files, for the user who asks.
std::vector<LayoutFile> layoutFiles();

/// Where the stand-in lies in a private root.
constexpr const char* kStandInPath = "/.machine/stand-in";
/// Where the script lies that lays a recording down.
constexpr const char* kLayDownPath = "/.machine/lay-down";
/// Where the simulated adapter tool lies; a server that has it installed has a link to it.
constexpr const char* kAdapterToolPath = "/.machine/hbacmd";
/// Where the simulated dracut lies; a server that has it has a link to it.
constexpr const char* kDracutPath = "/.machine/dracut";

}  // namespace kvl::machines

#endif
