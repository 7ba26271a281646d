#include <CLI/CLI.hpp>
#include <memory>

#include "provider/commands/adapter_commands.h"
#include "provider/commands/adapter_words.h"
#include "provider/commands/answer.h"
#include "provider/library/adapter_tool.h"

namespace kvl::provider {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kExamples =
    "Examples:\n"
    "  kvl components\n"
    "\n";

struct ComponentsOptions {
    AnswerFormat format = AnswerFormat::kText;
};

Answer tell() {
    Answer answer;
    Json names = Json::array();
    for (const CNecessaryComponentInfo& component : CEmulexCommon::NecessaryComponentCheck(kCna)) {
        answer.text += component.name + " is missing\n";
        names.push_back(component.name);
    }
    answer.document = jsonText({{"missing", names}});
    try {
        needTool();
        answer.text = "nothing is missing\n";
    } catch (const AdapterFailure& failure) {
        answer.text += names.empty() ? "the adapter tool can't be run\n" : "";
        answer.notes.emplace_back("", failure.failure());
        answer.exitCode = kComponentMissing;
    }
    return answer;
}

}  // namespace

void addComponentsCommand(CLI::App& program, Request& request) {
    CLI::App* command = program.add_subcommand("components", "Tell what the adapter commands miss on this machine");
    command->footer(std::string(kExamples) + kComponentsExitCodesHelp);
    const auto options = std::make_shared<ComponentsOptions>();
    addAnswerFormat(*command, options->format);
    command->callback([options, &request] { request.run = [options] { return printAnswer(options->format, tell); }; });
}

}  // namespace kvl::provider
