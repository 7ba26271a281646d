#include <CLI/CLI.hpp>
#include <array>
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
    "  kvl driver-check lpfc 8.3.7.18\n"
    "\n";

struct DriverOptions {
    std::string driver;
    std::string version;
    AnswerFormat format = AnswerFormat::kText;
    RunOptions run;
};

struct Verdict {
    int result;
    const char* name;
    const char* sentence;  ///< behind the driver's name
    ExitCode exitCode;
};

constexpr std::array<Verdict, 3> kVerdicts = {{
    {0, "same", " has this version", kReportWritten},
    {1, "not-confirmed", " has another version, or isn't installed, or tells no version", kDriverNotConfirmed},
    {256, "awaits-boot",
     " has another version, and the default boot entry has another RAM disk than that of the running kernel, or names "
     "it with a directory in front: see which kernel it names, and if it is another, start the machine anew and check "
     "again",
     kDriverAwaitsBoot},
}};

const Verdict& judge(int result) {
    for (const Verdict& verdict : kVerdicts) {
        if (verdict.result == result) {
            return verdict;
        }
    }
    return kVerdicts[1];
}

Answer check(const DriverOptions& options) {
    const AdapterSession session(options.run);
    const Verdict& verdict = judge(CCommon_Information::DriverFileCheck(options.version, options.driver, kCna));
    Answer answer;
    answer.text = options.driver + verdict.sentence + "\n";
    answer.document = jsonText({{"driver", options.driver}, {"version", options.version}, {"result", verdict.name}});
    answer.exitCode = verdict.exitCode;
    return answer;
}

}  // namespace

void addDriverCheckCommand(CLI::App& program, Request& request) {
    CLI::App* command = program.add_subcommand("driver-check", "Tell whether an installed driver has a version");
    command->footer(std::string(kExamples) + kDriverCheckExitCodesHelp);
    const auto options = std::make_shared<DriverOptions>();
    addDriver(*command, options->driver);
    addVersion(*command, "VERSION", options->version, "The version that is expected");
    addAnswerFormat(*command, options->format);
    addRunOptions(*command, options->run);
    command->callback([options, &request] {
        request.run = [options] { return printAnswer(options->format, [options] { return check(*options); }); };
    });
}

}  // namespace kvl::provider
