#include <memory>

#include "provider/commands/answer.h"
#include "provider/commands/commands.h"
#include "provider/commands/options.h"
#include "provider/library/adapter_inventory.h"
#include "provider/library/adapter_kinds.h"

namespace kvl::provider {
namespace {

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl components\n"
    "\n"
    "Exit codes:\n"
    "  0   nothing is missing\n"
    "  2   wrong usage\n"
    "  3   the answer could not be written\n"
    "  16  something is, or can't be run (named on standard error)\n";

/// The exit code besides 0, which stands for nothing missing.
enum ComponentsExit : int {
    kComponentMissing = 16,  ///< It is missing, or can't be run.
};

struct ComponentsOptions {
    AnswerFormat format = AnswerFormat::kText;
};

Answer findMissing() {
    Answer answer;
    Json names = Json::array();
    for (const CNecessaryComponentInfo& component : CEmulexCommon::NecessaryComponentCheck(kCna)) {
        answer.text += component.name + " is missing\n";
        names.push_back(component.name);
    }
    answer.document = {{"missing", names}};
    try {
        requireTool();
        answer.text = "nothing is missing\n";
    } catch (const AdapterFailure& failure) {
        answer.text += names.empty() ? "the adapter tool can't be run\n" : "";
        answer.gaps.emplace_back("", failure.failure());
        answer.exitCode = kComponentMissing;
    }
    return answer;
}

}  // namespace

void addComponentsCommand(CLI::App& program, Request& request) {
    CLI::App& command = addCommand(program, "components", "Tell what the adapter commands miss on this machine", kHelp);
    const auto options = std::make_shared<ComponentsOptions>();
    addAnswerFormat(command, options->format);
    whenChosen(command,
               [options, &request] { answerWith(request, options->format, [options] { return findMissing(); }); });
}

}  // namespace kvl::provider
