#include "foundation/CCommon_Information.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <memory>

#include "foundation/descriptor.h"
#include "foundation/file_state.h"
#include "foundation/shell_child.h"
#include "foundation/text.h"
#include "host/HostFunctions.h"

using kvl::Descriptor;

namespace {

constexpr int kPipeAttempts = 5;
constexpr unsigned long kPipePause = 1000;
constexpr std::array<unsigned long, 5> kDeletePauses = {1000, 6000, 11000, 16000, 21000};
constexpr mode_t kResultFileMode = 0666;
constexpr mode_t kCopyMode = 0774;
constexpr std::size_t kCopyStep = 1024;

struct Pipe {
    Descriptor readEnd;
    Descriptor writeEnd;
};

/// Opens a pipe, with several attempts, since the process may have no descriptor left for the moment.
bool openPipe(Pipe& opened) {
    for (int attempt = 1;; ++attempt) {
        std::array<int, 2> ends{};
        if (pipe(ends.data()) == 0) {
            opened.readEnd = Descriptor(ends[0]);
            opened.writeEnd = Descriptor(ends[1]);
            return true;
        }
        if (attempt == kPipeAttempts) {
            return false;
        }
        Sleep(kPipePause);
    }
}

[[noreturn]] void runIntoFile(const std::string& command, const std::string& workDir, const std::string& resultFile) {
    if (!workDir.empty() && chdir(workDir.c_str()) != 0) {
        _exit(1);
    }
    if (!resultFile.empty()) {
        const int file = open(resultFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, kResultFileMode);
        if (file < 0 || !kvl::becomeStandardOutput(file)) {
            _exit(1);
        }
    }
    kvl::becomeShell(command);
}

[[noreturn]] void runIntoPipe(const std::string& command, const std::string& workDir, Pipe& output) {
    output.readEnd.close();
    if (!kvl::becomeStandardOutput(output.writeEnd.release()) || (!workDir.empty() && chdir(workDir.c_str()) != 0)) {
        _exit(1);
    }
    kvl::becomeShell(command);
}

/// @return false if a read or a write failed
bool copyContent(const Descriptor& source, const Descriptor& target) {
    std::array<char, kCopyStep> buffer{};
    for (;;) {
        const ssize_t count = read(source.number(), buffer.data(), buffer.size());
        if (count <= 0) {
            return count == 0;
        }
        // kept: a write of fewer bytes than were read counts as done.
        if (write(target.number(), buffer.data(), static_cast<std::size_t>(count)) == -1) {
            return false;
        }
    }
}

}  // namespace

unsigned long CCommon_Information::ExecForeignModule(const std::string& command, const std::string& resultFile,
                                                     const std::string& workDir, unsigned long* exitCode,
                                                     unsigned long timeout) {
    *exitCode = kvl::kNoExitCode;
    if (!kvl::canRun(command, workDir)) {
        return kvl::kFailed;
    }
    const pid_t child = fork();
    if (child < 0) {
        return kvl::kFailed;
    }
    if (child == 0) {
        runIntoFile(command, workDir, resultFile);
    }
    return kvl::waitForChild(child, timeout, exitCode);
}

unsigned long CCommon_Information::POpenForeignModule(const std::string& command, int* pipeFd,
                                                      const std::string& workDir, unsigned long* exitCode,
                                                      unsigned long timeout) {
    *exitCode = kvl::kNoExitCode;
    Pipe output;
    if (!kvl::canRun(command, workDir) || !openPipe(output)) {
        return kvl::kFailed;
    }
    const pid_t child = fork();
    if (child < 0) {
        return kvl::kFailed;
    }
    if (child == 0) {
        runIntoPipe(command, workDir, output);
    }
    output.writeEnd.close();
    const unsigned long result = kvl::waitForChild(child, timeout, exitCode);
    if (result == kvl::kRan) {
        *pipeFd = output.readEnd.release();
    }
    return result;
}

std::string CCommon_Information::GetResultLine(const std::string& command) {
    int pipeFd = -1;
    unsigned long exitCode = 0;
    const unsigned long result = POpenForeignModule(command, &pipeFd, "", &exitCode, kvl::kNoTimeout);
    Descriptor output(pipeFd);
    if (result == kvl::kFailed || exitCode != 0) {
        return "";
    }
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(fdopen(output.number(), "r"), std::fclose);
    if (!stream) {
        return "";
    }
    output.release();
    std::array<char, 256> buffer{};
    if (std::fgets(buffer.data(), static_cast<int>(buffer.size()), stream.get()) == nullptr) {
        return "";
    }
    return kvl::upTo(buffer.data(), '\n');
}

std::string CCommon_Information::MyStrTok(std::string* text, char separator) {
    return kvl::takeToken(*text, separator);
}

bool CCommon_Information::MyPathFileExists(const std::string& path) {
    return kvl::canOpen(path);
}

bool CCommon_Information::RetryDeleteFile(const std::string& path) {
    for (const unsigned long pause : kDeletePauses) {
        if (!MyPathFileExists(path)) {
            return true;
        }
        if (DeleteFileA(path.c_str()) != 0) {
            break;
        }
        Sleep(pause);
    }
    return !MyPathFileExists(path);
}

bool CCommon_Information::CopyFileA(std::string source, std::string target, bool overwrite) {
    Descriptor from(open(source.c_str(), O_RDONLY));
    if (from.number() < 0) {
        return false;
    }
    const int flags = O_WRONLY | O_CREAT | O_TRUNC | (overwrite ? 0 : O_EXCL);
    Descriptor to(open(target.c_str(), flags, kCopyMode));
    if (to.number() < 0) {
        return false;
    }
    const bool copied = copyContent(from, to);
    from.close();
    fsync(to.number());
    to.close();
    if (!copied) {
        unlink(target.c_str());
    }
    return copied;
}
