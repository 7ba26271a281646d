#include "tests/provider/machine/translation/translation_case.h"

namespace kvl::test {
namespace {

constexpr const char* kBond = "/bin/cat /proc/net/bonding/bond0";
constexpr const char* kVlans = "/bin/cat /proc/net/vlan/config";

const std::string kBondHead =
    "Ethernet Channel Bonding Driver: v3.7.1 (April 27, 2011)\n"
    "\n"
    "Bonding Mode: fault-tolerance (active-backup)\n"
    "Primary Slave: None\n"
    "Currently Active Slave: eth0\n"
    "MII Status: up\n"
    "MII Polling Interval (ms): 100\n"
    "Up Delay (ms): 0\n"
    "Down Delay (ms): 0\n"
    "\n";

const std::string kCompleteBond = kBondHead +
                                  "Slave Interface: eth0\n"
                                  "MII Status: up\n"
                                  "Permanent HW addr: 52:54:00:12:34:00\n"
                                  "Slave queue ID: 0\n"
                                  "\n"
                                  "Slave Interface: eth1\n"
                                  "MII Status: up\n"
                                  "Permanent HW addr: 52:54:00:12:34:01\n"
                                  "Slave queue ID: 0\n";

const std::string kVlanHead = "VLAN Dev name\t | VLAN ID\nName-Type: VLAN_NAME_TYPE_RAW_PLUS_VID_NO_PAD\n";

std::string targets(int first, int last) {
    std::string list;
    for (int number = first; number <= last; ++number) {
        list += (list.empty() ? " 192.168.130." : ", 192.168.130.") + std::to_string(number);
    }
    return list;
}

}  // namespace

std::vector<TranslationCase> kernelFileCases() {
    return {
        {"bonding: slaves without a permanent address", kBond,
         kBondHead + "Slave Interface: eth0\n"
                     "MII Status: up\n"
                     "Link Failure Count: 0\n"
                     "\n"
                     "Slave Interface: eth1\n"
                     "MII Status: up\n"
                     "Link Failure Count: 0\n",
         kBondHead + "Slave Interface: eth0\n"
                     "MII Status: up\n"
                     "Link Failure Count: 0\n"
                     "Permanent HW addr:\n"
                     "\n"
                     "Slave Interface: eth1\n"
                     "MII Status: up\n"
                     "Link Failure Count: 0\n"
                     "Permanent HW addr:\n"},
        {"bonding: one slave without a permanent address", kBond,
         "Slave Interface: eth0\n"
         "\n"
         "Slave Interface: eth1\n"
         "Permanent HW addr: 52:54:00:12:34:01\n",
         "Slave Interface: eth0\n"
         "Permanent HW addr:\n"
         "\n"
         "Slave Interface: eth1\n"
         "Permanent HW addr: 52:54:00:12:34:01\n"},
        {"bonding: 16 ARP targets", kBond,
         "ARP IP target/s (n.n.n.n form):" + targets(201, 216) + "\nNS IPv6 target/s (xx::xx form):\n",
         "ARP IP target/s (n.n.n.n form):" + targets(201, 213) +
             "\nARP IP target/s (n.n.n.n form):" + targets(214, 216) + "\nNS IPv6 target/s (xx::xx form):\n"},
        {"bonding: cut in a slave's name", kBond, kBondHead + "Slave Interface: et", kBondHead + "Slave Interface: et"},
        {"bonding: carriage returns at line ends", kBond, "MII Status: up\r\n\r\n", "MII Status: up\n\n"},
        {"bonding: as the library reads it", kBond, kCompleteBond, kCompleteBond},
        {"vlan: names of 15 characters", kVlans,
         kVlanHead + "averylongname15| 4094  | eth4\n"
                     "a|strange|name|| 7  | eth4\n"
                     "eth4.100       | 100  | eth4\n"
                     "averylongname.1| 1  | averylongname15\n",
         kVlanHead + "averylongname15 | 4094  | eth4\n"
                     "a|strange|name| | 7  | eth4\n"
                     "eth4.100       | 100  | eth4\n"
                     "averylongname.1 | 1  | averylongname15\n"},
        {"vlan: no rows", kVlans, kVlanHead, kVlanHead},
        {"any command: carriage returns at line ends", "/sbin/lspci -mns 02:00.0",
         "02:00.0 \"0200\" \"8086\" \"10c9\"\r\r\n\r\nlast\r", "02:00.0 \"0200\" \"8086\" \"10c9\"\n\nlast"},
    };
}

}  // namespace kvl::test
