#ifndef KVL_PROVIDER_MACHINE_INTERFACE_NAMES_H
#define KVL_PROVIDER_MACHINE_INTERFACE_NAMES_H

#include <functional>
#include <map>
#include <set>
#include <string>

#include "provider/machine/interface_survey.h"

namespace kvl::provider {

/// The names by which the library knows the interfaces of the machine, where it can't know them by their own:
///
/// - The kernel takes almost any bytes as a name, among them those that make a shell run a command. The library puts
///   names into shell lines. Such a name gets a stand-in of the same shape, with "_" for each such byte.
/// - The library takes an interface for a port if its name begins with "eth" and holds neither "." nor ":". It drops
///   names that hold "lo" or "sit". A port, a bond or a VLAN whose name it would misread gets a stand-in of the form
///   that it reads, with a free number: eth2, bond0, vlan1.
class InterfaceNames {
public:
    /// Makes interfaces known, with stand-ins for the names that need one. All names that the library must distinguish
    /// should be made known together, before a text that names them is translated.
    void add(const std::map<std::string, InterfaceRole>& interfaces);

    /// @return true if every name is known to the library as it is
    bool empty() const { return realNames_.empty(); }

    /// @return the name by which the library knows the interface, or the alias of one
    std::string forLibrary(const std::string& name) const;

    /// @return the name by which the machine knows the interface, or the alias of one
    std::string forMachine(const std::string& name) const;

    /// The text with the library's names for the machine's. Words end at white space; a word "NAME:REST" that is no
    /// name itself is an alias of NAME.
    std::string textForLibrary(const std::string& text) const;

    /// The text, such as a message or a report, with the machine's names for the library's, wherever one stands that
    /// is not a part of a longer name.
    /// @param shown  gives the form in which a name of the machine may stand in that text
    std::string textForPeople(const std::string& text,
                              const std::function<std::string(const std::string&)>& shown) const;

private:
    std::string standInFor(const std::string& name, InterfaceRole role) const;
    bool isFree(const std::string& name) const;

    std::map<std::string, std::string> standIns_;   // by the machine's name
    std::map<std::string, std::string> realNames_;  // by the stand-in
    std::set<std::string> known_;                   // of the machine
};

}  // namespace kvl::provider

#endif
