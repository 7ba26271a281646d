#include "tests/machines/outside.h"

#include <sys/wait.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

std::string redirected(const ScratchDirectory& scratch, const std::string& script) {
    return "exec >'" + scratch / "output" + "' 2>'" + scratch / "errors" + "'\n" + script;
}

}  // namespace

ScratchDirectory::ScratchDirectory() : path_(KVL_SCRATCH "/XXXXXX") {
    fs::create_directories(KVL_SCRATCH);
    if (mkdtemp(path_.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), path_);
    }
}

ScratchDirectory::~ScratchDirectory() {
    std::error_code leftBehind;
    fs::remove_all(path_, leftBehind);
}

std::string ScratchDirectory::write(const std::string& name, const std::string& text) const {
    const fs::path path = fs::path(path_) / name;
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
    return path.string();
}

Outcome runInside(machines::PrivateRootOptions options, const std::string& script) {
    const ScratchDirectory scratch;
    options.binds.push_back({scratch.path(), true});
    const int status = machines::PrivateRoot(options).run({"/bin/sh", "-c", redirected(scratch, script)});
    return {status, readFile(scratch / "output"), readFile(scratch / "errors")};
}

Outcome runOutside(const std::string& script) {
    const ScratchDirectory scratch;
    const int status = std::system(redirected(scratch, script).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(scratch / "output"), readFile(scratch / "errors")};
}

std::string readFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

std::map<std::string, std::string> readTree(const std::string& directory) {
    std::map<std::string, std::string> tree;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
        if (entry.is_regular_file()) {
            tree[entry.path().lexically_relative(directory).string()] = readFile(entry.path().string());
        }
    }
    return tree;
}

}  // namespace kvl::test
