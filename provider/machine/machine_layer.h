#ifndef KVL_PROVIDER_MACHINE_MACHINE_LAYER_H
#define KVL_PROVIDER_MACHINE_MACHINE_LAYER_H

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "provider/machine/command_runner.h"
#include "provider/machine/interface_names.h"
#include "provider/machine/opened_files.h"
#include "provider/machine/translation/ipv4_routes.h"

namespace kvl::provider {

/// Bus information that was withheld from the library.
struct WithheldBusInfo {
    std::string interface;  ///< as the machine names it
    std::string busInfo;
};

/// What stands between the library and the machine while a LAN configuration is collected: runs the library's commands,
/// keeps from it every word that would mean something to a shell, and hands it names, PCI addresses, outputs and files
/// in the form that it reads. One object at a time.
class MachineLayer {
public:
    struct Rules {
        std::chrono::milliseconds commandLimit{0};  ///< Longest time of a command; 0: none.
        bool translates =
            true;  ///< False: the library sees the machine as it is, but for what a shell would take apart.
    };

    /// @param interrupted  is called when a signal asks this process to end while a command runs
    MachineLayer(const Rules& rules, std::function<void(int signal)> interrupted);

    const InterfaceNames& names() const { return names_; }
    const std::vector<WithheldBusInfo>& withheld() const { return withheld_; }
    /// The IPv4 default routes whose gateway has no address in what the machine prints; they are not in the report.
    const std::vector<NamedGateway>& namedGateways() const { return namedGateways_; }
    const std::vector<CommandObservation>& observations() const { return runner_.observations(); }

private:
    void askMachine(PlainCommand& command) const;
    void translate(const PlainCommand& command);
    void addNames(const PlainCommand& command, const std::string& output);
    std::string askForDriver(const std::string& interface);
    std::optional<std::string> contentForLibrary(const std::string& path) const;
    std::string settingsOf(const std::string& interface) const;

    const bool translates_;
    InterfaceNames names_;
    std::vector<WithheldBusInfo> withheld_;
    std::vector<NamedGateway> namedGateways_;
    CommandRunner runner_;
    const RunnerInCharge inCharge_;
    const AnsweredFiles answeredFiles_;
};

}  // namespace kvl::provider

#endif
