#include "tests/support/private_machine_test.h"

#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace kvl::test {

void PrivateMachineTest::SetUp() {
    machine.reset();
    libc() = LibcSeams();
    forget();
    descriptors_ = namesIn("/proc/self/fd").size();
}

void PrivateMachineTest::TearDown() {
    EXPECT_EQ(namesIn("/proc/self/fd").size(), descriptors_) << "a descriptor was left open";
    EXPECT_TRUE(waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD) << "a child was left behind";
    EXPECT_EQ(libc().heldInterfaceArrays, 0);
    EXPECT_THAT(TestHost::modules(), testing::IsSubsetOf(allowedModules));
}

void PrivateMachineTest::forget() {
    TestHost::forget();
    machine.forgetCommands();
    libc().sleeps = 0;
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path);
    if (!file) {
        return "(absent)";
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

Lines namesIn(const std::string& directory) {
    Lines names;
    std::error_code absent;
    for (const auto& entry : std::filesystem::directory_iterator(directory, absent)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string resultFile(const std::string& command) {
    return std::string(kResultDirectory) + "/" + command;
}

}  // namespace kvl::test
