#include <algorithm>
#include <array>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_record.h"
#include "adapter/error_codes.h"
#include "adapter/report_file.h"
#include "adapter/working_tree.h"
#include "foundation/CCommon_Information.h"
#include "foundation/text.h"
#include "host/CStringUtil.h"

using kvl::AdapterRecord;
using kvl::AdapterTrace;
using kvl::holds;
using kvl::ReportFile;

namespace {

constexpr const char* kBusKey = "PCI Bus Number";
constexpr const char* kFunctionKey = "PCI Function";
constexpr std::array<const char*, 6> kRecordKeys = {
    "Port WWN|Permanent MAC", "Port Number", kBusKey, kFunctionKey, "Port Type", "Serial No.",
};

constexpr std::string::size_type kValueColumn = 17;
constexpr int kFewFunctions = 2;
constexpr int kManyFunctions = 8;
constexpr long kLastOfMany = 7;

/// Reads the record of the port with this number, counted from 0, up to the first key that the file lacks.
/// @return false if the file can't be opened
bool readRecord(unsigned int port, AdapterRecord& record, const std::string& moduleName) {
    for (const char* keys : kRecordKeys) {
        std::pair<std::string, std::string> keyValue;
        if (!CEmulexCommon::GetKeyValueFromFile_(kvl::adapterListFile(), keys, ":", keyValue, moduleName, port)) {
            return false;
        }
        if (keyValue.first.empty()) {
            return true;
        }
        record.insert(keyValue);
    }
    return true;
}

bool readRecords(std::list<AdapterRecord>& records, const std::string& moduleName) {
    for (unsigned int port = 0;; ++port) {
        AdapterRecord record;
        if (!readRecord(port, record, moduleName)) {
            return false;
        }
        if (record.empty()) {
            break;
        }
        records.push_back(record);
    }
    if (records.empty()) {
        CEmulexCommon::SetLastError(kvl::kNoAdapters);
    }
    return !records.empty();
}

long numberAt(const std::string& line, std::string::size_type length) {
    return CStringUtil::TStringToNumber(kvl::cut(line, kValueColumn, length));
}

/// @return how many functions `hbacmd` counts for each device of a bus
int functionsPerDevice(ReportFile& list, int bus, const AdapterTrace& trace) {
    std::string line;
    while (list.readLine(line)) {
        if (!holds(line, kBusKey)) {
            continue;
        }
        trace.flow("[%s] is finded", kBusKey);
        // kept: one character, so bus 12 reads as 1.
        if (numberAt(line, 1) != bus) {
            continue;
        }
        list.readLine(line);  // at the end of the file the line stays as it is
        if (holds(line, kFunctionKey) && numberAt(line, 2) > kLastOfMany) {
            return kManyFunctions;
        }
    }
    return kFewFunctions;
}

struct PciLocation {
    int bus = -1;
    int device = -1;
    int function = -1;
};

/// @return false if no record has this location
bool findRecord(const std::list<AdapterRecord>& records, const PciLocation& location, int functions,
                AdapterRecord* found) {
    const std::string bus = CStringUtil::NumberToTString(location.bus);
    const std::string function =
        CStringUtil::NumberToTString(static_cast<long>(functions) * location.device + location.function);
    const auto record = std::find_if(records.begin(), records.end(), [&](const AdapterRecord& candidate) {
        return kvl::valueOf(candidate, kBusKey) == bus && kvl::valueOf(candidate, kFunctionKey) == function;
    });
    if (record == records.end()) {
        CEmulexCommon::SetLastError(kvl::kNoSuchAdapter);
        return false;
    }
    *found = *record;
    return true;
}

}  // namespace

bool CEmulexCommon::GetHBAInfoList(std::list<std::map<std::string, std::string>>* list, std::string moduleName) {
    const AdapterTrace trace(moduleName);
    trace.flow("CEmulexCommon::GetHBAInfoList() [START]");
    bool isRead = false;
    if (list == nullptr) {
        SetLastError(kvl::kInvalidArgument);
    } else {
        list->clear();
        isRead = readRecords(*list, moduleName);
    }
    trace.flow("CEmulexCommon::GetHBAInfoList() [END]");
    return isRead;
}

bool CEmulexCommon::GetHBAInfo(std::string DeviceID, std::map<std::string, std::string>* info, std::string moduleName) {
    const AdapterTrace trace(moduleName);
    trace.flow("CEmulexCommon::GetHBAInfo() [START]");
    const auto end = [&trace](bool result) {
        trace.flow("CEmulexCommon::GetHBAInfo() [END]");
        return result;
    };
    if (info == nullptr) {
        SetLastError(kvl::kInvalidArgument);
        return end(false);
    }
    info->clear();
    std::list<AdapterRecord> records;
    if (!GetHBAInfoList(&records, moduleName)) {
        return end(false);
    }
    PciLocation location;
    if (!CCommon_Information::GetPCIInfo(DeviceID, &location.bus, &location.device, &location.function, moduleName)) {
        SetLastError(kvl::kBadDeviceId);
        return end(false);
    }
    ReportFile listFile(kvl::adapterListFile());
    if (!listFile.isOpen()) {
        listFile.reportFailure(trace);
        // kept: this one end line is of another level than the others.
        trace.boundary("CEmulexCommon::GetHBAInfo() [END]");
        return false;
    }
    const int functions = functionsPerDevice(listFile, location.bus, trace);
    return end(findRecord(records, location, functions, info));
}
