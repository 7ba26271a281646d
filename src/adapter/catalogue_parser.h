#ifndef KVL_ADAPTER_CATALOGUE_PARSER_H
#define KVL_ADAPTER_CATALOGUE_PARSER_H

#include <functional>
#include <list>
#include <string>

namespace kvl {

/// The values of a device catalogue, by key. A key that the file lacks is 0 or an empty text.
struct CatalogueValues {
    std::function<long(const std::string& key)> number;
    std::function<std::string(const std::string& key)> text;
};

// Each parser asks for the number of entries, SuportDeviceNum, and then for the fields that it needs of each entry in
// turn: Vendor1 and Device1, Vendor2 and so on. The lists are appended to. A list that no entry belongs to may be
// null.

/// Lists the device numbers of the CNA catalogue, by their last digit. Those that end in another digit are left out.
void listCnaDevices(const CatalogueValues& catalogue, std::list<std::string>* endingIn0,
                    std::list<std::string>* endingIn2, std::list<std::string>* endingIn4);

/// Lists the device fields of the FC catalogue's vendor, their prefix included.
void listFcDevices(const CatalogueValues& catalogue, std::list<std::string>* devices);

/// Lists the hardware identifiers of the CNA catalogue's vendors, as in PCI\VEN_10DF&DEV_E220, for devices whose number
/// ends in 0.
void listCnaHardware(const CatalogueValues& catalogue, std::list<std::string>* identifiers);

/// Lists the hardware identifiers of the FC catalogue's vendor.
void listFcHardware(const CatalogueValues& catalogue, std::list<std::string>* identifiers);

/// Lists the vendor numbers of the CNA catalogue's vendors, one per entry.
void listCnaVendors(const CatalogueValues& catalogue, std::list<std::string>* vendors);

}  // namespace kvl

#endif
