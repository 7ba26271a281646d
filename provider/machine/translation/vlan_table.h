#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_VLAN_TABLE_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_VLAN_TABLE_H

#include <string>

namespace kvl::provider {

/// /proc/net/vlan/config. A name of 15 characters touches the bar, "averylongname15| 4094  | eth4", in every kernel;
/// the library counts the words of the table, and reads wrong rows from there on. Such a bar gets a blank before it.
std::string translateVlanTable(const std::string& file);

}  // namespace kvl::provider

#endif
