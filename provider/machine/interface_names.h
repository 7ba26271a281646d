#ifndef KVL_PROVIDER_MACHINE_INTERFACE_NAMES_H
#define KVL_PROVIDER_MACHINE_INTERFACE_NAMES_H

#include <functional>
#include <map>
#include <set>
#include <string>

namespace kvl::provider {

/// The kernel takes almost any bytes as the name of an interface, among them those that make a shell run a command. The
/// library puts names into shell lines. So a name that a shell would take apart gets a stand-in of the same shape, with
/// "_" for each such byte, before the library sees it; the library then knows the interface by that.
class InterfaceNames {
public:
    /// Makes a name known, with a stand-in if it needs one. Names that are to be told apart should be made known
    /// together, before the text that holds them is translated.
    void add(const std::set<std::string>& names);

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
    std::string freeStandIn(const std::string& name) const;

    std::map<std::string, std::string> standIns_;   // by the machine's name
    std::map<std::string, std::string> realNames_;  // by the stand-in
    std::set<std::string> known_;                   // of the machine
};

}  // namespace kvl::provider

#endif
