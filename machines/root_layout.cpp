#include "machines/root_layout.h"

#include <unistd.h>

#include "machines/embedded_scripts.h"

namespace kvl::machines {
namespace {

constexpr const char* kTools[] = {"cat",   "ls",     "grep",  "cp",   "rm",    "mv",   "mkdir", "rmdir", "ln",
                                  "chmod", "sleep",  "kill",  "sed",  "tr",    "cut",  "head",  "tail",  "sort",
                                  "wc",    "printf", "touch", "true", "false", "stat", "find"};

// What programs of the tests look for in /proc. The rest of /proc is the recorded server's.
constexpr const char* kProcfsEntries[] = {"self",    "thread-self", "meminfo", "cpuinfo",     "stat",
                                          "version", "uptime",      "mounts",  "filesystems", "sys"};

std::vector<LayoutLink> makeLinks() {
    std::vector<LayoutLink> links;
    for (const char* tool : kTools) {
        links.push_back({std::string("/bin/") + tool, "busybox"});
    }
    for (const char* entry : kProcfsEntries) {
        links.push_back({std::string("/proc/") + entry, std::string("/.proc/") + entry});
    }
    return links;
}

std::string accounts(const std::string& number, const std::string& rootLine, const std::string& ownLine) {
    return number == "0" ? rootLine : rootLine + ownLine;
}

}  // namespace

const std::vector<LayoutDirectory>& layoutDirectories() {
    static const std::vector<LayoutDirectory> directories = {
        {"/usr", 0755},
        {"/bin", 0755},
        {"/sbin", 0755},
        {"/usr/bin", 0755},
        {"/usr/sbin", 0755},
        {"/etc", 0755},
        {"/proc", 0755},
        {"/proc/net", 0755},
        {"/root", 0700},
        {"/run", 0755},
        {"/tmp", 01777},
        {"/opt", 0755},
        {"/opt/tarvenn", 0755},
        {"/opt/tarvenn/kvl", 0755},
        {"/opt/tarvenn/kvl/provider", 0755},
        {"/opt/tarvenn/kvl/provider/tmp", 0700},
        {"/.machine", 0755},
        {"/.machine/commands", 0755},
    };
    return directories;
}

const std::vector<LayoutLink>& layoutLinks() {
    static const std::vector<LayoutLink> links = makeLinks();
    return links;
}

std::vector<LayoutFile> layoutFiles() {
    const std::string user = std::to_string(getuid());
    const std::string group = std::to_string(getgid());
    return {
        {"/etc/passwd", 0644,
         accounts(user, "root:x:0:0:root:/root:/bin/sh\n", "kvl:x:" + user + ":" + group + "::/root:/bin/sh\n")},
        {"/etc/group", 0644, accounts(group, "root:x:0:\n", "kvl:x:" + group + ":\n")},
        {"/etc/nsswitch.conf", 0644, "passwd: files\ngroup: files\nhosts: files\n"},
        {kStandInPath, 0755, kStandInScript},
        {kLayDownPath, 0755, kLayDownScript},
        {kAdapterToolPath, 0755, kAdapterToolScript},
        {kDracutPath, 0755, kDracutScript},
    };
}

}  // namespace kvl::machines
