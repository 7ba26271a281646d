#include "provider/machine/private_view.h"

#include <unistd.h>

#include <filesystem>
#include <set>

#include "provider/machine/child_program.h"
#include "provider/machine/provider_environment.h"
#include "provider/provider_error.h"

namespace kvl::provider {
namespace {

namespace fs = std::filesystem;

using Options = std::vector<std::string>;

constexpr const char* kSbin = "/sbin";
constexpr const char* kOutputDirectory = "/.kvl-output";

void append(Options& options, const Options& more) {
    options.insert(options.end(), more.begin(), more.end());
}

void addEntry(Options& options, const fs::path& path) {
    std::error_code error;
    if (fs::is_symlink(path, error)) {
        append(options, {"--symlink", fs::read_symlink(path, error).string(), path.string()});
    } else {
        append(options, {"--dev-bind-try", path.string(), path.string()});
    }
}

/// Shows what is in a directory, but for some names. What the user can't list isn't shown.
void addEntriesBut(Options& options, const fs::path& directory, const std::set<std::string>& leftOut) {
    std::error_code error;
    std::set<fs::path> entries;
    for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error)) {
        entries.insert(entry->path());
    }
    for (const fs::path& entry : entries) {
        if (leftOut.count(entry.filename().string()) == 0) {
            addEntry(options, entry);
        }
    }
}

/// The directories above the result directory are the view's own, with the machine's other entries in them.
void addResultDirectory(Options& options) {
    const fs::path result = fs::path(kResultDirectory).relative_path();
    fs::path directory = "/";
    for (const fs::path& name : result) {
        if (directory != "/") {
            append(options, {"--dir", directory.string()});
            addEntriesBut(options, directory, {name.string()});
        }
        directory /= name;
    }
    append(options, {"--perms", "0700", "--dir", directory.string()});
}

void addSbin(Options& options, const SuppliedCommands& supplied) {
    append(options, {"--dir", kSbin});
    for (const auto& [name, program] : supplied) {
        append(options, {"--symlink", program, std::string(kSbin) + "/" + name});
    }
    std::error_code error;
    const fs::path commands = fs::canonical(kSbin, error);
    std::set<std::string> names;
    for (const auto& entry : supplied) {
        names.insert(entry.first);
    }
    if (commands == kSbin) {
        addEntriesBut(options, kSbin, names);
        return;
    }
    for (const auto& entry : fs::directory_iterator(commands, error)) {
        const std::string name = entry.path().filename().string();
        if (names.count(name) == 0) {
            append(options, {"--symlink", entry.path().string(), std::string(kSbin) + "/" + name});
        }
    }
}

fs::path realPath(const std::string& file) {
    return fs::weakly_canonical(fs::absolute(file));
}

std::string needBubblewrap() {
    std::string bubblewrap = findProgram("bwrap");
    if (bubblewrap.empty()) {
        throw ProviderError(
            "this machine lacks commands in /sbin that it has elsewhere, and bubblewrap, which can put them in their "
            "place for this program alone, isn't installed: install the package bubblewrap, or say '--translate "
            "never' to go without");
    }
    return bubblewrap;
}

}  // namespace

std::vector<std::string> privateViewOptions(const SuppliedCommands& supplied) {
    Options options = {"--die-with-parent"};
    if (geteuid() == 0) {
        append(options, {"--cap-add", "ALL"});
    }
    const fs::path result = kResultDirectory;
    addEntriesBut(options, "/", {"sbin", result.relative_path().begin()->string()});
    addResultDirectory(options);
    addSbin(options, supplied);
    return options;
}

std::vector<std::string> outputOptions(const std::string& file) {
    return file.empty() ? Options() : Options{"--bind", realPath(file).parent_path().string(), kOutputDirectory};
}

std::string placeInView(const std::string& file) {
    return file.empty() ? "" : std::string(kOutputDirectory) + "/" + realPath(file).filename().string();
}

int runInPrivateView(const SuppliedCommands& supplied, const std::vector<std::string>& arguments,
                     const std::string& outputFile) {
    std::vector<std::string> words = {needBubblewrap()};
    append(words, privateViewOptions(supplied));
    append(words, outputOptions(outputFile));
    words.emplace_back("--");
    words.push_back(fs::read_symlink("/proc/self/exe").string());
    append(words, arguments);
    const machines::BubblewrapEnding ending = runSandbox(words);
    if (!ending.programRan && ending.status < 128) {
        throw ProviderError(
            "bubblewrap could not make a private view of this machine (its own message stands above): "
            "run kvl as root, or allow user namespaces, or say '--translate never'");
    }
    return ending.status;
}

}  // namespace kvl::provider
