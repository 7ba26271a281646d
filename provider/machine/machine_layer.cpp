#include "provider/machine/machine_layer.h"

#include <unistd.h>

#include <fstream>
#include <iterator>

#include "provider/machine/command_output.h"

namespace kvl::provider {

MachineLayer::MachineLayer(std::chrono::milliseconds limit, std::function<void(int signal)> interrupted)
    : runner_(limit, {[this](PlainCommand& command) { nameForMachine(command); },
                      [this](const PlainCommand& command) { makeSafe(command); }, std::move(interrupted)}),
      inCharge_(runner_) {}

/// The library names an interface by a word of its own, or at the end of a path.
void MachineLayer::nameForMachine(PlainCommand& command) const {
    for (std::size_t index = 1; index < command.words.size(); ++index) {
        std::string& word = command.words[index];
        const auto name = word.rfind('/') + 1;
        word = word.substr(0, name) + names_.forMachine(word.substr(name));
    }
}

void MachineLayer::makeSafe(const PlainCommand& command) {
    std::ifstream file(command.outputFile, std::ios::binary);
    const std::string output{std::istreambuf_iterator<char>(file), {}};
    std::string safe = output;
    names_.add(interfaceNamesIn(command, output));
    if (!names_.empty() && namesInterfaces(command)) {
        safe = names_.textForLibrary(output);
    }
    const std::string busInfo = withholdForeignBusInfo(command, safe);
    if (!busInfo.empty()) {
        withheld_.push_back({names_.forMachine(command.words.back()), busInfo});
    }
    if (safe != output && !(std::ofstream(command.outputFile, std::ios::binary | std::ios::trunc) << safe).flush()) {
        unlink(command.outputFile.c_str());  // rather none than one that a shell would take apart
    }
}

}  // namespace kvl::provider
