#include <array>
#include <stdexcept>

#include "collector/CNetworkParameter.h"
#include "collector/parsing.h"
#include "foundation/CTextFileParser.h"
#include "foundation/line_reader.h"
#include "foundation/operation_trace.h"
#include "foundation/text.h"

namespace {

// lspci -m prints quoted fields; an odd number counts the double quotes up to the one that opens a field.
constexpr int kVendorField = 3;
constexpr int kDeviceField = 5;
constexpr std::array<int, 4> kIdFields = {kVendorField, kDeviceField, 7, 9};

}  // namespace

void CNetworkParameter::GetFourIds(std::string location, std::string& ids) {
    const kvl::OperationTrace trace(module_name, "void CNetworkParameter::GetFourIds(std::string, std::string&)");
    trace.enter(location);
    if (ExecCommand("/sbin/lspci -mns %s", location.c_str()) == -1) {
        return;
    }
    std::string line;
    kvl::LineReader(result_file).read(line);
    RemoveResultFile();
    ids.clear();
    for (const int field : kIdFields) {
        ids += kvl::upTo(GetStr('"', field, line), '"') + " ";
    }
    ids.pop_back();
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
    std::string line;
    if (CTextFileParser::GetLineBeginningKey(result_file, location, 1, line)) {
        description = kvl::upTo(GetStr('"', kVendorField, line), '"');
        description += " " + kvl::upTo(GetStr('"', kDeviceField, line), '"');
    }
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
            CTextFileParser::GetStrInFixedPosition(ids, 1, vendor);
        } catch (const std::out_of_range&) {
            // Too short to hold a location, as of a virtual interface: the caller's text stays.
        }
    } else {
        vendor.clear();
    }
    trace.leave(vendor);
}
