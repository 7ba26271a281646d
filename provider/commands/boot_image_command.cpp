#include <memory>

#include "foundation/CCommon_Information.h"
#include "provider/commands/answer.h"
#include "provider/commands/commands.h"
#include "provider/commands/options.h"
#include "provider/library/adapter_kinds.h"
#include "provider/run/run.h"

namespace kvl::provider {
namespace {

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl boot-image\n"
    "\n"
    "Exit codes:\n"
    "  0   the default boot entry has the running kernel's RAM disk\n"
    "  2   wrong usage\n"
    "  3   that could not be told; the reason stands on standard error\n"
    "  15  it has another, or names it with a directory in front\n";

constexpr int kSameKernel = 0;
constexpr int kOtherKernel = 1;

/// The exit code besides 0, which stands for the running kernel's RAM disk.
enum BootImageExit : int {
    kOtherBootImage = 15,  ///< Another kernel may start next than the running one.
};

struct BootOptions {
    AnswerFormat format = AnswerFormat::kText;
    RunOptions run;
};

Answer lookAtBootEntry(const BootOptions& options) {
    const Run run(options.run, Turn::kTake);
    const int result = CCommon_Information::CheckRAMDISK(kCna);
    if (result != kSameKernel && result != kOtherKernel) {
        throw ProviderError(
            "the default boot entry's RAM disk could not be told: see whether 'uname -r' answers, and "
            "whether /boot/grub/grub.conf (after a boot by EFI, /boot/efi/EFI/redhat/grub.conf) names "
            "a default entry with an initrd line");
    }
    const bool isSame = result == kSameKernel;
    Answer answer;
    answer.text = isSame ? "the default boot entry has the RAM disk of the running kernel\n"
                         : "the default boot entry has another RAM disk than that of the running kernel, or names it "
                           "with a directory in front\n";
    answer.document = {{"result", isSame ? "running-kernel" : "other"}};
    answer.exitCode = isSame ? static_cast<int>(kAnswered) : kOtherBootImage;
    return answer;
}

}  // namespace

void addBootImageCommand(CLI::App& program, Request& request) {
    CLI::App& command =
        addCommand(program, "boot-image", "Tell whether the default boot entry is the running kernel's", kHelp);
    const auto options = std::make_shared<BootOptions>();
    addAnswerFormat(command, options->format);
    addRunOptions(command, options->run);
    whenChosen(command, [options, &request] {
        answerWith(request, options->format, [options] { return lookAtBootEntry(*options); });
    });
}

}  // namespace kvl::provider
