#include <memory>

#include "provider/commands/answer.h"
#include "provider/commands/arguments.h"
#include "provider/commands/commands.h"
#include "provider/commands/options.h"

namespace kvl::provider {
namespace {

constexpr const char* kHelp =
    "Firmware of the family fc has two fields, as in 2.72a2; all other versions have four\n"
    "numbers, as in 4.6.281.21. Boot code versions are not compared.\n"
    "\n"
    "Examples:\n"
    "  kvl compare 4.6.281.21 4.6.281.26 --kind firmware --family cna\n"
    "  kvl compare 2.72a2 2.72b1 --kind firmware --family fc\n"
    "\n"
    "Exit codes:\n"
    "  0   NEW is equal to OLD\n"
    "  2   wrong usage\n"
    "  3   the answer could not be written\n"
    "  10  NEW is older\n"
    "  11  NEW is newer\n"
    "  12  one of them is not a version of this kind (named on standard error)\n";

/// The exit codes besides 0, which stands for equal versions.
enum CompareExit : int {
    kOlder = 10,
    kNewer = 11,
    kNotAVersion = 12,
};

struct CompareOptions {
    std::string oldVersion;
    std::string newVersion;
    const ModuleKind* kind = nullptr;
    std::string family;
    AnswerFormat format = AnswerFormat::kText;
};

struct Outcome {
    const char* text;
    int exitCode;
};

/// The library gives 0 for a wrong form too, and reports that by its last error alone.
Outcome compareVersions(const std::string& oldVersion, const std::string& newVersion, const CompareOptions& options) {
    CEmulexCommon::SetLastError(0);
    const int result = CEmulexCommon::CheckVendorVersion(oldVersion, newVersion, options.kind->value, options.family);
    if (result != 0) {
        return result > 0 ? Outcome{"newer", kNewer} : Outcome{"older", kOlder};
    }
    return CEmulexCommon::GetLastError() == 0 ? Outcome{"equal", kAnswered} : Outcome{"not a version", kNotAVersion};
}

/// A text that can't be compared with itself is no version.
void addWrongForm(const std::string& name, const std::string& version, const CompareOptions& options, Answer& answer) {
    if (compareVersions(version, version, options).exitCode != kNotAVersion) {
        return;
    }
    Failure failure = failureOf(kBadVersion);
    failure.meaning = "'" + version + "' is not a version of this kind";
    const bool hasTwoFields = options.kind->value == EMULEX_MODULE_FIRMWARE && options.family == kFc;
    failure.next = hasTwoFields ? "firmware of the family fc has two fields, as in 2.72a2"
                                : "give four numbers, as in 4.6.281.21; letters may follow the last";
    answer.gaps.emplace_back(name, failure);
}

Answer compare(const CompareOptions& options) {
    const Outcome outcome = compareVersions(options.oldVersion, options.newVersion, options);
    Answer answer;
    answer.text = std::string(outcome.text) + "\n";
    answer.document = {{"old", options.oldVersion},
                       {"new", options.newVersion},
                       {"kind", options.kind->name},
                       {"family", options.family},
                       {"result", outcome.text}};
    answer.exitCode = outcome.exitCode;
    addWrongForm("OLD", options.oldVersion, options, answer);
    addWrongForm("NEW", options.newVersion, options, answer);
    return answer;
}

}  // namespace

void addCompareCommand(CLI::App& program, Request& request) {
    CLI::App& command = addCommand(program, "compare", "Tell which of two versions is the newer", kHelp);
    const auto options = std::make_shared<CompareOptions>();
    addVersion(command, "OLD", options->oldVersion, "The version to compare with");
    addVersion(command, "NEW", options->newVersion, "The version that is older, equal or newer");
    addComparableKind(command, options->kind);
    addRequiredFamily(command, options->family, "The adapter's family");
    addAnswerFormat(command, options->format);
    whenChosen(command,
               [options, &request] { answerWith(request, options->format, [options] { return compare(*options); }); });
}

}  // namespace kvl::provider
