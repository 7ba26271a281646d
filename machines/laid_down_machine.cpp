#include "machines/laid_down_machine.h"

#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "machines/private_root.h"
#include "machines/root_layout.h"

namespace kvl::machines {
namespace {

namespace fs = std::filesystem;

constexpr const char* kCommands = "/.machine/commands";
constexpr const char* kLog = "/.machine/log";
constexpr const char* kMissing = "/.machine/missing";

void needAbsolute(const std::string& path) {
    if (path.empty() || path.front() != '/') {
        throw std::invalid_argument("not an absolute path: " + path);
    }
}

void writeFile(const std::string& path, const std::string& text) {
    // Never through a link: it may lead into a read-only mount.
    if (fs::is_symlink(path)) {
        fs::remove(path);
    }
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream << text;
    stream.close();
    if (!stream) {
        throw std::system_error(errno, std::generic_category(), "writing " + path);
    }
}

void setMode(const std::string& path, unsigned mode) {
    if (chmod(path.c_str(), static_cast<mode_t>(mode)) != 0) {
        throw std::system_error(errno, std::generic_category(), "chmod " + path);
    }
}

void linkAnew(const std::string& path, const std::string& target) {
    std::error_code none;
    if (fs::read_symlink(path, none) != target) {
        fs::remove_all(path);
        fs::create_symlink(target, path);
    }
}

void layDownEntry(const std::string& path, const std::string& entry, const std::string& output, Ending ending) {
    needAbsolute(path);
    const std::string recorded = kCommands + path + "/" + entry;
    fs::create_directories(kCommands + path);
    writeFile(recorded, output);
    fs::remove(recorded + ".status");
    if (ending.signal != 0) {
        writeFile(recorded + ".status", "signal " + std::to_string(ending.signal) + "\n");
    } else if (ending.status != 0) {
        writeFile(recorded + ".status", std::to_string(ending.status) + "\n");
    }
    fs::create_directories(fs::path(path).parent_path());
    linkAnew(path, kStandInPath);
}

std::vector<std::string> linesOf(const std::string& path) {
    std::vector<std::string> lines;
    std::ifstream stream(path, std::ios::binary);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

// A blank and the like stand in mountinfo as a backslash and three octal digits.
std::string unescaped(const std::string& text) {
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\' && at + 3 < text.size()) {
            plain += static_cast<char>(std::stoi(text.substr(at + 1, 3), nullptr, 8));
            at += 3;
        } else {
            plain += text[at];
        }
    }
    return plain;
}

std::set<std::string> mountPoints() {
    constexpr int kPathColumn = 5;
    std::set<std::string> points;
    for (const std::string& line : linesOf("/.proc/self/mountinfo")) {
        std::istringstream words(line);
        std::string word;
        for (int column = 0; column < kPathColumn; ++column) {
            words >> word;
        }
        points.insert(unescaped(word));
    }
    return points;
}

// Empties the root but for the mounts and the directories that they or the layout need.
class Clearing {
public:
    Clearing() : mounts_(mountPoints()) {
        for (const std::string& mount : mounts_) {
            for (fs::path path = fs::path(mount).parent_path(); path != path.parent_path(); path = path.parent_path()) {
                keptDirectories_.insert(path.string());
            }
        }
        for (const LayoutDirectory& directory : layoutDirectories()) {
            keptDirectories_.insert(directory.path);
        }
    }

    void clear(const std::string& directory) const {
        for (const std::string& path : entriesOf(directory)) {
            if (mounts_.count(path) > 0 || path == "/lib" || path == "/lib64" || leadsToProcfs(path)) {
                continue;
            }
            if (keptDirectories_.count(path) > 0 && fs::is_directory(fs::symlink_status(path))) {
                clear(path);
            } else {
                removeTree(path);
            }
        }
    }

private:
    static std::vector<std::string> entriesOf(const std::string& directory) {
        std::vector<std::string> entries;
        for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
            entries.push_back(entry.path().string());
        }
        return entries;
    }

    static bool leadsToProcfs(const std::string& path) {
        constexpr std::size_t kProcLength = 5;
        std::error_code noLink;
        return fs::read_symlink(path, noLink) == "/.proc" + path.substr(std::min(path.size(), kProcLength));
    }

    // A test may have left a directory that it must not read any more.
    static void removeTree(const std::string& path) {
        if (fs::is_directory(fs::symlink_status(path))) {
            setMode(path, 0700);
            for (const std::string& entry : entriesOf(path)) {
                removeTree(entry);
            }
        }
        fs::remove(path);
    }

    std::set<std::string> mounts_;
    std::set<std::string> keptDirectories_;
};

void layOut() {
    const std::set<std::string> mounts = mountPoints();
    for (const LayoutDirectory& directory : layoutDirectories()) {
        fs::create_directory(directory.path);
        if (mounts.count(directory.path) == 0) {
            setMode(directory.path, directory.mode);
        }
    }
    for (const LayoutLink& link : layoutLinks()) {
        linkAnew(link.path, link.target);
    }
    for (const LayoutFile& file : layoutFiles()) {
        writeFile(file.path, file.text);
        setMode(file.path, file.mode);
    }
}

int runScript(std::vector<std::string> words) {
    std::vector<char*> list;
    for (std::string& word : words) {
        list.push_back(word.data());
    }
    list.push_back(nullptr);
    pid_t process = -1;
    const int error = posix_spawn(&process, list.front(), nullptr, nullptr, list.data(), environ);
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), words.front());
    }
    int status = -1;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

}  // namespace

LaidDownMachine::LaidDownMachine() {
    if (!insidePrivateRoot()) {
        throw PrivateRootError(
            "a machine is laid down inside a private root only: start this program with "
            "PrivateRoot::run.");
    }
}

void LaidDownMachine::command(const std::string& commandLine, const std::string& output, Ending ending) {
    const std::size_t blank = commandLine.find(' ');
    std::string entry = blank == std::string::npos ? "(none)" : commandLine.substr(blank + 1);
    std::replace(entry.begin(), entry.end(), '/', '%');
    layDownEntry(commandLine.substr(0, blank), entry, output, ending);
}

void LaidDownMachine::anyCommand(const std::string& path, const std::string& output, Ending ending) {
    layDownEntry(path, "(any)", output, ending);
}

void LaidDownMachine::program(const std::string& path, const std::string& text) {
    file(path, text);
    setMode(path, 0755);
}

void LaidDownMachine::dropCommand(const std::string& path) {
    needAbsolute(path);
    fs::remove_all(kCommands + path);
    fs::remove(path);
}

void LaidDownMachine::file(const std::string& path, const std::string& text) {
    needAbsolute(path);
    fs::create_directories(fs::path(path).parent_path());
    writeFile(path, text);
}

void LaidDownMachine::directory(const std::string& path) {
    needAbsolute(path);
    fs::create_directories(path);
}

void LaidDownMachine::load(const std::string& recording) {
    if (runScript({"/bin/sh", kLayDownPath, recording}) != 0) {
        throw std::runtime_error("the recording " + recording + " could not be laid down.");
    }
}

std::vector<std::string> LaidDownMachine::commandsRun() const {
    return linesOf(kLog);
}

std::vector<std::string> LaidDownMachine::commandsMissing() const {
    return linesOf(kMissing);
}

void LaidDownMachine::forgetCommands() {
    fs::remove(kLog);
    fs::remove(kMissing);
}

void LaidDownMachine::reset() {
    Clearing().clear("/");
    layOut();
}

}  // namespace kvl::machines
