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
/// see what was appended before them. The writer runs no command itself, but the collector's questions do. Nearly
/// every value is a parameter element: a node with the tag "attr" and the attributes "name" and "value".
class CLanXmlWriter {
public:
    /// Makes a document with the empty root "data". Asks nothing and traces nothing.
    /// @param targetVendors  PCI vendors in hexadecimal without "0x"; upper and lower case are the same. None named
    ///                       means no interface
    /// @param parameter      the collector, which must outlive this object
    /// @param moduleName     goes first into every trace line
    CLanXmlWriter(std::list<std::string> targetVendors, CNetworkParameter* parameter, std::string moduleName);
    virtual ~CLanXmlWriter();

    CLanXmlWriter(const CLanXmlWriter&) = delete;
    CLanXmlWriter& operator=(const CLanXmlWriter&) = delete;

    // ---- The document ----

    /// Appends the section Common: the DNS suffixes. It is empty if /etc/resolv.conf can't be read.
    void SetCommonInfo();

    /// Appends the section Physical: a physical_port for each physical interface of a target vendor.
    /// @throws std::out_of_range "basic_string::substr" for a target's bus information of under five characters
    void SetPhysicalInfo();

    /// Appends the section Team: a team_port for each bond with a slave of a target vendor.
    void SetTeamInfo();

    /// Appends the section VLAN: a vlan_port for each VLAN on a target interface or bond.
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

    /// @return true if the vendor of the physical interface behind this name is a target
    bool isTargetVendor(std::string ifname);

    /// @return true if a slave of this bond is of a target vendor
    bool isTargetVendorTeam(std::string ifname);

    /// @return true if what is under this VLAN is a target, as a bond or as an interface
    bool isTargetVendorVlan(std::string ifname);

    /// @return true if this interface is a slave of a bond
    bool CheckTeamMember(std::string ifname);

    /// @return true if a VLAN runs on this interface
    bool CheckExistVlan(std::string ifname);

    /// Appends a vlan_parameter with the parameter element "interface_name" for each VLAN on this interface.
    void SetVlanParameters(std::string ifname, CKvlXmlNode& node);

    // ---- Blocks ----

    /// Appends MTU and driver settings, without those groups that the collector has switched off.
    void SetXmlDriverParameters(std::string ifname, CKvlXmlNode& node);

    /// Appends the addresses, gateways and DNS servers of an interface.
    void SetXmlTcpIpParameters(std::string ifname, CKvlXmlNode& node);

    /// Appends name, mode, monitoring and members of a bond.
    void SetXmlTeamParameters(std::string ifname, CKvlXmlNode& node);

private:
    CKvlXmlNode physicalPort(const std::string& name, const EthtoolResult& ethtool, const IfconfigResult& ifconfig);
    CKvlXmlNode generalInf(const EthtoolResult& ethtool, const IfconfigResult& ifconfig);
    CKvlXmlNode versionInf(const EthtoolResult& ethtool, const IfconfigResult& ifconfig);
    CKvlXmlNode teamPort(const std::string& name, const IfconfigResult& ifconfig);
    CKvlXmlNode vlanPort(const std::string& name, const VlanConfig& vlan, const IfconfigResult& ifconfig);
    CKvlXmlNode monitoring(const BondingConfig& bond);
    CKvlXmlNode member(const SlaveInterface& slave, const BondingConfig& bond);

    std::list<std::string> m_targetVendorList;
    std::string m_moduleName;
    std::unique_ptr<CKvlXmlNode> m_pRootNode;
    CNetworkParameter* m_pNetworkParameter;
};

#endif
