#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <list>
#include <memory>

#include "adapter/CEmulexCommon.h"
#include "adapter/update_marks.h"
#include "provider/commands/adapter_words.h"
#include "provider/commands/answer.h"
#include "provider/commands/update_commands.h"
#include "provider/library/working_tree.h"
#include "provider/output/text_block.h"
#include "provider/run/adapter_session.h"
#include "provider/run/noted_signals.h"

namespace kvl::provider {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kExamples =
    "Examples:\n"
    "  kvl pending                                lists what is marked\n"
    "  kvl pending --add nic --add iscsi          marks two kinds\n"
    "  kvl pending --take                         lists what is marked, and takes the marks away\n"
    "\n";

/// A kind of update that can be marked.
struct Kind {
    const char* word;  ///< on the command line
    int number;        ///< for the library

    const UpdateMark& mark() const { return kUpdateMarks[static_cast<std::size_t>(number) - 1]; }
    const char* text() const { return mark().text; }
};

constexpr std::array<Kind, kUpdateMarks.size()> kKinds = {{{"nic", 1}, {"fcoe", 2}, {"iscsi", 3}}};

using Kinds = std::vector<const Kind*>;

struct PendingOptions {
    std::array<bool, kKinds.size()> isAdded{};  ///< in the order of the kinds
    bool take = false;
    AnswerFormat format = AnswerFormat::kText;
    RunOptions run;
};

std::string markDirectory() {
    return adapterTree() + "/temp";
}

std::string markFile(const Kind& kind) {
    return adapterTree() + "/" + kind.mark().file;
}

/// @throws AdapterFailure if the mark is there, and can't be read, since the library would pass over it
bool isMarked(const Kind& kind) {
    const std::string path = markFile(kind);
    if (std::ifstream(path).is_open()) {
        return true;
    }
    if (errno == ENOENT || errno == ENOTDIR) {
        return false;
    }
    Failure failure = failureOf(kFileNotOpened);
    failure.meaning =
        path + " can't be read, so whether " + kind.text() + " is pending can't be told: " + std::strerror(errno);
    failure.next = "run this as the user whose file it is, or mend the file";
    throw AdapterFailure(failure);
}

Kinds markedKinds() {
    Kinds marked;
    for (const Kind& kind : kKinds) {
        if (isMarked(kind)) {
            marked.push_back(&kind);
        }
    }
    return marked;
}

std::vector<std::string> texts(const Kinds& kinds) {
    std::vector<std::string> list;
    for (const Kind* kind : kinds) {
        list.emplace_back(kind->text());
    }
    return list;
}

std::string shownList(const std::vector<std::string>& kinds) {
    std::string text;
    for (const std::string& kind : kinds) {
        text += kind + "\n";
    }
    return text.empty() ? "nothing is pending\n" : text;
}

Answer listPending() {
    const std::vector<std::string> marked = texts(markedKinds());
    Answer answer;
    answer.text = shownList(marked);
    answer.document = jsonText({{"pending", marked}});
    return answer;
}

/// Has the library mark a kind. @throws AdapterFailure if it can't
void mark(const Kind& kind) {
    CEmulexCommon::SetLastError(0);
    if (!CEmulexCommon::SequentialUpadateFileWrite(kind.number, "", "", kCna)) {
        Failure failure = lastFailure();
        failure.meaning = kind.text() + std::string(" is not marked: ") + markFile(kind) + " can't be written";
        failure.next =
            "see whether the file and its directory can be written, and whether the disk has room; 'kvl "
            "pending' lists what is marked";
        throw AdapterFailure(failure);
    }
}

Answer add(const PendingOptions& options) {
    const AdapterSession session(options.run);
    needAdapterTree();
    for (const Kind& kind : kKinds) {
        if (options.isAdded[static_cast<std::size_t>(&kind - kKinds.data())]) {
            mark(kind);
        }
    }
    return listPending();
}

/// Follows the library through the deletion of the marks, which it tries for nearly a minute.
class TakeWatch : public ProcedureWatch {
public:
    explicit TakeWatch(AdapterSession& session) : session_(session) {}

    void takeTrace(TRACE_DBG_LEVEL, const std::string&) override {}
    void takePause(unsigned long milliseconds) override {
        constexpr unsigned long kMillisecondsPerSecond = 1000;
        if (session_.display() != nullptr) {
            session_.display()->beginCountdown("a mark can't be deleted, trying again",
                                               milliseconds / kMillisecondsPerSecond);
        }
    }

private:
    AdapterSession& session_;
};

/// A take would hand back marks and leave others in their place.
void needDeletable(const Kinds& marked) {
    const std::string directory = markDirectory();
    if (!marked.empty() && access(directory.c_str(), W_OK) != 0) {
        throw ProviderError(kNothingCollected, "nothing was taken: the marks in " + directory + " can't be deleted (" +
                                                   std::strerror(errno) +
                                                   "): run this as the user whose directory it is, or make it "
                                                   "writable");
    }
}

/// What the library hands back was marked; what is still marked behind that stays.
Answer answerTake(const std::vector<std::string>& found, const Kinds& staying) {
    const std::vector<std::string> left = texts(staying);
    std::vector<std::string> taken;
    std::copy_if(found.begin(), found.end(), std::back_inserter(taken),
                 [&left](const std::string& kind) { return std::find(left.begin(), left.end(), kind) == left.end(); });
    Answer answer;
    answer.text = taken.empty() && !left.empty() ? "" : shownList(taken);
    answer.document = jsonText({{"taken", taken}, {"staying", left}});
    if (!left.empty()) {
        answer.notes.push_back(joined(left) + " stay" + (left.size() == 1 ? "s" : "") + " marked: " +
                               markFile(*staying.front()) + " can't be deleted; remove it by hand, and take again");
        answer.exitCode = kNothingCollected;
    }
    return answer;
}

/// Marks that are taken and have not been told yet: they would be lost.
struct TakenMarks {
    std::unique_ptr<NotedSignals> signals;
    std::list<std::string> kinds;
};

Answer take(const PendingOptions& options, TakenMarks& taken) {
    AdapterSession session(options.run);
    needAdapterTree();
    needDeletable(markedKinds());
    taken.signals = std::make_unique<NotedSignals>([](int signal) {
        std::cerr << "kvl: " << strsignal(signal) << ": noted; the marks are handed back first" << std::endl;
    });
    TakeWatch watch(session);
    session.watchProcedure(&watch);
    const bool areTaken = CEmulexCommon::SequentialUpadateFileRead(&taken.kinds, kCna);
    session.watchProcedure(nullptr);
    return answerTake({taken.kinds.begin(), taken.kinds.end()}, areTaken ? Kinds() : markedKinds());
}

/// Takes the marks and prints them. If nobody gets to read them they are marked again.
int takeAndPrint(const PendingOptions& options) {
    TakenMarks taken;
    try {
        return printAnswer(options.format, [&] { return take(options, taken); });
    } catch (const ProviderError&) {
        for (const Kind& kind : kKinds) {
            if (std::find(taken.kinds.begin(), taken.kinds.end(), kind.text()) != taken.kinds.end()) {
                mark(kind);
            }
        }
        throw;
    }
}

int printPending(const PendingOptions& options) {
    const bool isAnyAdded = std::find(options.isAdded.begin(), options.isAdded.end(), true) != options.isAdded.end();
    return options.take ? takeAndPrint(options)
                        : printAnswer(options.format, [&] { return isAnyAdded ? add(options) : listPending(); });
}

std::size_t indexOf(const std::string& word) {
    const auto* found = std::find_if(kKinds.begin(), kKinds.end(), [&](const Kind& kind) { return kind.word == word; });
    if (found == kKinds.end()) {
        throw CLI::ValidationError("--add: '" + word + "' is none of nic|fcoe|iscsi");
    }
    return static_cast<std::size_t>(found - kKinds.begin());
}

void addMarkOptions(CLI::App& command, PendingOptions& options) {
    const auto takeWords = [&options](const std::vector<std::string>& words) {
        for (const std::string& word : words) {
            options.isAdded[indexOf(word)] = true;
        }
    };
    CLI::Option* add = command.add_option_function<std::vector<std::string>>(
        "--add", takeWords, "Mark a kind of update as pending; may be repeated");
    add->type_name("nic|fcoe|iscsi")->allow_extra_args(false);
    command.add_flag("--take", options.take, "Hand the marked kinds back, and take the marks away")->excludes(add);
}

}  // namespace

void addPendingCommand(CLI::App& program, Request& request) {
    CLI::App* command = program.add_subcommand("pending", "List the kinds of updates that are marked as pending");
    command->footer(std::string(kExamples) + kPendingExitCodesHelp);
    const auto options = std::make_shared<PendingOptions>();
    addMarkOptions(*command, *options);
    addAnswerFormat(*command, options->format);
    addRunOptions(*command, options->run);
    command->callback([options, &request] { request.run = [options] { return printPending(*options); }; });
}

}  // namespace kvl::provider
