#include <array>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_trace.h"
#include "adapter/catalogue_parser.h"
#include "foundation/boundary_trace.h"
#include "foundation/text.h"
#include "host/CFileUtility.h"
#include "host/CStringUtil.h"
#include "host/HostFunctions.h"

using kvl::AdapterTrace;

namespace {

constexpr const char* kCnaCatalogue = "CnaVCFac.ini";
constexpr const char* kFcCatalogue = "FcVCFac.ini";
constexpr const char* kSection = "SuportDevice";

/// @param name  of a catalogue file in the install directory
kvl::CatalogueValues catalogueValues(const char* name) {
    const std::string path = CFileUtility::GetInstallPath(0) + "/" + name;
    kvl::CatalogueValues values;
    values.number = [path](const std::string& key) {
        return static_cast<long>(GetPrivateProfileIntA(kSection, key.c_str(), 0, path.c_str()));
    };
    values.text = [path](const std::string& key) {
        std::array<char, 256> buffer{};
        GetPrivateProfileStringA(kSection, key.c_str(), "", buffer.data(), buffer.size(), path.c_str());
        return std::string(buffer.data());
    };
    return values;
}

}  // namespace

std::string CONVERT_DEVID(std::string DeviceID) {
    CStringUtil::strReplace(DeviceID, "/", "_");
    return DeviceID;
}

bool CEmulexCommon::GetDeviceIdList(std::string iniFile, std::list<std::string>* list0, std::list<std::string>* list2,
                                    std::list<std::string>* list4, std::list<std::string>* fcList,
                                    std::string moduleName) {
    const kvl::BoundaryTrace trace(moduleName, "CEmulexCommon::GetDeviceIdList()");
    if (kvl::holds(iniFile, kCnaCatalogue)) {
        kvl::listCnaDevices(catalogueValues(kCnaCatalogue), list0, list2, list4);
    } else if (kvl::holds(iniFile, kFcCatalogue)) {
        kvl::listFcDevices(catalogueValues(kFcCatalogue), fcList);
    }
    return true;
}

bool CEmulexCommon::GetVenDevIdList(std::string iniFile, std::list<std::string>* list0,
                                    std::list<std::string>* /*list2*/, std::list<std::string>* /*list4*/,
                                    std::list<std::string>* fcList, std::string moduleName) {
    const kvl::BoundaryTrace trace(moduleName, "CEmulexCommon::GetVenDevIdList()");
    if (kvl::holds(iniFile, kCnaCatalogue)) {
        kvl::listCnaHardware(catalogueValues(kCnaCatalogue), list0);
    } else if (kvl::holds(iniFile, kFcCatalogue)) {
        kvl::listFcHardware(catalogueValues(kFcCatalogue), fcList);
    }
    return true;
}

bool CEmulexCommon::GetVenderIdList(std::list<std::string>* list, std::string moduleName) {
    // kept: the start line goes to the module "cna", the end line to the caller's.
    AdapterTrace("cna").boundary("CEmulexCommon::GetVenderIdList() [START]");
    kvl::listCnaVendors(catalogueValues(kCnaCatalogue), list);
    AdapterTrace(moduleName).boundary("CEmulexCommon::GetVenderIdList() [END]");
    return true;
}
