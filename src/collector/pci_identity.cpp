#include <fstream>
#include <stdexcept>

#include "collector/CNetworkParameter.h"
#include "collector/lspci_parser.h"
#include "collector/parsing.h"
#include "foundation/columns.h"
#include "foundation/operation_trace.h"

void CNetworkParameter::GetFourIds(std::string location, std::string& ids) {
    const kvl::OperationTrace trace(module_name, "void CNetworkParameter::GetFourIds(std::string, std::string&)");
    trace.enter(location);
    if (ExecCommand("/sbin/lspci -mns %s", location.c_str()) == -1) {
        return;
    }
    std::ifstream output(result_file);
    ids = kvl::parsePciIds(output);
    output.close();
    RemoveResultFile();
    trace.leave(ids);
}

void CNetworkParameter::GetDeviceDescription(std::string location, std::string& description) {
    const kvl::OperationTrace trace(module_name,
                                    "void CNetworkParameter::GetDeviceDescription(std::string, std::string&)");
    trace.enter(location);
    description.clear();
    if (ExecCommand("/sbin/lspci -m | grep %s", location.c_str()) == -1) {
        return;
    }
    std::ifstream output(result_file);
    description = kvl::parsePciDescription(output, location);
    output.close();
    RemoveResultFile();
    trace.leave(description);
}

void CNetworkParameter::GetVendorID(std::string ifname, std::string& vendor) {
    const kvl::OperationTrace trace(module_name, "void CNetworkParameter::GetVendorID(std::string, std::string&)");
    trace.enter(ifname);
    std::string physical;
    GetPhysicalInterfaceName(ifname, physical);
    if (const EthtoolResult* ethtool = GetEthtoolData(physical)) {
        try {
            const std::string location = kvl::pciLocation(ethtool->driver_info.bus_info);
            std::string ids;
            GetFourIds(location, ids);
            kvl::takeColumn(ids, 1, vendor);
        } catch (const std::out_of_range&) {
            // Too short for a location, as for a virtual interface: the caller's text stays.
        }
    } else {
        vendor.clear();
    }
    trace.leave(vendor);
}
