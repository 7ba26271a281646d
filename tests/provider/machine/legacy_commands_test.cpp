#include "provider/machine/legacy_commands.h"

#include <gtest/gtest.h>

namespace {

using kvl::provider::isNewerIfconfigForm;

TEST(IfconfigForm, IsTheNewerOneWhereFlagsFollowANameWithAColon) {
    EXPECT_TRUE(isNewerIfconfigForm("eth0: flags=4163<UP,BROADCAST,RUNNING,MULTICAST>  mtu 1500\n"));
    EXPECT_TRUE(isNewerIfconfigForm("bond0.200: flags=5187<UP>  mtu 1500\n"));
    EXPECT_TRUE(isNewerIfconfigForm("eth0:1: flags=4163<UP>  mtu 1500\n"));
}

TEST(IfconfigForm, IsTheOlderOneOtherwise) {
    EXPECT_FALSE(isNewerIfconfigForm("eth0      Link encap:Ethernet  HWaddr 00:1B:21:8E:40:10  \n"));
    EXPECT_FALSE(isNewerIfconfigForm("eth0:1    Link encap:Ethernet  HWaddr 00:1B:21:8E:40:10  \n"));
    EXPECT_FALSE(isNewerIfconfigForm(""));
    EXPECT_FALSE(isNewerIfconfigForm("\n"));
    EXPECT_FALSE(isNewerIfconfigForm("eth0:\n"));
    EXPECT_FALSE(isNewerIfconfigForm(": flag"));
    EXPECT_FALSE(isNewerIfconfigForm(" flags=1"));
}

}  // namespace
