#include "provider/machine/translation/ifcfg_file.h"

#include <gtest/gtest.h>

namespace kvl::provider {
namespace {

TEST(IfcfgOwner, IsTheDeviceAndTheAddressAsTheShellHasThem) {
    const IfcfgOwner owner = ownerOf("#DEVICE=eth9\nDEVICE='eth0' # first\nHWADDR=\"00:1b:21:00:00:01\"\n");
    EXPECT_EQ(owner.device, "eth0");
    EXPECT_EQ(owner.hwaddr, "00:1b:21:00:00:01");
    EXPECT_EQ(ownerOf("ONBOOT=yes\n").device, "");
}

}  // namespace
}  // namespace kvl::provider
