#include "tests/provider/kvl_program.h"

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>

namespace kvl::test {

namespace fs = std::filesystem;

std::string quoted(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        line += (line.empty() ? "'" : " '") + word + "'";
    }
    return line;
}

Outcome runKvl(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {KVL_PROGRAM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return runOutside(quoted(words));
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
        std::vector<std::string> words = {KVL_PROGRAM};
        words.insert(words.end(), arguments.begin(), arguments.end());
        execl("/bin/sh", "sh", "-c", quoted(words).c_str(), nullptr);
        _exit(127);
    }
    std::string shown;
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t count = read(terminal, buffer.data(), buffer.size());
        if (count > 0) {
            shown.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            break;
        }
    }
    close(terminal);
    waitpid(process, nullptr, 0);
    return shown;
}

machines::PrivateRootOptions rootWithKvl(const std::string& recording) {
    machines::PrivateRootOptions options;
    options.recording = recording;
    options.binds = {{fs::path(KVL_PROGRAM).parent_path().string()}, {fs::path(KVL_LIBRARY).parent_path().string()}};
    for (const char* name : {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (const char* value = std::getenv(name)) {
            options.environment[name] = value;
        }
    }
    return options;
}

std::string copyRecording(const std::string& machine, const ScratchDirectory& scratch) {
    const std::string copy = scratch / machine;
    fs::copy(fs::path(KVL_MACHINES_FOLDER) / machine, copy, fs::copy_options::recursive);
    return copy;
}

}  // namespace kvl::test
