#include "provider/machine/machine_layer.h"

#include <unistd.h>

#include <fstream>
#include <iterator>
#include <string_view>

#include "provider/machine/command_output.h"
#include "provider/machine/provider_environment.h"

namespace kvl::provider {
namespace {

constexpr const char* kInterfacesCommand = "/sbin/ifconfig -a";
constexpr std::string_view kSettings = "/etc/sysconfig/network-scripts/ifcfg-";

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

MachineLayer::MachineLayer(const Rules& rules, std::function<void(int signal)> interrupted)
    : translates_(rules.translates),
      runner_(rules.commandLimit,
              {[this](PlainCommand& command) { nameForMachine(command); },
               [this](const PlainCommand& command) { translate(command); }, std::move(interrupted)}),
      inCharge_(runner_),
      answeredFiles_([this](const std::string& path) { return contentForLibrary(path); }) {}

/// The initscripts' settings of an interface lie in a file with its name.
std::optional<std::string> MachineLayer::contentForLibrary(const std::string& path) const {
    if (path.rfind(kSettings, 0) != 0) {
        return std::nullopt;
    }
    const std::string name = path.substr(kSettings.size());
    const std::string file = std::string(kSettings) + names_.forMachine(name);
    return file == path || access(file.c_str(), R_OK) != 0 ? std::nullopt : std::optional(contentOf(file));
}

/// The library names an interface by a word of its own, or at the end of a path.
void MachineLayer::nameForMachine(PlainCommand& command) const {
    for (std::size_t index = 1; index < command.words.size(); ++index) {
        std::string& word = command.words[index];
        const auto name = word.rfind('/') + 1;
        word = word.substr(0, name) + names_.forMachine(word.substr(name));
    }
}

/// Has the result file hold what the library reads.
void MachineLayer::translate(const PlainCommand& command) {
    const std::string output = contentOf(command.outputFile);
    addNames(command, output);
    std::string translated = namesInterfaces(command) ? names_.textForLibrary(output) : output;
    const std::string& interface = command.words.back();
    const std::string busInfo = withholdForeignBusInfo(command, translates_ ? pciAddressOf(interface) : "", translated);
    if (!busInfo.empty()) {
        withheld_.push_back({interface, busInfo});
    }
    if (translated == output) {
        return;
    }
    if (!(std::ofstream(command.outputFile, std::ios::binary | std::ios::trunc) << translated).flush()) {
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
