#include "provider/library/lan_collection.h"

#include <algorithm>

namespace kvl::provider {
namespace {

void addOnce(std::list<std::string>& list, const std::string& text) {
    if (!text.empty() && std::find(list.begin(), list.end(), text) == list.end()) {
        list.push_back(text);
    }
}

}  // namespace

LanCollection::LanCollection(const LanSelection& selection) : selection_(selection), collector_(selection.module) {}

bool LanCollection::collect(const std::function<void(const std::vector<std::string>&)>& foundInterfaces) {
    for (const int group : selection_.skippedGroups) {
        collector_.DisableEthtoolOption(group);
    }
    strarray_t interfaces;
    collector_.GetNetworkConfigurations();
    collector_.GetInterfaceNameList(interfaces);
    if (interfaces.empty()) {
        return false;
    }
    foundInterfaces(interfaces);
    collector_.GetEtherConfigurations();
    collector_.GetBondingConfifurations();
    collector_.GetRoutingConfigurations();
    return true;
}

bool LanCollection::write(const std::string& file) {
    vendors_ = selection_.vendors.empty() ? findVendors() : selection_.vendors;
    CLanXmlWriter writer(vendors_, &collector_, selection_.module);
    for (const AddSection add : selection_.sections) {
        (writer.*add)();
    }
    return writer.Write(file);
}

std::list<std::string> LanCollection::findVendors() {
    std::list<std::string> found;
    std::string port;
    for (int index = 1; collector_.GetPhysicalDev(index, port); ++index) {
        std::string vendor;
        collector_.GetVendorID(port, vendor);
        addOnce(found, vendor);
    }
    return found;
}

}  // namespace kvl::provider
