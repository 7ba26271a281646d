#include <algorithm>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_record.h"
#include "adapter/adapter_trace.h"
#include "adapter/error_codes.h"
#include "collector/CNetworkParameter.h"
#include "foundation/CCommon_Information.h"
#include "host/CStringUtil.h"

using kvl::AdapterRecord;

namespace {

using NameAndValue = std::pair<std::string, std::string>;

std::string macText(const std::string& address) {
    std::string text = CStringUtil::StringToUpperCase(address);
    std::replace(text.begin(), text.end(), '-', ':');
    return text;
}

/// The port's address; two empty texts for a port of another type.
NameAndValue addressOf(const AdapterRecord& record) {
    if (kvl::hasWorldWideName(record)) {
        return {"WWPN", kvl::valueOf(record, kvl::kWwnKey)};
    }
    const std::string type = kvl::valueOf(record, "Port Type");
    if (type == "iSCSI" || type == "NIC") {
        return {"MAC Address", macText(kvl::valueOf(record, kvl::kMacKey))};
    }
    return {};
}

std::string locationText(const std::string& deviceId, const std::string& moduleName) {
    int bus = -1;
    int device = -1;
    int function = -1;
    CCommon_Information::GetPCIInfo(deviceId, &bus, &device, &function, moduleName);
    return CStringUtil::NumberToTString(bus) + "/" + CStringUtil::NumberToTString(device) + "/" +
           CStringUtil::NumberToTString(function);
}

}  // namespace

bool CEmulexCommon::GetExtendedInfo(std::string DeviceID, std::list<std::pair<std::string, std::string>>* info,
                                    std::string moduleName) {
    const kvl::AdapterTrace trace(moduleName);
    trace.flow("CEmulexCommon::GetExtendedInfo() [START]");
    const auto end = [&trace](bool result) {
        trace.flow("CEmulexCommon::GetExtendedInfo() [END]");
        return result;
    };
    if (info == nullptr) {
        SetLastError(kvl::kInvalidArgument);
        return end(false);
    }
    info->clear();
    AdapterRecord record;
    if (!GetHBAInfo(DeviceID, &record, moduleName)) {
        return end(false);
    }
    info->push_back(addressOf(record));
    info->emplace_back("Bus/Dev/Func", locationText(DeviceID, moduleName));
    if (kvl::valueOf(record, "Port Type") == "NIC") {
        info->emplace_back("I/F Name", CNetworkParameter("cna").GetIfName(DeviceID));
    }
    return end(true);
}
