#include <CLI/CLI.hpp>
#include <memory>

#include "provider/commands/adapter_commands.h"
#include "provider/commands/answer.h"
#include "provider/library/adapter_inventory.h"
#include "provider/output/text_table.h"

namespace kvl::provider {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kExamples =
    "Examples:\n"
    "  kvl adapters\n"
    "  kvl adapters --versions --family fc\n"
    "  kvl adapters --versions --refresh --format json\n"
    "\n";

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

/// Asks for all versions of a port. Once its dump can't be had, no further kind can help.
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
    AdapterSession session(options.run);
    const AdapterInventory inventory(session);
    inventory.refreshList();
    std::vector<ListedPort> listed;
    for (const Adapter& port : inventory.ports()) {
        if (options.family.empty() || options.family == port.family) {
            listed.push_back({port, {}});
        }
    }
    for (std::size_t index = 0; options.versions && index < listed.size(); ++index) {
        ListedPort& port = listed[index];
        session.setSubject(port.adapter.device + " (" + std::to_string(index + 1) + " of " +
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

/// What could not be had of a port.
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
    const auto orNull = [](const std::string& text) { return text.empty() ? Json() : Json(text); };
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
        entry["failures"].push_back(document(failure.failure));
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

void addNotes(const ListedPort& port, bool versions, std::vector<Note>& notes) {
    const Adapter& adapter = port.adapter;
    const std::string name = adapter.device.empty() ? adapter.address : adapter.device;
    for (const PortFailure& failure : failuresOf(port, versions)) {
        notes.emplace_back(name + (failure.kind.empty() ? "" : ": " + failure.kind), failure.failure);
    }
}

Answer list(const AdaptersOptions& options) {
    const std::vector<ListedPort> ports = collect(options);
    Answer answer;
    answer.text = tableOf(ports, options.versions);
    answer.document = jsonText(documentOf(ports, options.versions));
    for (const ListedPort& port : ports) {
        addNotes(port, options.versions, answer.notes);
    }
    answer.exitCode = answer.notes.empty() ? kReportWritten : kPartlyCollected;
    return answer;
}

}  // namespace

void addAdaptersCommand(CLI::App& program, Request& request) {
    CLI::App* command = program.add_subcommand("adapters", "List the ports of the Emulex adapters");
    command->footer(std::string(kExamples) + kAdaptersExitCodesHelp);
    const auto options = std::make_shared<AdaptersOptions>();
    addFamily(*command, options->family, "List the ports of this family alone");
    command->add_flag("--versions", options->versions, "Tell the versions that run on each port");
    command->add_flag("--refresh", options->refresh, "(with --versions) Have new dumps made, not the cached ones read");
    addAnswerFormat(*command, options->format);
    addRunOptions(*command, options->run);
    command->callback([options, &request] {
        request.run = [options] { return printAnswer(options->format, [options] { return list(*options); }); };
    });
}

}  // namespace kvl::provider
