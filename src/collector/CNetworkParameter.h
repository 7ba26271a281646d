#ifndef KVL_COLLECTOR_CNETWORKPARAMETER_H
#define KVL_COLLECTOR_CNETWORKPARAMETER_H

#include <array>
#include <list>
#include <string>

#include "collector/records.h"

/// Learns the machine's LAN configuration. It runs the system's commands with their standard output sent to result
/// files in /opt/tarvenn/kvl/provider/tmp, parses those, and keeps what it found per interface.
///
/// An object is for one thread at a time, and two collections must not run at once on a machine, since a result file is
/// named only after its command: nothing is locked. The result directory must exist.
///
/// An operation that runs a command blocks the caller's thread until the command has ended, however long that takes. A
/// command that prints nothing costs ten seconds more and counts as failed. An operation whose comment names no command
/// or file doesn't wait for anything.
///
/// Output of unexpected form raises std::out_of_range with the text "basic_string::substr". The exception passes
/// through to the caller, and the result file stays. `GetCommonMac` raises the same for a rules file. `GetIfName`
/// raises an exception of its own.
///
/// A full report needs `GetNetworkConfigurations`, `GetEtherConfigurations`, `GetBondingConfifurations` and
/// `GetRoutingConfigurations` first. The first `GetEthtoolData` also collects driver data, and the interfaces with
/// them. The first call that needs VLANs collects those. No other call collects bonds or IPv4 routes.
class __attribute__((visibility("default"))) CNetworkParameter {
public:
    /// Runs /bin/uname -r for the kernel release, which stays empty if that fails.
    /// @param moduleName  goes first into every trace line and names the directory of the vendor's items
    explicit CNetworkParameter(std::string moduleName);
    virtual ~CNetworkParameter();

    // ---- Commands and texts ----

    /// Runs a command line through the shell, with its standard output in the result file and its standard error
    /// thrown away. Looks up to ten times, a second apart, for output.
    /// @param format  printf format of the command line, at most 255 characters when filled in; a longer one isn't
    ///                run
    /// @return if the first look finds output, 0 or the status of a command that a signal ended; otherwise -1. A
    ///         command that exits with a status other than 0 leaves no result file, one without output does
    int ExecCommand(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// Finds where a command line's output goes.
    /// @param command     receives the text before the first blank
    /// @param resultFile  receives the result directory and what follows the last "/" of the command
    void GetResultFileName(const char* commandLine, std::string& command, std::string& resultFile);

    /// Cuts the name of a command by its first "/": of "/bin/uname -r" that is "bin/uname -".
    void GetCommandName(const char* commandLine, std::string& name);

    /// Deletes the result file of the last command. @return what `unlink` returned
    int RemoveResultFile();

    /// @return true if `stat` of the path succeeds
    bool isFileExist(std::string path);

    /// @return false, always
    bool isError();

    /// @return what follows the first colon and the blanks after it (tabs stay)
    /// @throws std::out_of_range for a text without a colon
    std::string GetColonSeparatedValue(std::string text);

    /// The same for the first colon at or after `start`.
    std::string GetColonSeparatedValue(std::string text, unsigned int start);

    /// @param index  how many separators come before the field; the first character of the text never counts as one.
    ///               Below 1 the field starts at position 1
    /// @return the field, empty if there are fewer separators
    /// @throws std::out_of_range for an index below 1 and an empty text
    std::string GetStr(char separator, int index, std::string text);

    /// Takes the next word off the front of a text. Only blanks separate.
    /// @param text  becomes the rest, which starts with the next word
    /// @return the word; empty if nothing is left
    std::string GetNextStr(std::string& text);

    /// @return the decimal text of `value`
    std::string toStr(int value);

    /// Reads /etc/resolv.conf through /bin/cat.
    /// @param conf  appended to; the caller passes a fresh one
    /// @return false if the command failed; `conf` then is untouched but for `valid`, which is false
    bool GetResolvConf(ResolvConf& conf);

    // ---- Interfaces: /sbin/ifconfig -a and the ifcfg files ----

    /// Collects all interfaces again, except those whose names hold "lo" or "sit". Invalidates every pointer that
    /// `GetIfconfigData` returned.
    /// @return false if the command failed; there are no interfaces then
    bool GetNetworkConfigurations();

    /// Parses the result file of `ifconfig -a`. @return true
    bool ParseIfconfigResult();

    /// Reads BOOTPROTO and ONBOOT from /etc/sysconfig/network-scripts/ifcfg-NAME. @return true
    bool GetIfconfigFile(std::string ifname, IfconfigResult* result);

    /// @return the interface's record, valid until the next `GetNetworkConfigurations`; null if there is none. It
    ///         never collects
    IfconfigResult* GetIfconfigData(std::string ifname);

    /// Traces a record in two lines.
    void LogIfconfig(std::string ifname, IfconfigResult result);

    // ---- Driver settings: /usr/sbin/ethtool ----

    /// Collects the driver data of every interface, and the interfaces themselves first if there are none. Data
    /// collected before stays as it is.
    /// @return true
    bool GetEtherConfigurations();

    /// @return the interface's record, valid for the life of this object, after a collection if there was none;
    ///         null if there is no such record
    EthtoolResult* GetEthtoolData(std::string ifname);

    /// @param option  0 offload, 1 pause, 2 ring, 3 coalescing, 4 vendor dependent items
    /// @return non-zero if the group is to be collected; 0 for any other number
    unsigned char GetEthtoolOptionConf(int option);

    /// Switches a group off for good, for the collection and for the report.
    /// @param option  as above; any other number changes nothing
    void DisableEthtoolOption(int option);

    /// Reads the driver's identity from `ethtool -i`, and the vendor items 1 (version) and 0 (firmware version).
    /// @return false if the command failed
    bool ExecEthtool_I(std::string ifname, EthtoolResult& result);

    /// Reads the offload settings from `ethtool -k`. @return false if the command failed
    bool ExecEthtool_K(std::string ifname, EthtoolResult& result);

    /// Reads the pause settings from `ethtool -a`. @return false if the command failed
    bool ExecEthtool_A(std::string ifname, EthtoolResult& result);

    /// Reads the ring sizes from `ethtool -g`. @return false if the command failed
    bool ExecEthtool_G(std::string ifname, EthtoolResult& result);

    /// Reads the coalescing settings from `ethtool -c`. @return false if the command failed
    bool ExecEthtool_C(std::string ifname, EthtoolResult& result);

    /// Reads the vendor items 2 (physical MAC address) and 3 to 8 (three utilities). Runs no command. @return true
    bool ExecEthtool_E(std::string ifname, EthtoolResult& result);

    /// Traces a record in six lines.
    void LogEthtool(std::string ifname, EthtoolResult result);

    // ---- Bonds and VLANs: /proc/net/bonding, /proc/net/vlan/config ----

    /// Lists the bonds with /bin/ls.
    /// @param bonds  cleared first
    /// @return false if there is no bonding directory, or nothing in it, or the command failed
    bool GetBondingIfList(strarray_t& bonds);

    /// Collects all bonds again with /bin/cat. Invalidates every pointer that `GetBondingData` returned.
    /// @return false if a bond couldn't be read; the bonds before it are kept and those after it are not read
    bool GetBondingConfifurations();

    /// Parses the result file of a bond's `cat`. @return true
    bool ParseBondingResult(std::string ifname);

    /// @return the bond's record, valid until the next `GetBondingConfifurations`; null if there is none. It never
    ///         collects
    BondingConfig* GetBondingData(std::string ifname);

    /// Traces a record: one line, one for ARP monitoring, one per slave.
    void LogBondingConf(std::string ifname, BondingConfig config);

    /// Copies the VLANs. Each call reads them with /bin/cat until one has found some.
    /// @param vlans  keeps the entries that it has already
    /// @return false if there is no VLAN file or the command failed
    bool GetVLANData(vlanconfmap_t& vlans);

    /// Parses the result file of the VLAN file's `cat`. @return false if it can't be read
    bool ParseVlanConfigResult(vlanconfmap_t& vlans);

    /// Looks up the interface under a VLAN in the kernel's table.
    /// @param base  untouched if `ifname` is no VLAN
    /// @return true
    bool RemoveVlanId(std::string ifname, std::string& base);

    // ---- Routes: /sbin/route, /bin/netstat ----

    /// Collects the IPv4 default routes again. @return false if the command failed
    bool GetRoutingConfigurations();

    /// @return the interface's IPv4 default routes, in the order of the table. It never collects
    std::list<RouteConfig> GetRouteData(std::string ifname);

    /// Runs `netstat -A inet6 -nr`.
    /// @return the interface's IPv6 routes through a gateway; empty without IPv6
    std::list<RouteConfig> GetRouteDataV6(std::string ifname);

    /// Looks up the metric of the configured IPv6 default gateway (IPV6_DEFAULTGW in /etc/sysconfig/network, else in
    /// the interface's ifcfg file) in the output of `netstat -A inet6 -nr`.
    /// @param gateway  the configured gateway; empty if there is none
    /// @return the metric; empty if the gateway isn't configured or not in the table
    std::string GetIpv6Metric(std::string ifname, std::string& gateway);

    // ---- Names and addresses ----

    /// Asks the kernel for its interfaces.
    /// @param names  emptied first; receives all but "lo"
    /// @return false if there are none
    bool GetInterfaceNameList(std::list<std::string>& names);

    /// Lists the collected interfaces, in byte order. It never collects.
    void GetInterfaceNameList(strarray_t& names);

    /// Finds a physical interface by number. Its name holds "eth" and neither "." nor ":". The list dates from the
    /// first call that found collected interfaces, or from the last `GetInterfaceNameList` of those.
    /// @param index  1 for the first
    /// @param name   untouched if there is none
    /// @return false if there is none
    bool GetPhysicalDev(int index, std::string& name);

    /// Finds the physical interface under a name.
    /// @param result  the name itself if it is physical, the interface under a VLAN, otherwise the machine's last
    ///                physical interface, also for a bond; untouched on a machine without one
    void GetPhysicalInterfaceName(std::string ifname, std::string& result);

    /// Uses `grep` to find the interface whose `ethtool -i` output holds a text.
    /// @param key  the part before its first "-" is looked for; it reaches the shell unquoted
    /// @return the first such interface in the kernel's order; empty if there is none
    /// @throws std::logic_error "basic_string::_S_construct NULL not valid" on a machine without interfaces
    std::string GetIfName(std::string key);

    /// Collects the interfaces again. @return the MAC address of this one; empty if it isn't there
    std::string GetMacAddress(std::string ifname);

    /// Reads HWADDR, else MACADDR, from the interface's ifcfg file.
    /// @param macs  receives the addresses that the udev rules bind to this name and that differ from the result
    /// @return the address in upper case; empty if there is none
    /// @throws std::out_of_range "basic_string::substr" for a rule whose address column has under two characters
    std::string GetCommonMac(std::string& ifname, macset_t& macs);

    // ---- PCI identity: /sbin/lspci ----

    /// Runs `lspci -mns` for a location.
    /// @param location  bus:device.function, such as 03:00.0
    /// @param ids       vendor, device, subsystem vendor and subsystem device in hexadecimal, with blanks between;
    ///                  untouched if the command failed
    void GetFourIds(std::string location, std::string& ids);

    /// Runs `lspci -m | grep` for a location.
    /// @param description  the names of vendor and device with a blank between; empty if there is no such device
    void GetDeviceDescription(std::string location, std::string& description);

    /// Looks up the PCI vendor of the physical interface under a name.
    /// @param vendor  in hexadecimal without "0x"; empty if there is no driver data or `lspci` failed; untouched
    ///                for bus information of under five characters, as of a virtual interface
    void GetVendorID(std::string ifname, std::string& vendor);

    // ---- Vendor dependent items: files below the install path ----

    /// @param item  0 firmware version, 1 driver version, 2 physical MAC address, 3 to 8 name and version of three
    ///              utilities
    /// @return the first line of the item's file; empty if there is none
    std::string GetVendorDependInfo(std::string ifname, int item);

    /// Records an item. A later `GetEtherConfigurations` of an object with the same module name reads it, unless that
    /// object has a record of the interface already.
    /// @param value  "#EMP" in the items 0 to 2 means that the field is to be empty; an empty text says nothing
    void SetVendorDependInfo(std::string ifname, int item, std::string value);

private:
    strarray_t ifname_list;
    ifconfigmap_t ifconfig_map;
    bondingmap_t bonding_map;
    routemap_t route_map;
    ethtoolmap_t ethtool_map;
    vlanconfmap_t vlan_map;
    bool error_flag = false;  // kept: nothing ever sets it
    std::string module_name;
    std::string kernel_release;
    std::string result_file;
    std::string work_str;  // the cutters leave their last result here
    std::array<bool, 5> ethtool_option{};
};

#endif
