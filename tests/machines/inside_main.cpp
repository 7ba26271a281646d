#include <gtest/gtest.h>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "machines/private_root.h"

namespace {

using kvl::machines::PrivateRoot;
using kvl::machines::PrivateRootOptions;

// Variables of the test run that the tests inside need as well.
constexpr const char* kPassedOn[] = {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "GTEST_COLOR"};

int runAgainInside(const std::vector<std::string>& arguments) {
    const std::string executable = std::filesystem::canonical("/proc/self/exe").string();
    PrivateRootOptions options;
    options.binds = {{executable}};
    for (const char* name : kPassedOn) {
        if (const char* value = std::getenv(name); value != nullptr) {
            options.environment[name] = value;
        }
    }
    std::vector<std::string> program = {executable};
    program.insert(program.end(), arguments.begin(), arguments.end());
    return PrivateRoot(options).run(program);
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    testing::InitGoogleTest(&argc, argv);
    try {
        if (kvl::machines::insidePrivateRoot()) {
            kvl::machines::linkOwnProcess();
        } else if (!GTEST_FLAG_GET(list_tests)) {
            return runAgainInside(arguments);
        }
        return RUN_ALL_TESTS();
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
