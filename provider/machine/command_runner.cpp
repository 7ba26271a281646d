#include "provider/machine/command_runner.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "provider/machine/command_signals.h"
#include "reference_host/file_descriptor.h"

namespace kvl::provider {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;
using Words = std::vector<std::string>;

constexpr int kExitedAtLimit = 124 << 8;
constexpr int kNotFound = 127;
constexpr int kNotExecutable = 126;
constexpr int kCannotRedirect = 2;  // as dash has it; bash has 1
constexpr mode_t kFileMode = 0666;
constexpr std::size_t kKeptWords = 1024;

/// From the polite signal to the other one, and from that to giving up on a process that the kernel doesn't let go.
constexpr Milliseconds kGrace(1000);

struct Pipe {
    host::FileDescriptor readEnd;
    host::FileDescriptor writeEnd;
};

Pipe makePipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        ends = {-1, -1};
    }
    return {host::FileDescriptor(ends[0]), host::FileDescriptor(ends[1])};
}

/// Where one program's standard streams lead; -1 leaves a stream as it is.
struct Streams {
    int input = -1;
    int output = -1;
    int errors = -1;
    const char* outputFile = nullptr;
};

/// Makes a stream of a descriptor, which may already be one itself.
void become(int descriptor, int stream) {
    if (descriptor == stream) {
        fcntl(descriptor, F_SETFD, 0);
    } else if (descriptor >= 0) {
        dup2(descriptor, stream);
    }
}

std::vector<char*> pointers(Words& words) {
    std::vector<char*> list;
    for (std::string& word : words) {
        list.push_back(word.data());
    }
    list.push_back(nullptr);
    return list;
}

/// Becomes the program, between fork and exec.
[[noreturn]] void becomeProgram(const std::vector<char*>& words, const Streams& streams) {
    become(streams.input, STDIN_FILENO);
    become(streams.output, STDOUT_FILENO);
    if (streams.outputFile != nullptr) {
        const int file = open(streams.outputFile, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kFileMode);
        if (file < 0) {
            _exit(kCannotRedirect);
        }
        become(file, STDOUT_FILENO);
    }
    become(streams.errors, STDERR_FILENO);
    execvp(words.front(), words.data());
    _exit(errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG || errno == ELOOP ? kNotFound : kNotExecutable);
}

/// Starts a program in a process group. It dies with this process.
/// @param group  0 makes a group of its own; receives its number
/// @return the process, or -1
pid_t start(Words words, const Streams& streams, const CommandGuard& guard, pid_t& group) {
    const std::vector<char*> list = pointers(words);
    const pid_t parent = getpid();
    const pid_t process = fork();
    if (process == 0) {
        setpgid(0, group);
        if (group == 0) {
            guard.watch(getpid());
        }
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent) {
            _exit(kNotExecutable);
        }
        becomeProgram(list, streams);
    }
    if (process > 0) {
        setpgid(process, group);
        group = group == 0 ? process : group;
    }
    return process;
}

/// Keeps the end of what is read from a descriptor.
class TailReader {
public:
    explicit TailReader(host::FileDescriptor source) : source_(std::move(source)) {
        if (source_.isOpen()) {
            fcntl(source_.number(), F_SETFL, O_NONBLOCK);
        }
    }

    int number() const { return source_.number(); }

    void read() {
        std::array<char, 4096> buffer{};
        for (ssize_t count = 1; source_.isOpen() && count > 0;) {
            count = ::read(source_.number(), buffer.data(), buffer.size());
            if (count == 0) {
                source_.close();
            } else if (count > 0) {
                text_.append(buffer.data(), static_cast<std::size_t>(count));
                text_.erase(0, text_.size() - std::min(text_.size(), kKeptWords));
            }
        }
    }

    std::string lastLine() const {
        const auto end = text_.find_last_not_of(" \r\n");
        if (end == std::string::npos) {
            return "";
        }
        const auto before = text_.find_last_of('\n', end);
        const auto begin = before == std::string::npos ? 0 : before + 1;
        return text_.substr(begin, end + 1 - begin);
    }

private:
    host::FileDescriptor source_;
    std::string text_;
};

/// The processes of one command line that this process has started itself.
class StartedProcesses {
public:
    void add(pid_t process) { processes_.push_back({process, 0, process < 0}); }

    /// Notes which of them have ended.
    void reap() {
        for (Started& started : processes_) {
            int status = 0;
            const pid_t found = started.hasEnded ? 0 : waitpid(started.process, &status, WNOHANG);
            if (found != 0 && !(found < 0 && errno == EINTR)) {
                started.status = found > 0 ? status : -1;
                started.hasEnded = true;
            }
        }
    }

    bool haveEnded() const {
        return std::all_of(processes_.begin(), processes_.end(), [](const Started& one) { return one.hasEnded; });
    }

    /// The status of the last one, as a shell has it; -1 if that is not known.
    int status() const { return processes_.empty() || processes_.back().process < 0 ? -1 : processes_.back().status; }

private:
    struct Started {
        pid_t process;
        int status;
        bool hasEnded;
    };

    std::vector<Started> processes_;
};

/// What a command asks about: commands that end alike ask about the same.
std::string subjectOf(const PlainCommand& command) {
    return command.filter.empty() ? command.words.back() : command.filter.back();
}

/// A shell that waits for a command turns a signal that ended it into an exit code.
int asShellHasIt(int status) {
    constexpr int kSignalBase = 128;
    return WIFSIGNALED(status) ? (kSignalBase + WTERMSIG(status)) << 8 : status;
}

}  // namespace

/// How the processes of one command have ended.
struct CommandRunner::Ending {
    int status = -1;
    int signal = 0;  ///< that asked this process to end meanwhile
    bool reachedLimit = false;
    std::string lastWords;
};

CommandRunner::~CommandRunner() {
    endGroup();
}

CommandRunner::Ending CommandRunner::runProcesses(const std::string& line, const std::optional<PlainCommand>& command) {
    const CommandSignals signals;
    const host::FileDescriptor null(open("/dev/null", O_RDWR | O_CLOEXEC));
    StartedProcesses processes;
    TailReader errors{host::FileDescriptor()};
    if (!command) {
        processes.add(start({"/bin/sh", "-c", line}, {null.number()}, guard_, group_));
    } else {
        Pipe words = command->dropsErrors ? makePipe() : Pipe();
        const int dropped = words.writeEnd.isOpen() ? words.writeEnd.number() : null.number();
        Streams last = {null.number(), -1, command->dropsErrors ? dropped : -1};
        last.outputFile = command->outputFile.empty() ? nullptr : command->outputFile.c_str();
        if (command->filter.empty()) {
            processes.add(start(command->words, last, guard_, group_));
        } else {
            const Pipe between = makePipe();
            processes.add(start(command->words, {null.number(), between.writeEnd.number()}, guard_, group_));
            last.input = between.readEnd.number();
            processes.add(start(command->filter, last, guard_, group_));
        }
        errors = TailReader(std::move(words.readEnd));
    }

    Ending ending;
    const Clock::time_point begin = Clock::now();
    Clock::time_point next = limit_.count() > 0 ? begin + limit_ : Clock::time_point::max();
    int sent = 0;
    for (processes.reap(); !processes.haveEnded(); processes.reap()) {
        const Clock::time_point now = Clock::now();
        if (sent == 0 && (signals.ending() != 0 || now >= next)) {
            ending.reachedLimit = signals.ending() == 0;
            sent = SIGTERM;
            kill(-group_, sent);
            next = now + kGrace;
        } else if (sent != 0 && now >= next) {
            if (sent == SIGKILL) {
                break;  // the kernel doesn't let go of it
            }
            sent = SIGKILL;
            kill(-group_, sent);
            next = now + kGrace;
        }
        const bool isUnlimited = next == Clock::time_point::max();
        signals.wait(errors.number(), isUnlimited
                                          ? Milliseconds(-1)
                                          : std::chrono::ceil<Milliseconds>(std::max(next - now, Clock::duration(0))));
        errors.read();
    }
    errors.read();
    ending.status = processes.status();
    ending.signal = signals.ending();
    ending.lastWords = errors.lastLine();
    return ending;
}

/// Runs the command, unless one about the same reached the limit, and notes what became of it.
/// @param observation  names the command as the library knows it
const CommandObservation& CommandRunner::observe(const std::string& line, const std::optional<PlainCommand>& command,
                                                 CommandObservation observation) {
    endGroup();
    prctl(PR_SET_CHILD_SUBREAPER, 1);  // what a command leaves running stays visible
    const std::string subject = command ? subjectOf(*command) : line;
    if (hanging_.count(subject) > 0) {
        observation.wasLeftOut = true;
        observation.status = kExitedAtLimit;
        return observations_.emplace_back(std::move(observation));
    }
    const Clock::time_point begin = Clock::now();
    const Ending ending = runProcesses(line, command);
    observation.duration = std::chrono::duration_cast<Milliseconds>(Clock::now() - begin);
    observation.reachedLimit = ending.reachedLimit;
    observation.signal = !ending.reachedLimit && WIFSIGNALED(ending.status) ? WTERMSIG(ending.status) : 0;
    observation.status = ending.reachedLimit ? kExitedAtLimit : command ? asShellHasIt(ending.status) : ending.status;
    observation.lastWords = ending.lastWords;
    if (ending.reachedLimit) {
        hanging_.insert(subject);
        endGroup();
    }
    if (ending.signal != 0 && hooks_.interrupted) {
        endGroup();
        hooks_.interrupted(ending.signal);
    }
    mayStillWrite();  // forgets an empty group before its number can be another's
    return observations_.emplace_back(std::move(observation));
}

int CommandRunner::run(const std::string& line) {
    const int savedErrno = errno;
    std::optional<PlainCommand> command = readPlainCommand(line);
    CommandObservation observation;
    observation.command = command ? describe(*command) : line;
    if (command && hooks_.outgoing) {
        hooks_.outgoing(*command);
    }
    const int status = observe(line, command, std::move(observation)).status;
    if (command && status == 0 && hooks_.incoming) {
        hooks_.incoming(*command);
    }
    errno = savedErrno;
    return status;
}

int CommandRunner::run(const PlainCommand& command) {
    CommandObservation observation;
    observation.command = describe(command);
    return observe("", command, std::move(observation)).status;
}

bool CommandRunner::mayStillWrite() {
    if (group_ == 0) {
        return false;
    }
    pid_t found = 0;
    while ((found = waitpid(-group_, nullptr, WNOHANG)) > 0) {
    }
    if (found < 0 && kill(-group_, 0) != 0) {
        group_ = 0;
        guard_.watch(0);
        return false;
    }
    return true;
}

void CommandRunner::endGroup() {
    const Clock::time_point end = Clock::now() + kGrace;
    while (mayStillWrite() && Clock::now() < end) {
        kill(-group_, SIGKILL);
        const struct timespec pause = {0, 1'000'000};
        nanosleep(&pause, nullptr);
    }
    group_ = 0;
    guard_.watch(0);
}

namespace {

CommandRunner*& inCharge() {
    static CommandRunner* runner = nullptr;
    return runner;
}

}  // namespace

RunnerInCharge::RunnerInCharge(CommandRunner& runner) {
    inCharge() = &runner;
}

RunnerInCharge::~RunnerInCharge() {
    inCharge() = nullptr;
}

CommandRunner* commandRunner() {
    return inCharge();
}

}  // namespace kvl::provider
