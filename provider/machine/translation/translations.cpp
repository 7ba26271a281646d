#include "provider/machine/translation/translations.h"

#include "provider/machine/translation/bonding_file.h"
#include "provider/machine/translation/ethtool_coalesce.h"
#include "provider/machine/translation/ethtool_offload.h"
#include "provider/machine/translation/ethtool_pause.h"
#include "provider/machine/translation/ethtool_ring.h"
#include "provider/machine/translation/ifcfg_file.h"
#include "provider/machine/translation/ifconfig_blocks.h"
#include "provider/machine/translation/ipv4_routes.h"
#include "provider/machine/translation/ipv6_routes.h"
#include "provider/machine/translation/line_ends.h"
#include "provider/machine/translation/network_manager_keyfile.h"
#include "provider/machine/translation/resolver_file.h"
#include "provider/machine/translation/text_lines.h"
#include "provider/machine/translation/vlan_table.h"

namespace kvl::provider {
namespace {

constexpr const char* kCat = "/bin/cat ";

/// @return true if the row's command is the line's, or the beginning of it: whole words of a command line, and a whole
///         path or a folder or prefix, which end in "/" or "-"
bool fits(const Translation& row, const std::string& commandOrFile) {
    const std::string command = row.command;
    if (!startsWith(commandOrFile, command)) {
        return false;
    }
    const bool isPrefix = command.empty() || command.back() == '/' || (command.back() == '-' && command[0] == '/');
    return isPrefix || commandOrFile.size() == command.size() || commandOrFile[command.size()] == ' ';
}

}  // namespace

const std::vector<Translation>& translations() {
    static const std::vector<Translation> rows = {
        {"/sbin/ifconfig -a", translateIfconfig, "blocks of net-tools 2 into those of 1.60"},
        {"/usr/sbin/ethtool -k", translateOffload, "names with blanks into those with hyphens"},
        {"/usr/sbin/ethtool -a", translatePause, "tabs before values into blanks; n/a left out"},
        {"/usr/sbin/ethtool -g", translateRing, "n/a left out"},
        {"/usr/sbin/ethtool -c", translateCoalesce, "n/a left out; rx-frames-low into rx-frame-low"},
        {"/sbin/route", translateIpv4Routes, "default routes: those, and only those, that have a gateway's address"},
        {"/bin/netstat -A inet6 -nr", translateIpv6Routes, "routes through a gateway: default routes only"},
        {"/etc/resolv.conf", translateResolverFile, "as the resolver reads it"},
        {"/etc/sysconfig/network", translateNetworkFile, "as the shell reads it"},
        {"/etc/sysconfig/network-scripts/ifcfg-", translateIfcfg, "as the shell reads it"},
        {"/etc/NetworkManager/system-connections/", translateKeyfile, "keyfiles into ifcfg files"},
        {"/run/NetworkManager/system-connections/", translateKeyfile, "keyfiles into ifcfg files"},
        {"/usr/lib/NetworkManager/system-connections/", translateKeyfile, "keyfiles into ifcfg files"},
        {"/proc/net/bonding/", translateBondingFile, "slaves without a permanent address; long lists of ARP targets"},
        {"/proc/net/vlan/config", translateVlanTable, "a blank before each bar"},
        {"", withoutCarriageReturns, "carriage returns at line ends dropped"},
    };
    return rows;
}

const Translation& findTranslation(const std::string& commandOrFile) {
    const std::string cat = kCat;
    const std::string sought = startsWith(commandOrFile, cat) ? commandOrFile.substr(cat.size()) : commandOrFile;
    for (const Translation& row : translations()) {
        if (fits(row, sought)) {
            return row;
        }
    }
    return translations().back();
}

std::string translated(const std::string& commandOrFile, const std::string& output) {
    return findTranslation(commandOrFile).translate(output);
}

}  // namespace kvl::provider
