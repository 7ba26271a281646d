#include <gtest/gtest.h>
#include <unistd.h>

#include <vector>

#include "provider/machine/sleep_observer.h"

namespace {

TEST(SleepInThisProgram, IsToldToTheObserverBeforeItBegins) {
    std::vector<unsigned> told;
    kvl::provider::setSleepObserver([&](unsigned seconds) { told.push_back(seconds); });
    EXPECT_EQ(0U, ::sleep(0));
    EXPECT_EQ(std::vector<unsigned>{0}, told);
    kvl::provider::setSleepObserver({});
    EXPECT_EQ(0U, ::sleep(0));
    EXPECT_EQ(1U, told.size());
}

}  // namespace
