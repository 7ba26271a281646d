#include <memory>

#include "provider/commands/answer.h"
#include "provider/commands/arguments.h"
#include "provider/commands/commands.h"
#include "provider/commands/options.h"
#include "provider/library/adapter_inventory.h"
#include "provider/output/text_table.h"
#include "provider/run/run.h"

namespace kvl::provider {
namespace {

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl adapters\n"
    "  kvl adapters --versions --family fc\n"
    "  kvl adapters --versions --refresh --format json\n"
    "\n"
    "Exit codes:\n"
    "  0   the adapters are listed\n"
    "  1   the same, but something could not be had (named on standard error)\n"
    "  2   wrong usage\n"
    "  3   there is no list; the reason stands on standard error\n";

struct AdaptersOptions {
    std::string family;  // empty: both
    bool refresh = false;
    bool versions = false;
    AnswerFormat format = AnswerFormat::kText;
    RunOptions run;
};

/// A port with what was asked for about it.
struct ListedPort {
    Adapter adapter;
    std::vector<VersionAnswer> versions;  ///< of the kinds, as far as they were asked for
};

/// Asks for all versions of a port. Without a readable dump the other kinds would fail too.
std::vector<VersionAnswer> askVersions(const AdapterInventory& inventory, const Adapter& port, bool refresh) {
    std::vector<VersionAnswer> answers;
    for (const ModuleKind& kind : kModuleKinds) {
        answers.push_back(inventory.version(port.device, kind, refresh && answers.empty(), port.family));
        if (answers.back().failure && answers.back().failure->name != kNoVersionName) {
            break;
        }
    }
    return answers;
}

std::vector<ListedPort> collect(const AdaptersOptions& options) {
    Run run(options.run, Turn::kTake);
    const AdapterInventory inventory(run);
    inventory.refreshList();
    std::vector<ListedPort> listed;
    for (const Adapter& port : inventory.ports()) {
        if (options.family.empty() || options.family == port.family) {
            listed.push_back({port, {}});
        }
    }
    for (std::size_t index = 0; options.versions && index < listed.size(); ++index) {
        ListedPort& port = listed[index];
        inventory.setSubject(port.adapter.device + " (" + std::to_string(index + 1) + " of " +
                             std::to_string(listed.size()) + "): ");
        if (!port.adapter.device.empty()) {
            port.versions = askVersions(inventory, port.adapter, options.refresh);
        }
    }
    return listed;
}

std::string versionAt(const ListedPort& port, std::size_t kind) {
    return kind < port.versions.size() ? port.versions[kind].version : "";
}

std::string tableOf(const std::vector<ListedPort>& ports, bool versions) {
    TextTable::Row titles = {"DEVICE", "FAMILY", "TYPE", "ADDRESS", "PORT", "SERIAL NO."};
    for (const ModuleKind& kind : kModuleKinds) {
        if (versions) {
            titles.emplace_back(kind.title);
        }
    }
    TextTable table(titles);
    for (const ListedPort& port : ports) {
        const Adapter& adapter = port.adapter;
        TextTable::Row row = {adapter.device,  adapter.family,     adapter.type,
                              adapter.address, adapter.portNumber, adapter.serial};
        for (std::size_t kind = 0; row.size() < titles.size(); ++kind) {
            row.push_back(versionAt(port, kind));
        }
        table.addRow(row);
    }
    return table.text();
}

/// What could not be read of a port.
struct PortFailure {
    std::string kind;  ///< of the module; empty if it is about the port
    Failure failure;
};

std::vector<PortFailure> failuresOf(const ListedPort& port, bool versions) {
    std::vector<PortFailure> failures;
    if (!port.adapter.isWhole) {
        failures.push_back({"", ownFailure("incomplete-list",
                                           "hbacmd's list lacks a line of this or an earlier port, so values may stand "
                                           "at the wrong port",
                                           "run 'kvl adapters' again, since the list may have been cut")});
    }
    if (versions && port.adapter.device.empty()) {
        failures.push_back({"", ownFailure("no-location",
                                           "hbacmd's list tells no PCI location of it, by which its versions are "
                                           "asked for",
                                           "see what 'hbacmd listhbas' prints")});
    }
    for (std::size_t kind = 0; kind < port.versions.size(); ++kind) {
        if (port.versions[kind].failure) {
            failures.push_back({kModuleKinds[kind].name, *port.versions[kind].failure});
        }
    }
    return failures;
}

Json documentOf(const ListedPort& port, bool versions) {
    const Adapter& adapter = port.adapter;
    Json entry = {
        {"device", orNull(adapter.device)}, {"family", adapter.family},          {"type", adapter.type},
        {"address", adapter.address},       {"port_number", adapter.portNumber}, {"pci_bus_number", adapter.bus},
        {"pci_function", adapter.function}, {"serial_number", adapter.serial}};
    if (!versions) {
        return entry;
    }
    entry["versions"] = Json::object();
    std::size_t index = 0;
    for (const ModuleKind& kind : kModuleKinds) {
        entry["versions"][kind.name] = orNull(versionAt(port, index++));
    }
    entry["failures"] = Json::array();
    for (const PortFailure& failure : failuresOf(port, versions)) {
        entry["failures"].push_back(documentOf(failure.failure));
        entry["failures"].back()["kind"] = orNull(failure.kind);
    }
    return entry;
}

Json documentOf(const std::vector<ListedPort>& ports, bool versions) {
    Json list = Json::array();
    for (const ListedPort& port : ports) {
        list.push_back(documentOf(port, versions));
    }
    return {{"adapters", list}};
}

void addGaps(const ListedPort& port, bool versions, std::vector<Gap>& gaps) {
    const Adapter& adapter = port.adapter;
    const std::string name = adapter.device.empty() ? adapter.address : adapter.device;
    for (const PortFailure& failure : failuresOf(port, versions)) {
        gaps.emplace_back(name + (failure.kind.empty() ? "" : ": " + failure.kind), failure.failure);
    }
}

Answer list(const AdaptersOptions& options) {
    const std::vector<ListedPort> ports = collect(options);
    Answer answer;
    answer.text = tableOf(ports, options.versions);
    answer.document = documentOf(ports, options.versions);
    for (const ListedPort& port : ports) {
        addGaps(port, options.versions, answer.gaps);
    }
    answer.exitCode = answer.gaps.empty() ? kAnswered : kIncomplete;
    return answer;
}

}  // namespace

void addAdaptersCommand(CLI::App& program, Request& request) {
    CLI::App& command = addCommand(program, "adapters", "List the ports of the Emulex adapters", kHelp);
    const auto options = std::make_shared<AdaptersOptions>();
    addFamily(command, options->family, "List the ports of this family alone");
    addFlag(command, "--versions", options->versions, "Tell the versions that run on each port");
    addFlag(command, "--refresh", options->refresh, "(with --versions) Have new dumps made, not the cached ones read");
    addAnswerFormat(command, options->format);
    addRunOptions(command, options->run);
    whenChosen(command,
               [options, &request] { answerWith(request, options->format, [options] { return list(*options); }); });
}

}  // namespace kvl::provider
