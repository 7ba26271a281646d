#include "provider/machine/machine_layer.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include "machines/private_root.h"
#include "provider/machine/command_output.h"
#include "provider/machine/provider_environment.h"
#include "provider/machine/translation/ifcfg_file.h"
#include "provider/machine/translation/network_manager_keyfile.h"
#include "provider/machine/translation/translations.h"

namespace kvl::provider {
namespace {

namespace fs = std::filesystem;

constexpr const char* kInterfacesCommand = "/sbin/ifconfig -a";
constexpr const char* kRoutesCommand = "/sbin/route";
constexpr const char* kNetworkFile = "/etc/sysconfig/network";
constexpr std::string_view kSettings = "/etc/sysconfig/network-scripts/ifcfg-";

// Where NetworkManager looks for connections, those of the administrator first.
constexpr std::array<const char*, 3> kConnections = {
    "/etc/NetworkManager/system-connections/",
    "/run/NetworkManager/system-connections/",
    "/usr/lib/NetworkManager/system-connections/",
};

/// The regular files whose paths begin so, in order. @param beginning  a directory with its "/", and perhaps more
std::vector<std::string> filesBeginning(const std::string& beginning) {
    std::vector<std::string> files;
    std::error_code error;
    fs::directory_iterator entry(fs::path(beginning).parent_path(), error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        if (entry->path().string().rfind(beginning, 0) == 0 && fs::is_regular_file(entry->path(), error)) {
            files.push_back(entry->path().string());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// A recorded server has what the library asks for, and `route -n` only if that was recorded too.
bool hasNumericRoutes() {
    return !machines::insidePrivateRoot() || access("/.machine/commands/sbin/route/-n", R_OK) == 0;
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

MachineLayer::MachineLayer(const Rules& rules, std::function<void(int signal)> interrupted)
    : translates_(rules.translates),
      runner_(rules.commandLimit,
              {[this](PlainCommand& command) { askMachine(command); },
               [this](const PlainCommand& command) { translate(command); }, std::move(interrupted)}),
      inCharge_(runner_),
      answeredFiles_([this](const std::string& path) { return contentForLibrary(path); }) {}

std::optional<std::string> MachineLayer::contentForLibrary(const std::string& path) const {
    if (path.rfind(kSettings, 0) == 0) {
        const std::string interface = names_.forMachine(path.substr(kSettings.size()));
        const std::string file = std::string(kSettings) + interface;
        return translates_    ? std::optional(settingsOf(interface))
               : file != path ? std::optional(contentOf(file))
                              : std::nullopt;
    }
    return translates_ && path == kNetworkFile ? std::optional(translated(path, contentOf(path))) : std::nullopt;
}

/// The settings of an interface in the form of an ifcfg file; empty without any. DEVICE decides whom an ifcfg file is
/// for, and its name where it has no DEVICE. A connection of NetworkManager counts where there is no such file: up to
/// RHEL 8 NetworkManager reads ifcfg files first, and RHEL 9 and 10 come without any.
std::string MachineLayer::settingsOf(const std::string& interface) const {
    std::string named;
    for (const std::string& file : filesBeginning(std::string(kSettings))) {
        const std::string content = contentOf(file);
        const std::string device = ownerOf(content).device;
        if (device == interface) {
            return translated(file, content);
        }
        if (device.empty() && file == std::string(kSettings) + interface) {
            named = translated(file, content);
        }
    }
    if (!named.empty()) {
        return named;
    }
    for (const char* directory : kConnections) {
        for (const std::string& file : filesBeginning(directory)) {
            const std::string content = contentOf(file);
            const auto connection = readKeyfile(content);
            if (connection && connection->interfaceName == interface) {
                return translated(file, content);
            }
        }
    }
    return "";
}

/// Puts what the library asks for into the machine's own terms. The library names an interface by a
/// word of its own, or at the end of a path.
void MachineLayer::askMachine(PlainCommand& command) const {
    for (std::size_t index = 1; index < command.words.size(); ++index) {
        std::string& word = command.words[index];
        const auto name = word.rfind('/') + 1;
        word = word.substr(0, name) + names_.forMachine(word.substr(name));
    }
    if (translates_ && describe(command) == kRoutesCommand && hasNumericRoutes()) {
        command.words.emplace_back("-n");  // names of gateways are no addresses, and cost a wait for name servers
    }
}

/// Brings the result file into the form that the library reads.
void MachineLayer::translate(const PlainCommand& command) {
    const std::string output = contentOf(command.outputFile);
    const std::string line = describe(command);
    std::string text = translates_ ? translated(line, output) : output;
    if (translates_ && line.rfind(kRoutesCommand, 0) == 0) {
        namedGateways_ = gatewaysWithoutAddress(output);
    }
    addNames(command, text);
    text = namesInterfaces(command) ? names_.textForLibrary(text) : text;
    const std::string& interface = command.words.back();
    const std::string busInfo = withholdForeignBusInfo(command, translates_ ? pciAddressOf(interface) : "", text);
    if (!busInfo.empty()) {
        withheld_.push_back({interface, busInfo});
    }
    if (text == output) {
        return;
    }
    if (!(std::ofstream(command.outputFile, std::ios::binary | std::ios::trunc) << text).flush()) {
        unlink(command.outputFile.c_str());  // rather none than one that a shell would take apart
    }
}

void MachineLayer::addNames(const PlainCommand& command, const std::string& output) {
    if (translates_ && describe(command) == kInterfacesCommand) {
        names_.add(surveyInterfaces(output, [this](const std::string& name) { return askForDriver(name); }));
    }
    std::map<std::string, InterfaceRole> others;
    for (const std::string& name : interfaceNamesIn(command, output)) {
        others[name] = InterfaceRole::kOther;
    }
    names_.add(others);
}

std::string MachineLayer::askForDriver(const std::string& interface) {
    PlainCommand command;
    command.words = {"/usr/sbin/ethtool", "-i", interface};
    command.outputFile = std::string(kResultDirectory) + "/survey";
    command.dropsErrors = true;
    const bool succeeded = runner_.run(command) == 0;
    std::string output = succeeded ? contentOf(command.outputFile) : "";
    unlink(command.outputFile.c_str());
    return output;
}

}  // namespace kvl::provider
