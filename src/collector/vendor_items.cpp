#include <fstream>

#include "collector/CNetworkParameter.h"
#include "collector/vendor_item_parser.h"
#include "foundation/CCommon_Information.h"
#include "foundation/operation_trace.h"
#include "host/CFileUtility.h"
#include "host/CStringUtil.h"

namespace {

std::string storeRoot() {
    return CFileUtility::GetInstallPath(0) + "/tmp/LAN_COMMON";
}

// kept: nothing separates name and number, so item 10 of eth1 and item 0 of eth11 are one file.
std::string itemPath(const std::string& moduleDirectory, const std::string& ifname, int item) {
    return moduleDirectory + "/" + ifname + CStringUtil::NumberToTString(item);
}

}  // namespace

std::string CNetworkParameter::GetVendorDependInfo(std::string ifname, int item) {
    const kvl::OperationTrace trace(module_name,
                                    "std::string CNetworkParameter::GetVendorDependInfo(std::string, int)");
    trace.enter();
    const std::string path = itemPath(storeRoot() + "/" + module_name, ifname, item);
    std::ifstream file(path);
    if (!file.is_open()) {
        trace.detail("[%s] is not exist", path.c_str());
        return "";
    }
    const std::string value = kvl::parseVendorItem(file);
    trace.detail("infs[%d] = [%s]", item, value.c_str());
    trace.leave();
    return value;
}

void CNetworkParameter::SetVendorDependInfo(std::string ifname, int item, std::string value) {
    const kvl::OperationTrace trace(module_name,
                                    "void CNetworkParameter::SetVendorDependInfo(std::string, int, std::string)");
    trace.enter();
    const std::string moduleDirectory = storeRoot() + "/" + module_name;
    for (const std::string& directory : {storeRoot(), moduleDirectory}) {
        if (!CFileUtility::CreateFolder(directory)) {
            trace.error("Failed to create [%s]", directory.c_str());
            return;
        }
    }
    const std::string path = itemPath(moduleDirectory, ifname, item);
    if (!CCommon_Information::RetryDeleteFile(path)) {
        trace.error("Failed to delete File [%s]", path.c_str());
    }
    std::ofstream file(path, std::ios::app);
    if (!file.is_open()) {
        trace.error("Failed to open File [%s]", path.c_str());
        return;
    }
    file << value;
    file.close();
    trace.leave();
}
