#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_list_parser.h"
#include "adapter/adapter_record.h"
#include "adapter/error_codes.h"
#include "adapter/report_file.h"
#include "adapter/working_tree.h"
#include "foundation/CCommon_Information.h"

using kvl::AdapterRecord;
using kvl::AdapterTrace;
using kvl::ReportFile;

namespace {

bool readRecords(std::list<AdapterRecord>& records, const std::string& moduleName) {
    const auto lookup = [&moduleName](const std::string& keys, unsigned int port, kvl::KeyValue& result) {
        return CEmulexCommon::GetKeyValueFromFile_(kvl::adapterListFile(), keys, ":", result, moduleName, port);
    };
    if (!kvl::parseAdapterList(lookup, records)) {
        return false;
    }
    if (records.empty()) {
        CEmulexCommon::SetLastError(kvl::kNoAdapters);
    }
    return !records.empty();
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
    kvl::PciLocation location;
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
    const int functions = kvl::functionsPerDevice(listFile.lines(), location.bus,
                                                  [&trace] { trace.flow("[%s] is finded", "PCI Bus Number"); });
    const AdapterRecord* found = kvl::findAdapter(records, location, functions);
    if (found == nullptr) {
        SetLastError(kvl::kNoSuchAdapter);
        return end(false);
    }
    *info = *found;
    return end(true);
}
