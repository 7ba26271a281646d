#include "tests/provider/kvl_program.h"

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <utility>

namespace kvl::test {

namespace fs = std::filesystem;

namespace {

/// What is tried here is no news for this machine's system log.
constexpr const char* kNoSystemLog = "KVL_SYSTEM_LOG=no";

constexpr unsigned short kTerminalWidth = 200;

constexpr cc_t kControlC = '\x03';
constexpr cc_t kControlD = 4;

void type(int terminal, const std::string& words) {
    EXPECT_EQ(static_cast<ssize_t>(words.size()), write(terminal, words.data(), words.size()));
}

/// Reads what a process writes to its terminal until it ends.
/// @param typed  is typed as soon as the terminal has shown the text in front of it
std::string readTerminal(int terminal, pid_t process, TypedOnceShown typed = {}) {
    std::string shown;
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t count = read(terminal, buffer.data(), buffer.size());
        if (count > 0) {
            shown.append(buffer.data(), static_cast<std::size_t>(count));
            if (!typed.words.empty() && shown.find(typed.awaited) != std::string::npos) {
                type(terminal, std::exchange(typed.words, ""));
            }
        } else if (count == 0 || errno != EINTR) {
            break;
        }
    }
    close(terminal);
    waitpid(process, nullptr, 0);
    return shown;
}

std::string kvlCommand(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {"env", kNoSystemLog, KVL_PROGRAM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return "exec " + quoted(words);
}

}  // namespace

std::string quoted(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        line += (line.empty() ? "'" : " '") + word + "'";
    }
    return line;
}

Outcome runKvl(const std::vector<std::string>& arguments) {
    return runOutside(kvlCommand(arguments));
}

Outcome replayKvl(const std::string& machine, const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {"replay", machine, "--"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return runKvl(words);
}

std::string runOnTerminal(const std::vector<std::string>& arguments) {
    int terminal = -1;
    const pid_t process = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (process == 0) {
        execl("/bin/sh", "sh", "-c", kvlCommand(arguments).c_str(), nullptr);
        _exit(127);
    }
    return readTerminal(terminal, process);
}

std::string runOnTerminalInside(const machines::PrivateRootOptions& options, const std::string& script,
                                const std::string& typed) {
    return runOnTerminalInside(options, script, TypedOnceShown{"", typed});
}

std::string runOnTerminalInside(const machines::PrivateRootOptions& options, const std::string& script,
                                const TypedOnceShown& typed) {
    struct termios plain {};
    plain.c_lflag = ICANON | ISIG;
    plain.c_cflag = CS8 | CREAD;
    plain.c_cc[VINTR] = kControlC;
    plain.c_cc[VEOF] = kControlD;
    struct winsize size {};
    size.ws_col = kTerminalWidth;
    int terminal = -1;
    const pid_t process = forkpty(&terminal, nullptr, &plain, &size);
    if (process == 0) {
        _exit(machines::PrivateRoot(options).run({"/bin/sh", "-c", script}));
    }
    if (typed.awaited.empty()) {
        type(terminal, typed.words);
        return readTerminal(terminal, process);
    }
    return readTerminal(terminal, process, typed);
}

machines::PrivateRootOptions rootWithKvl(const std::string& recording) {
    machines::PrivateRootOptions options;
    options.recording = recording;
    options.binds = {{fs::path(KVL_PROGRAM).parent_path().string()}, {fs::path(KVL_LIBRARY).parent_path().string()}};
    options.environment["KVL_SYSTEM_LOG"] = "no";
    for (const char* name : {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (const char* value = std::getenv(name)) {
            options.environment[name] = value;
        }
    }
    return options;
}

std::string lockFileInside() {
    return geteuid() == 0 ? "/run/kvl/lock" : "/tmp/kvl-" + std::to_string(geteuid()) + "/lock";
}

std::string lockingInside() {
    const std::string directory = fs::path(lockFileInside()).parent_path().string();
    return "mkdir -p " + directory + "; chmod 700 " + directory + "; /usr/bin/flock " + lockFileInside() + " ";
}

std::string copyRecording(const std::string& machine, const ScratchDirectory& scratch) {
    const std::string copy = scratch / machine;
    fs::copy(fs::path(KVL_MACHINES_FOLDER) / machine, copy, fs::copy_options::recursive);
    return copy;
}

}  // namespace kvl::test
