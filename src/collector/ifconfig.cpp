#include <fstream>

#include "collector/CNetworkParameter.h"
#include "collector/ifconfig_parser.h"
#include "collector/parsing.h"
#include "foundation/CTextFileParser.h"
#include "foundation/operation_trace.h"
#include "foundation/text.h"

namespace {

/// @return 1 if the key's value is `expected`, 0 for another value, -1 without the key or the file
int compareIniValue(const std::string& file, const char* key, const char* expected) {
    std::string value;
    if (!CTextFileParser::GetIniFileValue(file, key, value)) {
        return -1;
    }
    return value == expected ? 1 : 0;
}

std::string listOfAddresses(const IfconfigResult& record) {
    std::string list;
    for (const auto& [address, prefix] : record.inet6_addr) {
        list += address + "/" + prefix + ",";  // kept: two slashes, as the address ends in one
    }
    return list.substr(0, list.empty() ? 0 : list.size() - 1);
}

}  // namespace

bool CNetworkParameter::GetNetworkConfigurations() {
    const kvl::OperationTrace trace(module_name, "bool CNetworkParameter::GetNetworkConfigurations()");
    trace.enter();
    ifconfig_map.clear();
    if (ExecCommand("/sbin/ifconfig -a") < 0) {
        return false;
    }
    ParseIfconfigResult();
    RemoveResultFile();
    trace.leave();
    return true;
}

bool CNetworkParameter::ParseIfconfigResult() {
    std::ifstream output(result_file);
    kvl::parseIfconfig(output, [this](const std::string& ifname, IfconfigResult record) {
        GetIfconfigFile(ifname, &record);
        record.kernel_release = kernel_release;
        LogIfconfig(ifname, record);
        ifconfig_map.emplace(ifname, record);
    });
    return true;
}

bool CNetworkParameter::GetIfconfigFile(std::string ifname, IfconfigResult* result) {
    const std::string file = kvl::kIfcfgPrefix + ifname;
    result->BOOTPROTO = compareIniValue(file, "BOOTPROTO", "dhcp");
    result->ONBOOT = compareIniValue(file, "ONBOOT", "yes");
    return true;
}

IfconfigResult* CNetworkParameter::GetIfconfigData(std::string ifname) {
    const kvl::OperationTrace trace(module_name, "IfconfigResult* CNetworkParameter::GetIfconfigData(std::string)");
    const auto found = ifconfig_map.find(ifname);
    if (found == ifconfig_map.end()) {
        trace.detail("-- %s has no ifconfig data", ifname.c_str());
        return nullptr;
    }
    return &found->second;
}

void CNetworkParameter::LogIfconfig(std::string ifname, IfconfigResult result) {
    const kvl::OperationTrace trace(module_name, "void CNetworkParameter::LogIfconfig(std::string, IfconfigResult)");
    // kept: an encapsulation that was never seen reads as Ethernet here.
    const std::string link =
        kvl::formatText("ifname=%s, Link encap=%s, HWaddr=%s, inet addr=%s, Bcast=%s, Mask=%s", ifname.c_str(),
                        result.link_encap != 0 ? "Ethernet" : "lo", result.HWaddr.c_str(), result.inet_addr.c_str(),
                        result.Bcast.c_str(), result.Mask.c_str());
    trace.detail("%s", kvl::cutToDump(link).c_str());
    const std::string settings =
        kvl::formatText("  inet6 addr=%s, Scope=%s, UP=%s, MTU=%s, Metric=%s, BOOTPROTO=%d, ONBOOT=%d",
                        listOfAddresses(result).c_str(), result.Scope.c_str(), result.up ? "Enabled" : "Disabled",
                        result.MTU.c_str(), result.Metric.c_str(), result.BOOTPROTO, result.ONBOOT);
    trace.detail("%s", kvl::cutToDump(settings).c_str());
}
