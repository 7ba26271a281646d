#include <memory>

#include "foundation/CCommon_Information.h"
#include "provider/commands/answer.h"
#include "provider/commands/arguments.h"
#include "provider/commands/commands.h"
#include "provider/commands/options.h"

namespace kvl::provider {
namespace {

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl slot 0b:00.1                           prints 11\n"
    "\n"
    "Exit codes:\n"
    "  0   the slot is told\n"
    "  2   wrong usage\n"
    "  3   the answer could not be written\n";

struct SlotOptions {
    std::string device;
    AnswerFormat format = AnswerFormat::kText;
};

Answer findSlot(const SlotOptions& options) {
    const int slot = CCommon_Information::GetPCISlotNo(options.device, kCna);
    Answer answer;
    answer.text = std::to_string(slot) + "\n";
    answer.document = {{"device", options.device}, {"slot", slot}};
    return answer;
}

}  // namespace

void addSlotCommand(CLI::App& program, Request& request) {
    CLI::App& command = addCommand(program, "slot", "Tell the PCI slot number of a port, in decimal", kHelp);
    const auto options = std::make_shared<SlotOptions>();
    addDevice(command, options->device);
    addAnswerFormat(command, options->format);
    whenChosen(command,
               [options, &request] { answerWith(request, options->format, [options] { return findSlot(*options); }); });
}

}  // namespace kvl::provider
