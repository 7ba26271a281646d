#include "provider/output/wait_display.h"

#include <gtest/gtest.h>

#include <sstream>
#include <thread>

namespace {

using kvl::provider::WaitDisplay;
using namespace std::chrono_literals;

constexpr auto kNever = 24h;

TEST(WaitDisplay, CountsHowLongItIsWaited) {
    std::ostringstream terminal;
    WaitDisplay display(terminal, 80, 1ms);
    display.begin("the tool");
    while (display.shown().find("the tool: 3") == std::string::npos) {
        std::this_thread::yield();
    }
    display.clear();
    EXPECT_EQ(0U, terminal.str().find("\rthe tool\rthe tool: 1 s\rthe tool: 2 s\rthe tool: 3 s"));
    EXPECT_EQ('\r', terminal.str().back());
}

TEST(WaitDisplay, CountsAnewForTheNextWait) {
    std::ostringstream terminal;
    WaitDisplay display(terminal, 80, 1ms);
    for (int wait = 0; wait < 2; ++wait) {
        display.begin("wait");
        EXPECT_EQ(0U, display.shown().find("wait"));
        while (display.shown() != "wait: 1 s" && display.shown() != "wait: 2 s") {
            std::this_thread::yield();
        }
    }
}

TEST(WaitDisplay, CountsNothingBehindATextOrAnEnd) {
    std::ostringstream terminal;
    {
        WaitDisplay display(terminal, 80, kNever);
        display.begin("one");
        display.tell("two");
        EXPECT_EQ("two", display.shown());
        display.clear();
        EXPECT_EQ("", display.shown());
    }
    EXPECT_EQ("\rone\rtwo\r   \r", terminal.str());
}

}  // namespace
