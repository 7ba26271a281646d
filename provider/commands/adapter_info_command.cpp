#include <memory>

#include "provider/commands/answer.h"
#include "provider/commands/arguments.h"
#include "provider/commands/commands.h"
#include "provider/commands/options.h"
#include "provider/library/adapter_inventory.h"
#include "provider/machine/interface_index.h"
#include "provider/machine/provider_environment.h"
#include "provider/output/text_block.h"
#include "provider/run/run.h"

namespace kvl::provider {
namespace {

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl adapter-info 0b:00.1\n"
    "  kvl adapter-info 0b:00.1 --format json\n"
    "\n"
    "Exit codes:\n"
    "  0   the port is described\n"
    "  1   the same, but something could not be had (named on standard error)\n"
    "  2   wrong usage\n"
    "  3   there is no description; the reason stands on standard error\n";

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
    Run run(options.run, Turn::kTake);
    needResultDirectory();  // for the interface of a port
    const AdapterInventory inventory(run);
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
    answer.document = {{"device", options.device}, {"information", information}};
    if (missing) {
        answer.gaps.emplace_back("", *missing);
        answer.exitCode = kIncomplete;
    }
    return answer;
}

}  // namespace

void addAdapterInfoCommand(CLI::App& program, Request& request) {
    CLI::App& command = addCommand(program, "adapter-info", "Describe a port of an adapter", kHelp);
    const auto options = std::make_shared<InfoOptions>();
    addDevice(command, options->device);
    addAnswerFormat(command, options->format);
    addRunOptions(command, options->run);
    whenChosen(command,
               [options, &request] { answerWith(request, options->format, [options] { return describe(*options); }); });
}

}  // namespace kvl::provider
