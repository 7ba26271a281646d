#include "tests/provider/documents/checked_commands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include "tests/provider/update/made_archive.h"
#include "tests/provider/update/update_server.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFunctions = R"sh(
run() { "$@"; }
check() {
    "$@" >/tmp/told.output 2>/tmp/told.errors
    status=$?
    echo "checked $*"
    echo "exit $status"
    sed 's/^/answer /' /tmp/told.output
    sed 's/^/told /' /tmp/told.errors
}
both() {
    check "$@"
    check "$@" --format json
}
beside_odd_interfaces() { LD_PRELOAD=$odd_interfaces "$program" "$@"; }
full() { "$@" >/dev/full; }
boot_files() { kvl boot-files "$@"; }
replace /tmp/signal_group 'kill -$1 -$(cat /tmp/kvl); until grep -q noted /tmp/told.errors; do sleep 0.001; done'
image=/boot/initramfs-2.6.32-358.el6.x86_64.img
conf=/etc/depmod.d
)sh";

/// A module with one file, and what is odd about it.
struct OddModule {
    const char* name;
    const char* archive;
    MadeEntry entry;
};

/// Makes modules that no maker ships.
void makeOddModules(const ScratchDirectory& modules) {
    const OddModule odd[] = {
        {"OCe11102-link", "module.zip", {"a.ufi", "/etc/passwd", 0120777}},
        {"OCe11102-above", "module.zip", {"../a.ufi", "x"}},
        {"OCe11102-absolute", "module.zip", {"/tmp/a.ufi", "x"}},
        {"OCe11102-locked", "module.zip", {"a.ufi", "x", 0100644, true}},
        {"OCe11102-damaged", "module.zip", {"a.ufi", "whole content", 0100644}},
        {"OCe11102-file", "module.zip", {"a b.ufi", "x"}},
        {"OCe11102-archive", "a b.zip", {"a.ufi", "x"}},
    };
    for (const OddModule& module : odd) {
        fs::create_directory(modules / module.name);
        makeArchive(modules / module.name + "/" + module.archive, {module.entry});
    }
    const std::string damaged = modules / "OCe11102-damaged/module.zip";
    std::ofstream(damaged, std::ios::in | std::ios::out | std::ios::binary)
        .seekp(static_cast<std::streamoff>(readFile(damaged).find("whole content")))
        .put('W');
}

std::string run(const CheckScript& script) {
    const std::string text = std::string(kFunctions) + script.script;
    if (script.typed != nullptr) {
        return typeDuringUpdate(script.typed, text);
    }
    const ScratchDirectory modules;
    if (script.hasOddModules) {
        makeOddModules(modules);
    }
    const Outcome outcome =
        updateOnServer(text, "adapters-mixed", script.hasOddModules ? modules.path() : KVL_UPDATE_MODULES);
    EXPECT_EQ("", outcome.errors) << "of the script itself";
    return outcome.output;
}

bool isStep(const std::string& line) {
    static const std::regex kStep(R"(\[\d/\d\] .*)");
    return std::regex_match(line, kStep);
}

}  // namespace

const CheckScript* scriptOf(const std::string& row, const std::vector<CheckScript>& scripts) {
    const auto found =
        std::find_if(scripts.begin(), scripts.end(), [&row](const CheckScript& script) { return script.row == row; });
    return found == scripts.end() ? nullptr : &*found;
}

std::vector<CheckedCommand> runChecks(const CheckScript& script) {
    std::vector<CheckedCommand> commands;
    std::istringstream lines(run(script));
    for (std::string line; std::getline(lines, line);) {
        const std::string kind = line.substr(0, line.find(' '));
        const std::string rest = line.size() > kind.size() ? line.substr(kind.size() + 1) : "";
        if (kind == "checked") {
            commands.push_back({rest, -1, "", {}});
        } else if (commands.empty()) {
            ADD_FAILURE() << "before any command: " << line;
        } else if (kind == "exit") {
            commands.back().exitCode = std::stoi(rest);
        } else if (kind == "answer") {
            commands.back().answer += rest + "\n";
        } else if (kind != "told") {
            ADD_FAILURE() << "beside the commands: " << line;
        } else if (!isStep(rest)) {
            commands.back().told.push_back(rest);
        }
    }
    return commands;
}

}  // namespace kvl::test
