#ifndef KVL_PROVIDER_LIBRARY_ADAPTER_INVENTORY_H
#define KVL_PROVIDER_LIBRARY_ADAPTER_INVENTORY_H

#include <list>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "provider/commands/adapter_words.h"
#include "provider/library/adapter_failure.h"
#include "provider/run/adapter_session.h"

namespace kvl::provider {

/// A port as the adapter tool lists it. Texts are as the tool prints them, empty where it tells nothing.
struct Adapter {
    std::string device;  ///< PCI location, by which the library finds the port; empty if there is none
    std::string family;
    std::string address;
    std::string type;
    std::string portNumber;
    std::string bus;       ///< decimal
    std::string function;  ///< decimal, as the tool counts
    std::string serial;
    bool isWhole = true;  ///< false if the tool's list lacks a line of the port
};

/// A version, or why there is none.
struct VersionAnswer {
    std::string version;
    std::optional<Failure> failure;
};

using NamesAndValues = std::list<std::pair<std::string, std::string>>;

/// The library's inventory calls, in the order that it asks for. What fails throws AdapterFailure.
class AdapterInventory {
public:
    /// Makes the working tree.
    explicit AdapterInventory(AdapterSession& session);

    /// Has the tool write the list of the ports, which all other calls read.
    void refreshList() const;

    /// The ports of the list, in its order.
    std::vector<Adapter> ports() const;

    /// The family of the port at a location.
    std::string familyOf(const std::string& device) const;

    /// What describes a port to an operator, as far as it can be had.
    /// @param missing  receives what can't be had; nothing if all can
    NamesAndValues describePort(const std::string& device, std::optional<Failure>& missing) const;

    /// The version of a port's module: from its dump in the cache, or where there is none, from a new one.
    /// @param refresh  makes a new dump in any case
    VersionAnswer version(const std::string& device, const ModuleKind& kind, bool refresh,
                          const std::string& family) const;

    using Record = std::map<std::string, std::string>;

    /// What the list tells of the port at a location, by the tool's own keys.
    Record find(const std::string& device, const std::string& family) const;

private:
    Failure commandFailure() const;
    std::vector<Record> readList() const;
    void checkAddress(const std::string& device, const std::string& family) const;

    AdapterSession& session_;
};

}  // namespace kvl::provider

#endif
