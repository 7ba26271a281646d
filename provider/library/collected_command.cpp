#include "provider/library/collected_command.h"

#include <array>

namespace kvl::provider {
namespace {

/// When the report misses a command's answer.
enum class Missed {
    kAlways,
    kForPorts,  ///< it is asked for VLANs and aliases too, but reported for ports alone
    kNever,     ///< a machine without IPv6 or without bonds has no answer
};

struct KnownCommand {
    const char* beginning;  ///< the rest of the command line is what it asks about
    const char* what;
    Missed missed;
};

constexpr std::array<KnownCommand, 15> kKnownCommands = {{
    {"/bin/uname -r", "kernel release", Missed::kAlways},
    {"/sbin/ifconfig -a", "interfaces and addresses", Missed::kAlways},
    {"/usr/sbin/ethtool -i ", "driver", Missed::kAlways},
    {"/usr/sbin/ethtool -k ", "offload settings", Missed::kForPorts},
    {"/usr/sbin/ethtool -a ", "pause settings", Missed::kForPorts},
    {"/usr/sbin/ethtool -g ", "ring sizes", Missed::kForPorts},
    {"/usr/sbin/ethtool -c ", "coalesce settings", Missed::kForPorts},
    {"/sbin/lspci -mns ", "PCI identifiers", Missed::kAlways},
    {"/sbin/lspci -m | grep ", "PCI description", Missed::kAlways},
    {"/bin/ls /proc/net/bonding", "bonds", Missed::kNever},
    {"/bin/cat /proc/net/bonding/", "bond settings", Missed::kAlways},
    {"/bin/cat /proc/net/vlan/config", "VLANs", Missed::kAlways},
    {"/bin/cat /etc/resolv.conf", "name servers and DNS suffixes", Missed::kAlways},
    {"/sbin/route", "IPv4 default routes", Missed::kAlways},
    {"/bin/netstat -A inet6 -nr", "IPv6 routes", Missed::kNever},
}};

bool isPort(const std::string& interface) {
    return interface.find_first_of(".:") == std::string::npos;
}

bool isMissed(Missed missed, const std::string& subject) {
    return missed == Missed::kAlways || (missed == Missed::kForPorts && isPort(subject));
}

}  // namespace

CollectedCommand describeCommand(const std::string& command) {
    for (const KnownCommand& known : kKnownCommands) {
        const std::string beginning = known.beginning;
        if (command.compare(0, beginning.size(), beginning) == 0) {
            const std::string subject = command.substr(beginning.size());
            return {subject, known.what, isMissed(known.missed, subject)};
        }
    }
    return {"", "", true};
}

}  // namespace kvl::provider
