#ifndef KVL_ADAPTER_ADAPTER_LIST_PARSER_H
#define KVL_ADAPTER_ADAPTER_LIST_PARSER_H

#include <functional>
#include <list>
#include <string>

#include "adapter/adapter_record.h"
#include "adapter/report_lines.h"
#include "adapter/report_parser.h"

namespace kvl {

/// Where a device sits on the PCI bus.
struct PciLocation {
    int bus = -1;
    int device = -1;
    int function = -1;
};

/// Reads the value of one of the keys for the port with this number, counted from 0, as `findKeyValue` does.
/// @return false if the list can't be read
using AdapterListLookup = std::function<bool(const std::string& keys, unsigned int port, KeyValue& result)>;

/// Parses the output of `hbacmd listhbas` into one record per port, up to the first key that the list lacks. The nth
/// occurrence of a key belongs to the nth port.
/// @param lookup   is asked for each key of each port, in order
/// @param records  appended to; keeps the records made before a failure
/// @return false if a lookup failed
bool parseAdapterList(const AdapterListLookup& lookup, std::list<AdapterRecord>& records);

/// Counts the functions that the list has for each device of a bus: two, or eight where it shows a function above 7.
/// @param foundBus  called for each line of a bus number
/// @throws std::out_of_range "basic_string::substr" for a bus or function line of under 17 characters
int functionsPerDevice(ReportLines list, int bus, const std::function<void()>& foundBus);

/// @param functions  how many of them a device has
/// @return the first record with this location; null if there is none
const AdapterRecord* findAdapter(const std::list<AdapterRecord>& records, const PciLocation& location, int functions);

}  // namespace kvl

#endif
