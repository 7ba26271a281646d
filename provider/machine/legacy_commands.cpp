#include "provider/machine/legacy_commands.h"

#include <unistd.h>

#include "machines/programs.h"
#include "provider/provider_error.h"

namespace kvl::provider {
namespace {

// The fixed PATH.
constexpr const char* kDirectories = "/sbin:/usr/sbin:/bin:/usr/bin";

bool isInSbin(const std::string& name) {
    return access(("/sbin/" + name).c_str(), X_OK) == 0;
}

/// The path of busybox, which acts as the command by whose name it is called.
std::string needBusybox() {
    std::string busybox = findProgram("busybox");
    if (busybox.empty()) {
        throw ProviderError(
            "this machine has no /sbin/ifconfig, and no busybox, which could stand in for it: install the package "
            "net-tools");
    }
    return busybox;
}

void supplyIfMissing(SuppliedCommands& supplied, const char* name, const std::string& program) {
    if (!isInSbin(name) && !program.empty()) {
        supplied[name] = program;
    }
}

}  // namespace

SuppliedCommands findCommandsToSupply() {
    SuppliedCommands supplied;
    if (!isInSbin("ifconfig")) {
        supplied["ifconfig"] = needBusybox();
    }
    supplyIfMissing(supplied, "route", findProgram("busybox"));
    supplyIfMissing(supplied, "lspci", findProgram("lspci"));
    return supplied;
}

std::string findProgram(const std::string& name) {
    return machines::findProgram(name, kDirectories);
}

}  // namespace kvl::provider
