#include "machines/private_root.h"

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>

#include "machines/bubblewrap.h"
#include "machines/programs.h"
#include "machines/root_layout.h"

namespace kvl::machines {
namespace {

namespace fs = std::filesystem;

constexpr const char* kRecordingPath = "/.machine/recording";

constexpr const char* kNotStarted =
    "bubblewrap did not start the program; its own message stands above. If that one is about namespaces or "
    "permissions: an ordinary user needs user namespaces (sysctl kernel.unprivileged_userns_clone=1 and "
    "user.max_user_namespaces above 0; in a container, a seccomp profile that lets unshare and mount pass).";

std::string needProgram(const std::string& name, const std::string& package, const std::string& directories) {
    const std::string path = findProgram(name, directories);
    if (path.empty()) {
        throw PrivateRootError(name + " is not installed: install the package " + package + ".");
    }
    return fs::canonical(path).string();
}

std::string searchPath() {
    const char* path = std::getenv("PATH");
    return path != nullptr ? path : "/usr/bin:/bin";
}

std::string needPath(const std::string& path, const std::string& what) {
    std::error_code error;
    const fs::path found = fs::canonical(path, error);
    if (error) {
        throw PrivateRootError(what + " " + path + ": " + error.message());
    }
    return found.string();
}

std::string makeKeptRoot(const std::string& path) {
    std::error_code error;
    fs::create_directories(path, error);
    const std::string found = needPath(path, "the kept root");
    if (found == "/" || !fs::is_directory(found)) {
        throw PrivateRootError("the kept root " + path + " must be a directory of its own.");
    }
    return found;
}

void append(std::vector<std::string>& arguments, std::initializer_list<std::string> more) {
    arguments.insert(arguments.end(), more);
}

std::string octal(unsigned mode) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%04o", mode);
    return text.data();
}

// Async-signal-safe, as it runs after every fork.
void linkThisProcess() {
    std::array<char, 32> digits{};
    char* first = digits.data() + digits.size() - 1;
    for (pid_t rest = getpid(); rest > 0; rest /= 10) {
        *--first = static_cast<char>('0' + rest % 10);
    }
    std::array<char, 48> link{"/proc/"};
    std::array<char, 48> target{"/.proc/"};
    std::strcat(link.data(), first);
    std::strcat(target.data(), first);
    const int savedErrno = errno;
    if (symlink(target.data(), link.data()) != 0) {
        // The link of an earlier process of this number says the same.
    }
    errno = savedErrno;
}

}  // namespace

PrivateRoot::PrivateRoot(PrivateRootOptions options)
    : options_(std::move(options)),
      bubblewrap_(needProgram("bwrap", "bubblewrap", searchPath())),
      shell_(needProgram("dash", "dash", "/bin:/usr/bin")),
      tools_(needProgram("busybox", "busybox-static", "/bin:/usr/bin")) {
    if (!options_.keptRoot.empty()) {
        options_.keptRoot = makeKeptRoot(options_.keptRoot);
    }
    if (!options_.recording.empty()) {
        options_.recording = needPath(options_.recording, "the recording");
    }
    for (const Bind& bind : options_.binds) {
        needPath(bind.path, "the bind");
    }
    for (const LayoutFile& file : layoutFiles()) {
        dataFiles_.push_back({file.path, file.mode, memoryFile(file.text)});
    }
}

std::vector<std::string> PrivateRoot::commandLine(const std::vector<std::string>& program) const {
    std::vector<std::string> arguments = {
        bubblewrap_, "--die-with-parent", "--unshare-pid", "--unshare-net", "--unshare-ipc", "--cap-drop", "ALL"};
    if (options_.keptRoot.empty()) {
        append(arguments, {"--tmpfs", "/"});
    } else {
        append(arguments, {"--bind", options_.keptRoot, "/"});
    }
    addLayout(arguments);
    addLibraries(arguments);
    addCallersWishes(arguments);
    arguments.push_back("--");
    if (!options_.recording.empty()) {
        append(arguments, {"/bin/sh", kLayDownPath});
        if (options_.missingReport >= 0) {
            append(arguments, {"--report", std::to_string(options_.missingReport)});
        }
        arguments.push_back(kRecordingPath);
    }
    arguments.insert(arguments.end(), program.begin(), program.end());
    return arguments;
}

int PrivateRoot::run(const std::vector<std::string>& program) const {
    const BubblewrapEnding ending =
        runBubblewrap(commandLine(program), {[this] { handDescriptorsOn(); }, [](pid_t) {}});
    if (!ending.programRan && ending.status < 128) {
        throw PrivateRootError(kNotStarted);
    }
    return ending.status;
}

void PrivateRoot::exec(const std::vector<std::string>& program) const {
    std::vector<std::string> words = commandLine(program);
    const std::vector<char*> list = wordPointers(words);
    handDescriptorsOn();
    execv(list.front(), list.data());
    throw PrivateRootError(bubblewrap_ + ": " + std::strerror(errno));
}

void PrivateRoot::addLayout(std::vector<std::string>& arguments) const {
    for (const LayoutDirectory& directory : layoutDirectories()) {
        append(arguments, {"--perms", octal(directory.mode), "--dir", directory.path});
    }
    append(arguments, {"--ro-bind", shell_, "/bin/sh", "--ro-bind", tools_, "/bin/busybox"});
    append(arguments, {"--dev", "/dev", "--proc", "/.proc"});
    for (const LayoutLink& link : layoutLinks()) {
        addLink(arguments, link.path, link.target);
    }
    for (const DataFile& file : dataFiles_) {
        if (isKept(file.path)) {
            continue;
        }
        append(arguments, {"--perms", octal(file.mode), "--file", std::to_string(file.content.number()), file.path});
    }
}

void PrivateRoot::addLibraries(std::vector<std::string>& arguments) const {
    for (const std::string path : {"/usr/lib", "/usr/lib64", "/lib", "/lib64"}) {
        if (fs::is_symlink(path)) {
            addLink(arguments, path, fs::read_symlink(path).string());
        } else if (fs::is_directory(path)) {
            append(arguments, {"--ro-bind", path, path});
        }
    }
}

// The scripts are this program's and made anew, everything else in a kept root is as the last run left it.
bool PrivateRoot::isKept(const std::string& path) const {
    return !options_.keptRoot.empty() && path.rfind("/.machine/", 0) != 0 &&
           fs::exists(fs::symlink_status(options_.keptRoot + path));
}

// bubblewrap fails on a link that is there already, as it is in a kept root.
void PrivateRoot::addLink(std::vector<std::string>& arguments, const std::string& path,
                          const std::string& target) const {
    if (!isKept(path)) {
        append(arguments, {"--symlink", target, path});
    }
}

void PrivateRoot::addCallersWishes(std::vector<std::string>& arguments) const {
    for (const Bind& bind : options_.binds) {
        append(arguments, {bind.writable ? "--bind" : "--ro-bind", bind.path, bind.path});
    }
    if (!options_.recording.empty()) {
        append(arguments, {"--ro-bind", options_.recording, kRecordingPath});
    }
    append(arguments, {"--clearenv", "--setenv", "PATH", "/sbin:/usr/sbin:/bin:/usr/bin"});
    append(arguments, {"--setenv", "LC_ALL", "C", "--setenv", "HOME", "/root"});
    for (const auto& [name, value] : options_.environment) {
        append(arguments, {"--setenv", name, value});
    }
    append(arguments, {"--chdir", options_.workingDirectory});
}

void PrivateRoot::handDescriptorsOn() const {
    for (const DataFile& file : dataFiles_) {
        lseek(file.content.number(), 0, SEEK_SET);
        fcntl(file.content.number(), F_SETFD, 0);
    }
    if (options_.missingReport >= 0) {
        fcntl(options_.missingReport, F_SETFD, 0);
    }
}

bool isKeptRoot(const std::string& directory) {
    std::error_code none;
    return fs::exists(directory + kStandInPath, none);
}

bool insidePrivateRoot() {
    return access(kStandInPath, X_OK) == 0 && access("/.proc/self", F_OK) == 0;
}

void linkOwnProcess() {
    if (!insidePrivateRoot()) {
        throw PrivateRootError("linkOwnProcess is for a process inside a private root.");
    }
    linkThisProcess();
    pthread_atfork(nullptr, nullptr, linkThisProcess);
}

}  // namespace kvl::machines
