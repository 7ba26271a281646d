#ifndef KVL_ADAPTER_ADAPTER_RECORD_H
#define KVL_ADAPTER_ADAPTER_RECORD_H

#include <map>
#include <string>

// For providers too: constants, and functions that use only their arguments. Any thread may call; nothing blocks.

namespace kvl {

/// What the adapter list says about one port, by key.
using AdapterRecord = std::map<std::string, std::string>;

// What the list calls the address of a port.
constexpr const char* kMacKey = "Permanent MAC";
constexpr const char* kWwnKey = "Port WWN";

/// @return the value of a key, empty if the record lacks it
inline std::string valueOf(const AdapterRecord& record, const std::string& key) {
    const auto found = record.find(key);
    return found != record.end() ? found->second : "";
}

/// @return true for a port that has a WWN; any other has a MAC address
inline bool hasWorldWideName(const AdapterRecord& record) {
    const std::string type = valueOf(record, "Port Type");
    return type == "FCoE" || type == "FC";
}

}  // namespace kvl

#endif
