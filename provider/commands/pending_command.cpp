#include <algorithm>
#include <array>
#include <cstring>
#include <iostream>
#include <iterator>
#include <list>
#include <memory>

#include "adapter/CEmulexCommon.h"
#include "provider/commands/answer.h"
#include "provider/commands/commands.h"
#include "provider/commands/options.h"
#include "provider/library/adapter_kinds.h"
#include "provider/library/working_tree.h"
#include "provider/output/text_block.h"
#include "provider/run/noted_signals.h"
#include "provider/run/run.h"
#include "provider/update/pending_marks.h"

namespace kvl::provider {
namespace {

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl pending                                lists what is marked\n"
    "  kvl pending --add nic --add iscsi          marks two kinds\n"
    "  kvl pending --take                         lists what is marked, and takes the marks away\n"
    "\n"
    "Exit codes:\n"
    "  0   listed, marked or taken\n"
    "  2   wrong usage\n"
    "  3   that could not be done, or not wholly; the reason stands on standard error\n";

/// The exit code if marks stay that were to be taken.
enum PendingExit : int {
    kPartlyTaken = 3,
};

struct PendingOptions {
    std::array<bool, kPendingKinds.size()> isAdded{};  ///< in the order of the kinds
    bool takes = false;
    AnswerFormat format = AnswerFormat::kText;
    RunOptions run;
};

std::string shownList(const std::vector<std::string>& titles) {
    std::string text;
    for (const std::string& title : titles) {
        text += title + "\n";
    }
    return text.empty() ? "nothing is pending\n" : text;
}

Answer listPending() {
    const std::vector<std::string> marked = titlesOf(markedKinds());
    Answer answer;
    answer.text = shownList(marked);
    answer.document = {{"pending", marked}};
    return answer;
}

Answer addMarks(const PendingOptions& options) {
    const Run run(options.run, Turn::kTake);
    WorkingTree::inUse().make();
    for (std::size_t place = 0; place < kPendingKinds.size(); ++place) {
        if (options.isAdded[place]) {
            markAsPending(kPendingKinds[place]);
        }
    }
    return listPending();
}

/// What the library hands back was marked; what is still marked after that stays.
Answer answerTaken(const std::vector<std::string>& found, const PendingKinds& staying, int signal) {
    const std::vector<std::string> left = titlesOf(staying);
    std::vector<std::string> taken;
    std::copy_if(found.begin(), found.end(), std::back_inserter(taken), [&left](const std::string& title) {
        return std::find(left.begin(), left.end(), title) == left.end();
    });
    Answer answer;
    answer.text = taken.empty() && !left.empty() ? "" : shownList(taken);
    answer.document = {{"taken", taken}, {"staying", left}};
    if (signal != 0) {
        answer.document["interrupted_by"] = signalName(signal);
    }
    if (!left.empty()) {
        answer.gaps.emplace_back(joined(left) + " stay" + (left.size() == 1 ? "s" : "") + " marked: " +
                                 staying.front()->markFile() + " can't be deleted; remove it by hand, and take again");
        answer.exitCode = kPartlyTaken;
    }
    return answer;
}

/// Marks that are taken and not printed yet: they would be lost.
struct TakenMarks {
    std::unique_ptr<NotedSignals> signals;
    std::list<std::string> titles;
};

Answer takeMarks(const PendingOptions& options, TakenMarks& taken) {
    Run run(options.run, Turn::kTake);
    WorkingTree::inUse().make();
    requireDeletableMarks(markedKinds());
    taken.signals = std::make_unique<NotedSignals>([](int signal) {
        std::cerr << "kvl: " << strsignal(signal) << ": noted; the marks are handed back first" << std::endl;
    });
    constexpr unsigned long kMillisecondsPerSecond = 1000;
    const auto showPause = [&run](unsigned long milliseconds) {
        run.display().countDown("a mark can't be deleted, trying again", milliseconds / kMillisecondsPerSecond);
    };
    const Listening listening(run, {{}, {}, showPause, {}});
    const bool areTaken = CEmulexCommon::SequentialUpadateFileRead(&taken.titles, kCna);
    return answerTaken({taken.titles.begin(), taken.titles.end()}, areTaken ? PendingKinds() : markedKinds(),
                       taken.signals->first());
}

/// Takes the marks and prints them. Marks them again if they can't be printed.
int takeAndPrint(const PendingOptions& options) {
    TakenMarks taken;
    try {
        return printAnswer(options.format, [&] { return takeMarks(options, taken); });
    } catch (const ProviderError&) {
        for (const PendingKind& kind : kPendingKinds) {
            if (std::find(taken.titles.begin(), taken.titles.end(), kind.title()) != taken.titles.end()) {
                markAsPending(kind);
            }
        }
        throw;
    }
}

int printPending(const PendingOptions& options) {
    const bool isAnyAdded = std::find(options.isAdded.begin(), options.isAdded.end(), true) != options.isAdded.end();
    return options.takes ? takeAndPrint(options)
                         : printAnswer(options.format, [&] { return isAnyAdded ? addMarks(options) : listPending(); });
}

void addMarkOptions(CLI::App& command, PendingOptions& options) {
    const auto receive = [&options](std::size_t place) { options.isAdded[place] = true; };
    CLI::Option* add = addRepeatableOneOf(command, "--add", namesOf(kPendingKinds), receive,
                                          "Mark a kind of update as pending; may be repeated");
    forbidTogether(*addFlag(command, "--take", options.takes, "Hand the marked kinds back, and take the marks away"),
                   *add);
}

}  // namespace

void addPendingCommand(CLI::App& program, Request& request) {
    CLI::App& command = addCommand(program, "pending", "List the kinds of updates that are marked as pending", kHelp);
    const auto options = std::make_shared<PendingOptions>();
    addMarkOptions(command, *options);
    addAnswerFormat(command, options->format);
    addRunOptions(command, options->run);
    whenChosen(command, [options, &request] {
        request.failureCode = kNoAnswer;
        request.run = [options] { return printPending(*options); };
    });
}

}  // namespace kvl::provider
