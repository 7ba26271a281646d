#include "provider/machine/translation/ethtool_coalesce.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace kvl::provider {
namespace {

std::string switchText(std::optional<bool> value) {
    return !value ? "none" : *value ? "on" : "off";
}

std::string adaptiveIn(const std::string& output) {
    const AdaptiveCoalescing adaptive = readAdaptive(output);
    return switchText(adaptive.rx) + " " + switchText(adaptive.tx);
}

TEST(AdaptiveCoalescing, IsReadForEachDirectionAlone) {
    EXPECT_EQ(adaptiveIn("Adaptive RX: on  TX: n/a\n"), "on none");
    EXPECT_EQ(adaptiveIn("Coalesce parameters for eth0:\nAdaptive RX: n/a  TX: off\nrx-usecs: 3\n"), "none off");
    EXPECT_EQ(adaptiveIn("Adaptive RX: off  TX: on\r\n"), "off on");
    EXPECT_EQ(adaptiveIn("Adaptive RX: n/a  TX: n/a\n"), "none none");
    EXPECT_EQ(adaptiveIn("CQE mode RX: on  TX: on\n"), "none none");
}

}  // namespace
}  // namespace kvl::provider
