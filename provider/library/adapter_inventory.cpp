#include "provider/library/adapter_inventory.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <map>
#include <stdexcept>

#include "adapter/CEmulexCommon.h"
#include "provider/library/working_tree.h"
#include "provider/machine/pci_devices.h"
#include "provider/output/text_block.h"

namespace kvl::provider {
namespace {

using Record = AdapterRecord;
using Records = std::vector<Record>;

constexpr const char* kListArguments = " listhbas";
constexpr const char* kBusKey = "PCI Bus Number";
constexpr const char* kFunctionKey = "PCI Function";
constexpr std::size_t kKeysOfRecord = 6;
constexpr int kFewFunctions = 2;
constexpr int kManyFunctions = 8;
constexpr int kLargestPciNumber = 255;
constexpr int kLastBusOfManyFunctions = 9;

std::string addressOf(const Record& record) {
    const std::string name = valueOf(record, kWwnKey);
    return name.empty() ? valueOf(record, kMacKey) : name;
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

/// Roughly how many ports the tool has listed. The library judges a list of another form.
std::size_t countListedPorts() {
    std::ifstream list(WorkingTree::inUse().adapterListFile());
    std::size_t ports = 0;
    for (std::string line; std::getline(list, line);) {
        ports += line.find(kFunctionKey) != std::string::npos ? 1 : 0;
    }
    return ports;
}

/// How many functions the library counts for a device of each bus. Only the library can say, and each question makes it
/// read the whole list, so it is asked no more often than needed.
class FunctionCounts {
public:
    explicit FunctionCounts(const Records& records)
        : isOpen_(std::any_of(records.begin(), records.end(), [](const Record& record) {
              const int function = pciNumber(valueOf(record, kFunctionKey));
              return function < 0 || function >= kManyFunctions;
          })) {}

    /// @param record  a port at this bus and function, whose location is used to try it
    int of(const Record& record, int bus, int function) {
        // Without a function above 7, and for a bus number of two digits, there are always two.
        if (!isOpen_ || bus > kLastBusOfManyFunctions) {
            return kFewFunctions;
        }
        const auto known = counts_.find(bus);
        if (known != counts_.end()) {
            return known->second;
        }
        Record found;
        const std::string location = locationOf(bus, function, kFewFunctions);
        const bool areFew =
            guarded([&] { return CEmulexCommon::GetHBAInfo(location, &found, kCna); }) && found == record;
        return counts_[bus] = areFew ? kFewFunctions : kManyFunctions;
    }

private:
    const bool isOpen_;
    std::map<int, int> counts_;
};

/// The PCI location by which the library finds a port; empty if the record has none.
std::string deviceOf(const Record& record, FunctionCounts& counts) {
    const int bus = pciNumber(valueOf(record, kBusKey));
    const int function = pciNumber(valueOf(record, kFunctionKey));
    if (bus < 0 || function < 0) {
        return "";
    }
    if (function < kFewFunctions) {
        return locationOf(bus, function, kFewFunctions);
    }
    const std::string counted = locationOf(bus, function, counts.of(record, bus, function));
    // A device of more than two functions that is alone on its bus is counted as several devices.
    const std::string onOneDevice = locationOf(bus, function, kManyFunctions);
    const bool isOneDevice = function < kManyFunctions && !isPciDevice(counted) && isPciDevice(onOneDevice);
    return isOneDevice ? onOneDevice : counted;
}

/// The search for the dumps takes a directory with a blank for two.
void explainBlank(Failure& failure) {
    std::pair<std::string, std::string> told;
    if (failure.name == kNoDumpName &&
        CEmulexCommon::GetKeyValueFromFile_(WorkingTree::inUse().dumpDirectoryFile(), "Dump Directory", "=", told, kCna,
                                            0) &&
        told.second.find(' ') != std::string::npos) {
        failure.next = "have the tool keep its dumps in a directory without a blank in its name, unlike '" +
                       printable(told.second) + "', in which they aren't found";
    }
}

}  // namespace

std::string requireTool() {
    CEmulexCommon::SetLastError(0);
    std::string tool;
    if (!CEmulexCommon::GetOCMManagerInstallPath(&tool, kCna)) {
        throw AdapterFailure(lastFailure());
    }
    if (faccessat(AT_FDCWD, tool.c_str(), X_OK, AT_EACCESS) != 0) {
        throw AdapterFailure(ownFailure("tool-not-executable", tool + " can't be executed",
                                        "as root, see its mode, or install the OneCommand Manager anew"));
    }
    return tool;
}

std::string familyOf(const AdapterRecord& record) {
    return familyOfType(valueOf(record, "Port Type"));
}

AdapterInventory::AdapterInventory(Run& run) : run_(run), commands_(run) {
    WorkingTree::inUse().make();
}

void AdapterInventory::refreshList() const {
    const std::string tool = requireTool();
    if (CEmulexCommon::ExecCommand_(tool + kListArguments + " > " + WorkingTree::inUse().adapterListFile(), kCna) !=
        0) {
        throw AdapterFailure(commands_.lastCallFailure());
    }
}

std::vector<Adapter> AdapterInventory::ports() const {
    const Counting shown(run_.display(), "reading the list of " + std::to_string(countListedPorts()) + " ports");
    const Records records = readList();
    FunctionCounts counts(records);
    std::vector<Adapter> ports;
    for (const Record& record : records) {
        Adapter port;
        port.device = deviceOf(record, counts);
        port.type = valueOf(record, "Port Type");
        port.family = familyOfType(port.type);
        port.address = addressOf(record);
        port.portNumber = valueOf(record, "Port Number");
        port.bus = valueOf(record, kBusKey);
        port.function = valueOf(record, kFunctionKey);
        port.serial = valueOf(record, "Serial No.");
        port.isWhole = record.size() == kKeysOfRecord;
        ports.push_back(port);
    }
    return ports;
}

Records AdapterInventory::readList() const {
    std::list<Record> records;
    if (!guarded([&] { return CEmulexCommon::GetHBAInfoList(&records, kCna); })) {
        throw AdapterFailure(lastFailure());
    }
    return {records.begin(), records.end()};
}

std::string AdapterInventory::familyOf(const std::string& device) const {
    return kvl::provider::familyOf(find(device, kCna));
}

NamesAndValues AdapterInventory::describePort(const std::string& device, std::optional<Failure>& missing) const {
    NamesAndValues description;
    missing.reset();
    const bool isFound = guarded([&] {
        try {
            return CEmulexCommon::GetExtendedInfo(device, &description, familyOf(device));
        } catch (const std::out_of_range&) {
            throw;
        } catch (const std::logic_error&) {
            // It looks for the port among the machine's interfaces, and there is none; the rest has been filled in.
            missing = ownFailure(
                "no-interface",
                "the interface of " + device + " could not be told, since the kernel lists no interface but lo",
                "see whether the port's driver is loaded");
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
        if (refresh || !WorkingTree::inUse().isCached(device, family)) {
            checkAddress(device, family);
        }
        commands_.forgetLast();
        if (!guarded([&] {
                return CEmulexCommon::GetOperatingVersion(device, kind.value, &answer.version, refresh, family);
            })) {
            answer.failure = commands_.lastCallFailure();
            explainBlank(*answer.failure);
        }
    } catch (const AdapterFailure& failure) {
        answer.failure = failure.failure();
    }
    return answer;
}

Record AdapterInventory::find(const std::string& device, const std::string& family) const {
    Record record;
    if (!guarded([&] { return CEmulexCommon::GetHBAInfo(device, &record, family); })) {
        throw AdapterFailure(lastFailure());
    }
    return record;
}

/// The library puts the address from the list into shell command lines: the kind of address that ports of this type
/// have.
void AdapterInventory::checkAddress(const std::string& device, const std::string& family) const {
    const Record record = find(device, family);
    const std::string address = valueOf(record, hasWorldWideName(record) ? kWwnKey : kMacKey);
    if (address.empty() || !isPlainAddress(address)) {
        throw AdapterFailure(formFailure("hbacmd's list tells no proper address of " + device));
    }
}

}  // namespace kvl::provider
