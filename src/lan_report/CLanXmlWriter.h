#ifndef KVL_LAN_REPORT_CLANXMLWRITER_H
#define KVL_LAN_REPORT_CLANXMLWRITER_H

#include <list>
#include <memory>
#include <string>

#include "collector/CNetworkParameter.h"
#include "host/CKvlXmlNode.h"

/// Turns what a collector knows into an XML tree, limited to the interfaces of some PCI vendors.
///
/// The four section operations each append a section to the root in the order of the calls; `Write` and `GetNicNode`
/// see what was appended before them. The writer runs no command itself, but the collector does; each
/// operation names the commands, and blocks the caller's thread as long as the collector does. A writer is for the
/// thread that its collector is for. Where the collector has no driver data yet, the first operation that needs them
/// collects them, and the collector's std::out_of_range for output of unexpected form passes through.
///
/// Nearly every value is a parameter element: a node with the tag "attr" and the attributes "name" and "value".
class __attribute__((visibility("default"))) CLanXmlWriter {
public:
    /// Makes a document with the empty root "data". Asks the collector nothing and traces nothing.
    /// @param targetVendors  PCI vendors in hexadecimal without "0x"; upper and lower case are the same. None named
    ///                       means no interface
    /// @param parameter      the collector, which must outlive this object
    /// @param moduleName     goes first into every trace line
    CLanXmlWriter(std::list<std::string> targetVendors, CNetworkParameter* parameter, std::string moduleName);
    virtual ~CLanXmlWriter();

    CLanXmlWriter(const CLanXmlWriter&) = delete;
    CLanXmlWriter& operator=(const CLanXmlWriter&) = delete;

    // ---- The document ----

    /// Appends the section Common: the DNS suffixes, through `cat /etc/resolv.conf`. It is empty if that fails.
    void SetCommonInfo();

    /// Appends the section Physical: a physical_port for each physical interface of a target vendor that has both
    /// records. Runs `lspci -mns` and `lspci -m | grep`, and what the blocks below run.
    /// @throws std::out_of_range "basic_string::substr" for a target's bus information of under five characters
    void SetPhysicalInfo();

    /// Appends the section Team: a team_port for each bond with a slave of a target vendor that has both records.
    /// Runs `ls /proc/net/bonding`, and what the blocks below run.
    void SetTeamInfo();

    /// Appends the section VLAN: a vlan_port for each VLAN on a target interface or bond that `ifconfig` knows. Runs
    /// what the blocks below run.
    void SetVirtualInfo();

    /// Writes the document to a file. @return what `CKvlXmlWrite::writeXML` returned
    bool Write(std::string path);

    /// Renames the root to "NIC" for good. @return a copy of the document
    CKvlXmlNode GetNicNode();

    // ---- Parameter elements ----

    /// Appends a parameter element, also with an empty value.
    void AddXmlElement(CKvlXmlNode& parent, std::string name, std::string value);

    /// The same for a number in decimal. -1 gives an empty value.
    void AddXmlElement(CKvlXmlNode& parent, std::string name, int value);

    /// The same for a switch: -1 gives an empty value, 0 "off", anything else "on".
    void AddXmlElementOnOff(CKvlXmlNode& parent, std::string name, int value);

    /// The same with "0x" in front of the value. An empty value appends nothing.
    void AddXmlElementHex(CKvlXmlNode& parent, std::string name, std::string value);

    // ---- Vendors and membership ----

    /// Runs `lspci -mns`, as the next two do.
    /// @return true if the vendor of the physical interface under this name is a target
    bool isTargetVendor(std::string ifname);

    /// @return true if a slave of this bond is of a target vendor
    bool isTargetVendorTeam(std::string ifname);

    /// @return true if what is under this VLAN is a target, as a bond or as an interface
    bool isTargetVendorVlan(std::string ifname);

    /// Runs `ls /proc/net/bonding`. @return true if this interface is a slave of a collected bond
    bool CheckTeamMember(std::string ifname);

    /// Asks for the VLANs, which runs `cat /proc/net/vlan/config` the first time. @return true if one runs on this
    /// interface
    bool CheckExistVlan(std::string ifname);

    /// Appends a vlan_parameter with the parameter element "interface_name" for each VLAN on this interface. Asks for
    /// the VLANs likewise.
    void SetVlanParameters(std::string ifname, CKvlXmlNode& node);

    // ---- Blocks ----

    /// Appends MTU and driver settings, without those groups that the collector has switched off.
    void SetXmlDriverParameters(std::string ifname, CKvlXmlNode& node);

    /// Appends the addresses, gateways and DNS servers of an interface. Runs `cat /etc/resolv.conf` and
    /// `netstat -A inet6 -nr`.
    void SetXmlTcpIpParameters(std::string ifname, CKvlXmlNode& node);

    /// Appends name, mode, monitoring and members of a bond.
    void SetXmlTeamParameters(std::string ifname, CKvlXmlNode& node);

private:
    std::list<std::string> m_targetVendorList;
    std::string m_moduleName;
    std::unique_ptr<CKvlXmlNode> m_pRootNode;
    CNetworkParameter* m_pNetworkParameter;
};

#endif
