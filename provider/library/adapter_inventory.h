#ifndef KVL_PROVIDER_LIBRARY_ADAPTER_INVENTORY_H
#define KVL_PROVIDER_LIBRARY_ADAPTER_INVENTORY_H

#include <list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "adapter/adapter_record.h"
#include "provider/library/adapter_failure.h"
#include "provider/library/adapter_kinds.h"
#include "provider/library/tool_commands.h"

namespace kvl::provider {

/// A port as the adapter tool lists it. Texts are as the tool prints them, empty where it prints none.
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

/// The path of the adapter tool.
/// @throws AdapterFailure if it isn't installed, or can't be executed
std::string requireTool();

/// The family of the port that a record of the list describes.
std::string familyOf(const AdapterRecord& record);

/// The library's inventory calls, in the order that it asks for. What fails throws AdapterFailure.
class AdapterInventory {
public:
    /// Makes the working tree.
    explicit AdapterInventory(Run& run);

    /// Names what the next calls are about, for the display.
    void setSubject(const std::string& subject) const { commands_.setSubject(subject); }

    /// Has the tool write the list of the ports, which all other calls read.
    void refreshList() const;

    /// The ports of the list, in its order.
    std::vector<Adapter> ports() const;

    /// The family of the port at a location.
    std::string familyOf(const std::string& device) const;

    /// What describes a port to an operator, as far as it can be read.
    /// @param missing  receives what can't be read; nothing if all can
    NamesAndValues describePort(const std::string& device, std::optional<Failure>& missing) const;

    /// The version of a port's module: from its dump in the cache, or where there is none, from a new one.
    /// @param refresh  makes a new dump in any case
    VersionAnswer version(const std::string& device, const ModuleKind& kind, bool refresh,
                          const std::string& family) const;

    /// What the list says of the port at a location, by the tool's own keys.
    AdapterRecord find(const std::string& device, const std::string& family) const;

private:
    std::vector<AdapterRecord> readList() const;
    void checkAddress(const std::string& device, const std::string& family) const;

    Run& run_;
    mutable ToolCommands commands_;
};

}  // namespace kvl::provider

#endif
