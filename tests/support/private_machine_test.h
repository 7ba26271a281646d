#ifndef KVL_TESTS_SUPPORT_PRIVATE_MACHINE_TEST_H
#define KVL_TESTS_SUPPORT_PRIVATE_MACHINE_TEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "machines/laid_down_machine.h"
#include "tests/support/command_trace.h"
#include "tests/support/libc_seams.h"
#include "tests/support/test_host.h"
#include "tests/support/xml_text.h"

namespace kvl::test {

constexpr const char* kModule = "test-module";
constexpr const char* kResultDirectory = "/opt/tarvenn/kvl/provider/tmp";
constexpr const char* kItemDirectory = "/opt/tarvenn/kvl/tmp/LAN_COMMON/test-module";
constexpr const char* kKernelRelease = "2.6.32-358.el6.x86_64";

/// A test on a machine of its own: an empty private root, a host without trace lines, libc as it is. When it ends, it
/// checks that no descriptor was left open, no child left over, and that every trace line bore an allowed module's
/// name.
class PrivateMachineTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Forgets trace lines, sleeps and commands.
    void forget();

    kvl::machines::LaidDownMachine machine;
    /// The modules that may trace: the test's own, unless the test calls with others.
    Lines allowedModules = {kModule};

private:
    std::size_t descriptors_ = 0;
};

/// The content of a file; "(absent)" if it can't be opened.
std::string contentOf(const std::string& path);

/// The names in a directory, sorted.
Lines namesIn(const std::string& directory);

/// Where the result file of a command lies.
std::string resultFile(const std::string& command);

}  // namespace kvl::test

#endif
