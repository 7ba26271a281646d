#include <CLI/CLI.hpp>
#include <memory>

#include "foundation/CCommon_Information.h"
#include "provider/commands/adapter_commands.h"
#include "provider/commands/adapter_words.h"
#include "provider/commands/answer.h"
#include "provider/run/adapter_session.h"

namespace kvl::provider {
namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  kvl boot-image\n"
    "\n";

constexpr int kSameKernel = 0;
constexpr int kOtherKernel = 1;

struct BootOptions {
    AnswerFormat format = AnswerFormat::kText;
    RunOptions run;
};

Answer tell(const BootOptions& options) {
    const AdapterSession session(options.run);
    const int result = CCommon_Information::CheckRAMDISK(kCna);
    if (result != kSameKernel && result != kOtherKernel) {
        throw ProviderError(kNothingCollected,
                            "the default boot entry's RAM disk could not be told: see whether 'uname -r' answers, and "
                            "whether /boot/grub/grub.conf (after a boot by EFI, /boot/efi/EFI/redhat/grub.conf) names "
                            "a default entry with an initrd line");
    }
    const bool isSame = result == kSameKernel;
    Answer answer;
    answer.text = isSame ? "the default boot entry has the RAM disk of the running kernel\n"
                         : "the default boot entry has another RAM disk than that of the running kernel, or names it "
                           "with a directory in front\n";
    answer.document = jsonText({{"result", isSame ? "running-kernel" : "other"}});
    answer.exitCode = isSame ? kReportWritten : kOtherBootImage;
    return answer;
}

}  // namespace

void addBootImageCommand(CLI::App& program, Request& request) {
    CLI::App* command =
        program.add_subcommand("boot-image", "Tell whether the default boot entry is the running kernel's");
    command->footer(std::string(kExamples) + kBootImageExitCodesHelp);
    const auto options = std::make_shared<BootOptions>();
    addAnswerFormat(*command, options->format);
    addRunOptions(*command, options->run);
    command->callback([options, &request] {
        request.run = [options] { return printAnswer(options->format, [options] { return tell(*options); }); };
    });
}

}  // namespace kvl::provider
