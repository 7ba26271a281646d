#include "provider/machine/interface_survey.h"

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "provider/machine/command_output.h"

namespace kvl::provider {
namespace {

namespace fs = std::filesystem;

constexpr const char* kBonds = "/proc/net/bonding";
constexpr const char* kVlans = "/proc/net/vlan/config";
constexpr const char* kInterfaces = "/sys/class/net/";

std::set<std::string> bonds() {
    std::set<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(kBonds, error), end; !error && entry != end; entry.increment(error)) {
        names.insert(entry->path().filename().string());
    }
    return names;
}

/// The first column of the kernel's table, up to its bar. Its two lines of headings name no interface.
std::set<std::string> vlans() {
    std::set<std::string> names;
    std::ifstream table(kVlans);
    for (std::string line; std::getline(table, line);) {
        const std::string column = line.substr(0, line.find('|'));
        names.insert(column.substr(0, column.find_last_not_of(' ') + 1));
    }
    return names;
}

/// The interfaces of `ifconfig -a`, and whether each is an Ethernet interface.
std::map<std::string, bool> interfacesIn(const std::string& output) {
    std::map<std::string, bool> interfaces;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.front() != ' ') {
            interfaces[line.substr(0, line.find_first_of(" \t\r"))] = line.find("encap:Ethernet") != std::string::npos;
        }
    }
    return interfaces;
}

bool hasPciDevice(const std::string& name, const std::function<std::string(const std::string&)>& askForDriver) {
    std::error_code error;
    if (fs::exists(kInterfaces + name, error)) {
        return !pciAddressOf(name).empty();
    }
    return isPciAddress(busInfoIn(askForDriver(name)));
}

}  // namespace

std::string pciAddressOf(const std::string& interface) {
    std::error_code error;
    fs::path device = fs::canonical(kInterfaces + interface + "/device", error);
    for (; !error && device.has_relative_path(); device = device.parent_path()) {
        if (isPciAddress(device.filename().string())) {
            return device.filename().string();
        }
    }
    return "";
}

std::map<std::string, InterfaceRole> surveyInterfaces(
    const std::string& output, const std::function<std::string(const std::string& name)>& askForDriver) {
    const std::set<std::string> bondNames = bonds();
    const std::set<std::string> vlanNames = vlans();
    std::map<std::string, InterfaceRole> roles;
    for (const auto& [name, isEthernet] : interfacesIn(output)) {
        InterfaceRole& role = roles[name] = InterfaceRole::kOther;
        if (bondNames.count(name) > 0) {
            role = InterfaceRole::kBond;
        } else if (vlanNames.count(name) > 0) {
            role = InterfaceRole::kVlan;
        } else if (isEthernet && name.find(':') == std::string::npos && hasPciDevice(name, askForDriver)) {
            role = InterfaceRole::kPort;
        }
    }
    return roles;
}

}  // namespace kvl::provider
