#include "provider/run/wait_display.h"

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
        std::sscanf(display.shown().c_str(), "%d s  the tool", &seconds);
    }
    display.clear();
    EXPECT_EQ(0U, terminal.str().find("\rthe tool\r1 s  the tool\r2 s  the tool\r3 s  the tool"));
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
    EXPECT_THAT(terminal.str(), AllOf(HasSubstr("\r1 s  one"), HasSubstr("\r1 s  two")));
}

TEST(WaitDisplay, CountsDownToNothingWhereTheLengthIsKnown) {
    std::ostringstream terminal;
    {
        WaitDisplay display(terminal, 80, 1ms);
        display.beginCountdown("wait", 2);
        while (display.shown() != "0 s left  wait") {
            std::this_thread::yield();
        }
    }
    EXPECT_THAT(terminal.str(), StartsWith("\r2 s left  wait\r1 s left  wait\r0 s left  wait"));
}

TEST(WaitDisplay, CountsDownToNothingAndNoFurther) {
    std::ostringstream terminal;
    {
        WaitDisplay display(terminal, 80, 1ms);
        display.beginCountdown("the end", 2);
        while (display.shown() != "0 s left  the end") {
            std::this_thread::yield();
        }
        std::this_thread::sleep_for(5ms);
        EXPECT_EQ("0 s left  the end", display.shown());
    }
    EXPECT_EQ(0U, terminal.str().find("\r2 s left  the end\r1 s left  the end\r0 s left  the end"));
}

TEST(WaitDisplay, CountsUpAgainBehindACountdown) {
    std::ostringstream terminal;
    WaitDisplay display(terminal, 80, 1ms);
    display.beginCountdown("the end", 1000);
    EXPECT_THAT(display.shown(), testing::EndsWith(" s left  the end"));
    display.begin("the tool");
    std::string shown = display.shown();
    while (shown == "the tool") {
        shown = display.shown();
    }
    EXPECT_THAT(shown, testing::EndsWith(" s  the tool"));
}

TEST(WaitDisplay, ShowsHowLongAlsoWhereTheLineIsTooShortForTheRest) {
    std::ostringstream terminal;
    {
        WaitDisplay display(terminal, 12, kNever);
        display.beginCountdown("the end of all things", 30);
    }
    EXPECT_THAT(terminal.str(), StartsWith("\r30 s left  \r"));
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
