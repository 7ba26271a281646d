#include <CLI/CLI.hpp>
#include <memory>

#include "provider/adapters/adapter_answer.h"
#include "provider/adapters/adapter_commands.h"
#include "provider/adapters/adapter_inventory.h"
#include "provider/machine/interface_index.h"
#include "provider/machine/provider_environment.h"
#include "provider/output/text_block.h"

namespace kvl::provider {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kExamples =
    "Examples:\n"
    "  kvl adapter-info 0b:00.1\n"
    "  kvl adapter-info 0b:00.1 --format json\n"
    "\n";

struct InfoOptions {
    std::string device;
    AnswerFormat format = AnswerFormat::kText;
    RunOptions run;
};

/// The interface of a port is found by asking every interface; those with a hostile name are not asked.
std::optional<Failure> interfacesNotAsked() {
    std::string names;
    for (const std::string& name : interfacesPassedOver()) {
        names += (names.empty() ? "'" : ", '") + printable(name) + "'";
    }
    if (names.empty()) {
        return std::nullopt;
    }
    return ownFailure("interface-not-asked",
                      "the interface of the port may be one that was not asked, since a shell would take its name "
                      "apart: " +
                          names,
                      "give it another name with 'ip link set'");
}

Answer describe(const InfoOptions& options) {
    AdapterSession session(options.run);
    needResultDirectory();  // for the interface of a port
    const AdapterInventory inventory(session);
    inventory.refreshList();
    std::optional<Failure> missing;
    TextBlock block("Adapter " + options.device);
    Json information = Json::array();
    bool lacksInterface = false;
    for (const auto& [name, value] : inventory.describePort(options.device, missing)) {
        block.addRow(name.empty() ? "Address" : name, value);
        information.push_back({{"name", name}, {"value", value}});
        lacksInterface = lacksInterface || (name == "I/F Name" && value.empty());
    }
    if (lacksInterface && !missing) {
        missing = interfacesNotAsked();
    }
    Answer answer;
    answer.text = block.text();
    answer.document = jsonText({{"device", options.device}, {"information", information}});
    if (missing) {
        answer.notes.emplace_back("", *missing);
        answer.exitCode = kPartlyCollected;
    }
    return answer;
}

}  // namespace

void addAdapterInfoCommand(CLI::App& program, Request& request) {
    CLI::App* command = program.add_subcommand("adapter-info", "Describe a port of an adapter");
    command->footer(std::string(kExamples) + kAdapterInfoExitCodesHelp);
    const auto options = std::make_shared<InfoOptions>();
    addDevice(*command, options->device);
    addAnswerFormat(*command, options->format);
    addRunOptions(*command, options->run);
    command->callback([options, &request] {
        request.run = [options] { return printAnswer(options->format, [options] { return describe(*options); }); };
    });
}

}  // namespace kvl::provider
