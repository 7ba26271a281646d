#include <CLI/CLI.hpp>
#include <array>
#include <cstdlib>
#include <memory>
#include <vector>

#include "adapter/CEmulexCommon.h"
#include "provider/commands/adapter_words.h"
#include "provider/commands/answer.h"
#include "provider/commands/update_commands.h"
#include "provider/library/tool_check_watch.h"
#include "provider/library/working_tree.h"
#include "provider/output/text_block.h"
#include "provider/run/adapter_session.h"

namespace kvl::provider {
namespace {

using Json = nlohmann::ordered_json;
using Reason = ToolCheckReason;

constexpr const char* kExamples =
    "Examples:\n"
    "  kvl tool-check\n"
    "  kvl tool-check --format json\n"
    "\n"
    "The settings in /etc/emulexDiscConfig and /etc/emulexRMConfig are looked at, and whether rpm\n"
    "lists the package elxocmjvm.\n"
    "\n";

struct CheckOptions {
    std::string family = kCna;
    AnswerFormat format = AnswerFormat::kText;
    RunOptions run;
};

struct NamedReason {
    Reason reason;
    const char* name;
};

constexpr std::array<NamedReason, 3> kReasons = {{
    {Reason::kWrongLine, "wrong-line"},
    {Reason::kMissingLines, "missing-lines"},
    {Reason::kPackage, "package-installed"},
}};

Json nameOf(Reason reason) {
    for (const NamedReason& row : kReasons) {
        if (row.reason == reason) {
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

std::string sentence(const ToolCheckFinding& finding) {
    switch (finding.reason) {
        case Reason::kWrongLine:
            return finding.file + " has the line " + shownLine(finding.line) + " where '" + finding.expected.front() +
                   "' belongs";
        case Reason::kMissingLines:
            return finding.file + " lacks " + quotedLines(finding.expected);
        case Reason::kPackage:
            return "the package elxocmjvm is installed, which a silent install leaves out";
        default:
            return "";
    }
}

/// @throws AdapterFailure if the check didn't come to an answer
void needAnswer(const ToolCheckFinding& finding) {
    if (finding.reason == Reason::kFileNotOpened) {
        Failure failure = failureOf(kFileNotOpened);
        failure.meaning = finding.file + " could not be opened";
        failure.next =
            "see whether the OneCommand Manager is installed, which brings its settings, and run this as root";
        throw AdapterFailure(failure);
    }
    if (finding.reason == Reason::kRpmFailed) {
        Failure failure = toolFailure("the installed packages could not be told");
        failure.next =
            "see whether " + adapterTree() + "/temp/rpm_grep_result.txt can be written and the disk has room";
        throw AdapterFailure(failure);
    }
}

/// The check takes an rpm that doesn't answer for one that doesn't list the package.
void needRpm() {
    if (std::system("rpm -qa >/dev/null 2>&1") != 0) {
        Failure failure = toolFailure("'rpm -qa' failed, so whether the package elxocmjvm is installed can't be told");
        failure.next = "run that command by hand, and see what it prints";
        throw AdapterFailure(failure);
    }
}

Answer answerOf(const ToolCheckFinding& finding, bool isSilent) {
    Answer answer;
    answer.text = isSilent ? "silent install\n" : "not a silent install: " + sentence(finding) + "\n";
    Json file = finding.file.empty() ? Json(nullptr) : Json(finding.file);
    Json line = finding.reason == Reason::kWrongLine ? Json(finding.line) : Json(nullptr);
    answer.document = jsonText({{"silent", isSilent},
                                {"reason", nameOf(finding.reason)},
                                {"file", file},
                                {"line", line},
                                {"expected", finding.expected}});
    answer.exitCode = isSilent ? kReportWritten : kToolNotSilent;
    return answer;
}

Answer check(const CheckOptions& options) {
    ToolCheckWatch watch;
    AdapterSession session(options.run);
    needAdapterTree();
    if (session.display() != nullptr) {
        session.display()->begin("the tool's settings and rpm -qa");
    }
    session.watchProcedure(&watch);
    const bool isSilent = CEmulexCommon::OCMInstallCheck("", "OCM", options.family);
    session.watchProcedure(nullptr);
    needAnswer(watch.finding());
    if (isSilent) {
        needRpm();
    }
    return answerOf(watch.finding(), isSilent);
}

}  // namespace

void addToolCheckCommand(CLI::App& program, Request& request) {
    CLI::App* command =
        program.add_subcommand("tool-check", "Tell whether the management tool stands as a silent install left it");
    command->footer(std::string(kExamples) + kToolCheckExitCodesHelp);
    const auto options = std::make_shared<CheckOptions>();
    addFamily(*command, options->family, "The name in the trace (default: cna)");
    addAnswerFormat(*command, options->format);
    addRunOptions(*command, options->run);
    command->callback([options, &request] {
        request.run = [options] { return printAnswer(options->format, [options] { return check(*options); }); };
    });
}

}  // namespace kvl::provider
