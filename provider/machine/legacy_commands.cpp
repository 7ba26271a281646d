#include "provider/machine/legacy_commands.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <memory>

#include "machines/programs.h"
#include "provider/provider_error.h"

namespace kvl::provider {
namespace {

// The fixed PATH.
constexpr const char* kDirectories = "/sbin:/usr/sbin:/bin:/usr/bin";

struct ClosePipe {
    void operator()(std::FILE* pipe) const { pclose(pipe); }
};

std::string firstLineOf(const char* command) {
    const std::unique_ptr<std::FILE, ClosePipe> pipe(popen(command, "re"));
    std::array<char, 256> line{};
    if (!pipe || std::fgets(line.data(), static_cast<int>(line.size()), pipe.get()) == nullptr) {
        return "";
    }
    return line.data();
}

bool isInSbin(const std::string& name) {
    return access(("/sbin/" + name).c_str(), X_OK) == 0;
}

/// The program that all but everybody has under another name, which tells it what to be.
std::string needBusybox() {
    std::string busybox = findProgram("busybox");
    if (busybox.empty()) {
        throw ProviderError(
            "this machine's /sbin/ifconfig is missing or prints a newer form than the parser reads, "
            "and busybox, which prints the older one, isn't installed: install the package "
            "busybox-static, or say '--legacy-commands never' to go without");
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
    if (!isInSbin("ifconfig") || isNewerIfconfigForm(firstLineOf("/sbin/ifconfig -a 2> /dev/null"))) {
        supplied["ifconfig"] = needBusybox();
    }
    supplyIfMissing(supplied, "route", findProgram("busybox"));
    supplyIfMissing(supplied, "lspci", findProgram("lspci"));
    return supplied;
}

bool isNewerIfconfigForm(const std::string& firstLine) {
    const auto blank = firstLine.find(' ');
    return blank != std::string::npos && blank > 0 && firstLine[blank - 1] == ':' &&
           firstLine.compare(blank + 1, 6, "flags=") == 0;
}

std::string findProgram(const std::string& name) {
    return machines::findProgram(name, kDirectories);
}

}  // namespace kvl::provider
