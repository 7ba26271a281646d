#include "provider/run/display.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <sstream>
#include <thread>

namespace {

using kvl::provider::Counting;
using kvl::provider::Display;
using kvl::provider::ProgressLine;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;
using namespace std::chrono_literals;

using Mode = Display::Mode;

constexpr auto kNever = 24h;

TEST(ProgressLine, OverwritesALongerTextWithBlanks) {
    std::ostringstream terminal;
    ProgressLine line(terminal, 80);
    line.show("abcdef");
    line.show("xyz");
    EXPECT_EQ("\rabcdef\rxyz   ", terminal.str());
}

TEST(ProgressLine, LeavesAnEmptyLine) {
    std::ostringstream terminal;
    {
        ProgressLine line(terminal, 80);
        line.show("abc");
    }
    EXPECT_EQ("\rabc\r   \r", terminal.str());
}

TEST(ProgressLine, WritesNothingWhereNothingWasShown) {
    std::ostringstream terminal;
    {
        ProgressLine line(terminal, 80);
        line.clear();
    }
    EXPECT_EQ("", terminal.str());
}

TEST(ProgressLine, NeverFillsTheLastColumn) {
    std::ostringstream terminal;
    ProgressLine line(terminal, 5);
    line.show("abcdefgh");
    EXPECT_EQ("\rabcd", terminal.str());
}

TEST(Display, CountsHowLongItIsWaited) {
    std::ostringstream terminal;
    Display display(Mode::kProgress, terminal, 80, 1ms);
    display.countUp("the tool");
    int seconds = 0;
    while (seconds < 3) {  // on a busy machine a number can have gone when it is looked for
        std::this_thread::yield();
        std::sscanf(display.shown().c_str(), "%d s  the tool", &seconds);
    }
    display.clear();
    EXPECT_EQ(0U, terminal.str().find("\rthe tool\r1 s  the tool\r2 s  the tool\r3 s  the tool"));
    EXPECT_EQ('\r', terminal.str().back());
}

TEST(Display, CountsAnewForTheNextWait) {
    std::ostringstream terminal;
    {
        Display display(Mode::kProgress, terminal, 80, 1ms);
        for (const char* what : {"one", "two"}) {
            display.countUp(what);
            while (display.shown() == what) {
                std::this_thread::yield();
            }
        }
    }
    EXPECT_THAT(terminal.str(), AllOf(HasSubstr("\r1 s  one"), HasSubstr("\r1 s  two")));
}

TEST(Display, CountsDownToNothingWhereTheLengthIsKnown) {
    std::ostringstream terminal;
    {
        Display display(Mode::kProgress, terminal, 80, 1ms);
        display.countDown("wait", 2);
        while (display.shown() != "0 s left  wait") {
            std::this_thread::yield();
        }
    }
    EXPECT_THAT(terminal.str(), StartsWith("\r2 s left  wait\r1 s left  wait\r0 s left  wait"));
}

TEST(Display, CountsDownToNothingAndNoFurther) {
    std::ostringstream terminal;
    {
        Display display(Mode::kProgress, terminal, 80, 1ms);
        display.countDown("the end", 2);
        while (display.shown() != "0 s left  the end") {
            std::this_thread::yield();
        }
        std::this_thread::sleep_for(5ms);
        EXPECT_EQ("0 s left  the end", display.shown());
    }
    EXPECT_EQ(0U, terminal.str().find("\r2 s left  the end\r1 s left  the end\r0 s left  the end"));
}

TEST(Display, CountsUpAgainBehindACountdown) {
    std::ostringstream terminal;
    Display display(Mode::kProgress, terminal, 80, 1ms);
    display.countDown("the end", 1000);
    EXPECT_THAT(display.shown(), testing::EndsWith(" s left  the end"));
    display.countUp("the tool");
    std::string shown = display.shown();
    while (shown == "the tool") {
        shown = display.shown();
    }
    EXPECT_THAT(shown, testing::EndsWith(" s  the tool"));
}

TEST(Display, ShowsHowLongAlsoWhereTheLineIsTooShortForTheRest) {
    std::ostringstream terminal;
    {
        Display display(Mode::kProgress, terminal, 12, kNever);
        display.countDown("the end of all things", 30);
    }
    EXPECT_THAT(terminal.str(), StartsWith("\r30 s left  \r"));
}

TEST(Display, CountsNothingBehindATextOrAnEnd) {
    std::ostringstream terminal;
    {
        Display display(Mode::kProgress, terminal, 80, kNever);
        display.countUp("one");
        display.show("two");
        EXPECT_EQ("two", display.shown());
        display.clear();
        EXPECT_EQ("", display.shown());
    }
    EXPECT_EQ("\rone\rtwo\r   \r", terminal.str());
}

TEST(Display, ShowsTraceLinesInsteadOfProgress) {
    std::ostringstream output;
    Display display(Mode::kTrace, output, 80);
    display.show("/sbin/route");
    display.countUp("/sbin/route");
    display.countDown("a pause", 10);
    display.showTrace(TRACE_DBG_FLOW, "one");
    display.showTrace(TRACE_DBG_ERROR, "two");
    display.showTrace(TRACE_DBG_BOUNDARY, "four");
    display.showTrace(TRACE_DBG_WARNING, "sixteen");
    display.showTrace(TRACE_DBG_NOTICE, "thirty-two");
    EXPECT_EQ("", display.shown());
    EXPECT_EQ(
        "flow      one\n"
        "error     two\n"
        "boundary  four\n"
        "warning   sixteen\n"
        "notice    thirty-two\n",
        output.str());
}

TEST(Display, ShowsNoTraceWhereItShowsProgress) {
    std::ostringstream output;
    Display display(Mode::kProgress, output, 80);
    display.showTrace(TRACE_DBG_ERROR, "two");
    EXPECT_EQ("", output.str());
}

TEST(Display, ShowsNeitherWhenQuiet) {
    std::ostringstream output;
    {
        Display display(Mode::kNothing, output, 80, 1ms);
        display.show("/sbin/route");
        display.countUp("/sbin/route");
        display.countDown("a pause", 10);
        display.showTrace(TRACE_DBG_ERROR, "two");
    }
    EXPECT_EQ("", output.str());
}

TEST(Display, ForgetsWorkThatIsDone) {
    std::ostringstream terminal;
    Display display(Mode::kProgress, terminal, 80, kNever);
    {
        const Counting counting(display, "work");
        EXPECT_EQ("work", display.shown());
    }
    EXPECT_EQ("", display.shown());
    EXPECT_EQ("\rwork\r    \r", terminal.str());
}

}  // namespace
