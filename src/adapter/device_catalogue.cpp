#include <array>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_trace.h"
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
constexpr std::string::size_type kPrefixLength = 4;
constexpr std::string::size_type kLastDigit = 7;  // of the device number, counted in the field

std::string without(std::string text, std::string::size_type length) {
    return text.erase(0, length);
}

/// One catalogue file in the install directory.
class Catalogue {
public:
    explicit Catalogue(const char* name) : path_(CFileUtility::GetInstallPath(0) + "/" + name) {}

    /// How many entries there are; not above 0 for none. They count from 1.
    long size() const { return GetPrivateProfileIntA(kSection, "SuportDeviceNum", 0, path_.c_str()); }
    std::string vendor(long entry) const { return value("Vendor", entry); }
    std::string device(long entry) const { return value("Device", entry); }

private:
    std::string value(const char* name, long entry) const {
        const std::string key = name + std::to_string(entry);
        std::array<char, 256> buffer{};
        GetPrivateProfileStringA(kSection, key.c_str(), "", buffer.data(), buffer.size(), path_.c_str());
        return buffer.data();
    }

    std::string path_;
};

bool isFcVendor(const std::string& vendorNumber) {
    return vendorNumber == "10DF";
}

bool isCnaVendor(const std::string& vendorNumber) {
    return vendorNumber == "19A2" || vendorNumber == "10DF";
}

std::string hardwareId(const std::string& vendor, const std::string& device) {
    return "PCI\\" + vendor + "&" + device;
}

void listCnaDevices(std::list<std::string>* list0, std::list<std::string>* list2, std::list<std::string>* list4) {
    const Catalogue catalogue(kCnaCatalogue);
    const long size = catalogue.size();
    for (long entry = 1; entry <= size; ++entry) {
        const std::string device = catalogue.device(entry);
        const std::string lastDigit = without(device, kLastDigit);
        const std::string number = without(device, kPrefixLength);
        if (lastDigit == "0") {
            list0->push_back(number);
        } else if (lastDigit == "2") {
            list2->push_back(number);
        } else if (lastDigit == "4") {
            list4->push_back(number);
        }
    }
}

void listFcDevices(std::list<std::string>* fcList) {
    const Catalogue catalogue(kFcCatalogue);
    const long size = catalogue.size();
    for (long entry = 1; entry <= size; ++entry) {
        if (isFcVendor(without(catalogue.vendor(entry), kPrefixLength))) {
            // kept: with the prefix, unlike the numbers of the other catalogue.
            fcList->push_back(catalogue.device(entry));
        }
    }
}

void listCnaHardware(std::list<std::string>* list0) {
    const Catalogue catalogue(kCnaCatalogue);
    const long size = catalogue.size();
    for (long entry = 1; entry <= size; ++entry) {
        const std::string vendor = catalogue.vendor(entry);
        if (!isCnaVendor(without(vendor, kPrefixLength))) {
            continue;
        }
        const std::string device = catalogue.device(entry);
        // kept: devices whose number ends in 2 or 4 are left out.
        if (without(device, kLastDigit) == "0") {
            list0->push_back(hardwareId(vendor, device));
        }
    }
}

void listFcHardware(std::list<std::string>* fcList) {
    const Catalogue catalogue(kFcCatalogue);
    const long size = catalogue.size();
    for (long entry = 1; entry <= size; ++entry) {
        const std::string vendor = catalogue.vendor(entry);
        if (isFcVendor(without(vendor, kPrefixLength))) {
            fcList->push_back(hardwareId(vendor, catalogue.device(entry)));
        }
    }
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
        listCnaDevices(list0, list2, list4);
    } else if (kvl::holds(iniFile, kFcCatalogue)) {
        listFcDevices(fcList);
    }
    return true;
}

bool CEmulexCommon::GetVenDevIdList(std::string iniFile, std::list<std::string>* list0,
                                    std::list<std::string>* /*list2*/, std::list<std::string>* /*list4*/,
                                    std::list<std::string>* fcList, std::string moduleName) {
    const kvl::BoundaryTrace trace(moduleName, "CEmulexCommon::GetVenDevIdList()");
    if (kvl::holds(iniFile, kCnaCatalogue)) {
        listCnaHardware(list0);
    } else if (kvl::holds(iniFile, kFcCatalogue)) {
        listFcHardware(fcList);
    }
    return true;
}

bool CEmulexCommon::GetVenderIdList(std::list<std::string>* list, std::string moduleName) {
    // kept: the start line goes to the module "cna", the end line to the caller's.
    AdapterTrace("cna").boundary("CEmulexCommon::GetVenderIdList() [START]");
    const Catalogue catalogue(kCnaCatalogue);
    const long size = catalogue.size();
    for (long entry = 1; entry <= size; ++entry) {
        const std::string vendorNumber = without(catalogue.vendor(entry), kPrefixLength);
        if (isCnaVendor(vendorNumber)) {
            list->push_back(vendorNumber);
        }
    }
    AdapterTrace(moduleName).boundary("CEmulexCommon::GetVenderIdList() [END]");
    return true;
}
