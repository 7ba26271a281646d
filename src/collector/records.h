#ifndef KVL_COLLECTOR_RECORDS_H
#define KVL_COLLECTOR_RECORDS_H

#include <list>
#include <map>
#include <set>
#include <string>
#include <vector>

// What the collector learns about an interface, as plain values. Texts are byte strings as the commands printed them.
//
// Unless a field says otherwise, an empty text and a number of -1 mean that the value was not found: the command
// failed, printed no such line, or was not run. A number is 0 also where the command printed something that is no
// number, such as "n/a".
//
// A record is a copy without a lock: it is for one thread at a time.

typedef std::vector<std::string> strarray_t;
typedef std::set<std::string> macset_t;  ///< MAC address texts

/// The resolver configuration.
struct ResolvConf {
    bool valid = false;     ///< The file was read. The lists are empty also after a read, where it has no such line.
    strarray_t nameserver;  ///< One entry per "nameserver" line, in file order.
    strarray_t dns_suffix;  ///< The "domain" value, if any, then the words of the first "search" line.
};

/// Addresses and flags of an interface, from `ifconfig -a` and its ifcfg file.
struct IfconfigResult {
    int link_encap = -1;                            ///< 1 Ethernet, 0 another encapsulation, -1 none seen.
    std::string HWaddr;                             ///< MAC address as printed; empty for an interface without one.
    std::string inet_addr;                          ///< IPv4 address; empty without one.
    std::string Bcast;                              ///< Broadcast address; empty without an IPv4 address.
    std::string Mask;                               ///< Netmask; empty without an IPv4 address.
    std::map<std::string, std::string> inet6_addr;  ///< Address with its closing "/", to prefix length in bits.
    std::string Scope;                              ///< Of the last IPv6 address; empty without one.
    std::string MTU;                                ///< Decimal text, in bytes.
    std::string Metric;                             ///< Decimal text, without a unit.
    std::string kernel_release;                     ///< The collector's, when the record was stored; empty if unknown.
    // Flags: false where the word was not printed.
    bool up = false;
    bool broadcast = false;
    bool running = false;
    bool multicast = false;
    int BOOTPROTO = -1;  ///< 1 "dhcp", 0 another value, -1 no such key or file.
    int ONBOOT = -1;     ///< 1 "yes", 0 another value, -1 no such key or file.
};

/// A vendor's utility.
struct UtilityInfo {
    std::string name;     ///< Never empty.
    std::string version;  ///< Empty if the item was not given.
};

/// Identity of a driver, from `ethtool -i`.
struct EthtoolDriverInfo {
    std::string driver;
    std::string version;     ///< Or the vendor item 1.
    std::string firmver;     ///< Or the vendor item 0.
    std::string bus_info;    ///< As printed, such as 0000:03:00.0.
    std::string businfo;     ///< Bus, device and function in hexadecimal, such as 3/0/0; empty without a PCI location.
    std::string spare_text;  ///< Stays empty.
    std::string ifname;
    std::vector<UtilityInfo> utility;  ///< Those of the vendor items 3 to 8 that have a name.
};

/// Driver settings of an interface, from `ethtool`. Switches are 1 for on, 0 for off and for any other word, and -1
/// where `ethtool` printed no such line or the group was not collected.
struct EthtoolResult {
    EthtoolDriverInfo driver_info;

    // Offload settings, ethtool -k: switches.
    int rcs = -1;  ///< rx-checksumming
    int tcs = -1;  ///< tx-checksumming
    int sg = -1;   ///< scatter-gather
    int tso = -1;  ///< tcp-segmentation-offload
    int ufo = -1;  ///< udp-fragmentation-offload
    int gso = -1;  ///< generic-segmentation-offload
    int gro = -1;  ///< generic-receive-offload
    int lro = -1;  ///< large-receive-offload
    int rvo = -1;  ///< rx-vlan-offload
    int tvo = -1;  ///< tx-vlan-offload
    int nf = -1;   ///< ntuple-filters
    int rh = -1;   ///< receive-hashing

    // Pause settings, ethtool -a: switches.
    int autonego = -1;
    int pause_rx = -1;
    int pause_tx = -1;

    // Ring sizes, ethtool -g, in descriptors: the pre-set maximums, then the current settings. 0: the ring is not
    // there.
    int pre_rx = -1;
    int pre_mini = -1;
    int pre_jumbo = -1;
    int pre_tx = -1;
    int cur_rx = -1;
    int cur_mini = -1;
    int cur_jumbo = -1;
    int cur_tx = -1;

    // Coalescing, ethtool -c: two switches, then numbers. A name with "usecs" is in microseconds, one with "frames" in
    // frames; 0: that bound is not used.
    int adaptive_rx = -1;
    int adaptive_tx = -1;
    int sbu = -1;  ///< stats-block-usecs
    int si = -1;   ///< sample-interval, in seconds
    int prl = -1;  ///< pkt-rate-low, in packets a second
    int prh = -1;  ///< pkt-rate-high, in packets a second
    int ru = -1;   ///< rx-usecs
    int rf = -1;   ///< rx-frames
    int rui = -1;  ///< rx-usecs-irq
    int rfi = -1;  ///< rx-frames-irq
    int tu = -1;   ///< tx-usecs
    int tf = -1;   ///< tx-frames
    int tui = -1;  ///< tx-usecs-irq
    int tfi = -1;  ///< tx-frames-irq
    int rul = -1;  ///< rx-usecs-low
    int rfl = -1;  ///< rx-frame-low, in frames
    int tul = -1;  ///< tx-usecs-low
    int tfl = -1;  ///< tx-frame-low, in frames
    int ruh = -1;  ///< rx-usecs-high
    int rfh = -1;  ///< rx-frame-high, in frames
    int tuh = -1;  ///< tx-usecs-high
    int tfh = -1;  ///< tx-frame-high, in frames

    std::string PhysicalMacAddr;  ///< The vendor item 2; empty without it.
};

/// A slave of a bond.
struct SlaveInterface {
    std::string name;
    std::string HWaddr;  ///< Its permanent address, in upper case.
};

/// A bond, from its file in /proc/net/bonding.
struct BondingConfig {
    std::string Mode;                    ///< The whole text, such as "fault-tolerance (active-backup)".
    std::string PrimarySlave;            ///< Empty without one.
    int MiiStatus = -1;                  ///< 1 up, 0 anything else.
    int pi = -1;                         ///< MII polling interval in milliseconds; 0: no MII monitoring.
    int ud = -1;                         ///< Up delay in milliseconds; 0: none.
    int dd = -1;                         ///< Down delay in milliseconds; 0: none.
    int arp_pi = -1;                     ///< ARP polling interval in milliseconds; -1: no ARP monitoring.
    strarray_t arp_ip;                   ///< ARP targets, in file order.
    std::vector<SlaveInterface> slaves;  ///< In file order.
};

/// A VLAN interface, from /proc/net/vlan/config.
struct VlanConfig {
    int id = 0;             ///< VLAN identifier; 0 where the table has no number.
    std::string interface;  ///< The interface under it.
};

/// A route through a gateway.
struct RouteConfig {
    std::string Gateway;  ///< As the command printed it.
    std::string Metric;   ///< Decimal text, without a unit.
};

// All keys are interface names, in byte order: eth10 comes before eth2.
typedef std::map<std::string, IfconfigResult> ifconfigmap_t;
typedef std::map<std::string, BondingConfig> bondingmap_t;
typedef std::map<std::string, EthtoolResult> ethtoolmap_t;
typedef std::map<std::string, VlanConfig> vlanconfmap_t;
typedef std::map<std::string, std::list<RouteConfig>> routemap_t;

#endif
