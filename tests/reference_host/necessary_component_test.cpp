#include <gtest/gtest.h>

#include <list>

#include "host/CNecessaryComponentInfo.h"

namespace {

TEST(NecessaryComponent, StartsWithoutAName) {
    EXPECT_EQ(CNecessaryComponentInfo().name, "");
}

TEST(NecessaryComponent, CopiesItsName) {
    CNecessaryComponentInfo component;
    component.name = "tool";
    const std::list<CNecessaryComponentInfo> list{component};
    component.name = "other";
    EXPECT_EQ(list.front().name, "tool");
    component = list.front();
    EXPECT_EQ(component.name, "tool");
}

}  // namespace
