#include "adapter/adapter_list_parser.h"

#include <algorithm>
#include <array>

#include "foundation/text.h"
#include "host/CStringUtil.h"

namespace kvl {

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

/// Reads the record of one port.
/// @return false if a lookup failed
bool parseRecord(const AdapterListLookup& lookup, unsigned int port, AdapterRecord& record) {
    for (const char* keys : kRecordKeys) {
        KeyValue keyValue;
        if (!lookup(keys, port, keyValue)) {
            return false;
        }
        if (keyValue.first.empty()) {
            return true;
        }
        record.insert(keyValue);
    }
    return true;
}

long numberAt(const std::string& line, std::string::size_type length) {
    return CStringUtil::TStringToNumber(cut(line, kValueColumn, length));
}

}  // namespace

bool parseAdapterList(const AdapterListLookup& lookup, std::list<AdapterRecord>& records) {
    for (unsigned int port = 0;; ++port) {
        AdapterRecord record;
        if (!parseRecord(lookup, port, record)) {
            return false;
        }
        if (record.empty()) {
            return true;
        }
        records.push_back(record);
    }
}

int functionsPerDevice(ReportLines list, int bus, const std::function<void()>& foundBus) {
    std::string line;
    while (list.read(line)) {
        if (!holds(line, kBusKey)) {
            continue;
        }
        foundBus();
        // kept: one character, so bus 12 reads as 1.
        if (numberAt(line, 1) != bus) {
            continue;
        }
        list.read(line);  // at the end of the file the line stays as it is
        if (holds(line, kFunctionKey) && numberAt(line, 2) > kLastOfMany) {
            return kManyFunctions;
        }
    }
    return kFewFunctions;
}

const AdapterRecord* findAdapter(const std::list<AdapterRecord>& records, const PciLocation& location, int functions) {
    const std::string bus = CStringUtil::NumberToTString(location.bus);
    const std::string function =
        CStringUtil::NumberToTString(static_cast<long>(functions) * location.device + location.function);
    const auto record = std::find_if(records.begin(), records.end(), [&](const AdapterRecord& candidate) {
        return valueOf(candidate, kBusKey) == bus && valueOf(candidate, kFunctionKey) == function;
    });
    return record != records.end() ? &*record : nullptr;
}

}  // namespace kvl
