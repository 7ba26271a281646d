#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "machines/private_root.h"

// The library's commands and files have fixed absolute paths, so this program runs itself again inside a private root,
// where nothing of the outer machine can be written.

namespace {

kvl::machines::PrivateRootOptions optionsOfTests() {
    kvl::machines::PrivateRootOptions options;
    const std::string build = KVL_BUILD_DIRECTORY;
    const std::string source = KVL_SOURCE_DIRECTORY;
    options.binds = {{build + "/bin"},       {build + "/lib"},    {build + "/machines"},
                     {source + "/machines"}, {source + "/tests"}, {"/usr/bin/unzip"}};
    for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "GTEST_COLOR"}) {
        if (const char* value = std::getenv(name)) {
            options.environment[name] = value;
        }
    }
    return options;
}

bool wants(const std::vector<std::string>& arguments, const char* option) {
    for (const std::string& argument : arguments) {
        if (argument == option) {
            return true;
        }
    }
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv, argv + argc);
    const bool inside = kvl::machines::insidePrivateRoot();
    if (!inside && !wants(arguments, "--gtest_list_tests")) {
        arguments[0] = std::filesystem::read_symlink("/proc/self/exe").string();
        try {
            return kvl::machines::PrivateRoot(optionsOfTests()).run(arguments);
        } catch (const kvl::machines::PrivateRootError& error) {
            std::fprintf(stderr, "%s\n", error.what());
            return 1;
        }
    }
    if (inside) {
        kvl::machines::linkOwnProcess();
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
