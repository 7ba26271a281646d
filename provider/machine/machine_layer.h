#ifndef KVL_PROVIDER_MACHINE_MACHINE_LAYER_H
#define KVL_PROVIDER_MACHINE_MACHINE_LAYER_H

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "provider/machine/command_runner.h"
#include "provider/machine/interface_names.h"

namespace kvl::provider {

/// A bus information that was not handed on to the library.
struct WithheldBusInfo {
    std::string interface;  ///< as the machine names it
    std::string busInfo;
};

/// What stands between the library and the machine while a LAN configuration is collected: runs the library's commands,
/// and keeps from it every word that would mean something to a shell. One object at a time.
class MachineLayer {
public:
    /// @param limit        longest time of a command; 0: none
    /// @param interrupted  is called when a signal asks this process to end while a command runs
    MachineLayer(std::chrono::milliseconds limit, std::function<void(int signal)> interrupted);

    const InterfaceNames& names() const { return names_; }
    const std::vector<WithheldBusInfo>& withheld() const { return withheld_; }
    const std::vector<CommandObservation>& observations() const { return runner_.observations(); }

private:
    void nameForMachine(PlainCommand& command) const;
    void makeSafe(const PlainCommand& command);

    InterfaceNames names_;
    std::vector<WithheldBusInfo> withheld_;
    CommandRunner runner_;
    const RunnerInCharge inCharge_;
};

}  // namespace kvl::provider

#endif
