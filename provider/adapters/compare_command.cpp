#include <CLI/CLI.hpp>
#include <memory>

#include "provider/adapters/adapter_answer.h"
#include "provider/adapters/adapter_commands.h"
#include "provider/adapters/adapter_words.h"

namespace kvl::provider {
namespace {

constexpr const char* kExamples =
    "Firmware of the family fc has two fields, as in 2.72a2; all other versions have four\n"
    "numbers, as in 4.6.281.21. Boot code versions are not compared.\n"
    "\n"
    "Examples:\n"
    "  kvl compare 4.6.281.21 4.6.281.26 --kind firmware --family cna\n"
    "  kvl compare 2.72a2 2.72b1 --kind firmware --family fc\n"
    "\n";

struct CompareOptions {
    std::string oldVersion;
    std::string newVersion;
    const ModuleKind* kind = nullptr;
    std::string family;
    AnswerFormat format = AnswerFormat::kText;
};

struct Outcome {
    const char* text;
    ExitCode exitCode;
};

/// The library gives 0 for a wrong form too, and tells that by its last error alone.
Outcome judge(int result) {
    if (result != 0) {
        return result > 0 ? Outcome{"newer", kNewer} : Outcome{"older", kOlder};
    }
    return CEmulexCommon::GetLastError() == 0 ? Outcome{"equal", kReportWritten}
                                              : Outcome{"not a version", kNotAVersion};
}

Answer compare(const CompareOptions& options) {
    CEmulexCommon::SetLastError(0);
    const Outcome outcome = judge(
        CEmulexCommon::CheckVendorVersion(options.oldVersion, options.newVersion, options.kind->value, options.family));
    Answer answer;
    answer.text = std::string(outcome.text) + "\n";
    answer.document = jsonText({{"old", options.oldVersion},
                                {"new", options.newVersion},
                                {"kind", options.kind->name},
                                {"family", options.family},
                                {"result", outcome.text}});
    answer.exitCode = outcome.exitCode;
    return answer;
}

void checkComparable(const CompareOptions& options) {
    if (options.kind->value == EMULEX_MODULE_BOOT_BIOS) {
        throw ProviderError(kWrongUsage, "versions of boot code are not compared: --kind firmware, driver or tool");
    }
}

}  // namespace

void addCompareCommand(CLI::App& program, Request& request) {
    CLI::App* command = program.add_subcommand("compare", "Tell which of two versions is the newer");
    command->footer(std::string(kExamples) + kCompareExitCodesHelp);
    const auto options = std::make_shared<CompareOptions>();
    addVersion(*command, "OLD", options->oldVersion, "The version to compare with");
    addVersion(*command, "NEW", options->newVersion, "The version that is older, equal or newer");
    addKind(*command, options->kind, "The module");
    addFamily(*command, options->family, "The adapter's family")->required();
    addAnswerFormat(*command, options->format);
    command->callback([options, &request] {
        checkComparable(*options);
        request.run = [options] { return printAnswer(options->format, [options] { return compare(*options); }); };
    });
}

}  // namespace kvl::provider
