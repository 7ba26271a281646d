#include <cstdlib>

#include "foundation/CCommon_Information.h"
#include "foundation/boundary_trace.h"
#include "host/CTraceUtility.h"

namespace {

constexpr int kHexadecimal = 16;
constexpr int kNoNumber = -1;

/// Takes a number off the front of a text. A token without a digit counts as 0.
/// @return false if the token is empty
bool takeNumber(std::string* text, char separator, int* number) {
    const std::string token = CCommon_Information::MyStrTok(text, separator);
    *number = static_cast<int>(std::strtoul(token.c_str(), nullptr, kHexadecimal));
    return !token.empty();
}

}  // namespace

bool CCommon_Information::GetPCIInfo(std::string DeviceID, int* pciNo, int* devNo, int* funcNo,
                                     const std::string& moduleName) {
    const kvl::BoundaryTrace trace(moduleName, "CCommon_Information::GetPCIInfo");
    if (takeNumber(&DeviceID, ':', pciNo) && takeNumber(&DeviceID, '.', devNo) && takeNumber(&DeviceID, '-', funcNo)) {
        // kept: only the rest of the DeviceID is printed as the DeviceID.
        CTraceUtility::WriteDebug(moduleName.c_str(), TRACE_DBG_FLOW,
                                  "CCommon_Information::GetPCIInfo DeviceID=%s, PCINo=%d, DevNo=%d, FuncNo=%d",
                                  DeviceID.c_str(), *pciNo, *devNo, *funcNo);
        return true;
    }
    *pciNo = *devNo = *funcNo = kNoNumber;
    return false;
}

int CCommon_Information::GetPCISlotNo(std::string DeviceID, const std::string& moduleName) {
    const kvl::BoundaryTrace trace(moduleName, "CCommon_Information::GetPCISlotNo");
    const std::string token = MyStrTok(&DeviceID, ':');
    if (token.empty() || DeviceID.empty()) {
        return kNoNumber;
    }
    char* end = nullptr;
    const int number = static_cast<int>(std::strtoul(token.c_str(), &end, kHexadecimal));
    return end == token.c_str() || number < 0 ? kNoNumber : number;
}
