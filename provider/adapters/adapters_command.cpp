#include <CLI/CLI.hpp>
#include <memory>

#include "provider/adapters/adapter_answer.h"
#include "provider/adapters/adapter_commands.h"
#include "provider/adapters/adapter_inventory.h"
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
    Json& told = entry["versions"] = Json::object();
    Json& failures = entry["failures"] = Json::array();
    std::size_t index = 0;
    for (const ModuleKind& kind : kModuleKinds) {
        told[kind.name] = orNull(versionAt(port, index));
        if (index < port.versions.size() && port.versions[index].failure) {
            Json failure = document(*port.versions[index].failure);
            failure["kind"] = kind.name;
            failures.push_back(failure);
        }
        ++index;
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

/// What could not be had of a port.
void addNotes(const ListedPort& port, bool versions, std::vector<std::string>& notes) {
    const Adapter& adapter = port.adapter;
    const std::string name = adapter.device.empty() ? adapter.address : adapter.device;
    if (!adapter.isWhole) {
        notes.push_back(name +
                        ": hbacmd's list lacks a line of this or an earlier port, so values may stand at the wrong "
                        "port; the list may have been cut: run 'kvl adapters' again");
    }
    if (versions && adapter.device.empty()) {
        notes.push_back(name + ": its versions can't be asked for: hbacmd's list tells no PCI location of it");
    }
    for (std::size_t kind = 0; kind < port.versions.size(); ++kind) {
        if (port.versions[kind].failure) {
            notes.push_back(name + ": " + kModuleKinds[kind].name + ": " + describe(*port.versions[kind].failure));
        }
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
    command->add_flag("--refresh", options->refresh, "Have new dumps made for the versions, not the cached ones read");
    addAnswerFormat(*command, options->format);
    addRunOptions(*command, options->run);
    command->callback([options, &request] {
        request.run = [options] { return printAnswer(options->format, [options] { return list(*options); }); };
    });
}

}  // namespace kvl::provider
