#include "provider/machine/translation/network_manager_keyfile.h"

#include <SimpleIni.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>

#include "provider/machine/translation/line_ends.h"
#include "provider/machine/translation/text_lines.h"

namespace kvl::provider {
namespace {

constexpr const char* kDefaultMethod = "auto";

/// A keyfile of GLib. SimpleIni, which this project uses already, reads lines as GLib does: names are case-sensitive, a
/// later value wins, groups of one name are one, no comment follows a value. It differs in a line that begins with ";",
/// which is a comment to it and a key of that spelling to GLib: neither is looked for here. GLib's escapes are left to
/// this class.
class Keyfile {
public:
    explicit Keyfile(const std::string& text) {
        // SimpleIni reads a line without a key or value as none, so nothing but the lack of memory can fail.
        values_.LoadData(text);
    }

    bool hasGroup(const char* group) const { return values_.GetSection(group) != nullptr; }

    /// @return the value; an empty text without one
    std::string value(const char* group, const char* key) const {
        const char* const value = values_.GetValue(group, key);
        return value != nullptr ? unescaped(value) : "";
    }

    /// @return the first value that there is of a key with several names
    template <std::size_t kCount>
    std::string value(const std::array<const char*, kCount>& groups, const std::array<const char*, 2>& keys) const {
        for (const char* const group : groups) {
            for (const char* const key : keys) {
                const std::string found = value(group, key);
                if (!found.empty()) {
                    return found;
                }
            }
        }
        return "";
    }

private:
    static std::string unescaped(const std::string& value) {
        static const std::string kLetters = "sntr\\";
        static const std::string kMeanings = " \n\t\r\\";
        std::string text;
        for (std::string::size_type position = 0; position < value.size(); ++position) {
            const auto letter = value[position] == '\\' && position + 1 < value.size()
                                    ? kLetters.find(value[position + 1])
                                    : std::string::npos;
            text += letter == std::string::npos ? value[position] : kMeanings[letter];
            position += letter == std::string::npos ? 0 : 1;
        }
        return text;
    }

    CSimpleIniCaseA values_;
};

/// The names of the group of an Ethernet interface and of the port's bond, the older ones last.
constexpr std::array<const char*, 2> kEthernet = {"ethernet", "802-3-ethernet"};
constexpr std::array<const char*, 2> kMacAddress = {"mac-address", "mac-address"};
constexpr std::array<const char*, 2> kClonedMacAddress = {"cloned-mac-address", "assigned-mac-address"};
constexpr std::array<const char*, 1> kConnection = {"connection"};
constexpr std::array<const char*, 2> kController = {"controller", "master"};
constexpr std::array<const char*, 2> kPortType = {"port-type", "slave-type"};
constexpr std::array<const char*, 2> kIpGroups = {"ipv4", "ipv6"};

std::vector<std::string> piecesOf(const std::string& list, const std::string& separators) {
    std::vector<std::string> pieces;
    for (auto begin = list.find_first_not_of(separators); begin != std::string::npos;) {
        const auto end = list.find_first_of(separators, begin);
        pieces.push_back(list.substr(begin, end - begin));
        begin = list.find_first_not_of(separators, end);
    }
    return pieces;
}

bool isHexPair(const std::string& text) {
    return text.size() == 2 &&
           std::all_of(text.begin(), text.end(), [](unsigned char character) { return std::isxdigit(character) != 0; });
}

bool isMacAddress(const std::string& text) {
    const std::vector<std::string> pairs = piecesOf(text, ":");
    return text.size() == 17 && pairs.size() == 6 && std::all_of(pairs.begin(), pairs.end(), isHexPair);
}

/// NetworkManager before 1.0 wrote an address as a list of its bytes in decimal, "0;27;33;1;2;3;".
std::string fromBytes(const std::string& list) {
    std::string address;
    for (const std::string& byte : piecesOf(list, ";")) {
        const bool isByte = byte.size() <= 3 && byte.find_first_not_of("0123456789") == std::string::npos;
        if (!isByte || std::stoi(byte) > 0xff) {
            return "";
        }
        std::array<char, 4> pair{};
        std::snprintf(pair.data(), pair.size(), "%02X", static_cast<unsigned int>(std::stoi(byte)));
        address += (address.empty() ? "" : ":") + std::string(pair.data());
    }
    return isMacAddress(address) ? address : "";
}

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char character) { return static_cast<char>(std::toupper(character)); });
    return text;
}

/// @return the address in capitals; a word such as "random" as it is
std::string plainMacAddress(const std::string& value) {
    if (isMacAddress(value)) {
        return upper(value);
    }
    const std::string address = fromBytes(value);
    return address.empty() ? value : address;
}

/// GLib's word for true is "true", and in old files 1; NetworkManager takes anything else but these for the default.
bool isFalse(const std::string& value) {
    return value == "false" || value == "0";
}

std::string methodOf(const Keyfile& file, const char* group, bool isPort) {
    const std::string method = file.value(group, "method");
    if (!method.empty()) {
        return method;
    }
    // A port of a bond or bridge has no addresses; another connection that does not say gets the default.
    return isPort ? "disabled" : kDefaultMethod;
}

/// @return the gateway, which older files have as a part of the address: "address1=2001:db8::5/64,2001:db8::1"
std::string gatewayOf(const Keyfile& file, const char* group) {
    const std::string gateway = file.value(group, "gateway");
    if (!gateway.empty()) {
        return gateway;
    }
    const std::vector<std::string> parts = piecesOf(file.value(group, "address1"), ",");
    return parts.size() > 1 ? trimmed(parts[1]) : "";
}

std::string currentType(const std::string& type) {
    return type == kEthernet[1] ? kEthernet[0] : type;
}

/// A line break in a value would begin a line of its own in the ifcfg file.
std::string line(const char* key, const std::string& value) {
    const bool fits = !value.empty() && value.find_first_of(" \t\r\n\"'\\$`;&|#=") == std::string::npos;
    return fits ? std::string(key) + "=" + value + "\n" : "";
}

}  // namespace

std::optional<KeyfileConnection> readKeyfile(const std::string& file) {
    const Keyfile keyfile(withoutCarriageReturns(file));
    if (!keyfile.hasGroup("connection")) {
        return std::nullopt;
    }
    KeyfileConnection connection;
    connection.id = keyfile.value("connection", "id");
    connection.uuid = keyfile.value("connection", "uuid");
    connection.type = currentType(keyfile.value("connection", "type"));
    connection.interfaceName = keyfile.value("connection", "interface-name");
    connection.controller = keyfile.value(kConnection, kController);
    connection.autoconnect = !isFalse(keyfile.value("connection", "autoconnect"));
    connection.macAddress = plainMacAddress(keyfile.value(kEthernet, kMacAddress));
    connection.clonedMacAddress = plainMacAddress(keyfile.value(kEthernet, kClonedMacAddress));
    // Only a port of a VRF keeps addresses of its own.
    const bool isPort = !connection.controller.empty() && keyfile.value(kConnection, kPortType) != "vrf";
    connection.ipv4Method = methodOf(keyfile, "ipv4", isPort);
    connection.ipv6Method = methodOf(keyfile, "ipv6", isPort);
    connection.ipv6Gateway = gatewayOf(keyfile, "ipv6");
    for (const char* const group : kIpGroups) {
        for (const std::string& server : piecesOf(keyfile.value(group, "dns"), ";, ")) {
            connection.dns.push_back(server);
        }
        for (const std::string& domain : piecesOf(keyfile.value(group, "dns-search"), ";, ")) {
            connection.dnsSearch.push_back(domain);
        }
    }
    connection.vlanParent = keyfile.value("vlan", "parent");
    connection.vlanId = keyfile.value("vlan", "id");
    return connection;
}

std::string translateKeyfile(const std::string& file) {
    const auto connection = readKeyfile(file);
    if (!connection) {
        return withoutCarriageReturns(file);
    }
    const bool setsAddress = isMacAddress(connection->clonedMacAddress);
    return line("DEVICE", connection->interfaceName) + line("ONBOOT", connection->autoconnect ? "yes" : "no") +
           line("BOOTPROTO", connection->ipv4Method == kDefaultMethod ? "dhcp" : "none") +
           line("HWADDR", connection->macAddress) + line("MACADDR", setsAddress ? connection->clonedMacAddress : "") +
           line("IPV6_DEFAULTGW", connection->ipv6Gateway);
}

}  // namespace kvl::provider
