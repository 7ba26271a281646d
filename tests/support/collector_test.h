#ifndef KVL_TESTS_SUPPORT_COLLECTOR_TEST_H
#define KVL_TESTS_SUPPORT_COLLECTOR_TEST_H

#include <memory>

#include "collector/CNetworkParameter.h"
#include "tests/support/private_machine_test.h"

namespace kvl::test {

/// A test with a collector that has just been made. Its own traces and commands are forgotten.
class CollectorTest : public PrivateMachineTest {
protected:
    void SetUp() override {
        PrivateMachineTest::SetUp();
        machine.command("/bin/uname -r", std::string(kKernelRelease) + "\n");
        collector = std::make_unique<CNetworkParameter>(kModule);
        forget();
    }

    /// Lays down one Ethernet block of `ifconfig -a` for each name and collects them, without a trace of it.
    void collectInterfaces(const Lines& names) {
        std::string output;
        for (const std::string& name : names) {
            output += name + " Link encap:Ethernet  HWaddr 00:00:00:00:00:01\n          UP  MTU:1500  Metric:1\n\n";
        }
        machine.command("/sbin/ifconfig -a", output);
        EXPECT_TRUE(collector->GetNetworkConfigurations());
        forget();
    }

    std::unique_ptr<CNetworkParameter> collector;
};

/// @return the text of the out-of-range exception that a call raises; "(none)" if it raises none
template <typename Call>
std::string outOfRangeOf(Call call) {
    try {
        call();
    } catch (const std::out_of_range& error) {
        return error.what();
    }
    return "(none)";
}

}  // namespace kvl::test

#endif
