#include "provider/output/wait_display.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <sstream>
#include <thread>

namespace {

using kvl::provider::WaitDisplay;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;
using namespace std::chrono_literals;

constexpr auto kNever = 24h;

TEST(WaitDisplay, CountsHowLongItIsWaited) {
    std::ostringstream terminal;
    WaitDisplay display(terminal, 80, 1ms);
    display.begin("the tool");
    int seconds = 0;
    while (seconds < 3) {  // on a busy machine a number can have gone when it is looked for
        std::this_thread::yield();
        std::sscanf(display.shown().c_str(), "the tool: %d s", &seconds);
    }
    display.clear();
    EXPECT_EQ(0U, terminal.str().find("\rthe tool\rthe tool: 1 s\rthe tool: 2 s\rthe tool: 3 s"));
    EXPECT_EQ('\r', terminal.str().back());
}

TEST(WaitDisplay, CountsAnewForTheNextWait) {
    std::ostringstream terminal;
    {
        WaitDisplay display(terminal, 80, 1ms);
        for (const char* what : {"one", "two"}) {
            display.begin(what);
            while (display.shown() == what) {
                std::this_thread::yield();
            }
        }
    }
    EXPECT_THAT(terminal.str(), AllOf(HasSubstr("\rone: 1 s"), HasSubstr("\rtwo: 1 s")));
}

TEST(WaitDisplay, CountsDownToNothingWhereTheLengthIsKnown) {
    std::ostringstream terminal;
    {
        WaitDisplay display(terminal, 80, 1ms);
        display.beginCountdown("wait", 2);
        while (display.shown() != "wait: 0 s left") {
            std::this_thread::yield();
        }
    }
    EXPECT_THAT(terminal.str(), StartsWith("\rwait: 2 s left\rwait: 1 s left\rwait: 0 s left"));
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
