#include <array>
#include <cstdlib>
#include <memory>
#include <vector>

#include "adapter/CEmulexCommon.h"
#include "provider/commands/answer.h"
#include "provider/commands/arguments.h"
#include "provider/commands/commands.h"
#include "provider/commands/options.h"
#include "provider/library/silent_install.h"
#include "provider/library/working_tree.h"
#include "provider/output/text_block.h"
#include "provider/run/run.h"

namespace kvl::provider {
namespace {

using Fault = SilentInstallFault;

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl tool-check\n"
    "  kvl tool-check --format json\n"
    "\n"
    "The settings in /etc/emulexDiscConfig and /etc/emulexRMConfig are looked at, and whether rpm\n"
    "lists the package elxocmjvm.\n"
    "\n"
    "Exit codes:\n"
    "  0   the tool stands as a silent install left it\n"
    "  2   wrong usage\n"
    "  3   that could not be told; the reason stands on standard error\n"
    "  17  it does not\n";

/// The exit code besides 0, which stands for a silent install.
enum ToolCheckExit : int {
    kToolNotSilent = 17,
};

struct CheckOptions {
    std::string family = kCna;
    AnswerFormat format = AnswerFormat::kText;
    RunOptions run;
};

struct NamedFault {
    Fault fault;
    const char* name;
};

constexpr std::array<NamedFault, 3> kFaults = {{
    {Fault::kWrongLine, "wrong-line"},
    {Fault::kMissingLines, "missing-lines"},
    {Fault::kPackage, "package-installed"},
}};

Json nameOf(Fault fault) {
    for (const NamedFault& row : kFaults) {
        if (row.fault == fault) {
            return row.name;
        }
    }
    return nullptr;
}

/// The line as it stands, but for what can't be printed.
std::string shownLine(const std::string& line) {
    const std::string shown = printable(line);
    return "'" + shown + "'" + (shown == line ? "" : ", with a character that can't be printed,");
}

std::string quotedLines(const std::vector<std::string>& lines) {
    std::vector<std::string> words;
    for (const std::string& line : lines) {
        words.push_back("'" + line + "'");
    }
    return joined(words);
}

std::string sentence(const SilentInstallFinding& finding) {
    switch (finding.fault) {
        case Fault::kWrongLine:
            return finding.file + " has the line " + shownLine(finding.line) + " where '" + finding.expected.front() +
                   "' belongs";
        case Fault::kMissingLines:
            return finding.file + " lacks " + quotedLines(finding.expected);
        case Fault::kPackage:
            return "the package elxocmjvm is installed, which a silent install leaves out";
        default:
            return "";
    }
}

/// @throws AdapterFailure if the check gave no answer
void requireAnswer(const SilentInstallFinding& finding) {
    if (finding.fault == Fault::kFileNotOpened) {
        Failure failure = failureOf(kFileNotOpened);
        failure.meaning = finding.file + " could not be opened";
        failure.next =
            "see whether the OneCommand Manager is installed, which brings its settings, and run this as root";
        throw AdapterFailure(failure);
    }
    if (finding.fault == Fault::kPackagesUnknown) {
        Failure failure = toolFailure("the installed packages could not be told");
        failure.next = "see whether " + WorkingTree::inUse().packagesFile() + " can be written and the disk has room";
        throw AdapterFailure(failure);
    }
}

/// The check takes a failed rpm for one that doesn't list the package.
void requireRpm() {
    if (std::system("rpm -qa >/dev/null 2>&1") != 0) {
        Failure failure = toolFailure("'rpm -qa' failed, so whether the package elxocmjvm is installed can't be told");
        failure.next = "run that command by hand, and see what it prints";
        throw AdapterFailure(failure);
    }
}

Answer answerOf(const SilentInstallFinding& finding, bool isSilent) {
    Answer answer;
    answer.text = isSilent ? "silent install\n" : "not a silent install: " + sentence(finding) + "\n";
    Json file = finding.file.empty() ? Json(nullptr) : Json(finding.file);
    Json line = finding.fault == Fault::kWrongLine ? Json(finding.line) : Json(nullptr);
    answer.document = {{"silent", isSilent},
                       {"reason", nameOf(finding.fault)},
                       {"file", file},
                       {"line", line},
                       {"expected", finding.expected}};
    answer.exitCode = isSilent ? static_cast<int>(kAnswered) : kToolNotSilent;
    return answer;
}

Answer check(const CheckOptions& options) {
    SilentInstallFollower follower;
    Run run(options.run, Turn::kTake);
    WorkingTree::inUse().make();
    run.display().countUp("the tool's settings and rpm -qa");
    bool isSilent = false;
    {
        const auto follow = [&follower](TRACE_DBG_LEVEL level, const std::string& text) {
            follower.follow(level, text);
        };
        const Listening listening(run, {follow, {}, {}, {}});
        isSilent = CEmulexCommon::OCMInstallCheck("", "OCM", options.family);
    }
    const SilentInstallFinding& finding = follower.finding();
    requireAnswer(finding);
    if (isSilent) {
        requireRpm();
    }
    return answerOf(finding, isSilent);
}

}  // namespace

void addToolCheckCommand(CLI::App& program, Request& request) {
    CLI::App& command =
        addCommand(program, "tool-check", "Tell whether the management tool stands as a silent install left it", kHelp);
    const auto options = std::make_shared<CheckOptions>();
    addFamily(command, options->family, "The name in the trace (default: cna)");
    addAnswerFormat(command, options->format);
    addRunOptions(command, options->run);
    whenChosen(command,
               [options, &request] { answerWith(request, options->format, [options] { return check(*options); }); });
}

}  // namespace kvl::provider
