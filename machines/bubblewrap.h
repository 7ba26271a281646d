#ifndef KVL_MACHINES_BUBBLEWRAP_H
#define KVL_MACHINES_BUBBLEWRAP_H

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <functional>
#include <string>
#include <system_error>
#include <vector>

#include "machines/descriptor.h"

namespace kvl::machines {

/// How a run of bubblewrap has ended.
struct BubblewrapEnding {
    bool programRan = false;  ///< false if bubblewrap failed first, for which it has no exit code of its own
    int status = 0;           ///< exit status, or 128 and the signal that ended it
};

/// What else is done when bubblewrap is started.
struct BubblewrapStart {
    std::function<void()> inChild;                 ///< Before bubblewrap takes the child's place.
    std::function<void(pid_t process)> isStarted;  ///< In this process, before it waits.
};

/// The words as `exec` wants them. They must live as long as the result.
inline std::vector<char*> wordPointers(std::vector<std::string>& words) {
    std::vector<char*> list;
    list.reserve(words.size() + 1);
    for (std::string& word : words) {
        list.push_back(word.data());
    }
    list.push_back(nullptr);
    return list;
}

/// Runs bubblewrap with this process's standard streams and waits for its end.
/// @param words  the path of bubblewrap and its arguments
/// @throws std::system_error if no process can be started
inline BubblewrapEnding runBubblewrap(std::vector<std::string> words, const BubblewrapStart& start) {
    const auto fail = [](const char* what) { throw std::system_error(errno, std::generic_category(), what); };
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        fail("pipe");
    }
    const Descriptor statusIn(ends[0]);
    Descriptor statusOut(ends[1]);
    words.insert(words.begin() + 1, {"--json-status-fd", std::to_string(statusOut.number())});
    const std::vector<char*> list = wordPointers(words);

    const pid_t process = fork();
    if (process < 0) {
        fail("fork");
    }
    if (process == 0) {
        start.inChild();
        fcntl(statusOut.number(), F_SETFD, 0);
        execv(list.front(), list.data());
        _exit(127);
    }
    start.isStarted(process);
    statusOut.close();
    // bubblewrap reports an exit code only if it has started the program.
    BubblewrapEnding ending;
    ending.programRan = readAll(statusIn.number()).find("exit-code") != std::string::npos;
    int status = 0;
    while (waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) {
            fail("waiting for bubblewrap");
        }
    }
    ending.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    return ending;
}

}  // namespace kvl::machines

#endif
