#include <CLI/CLI.hpp>
#include <memory>

#include "foundation/CCommon_Information.h"
#include "provider/commands/adapter_commands.h"
#include "provider/commands/adapter_words.h"
#include "provider/commands/answer.h"

namespace kvl::provider {
namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  kvl slot 0b:00.1                           prints 11\n"
    "\n";

struct SlotOptions {
    std::string device;
    AnswerFormat format = AnswerFormat::kText;
};

Answer tell(const SlotOptions& options) {
    const int slot = CCommon_Information::GetPCISlotNo(options.device, kCna);
    Answer answer;
    answer.text = std::to_string(slot) + "\n";
    answer.document = jsonText({{"device", options.device}, {"slot", slot}});
    return answer;
}

}  // namespace

void addSlotCommand(CLI::App& program, Request& request) {
    CLI::App* command = program.add_subcommand("slot", "Tell the PCI slot number of a port, in decimal");
    command->footer(std::string(kExamples) + kSlotExitCodesHelp);
    const auto options = std::make_shared<SlotOptions>();
    addDevice(*command, options->device);
    addAnswerFormat(*command, options->format);
    command->callback([options, &request] {
        request.run = [options] { return printAnswer(options->format, [options] { return tell(*options); }); };
    });
}

}  // namespace kvl::provider
