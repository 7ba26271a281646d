#include <array>
#include <memory>

#include "foundation/CCommon_Information.h"
#include "provider/commands/answer.h"
#include "provider/commands/arguments.h"
#include "provider/commands/commands.h"
#include "provider/commands/options.h"
#include "provider/run/run.h"

namespace kvl::provider {
namespace {

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl driver-check lpfc 8.3.7.18\n"
    "\n"
    "Exit codes:\n"
    "  0   the installed driver has this version\n"
    "  2   wrong usage\n"
    "  3   the check could not begin; the reason stands on standard error\n"
    "  13  it has another version, or nothing could be found out\n"
    "  14  it has another version, and the default boot entry has another RAM disk than that of\n"
    "      the running kernel, or names it with a directory in front\n";

/// The exit codes besides 0, which stands for a driver of that version.
enum DriverCheckExit : int {
    kDriverNotConfirmed = 13,  ///< It has another version, or nothing could be found out.
    kDriverAwaitsBoot = 14,    ///< It has another, and another kernel may start next than the running one.
};

struct DriverOptions {
    std::string driver;
    std::string version;
    AnswerFormat format = AnswerFormat::kText;
    RunOptions run;
};

struct Verdict {
    int result;
    const char* name;
    const char* sentence;  ///< after the driver's name
    int exitCode;
};

constexpr std::array<Verdict, 3> kVerdicts = {{
    {0, "same", " has this version", kAnswered},
    {1, "not-confirmed", " has another version, or isn't installed, or tells no version", kDriverNotConfirmed},
    {256, "awaits-boot",
     " has another version, and the default boot entry has another RAM disk than that of the running kernel, or names "
     "it with a directory in front: see which kernel it names, and if it is another, start the machine anew and check "
     "again",
     kDriverAwaitsBoot},
}};

const Verdict& verdictOn(int result) {
    for (const Verdict& verdict : kVerdicts) {
        if (verdict.result == result) {
            return verdict;
        }
    }
    return kVerdicts[1];
}

Answer check(const DriverOptions& options) {
    const Run run(options.run, Turn::kTake);
    const Verdict& verdict = verdictOn(CCommon_Information::DriverFileCheck(options.version, options.driver, kCna));
    Answer answer;
    answer.text = options.driver + verdict.sentence + "\n";
    answer.document = {{"driver", options.driver}, {"version", options.version}, {"result", verdict.name}};
    answer.exitCode = verdict.exitCode;
    return answer;
}

}  // namespace

void addDriverCheckCommand(CLI::App& program, Request& request) {
    CLI::App& command = addCommand(program, "driver-check", "Tell whether an installed driver has a version", kHelp);
    const auto options = std::make_shared<DriverOptions>();
    addDriver(command, options->driver);
    addVersion(command, "VERSION", options->version, "The version that is expected");
    addAnswerFormat(command, options->format);
    addRunOptions(command, options->run);
    whenChosen(command,
               [options, &request] { answerWith(request, options->format, [options] { return check(*options); }); });
}

}  // namespace kvl::provider
