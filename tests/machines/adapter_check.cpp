#include "tests/machines/adapter_check.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "machines/root_layout.h"
#include "tests/machines/outside.h"
#include "tests/machines/recording_text.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kTool = "files/usr/sbin/ocmanager/hbacmd";
const std::string kState = "files/var/lib/hbacmd/";
const std::string kPorts = kState + "ports/";

// Readers take a value from this column of a line of the list.
constexpr std::size_t kValueColumn = 17;
constexpr int kFunctionsOfSmallDevice = 2;
constexpr int kFunctionsOfLargeDevice = 8;

constexpr std::array<const char*, 5> kListKeys = {"Serial No.", "Port Number", "PCI Bus Number", "PCI Function",
                                                  "Port Type"};
constexpr std::array<const char*, 2> kDumpKeys = {"Boot Bios Version", "Driver Version"};
constexpr std::array<const char*, 2> kCatalogues = {"CnaVCFac.ini", "FcVCFac.ini"};

struct Port {
    std::string name;
    std::string address;
    std::string type;
    int bus = -1;
    int function = -1;
};

std::string listLine(const std::string& key) {
    return "\n" + key + std::string(kValueColumn - 2 - key.size(), ' ') + ": ";
}

std::string listValue(const std::string& key, const std::string& list) {
    return valueBehind(listLine(key), "\n" + list);
}

std::string dumpValue(const std::string& key, const std::string& dump) {
    return valueBehind("\n" + key + ": ", "\n" + dump);
}

int numberOf(const std::string& text) {
    std::istringstream stream(text);
    int number = -1;
    stream >> number;
    return std::to_string(number) == text ? number : -1;
}

std::string upperCaseAddress(std::string text) {
    for (char& character : text) {
        character = character == '-' ? ':' : static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
    }
    return text;
}

class AdapterCheck {
public:
    explicit AdapterCheck(const std::string& recording)
        : toolLink_(fs::path(recording) / kTool), tree_(readTree(recording)) {}

    std::vector<std::string> run() {
        checkTool();
        for (const std::string& name : portNames()) {
            readPort(name);
        }
        checkTwins();
        for (const Port& port : ports_) {
            checkLocation(port);
            checkDriver(port);
            checkNetworkCard(port);
        }
        for (const char* catalogue : kCatalogues) {
            checkCatalogue(catalogue);
        }
        return faults_;
    }

private:
    void fault(const std::string& text) { faults_.push_back(text); }

    std::string textOf(const std::string& path) const {
        const auto found = tree_.find(path);
        return found == tree_.end() ? "" : found->second;
    }

    std::set<std::string> portNames() const {
        std::set<std::string> names;
        for (auto file = tree_.lower_bound(kPorts); file != tree_.end() && beginsWith(file->first, kPorts); ++file) {
            const std::string rest = file->first.substr(kPorts.size());
            names.insert(rest.substr(0, rest.find('/')));
        }
        return names;
    }

    void checkTool() {
        std::error_code none;
        const bool installed = fs::read_symlink(toolLink_, none) == machines::kAdapterToolPath;
        const auto state = tree_.lower_bound(kState);
        const bool hasState = state != tree_.end() && beginsWith(state->first, kState);
        if (installed != hasState) {
            fault(installed ? "the adapter tool has no state" : "the state of an adapter tool that is not installed");
        }
        for (const char* file : {"version", "dump_directory"}) {
            if (hasState && linesOf(textOf(kState + file)).size() != 1) {
                fault("the adapter tool's " + std::string(file) + " is not one line");
            }
        }
    }

    void readPort(const std::string& name) {
        const std::string list = textOf(kPorts + name + "/list");
        const std::string dump = textOf(kPorts + name + "/dump");
        Port port;
        port.name = name;
        port.type = listValue("Port Type", list);
        port.bus = numberOf(listValue("PCI Bus Number", list));
        port.function = numberOf(listValue("PCI Function", list));
        const bool fibre = port.type == "FC" || port.type == "FCoE";
        port.address = listValue(fibre ? "Port WWN" : "Permanent MAC", list);
        checkList(port, list, fibre ? "Permanent MAC" : "Port WWN");
        checkDump(port, dump, dumpValue("Serial No.", dump) == listValue("Serial No.", list));
        ports_.push_back(port);
    }

    void checkList(const Port& port, const std::string& list, const std::string& otherAddress) {
        for (const std::string& line : linesOf(list)) {
            if (line.size() <= kValueColumn || line.substr(kValueColumn - 2, 2) != ": ") {
                fault("list of port " + port.name + ": " + line);
            }
        }
        for (const char* key : kListKeys) {
            if (listValue(key, list).empty()) {
                fault("list of port " + port.name + " lacks " + key);
            }
        }
        if (port.address.empty() || list.find(otherAddress) != std::string::npos) {
            fault("list of port " + port.name + " does not have the one address of its type");
        }
        const std::string bus = listLine("PCI Bus Number") + std::to_string(port.bus);
        if (("\n" + list).find(bus + listLine("PCI Function")) == std::string::npos) {
            fault("list of port " + port.name + ": PCI Function does not follow PCI Bus Number");
        }
    }

    void checkDump(const Port& port, const std::string& dump, bool sameSerialNumber) {
        const bool ownAddress =
            dumpValue("Port WWPN/MAC", dump) == port.address || dumpValue("Port WWN", dump) == port.address;
        if (!ownAddress || !sameSerialNumber) {
            fault("dump of port " + port.name + " describes another port");
        }
        for (const char* key : kDumpKeys) {
            if (dumpValue(key, dump).empty()) {
                fault("dump of port " + port.name + " lacks " + key);
            }
        }
        const char* firmware = port.type == "FC" ? "Firmware Version" : "FW Version";
        if (dumpValue(firmware, dump).empty()) {
            fault("dump of port " + port.name + " lacks " + firmware);
        }
    }

    void checkTwins() {
        std::set<std::string> addresses;
        std::set<std::pair<int, int>> places;
        for (const Port& port : ports_) {
            if (!addresses.insert(port.address).second || !places.insert({port.bus, port.function}).second) {
                fault("port " + port.name + " has the address or the place of another");
            }
        }
    }

    // As the operating system writes it: in hexadecimal, with the function counted within its device.
    std::string locationOf(const Port& port) const {
        const bool large = std::any_of(ports_.begin(), ports_.end(), [&](const Port& other) {
            return other.bus == port.bus && other.function >= kFunctionsOfLargeDevice;
        });
        const int functions = large ? kFunctionsOfLargeDevice : kFunctionsOfSmallDevice;
        std::array<char, 16> text{};
        std::snprintf(text.data(), text.size(), "%02x:%02x.%d", static_cast<unsigned>(port.bus),
                      static_cast<unsigned>(port.function / functions), port.function % functions);
        return text.data();
    }

    void checkLocation(const Port& port) {
        const std::string location = locationOf(port);
        if (("\n" + textOf("commands/sbin/lspci/-m")).find("\n" + location + " \"") == std::string::npos) {
            fault("lspci -m does not list " + location + " of port " + port.name);
        }
        if (tree_.count("commands/sbin/lspci/-mns " + location) == 0) {
            fault("no entry sbin/lspci/-mns " + location);
        }
    }

    void checkDriver(const Port& port) {
        const std::string dump = textOf(kPorts + port.name + "/dump");
        const std::string driver = dumpValue("Driver Name", dump);
        if (textOf("commands/sbin/modinfo/-F version " + driver) != dumpValue("Driver Version", dump) + "\n") {
            fault("modinfo knows another " + driver + " than the dump of port " + port.name);
        }
    }

    void checkNetworkCard(const Port& port) {
        if (port.type != "NIC") {
            return;
        }
        const std::string place = "commands/usr/sbin/ethtool/-i ";
        const std::string busInfo = "bus-info: 0000:" + locationOf(port) + "\n";
        for (auto file = tree_.lower_bound(place); file != tree_.end() && beginsWith(file->first, place); ++file) {
            const std::string block = "\n" + file->first.substr(place.size()) + " ";
            const std::string interfaces = "\n" + textOf("commands/sbin/ifconfig/-a");
            if (file->second.find(busInfo) != std::string::npos &&
                beginsWith(
                    valueBehind("HWaddr ", interfaces.substr(std::min(interfaces.size(), interfaces.find(block)))),
                    upperCaseAddress(port.address))) {
                return;
            }
        }
        fault("no interface is port " + port.name);
    }

    void checkCatalogue(const std::string& name) {
        const std::string text = textOf("files/opt/tarvenn/kvl/" + name);
        if (text.empty()) {
            return;
        }
        const int count = numberOf(valueBehind("SuportDeviceNum=", text));
        std::string expected = "\\[SuportDevice\\]\nSuportDeviceNum=" + std::to_string(count) + "\n";
        for (int number = 1; number <= count; ++number) {
            const std::string digits = std::to_string(number);
            expected += "Vendor" + digits + "=VEN_[0-9A-F]{4}\nDevice" + digits + "=DEV_[0-9A-F]{4}\n";
        }
        if (!std::regex_match(text, std::regex(expected))) {
            fault(name + " does not hold the devices that it counts");
        }
    }

    fs::path toolLink_;
    std::map<std::string, std::string> tree_;
    std::vector<Port> ports_;
    std::vector<std::string> faults_;
};

}  // namespace

std::vector<std::string> adapterFaultsOf(const std::string& recording) {
    return AdapterCheck(recording).run();
}

}  // namespace kvl::test
