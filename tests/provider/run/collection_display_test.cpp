#include "provider/run/collection_display.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using kvl::provider::CollectionDisplay;
using kvl::provider::ProgressLine;
using Mode = CollectionDisplay::Mode;

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

TEST(CollectionDisplay, NamesTheCommandAndThePlaceInTheWalk) {
    std::ostringstream terminal;
    CollectionDisplay display(Mode::kProgress, terminal, 80);
    display.showCommand("/usr/sbin/ethtool -i eth1");
    EXPECT_EQ("\r/usr/sbin/ethtool -i eth1", terminal.str());
    terminal.str("");
    display.clear();
    terminal.str("");
    display.setInterfaces({"eth0", "eth1", "eth2"});
    display.showCommand("/usr/sbin/ethtool -i eth1");
    EXPECT_EQ("\reth1 (2 of 3): /usr/sbin/ethtool -i eth1", terminal.str());
}

TEST(CollectionDisplay, CountsTheSecondsOfAWaitAnewForEachCommand) {
    std::ostringstream terminal;
    CollectionDisplay display(Mode::kProgress, terminal, 100);
    display.showCommand("/sbin/route");
    display.showWait("/sbin/route");
    display.showWait("/sbin/route");
    display.showCommand("/bin/uname -r");
    terminal.str("");
    display.clear();
    terminal.str("");
    display.showWait("/bin/uname -r");
    EXPECT_EQ("\r1 of 10 s  no output yet from /bin/uname -r", terminal.str());
    display.showWait("/bin/uname -r");
    EXPECT_EQ(
        "\r1 of 10 s  no output yet from /bin/uname -r"
        "\r2 of 10 s  no output yet from /bin/uname -r",
        terminal.str());
}

TEST(CollectionDisplay, ShowsTraceLinesInsteadOfProgress) {
    std::ostringstream output;
    CollectionDisplay display(Mode::kTrace, output, 80);
    display.showCommand("/sbin/route");
    display.showWait("/sbin/route");
    display.showPause(10);
    display.showTrace(TRACE_DBG_FLOW, "one");
    display.showTrace(TRACE_DBG_ERROR, "two");
    display.showTrace(TRACE_DBG_BOUNDARY, "four");
    display.showTrace(TRACE_DBG_WARNING, "sixteen");
    display.showTrace(TRACE_DBG_NOTICE, "thirty-two");
    EXPECT_EQ(
        "flow      one\n"
        "error     two\n"
        "boundary  four\n"
        "warning   sixteen\n"
        "notice    thirty-two\n",
        output.str());
}

TEST(CollectionDisplay, ShowsNeitherWhenQuiet) {
    std::ostringstream output;
    CollectionDisplay display(Mode::kNothing, output, 80);
    display.showCommand("/sbin/route");
    display.showWait("/sbin/route");
    display.showPause(10);
    display.showTrace(TRACE_DBG_ERROR, "two");
    EXPECT_EQ("", output.str());
}

}  // namespace
