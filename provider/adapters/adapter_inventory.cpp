#include "provider/adapters/adapter_inventory.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <stdexcept>

#include "adapter/CEmulexCommon.h"
#include "provider/adapters/adapter_tree.h"
#include "provider/machine/pci_devices.h"
#include "provider/output/text_block.h"

namespace kvl::provider {
namespace {

using Record = std::map<std::string, std::string>;

constexpr const char* kAddressCharacters = "0123456789ABCDEFabcdef:-";
constexpr const char* kListArguments = " listhbas";
constexpr std::size_t kKeysOfRecord = 6;
constexpr int kFewFunctions = 2;
constexpr int kManyFunctions = 8;
constexpr int kLargestPciNumber = 255;

std::string valueOf(const Record& record, const char* key) {
    const auto found = record.find(key);
    return found != record.end() ? found->second : "";
}

std::string addressOf(const Record& record) {
    const std::string name = valueOf(record, "Port WWN");
    return name.empty() ? valueOf(record, "Permanent MAC") : name;
}

std::string familyOfType(const std::string& type) {
    return type == "FC" ? kFc : kCna;
}

/// @return a number as PCI has them, or -1
int pciNumber(const std::string& text) {
    int number = -1;
    const char* textEnd = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), textEnd, number);
    const bool isNumber = error == std::errc() && end == textEnd;
    return isNumber && number >= 0 && number <= kLargestPciNumber ? number : -1;
}

/// The location of a function that the tool counts, with so many functions a device.
std::string locationOf(int bus, int function, int functionsPerDevice) {
    const auto number = [](int value) { return static_cast<unsigned>(value); };
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%02x:%02x.%x", number(bus), number(function / functionsPerDevice),
                  number(function % functionsPerDevice));
    return text.data();
}

/// Runs a call of the library, which lets an exception through when a line of the tool's list has another form than it
/// relies on.
template <typename Call>
auto guarded(const Call& call) {
    CEmulexCommon::SetLastError(0);
    try {
        return call();
    } catch (const std::out_of_range&) {
        throw AdapterFailure(formFailure("hbacmd's list of the adapters does not have the expected form"));
    }
}

}  // namespace

AdapterInventory::AdapterInventory(AdapterSession& session) : session_(session) {
    needAdapterTree();
}

void AdapterInventory::refreshList() const {
    CEmulexCommon::SetLastError(0);
    std::string tool;
    if (!CEmulexCommon::GetOCMManagerInstallPath(&tool, kCna)) {
        throw AdapterFailure(lastFailure());
    }
    if (CEmulexCommon::ExecCommand_(tool + kListArguments + " > " + adapterListFile(), kCna) != 0) {
        throw AdapterFailure(commandFailure());
    }
}

std::vector<Adapter> AdapterInventory::ports() const {
    std::list<Record> records;
    if (!guarded([&] { return CEmulexCommon::GetHBAInfoList(&records, kCna); })) {
        throw AdapterFailure(lastFailure());
    }
    std::map<int, int> functionsOfBuses;
    std::vector<Adapter> ports;
    for (const Record& record : records) {
        Adapter port;
        port.device = deviceOf(record, functionsOfBuses);
        port.type = valueOf(record, "Port Type");
        port.family = familyOfType(port.type);
        port.address = addressOf(record);
        port.portNumber = valueOf(record, "Port Number");
        port.bus = valueOf(record, "PCI Bus Number");
        port.function = valueOf(record, "PCI Function");
        port.serial = valueOf(record, "Serial No.");
        port.isWhole = record.size() == kKeysOfRecord;
        ports.push_back(port);
    }
    return ports;
}

std::string AdapterInventory::familyOf(const std::string& device) const {
    return familyOfType(valueOf(find(device, kCna), "Port Type"));
}

NamesAndValues AdapterInventory::describePort(const std::string& device, std::string& missing) const {
    NamesAndValues description;
    missing.clear();
    const bool isFound = guarded([&] {
        try {
            return CEmulexCommon::GetExtendedInfo(device, &description, familyOf(device));
        } catch (const std::out_of_range&) {
            throw;
        } catch (const std::logic_error&) {
            // It looks for the port among the machine's interfaces, and there is none; the rest has been told.
            missing = "the interface of " + device + " could not be told: the kernel lists no interface but lo";
            return true;
        }
    });
    if (!isFound) {
        throw AdapterFailure(lastFailure());
    }
    return description;
}

VersionAnswer AdapterInventory::version(const std::string& device, const ModuleKind& kind, bool refresh,
                                        const std::string& family) const {
    VersionAnswer answer;
    try {
        if (refresh || !isCached(device, family)) {
            checkAddress(device, family);
        }
        session_.forgetCommand();
        if (!guarded([&] {
                return CEmulexCommon::GetOperatingVersion(device, kind.value, &answer.version, refresh, family);
            })) {
            answer.failure = commandFailure();
        }
    } catch (const AdapterFailure& failure) {
        answer.failure = failure.failure();
    }
    return answer;
}

/// The tool's failures come first: a code that is there as well belongs to an earlier try.
Failure AdapterInventory::commandFailure() const {
    const AdapterWatch& watch = session_.watch();
    if (watch.outcome().empty()) {
        return lastFailure();
    }
    const std::string words = printable(session_.toolsWords());
    return toolFailure(watch.command() + " " + watch.outcome() + (words.empty() ? "" : ", saying '" + words + "'"));
}

Record AdapterInventory::find(const std::string& device, const std::string& family) const {
    Record record;
    if (!guarded([&] { return CEmulexCommon::GetHBAInfo(device, &record, family); })) {
        throw AdapterFailure(lastFailure());
    }
    return record;
}

/// The library puts the address that the list tells into command lines of a shell.
void AdapterInventory::checkAddress(const std::string& device, const std::string& family) const {
    const std::string address = addressOf(find(device, family));
    if (address.empty() || address.find_first_not_of(kAddressCharacters) != std::string::npos) {
        throw AdapterFailure(formFailure("hbacmd's list tells no proper address of " + device));
    }
}

/// @param functionsOfBuses  what is known of the buses so far
std::string AdapterInventory::deviceOf(const Record& record, std::map<int, int>& functionsOfBuses) const {
    const int bus = pciNumber(valueOf(record, "PCI Bus Number"));
    const int function = pciNumber(valueOf(record, "PCI Function"));
    if (bus < 0 || function < 0) {
        return "";
    }
    if (function < kFewFunctions) {
        return locationOf(bus, function, kFewFunctions);
    }
    // Only the library says how many functions of a bus it counts for a device.
    if (functionsOfBuses.count(bus) == 0) {
        Record found;
        const std::string location = locationOf(bus, function, kFewFunctions);
        const bool areFew =
            guarded([&] { return CEmulexCommon::GetHBAInfo(location, &found, kCna); }) && found == record;
        functionsOfBuses[bus] = areFew ? kFewFunctions : kManyFunctions;
    }
    const std::string counted = locationOf(bus, function, functionsOfBuses[bus]);
    // A device of more than two functions that is alone on its bus is counted as several devices.
    const std::string onOneDevice = locationOf(bus, function, kManyFunctions);
    const bool isOneDevice = function < kManyFunctions && !isPciDevice(counted) && isPciDevice(onOneDevice);
    return isOneDevice ? onOneDevice : counted;
}

}  // namespace kvl::provider
