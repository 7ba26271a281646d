#ifndef KVL_PROVIDER_LIBRARY_LAN_COLLECTION_H
#define KVL_PROVIDER_LIBRARY_LAN_COLLECTION_H

#include <functional>
#include <list>
#include <string>
#include <vector>

#include "collector/CNetworkParameter.h"
#include "lan_report/CLanXmlWriter.h"

namespace kvl::provider {

/// Has the writer add a section to the report.
using AddSection = void (CLanXmlWriter::*)();

/// What a report is about.
struct LanSelection {
    std::list<std::string> vendors;    ///< PCI vendors, without "0x"; empty: all that are found
    std::vector<int> skippedGroups;    ///< numbers of ethtool groups, as the collector knows them
    std::vector<AddSection> sections;  ///< in the order of the report
    std::string module = "kvl";
};

/// The library's calls for one LAN report, in the order that it asks for.
class LanCollection {
public:
    /// Runs the first command.
    explicit LanCollection(const LanSelection& selection);

    /// Collects everything.
    /// @param foundInterfaces  is given the interfaces, in the order in which their drivers are asked next
    /// @return false if no interface was found; the rest isn't collected then
    bool collect(const std::function<void(const std::vector<std::string>&)>& foundInterfaces);

    /// Finds the vendors, if none was named, and writes the chosen sections to a file.
    /// @return false if it couldn't be written
    bool write(const std::string& file);

    /// The vendors that the report is about, each once.
    const std::list<std::string>& vendors() const { return vendors_; }

private:
    std::list<std::string> findVendors();

    const LanSelection& selection_;
    CNetworkParameter collector_;
    std::list<std::string> vendors_;
};

}  // namespace kvl::provider

#endif
