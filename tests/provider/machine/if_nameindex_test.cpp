#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <net/if.h>

#include <map>

#include "provider/machine/interface_index.h"
#include "tests/provider/kvl_program.h"

namespace {

TEST(InterfaceIndex, IsTheKernelsWhereEveryNameIsPlain) {
    std::map<std::string, unsigned> found;
    struct if_nameindex* const list = if_nameindex();
    ASSERT_NE(nullptr, list);
    for (const struct if_nameindex* entry = list; entry->if_index != 0; ++entry) {
        found[entry->if_name] = entry->if_index;
    }
    if_freenameindex(list);
    EXPECT_EQ(if_nametoindex("lo"), found["lo"]);
    for (const auto& [name, index] : found) {
        EXPECT_EQ(if_nametoindex(name.c_str()), index) << name;
    }
    EXPECT_TRUE(kvl::provider::interfacesPassedOver().empty());
}

}  // namespace
