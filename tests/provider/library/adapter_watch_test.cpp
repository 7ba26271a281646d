#include "provider/library/adapter_watch.h"

#include <gtest/gtest.h>

namespace {

using kvl::provider::AdapterWatch;
using Event = AdapterWatch::Event;

const std::string kRunner = "static int CEmulexCommon::ExecCommand_(std::string, std::string)";

TEST(AdapterWatch, FollowsACommandToItsEnd) {
    AdapterWatch watch;
    EXPECT_EQ(Event::kCommandBegins, watch.take(TRACE_DBG_FLOW, kRunner + " ExecCommand_(/bin/tool list > /tmp/list)"));
    EXPECT_EQ("/bin/tool list", watch.command());
    EXPECT_EQ("", watch.outcome());
    EXPECT_EQ(Event::kCommandEnds, watch.take(TRACE_DBG_BOUNDARY, "[LEAVE] " + kRunner + ", rc=0"));
    EXPECT_EQ("", watch.outcome());
}

TEST(AdapterWatch, TellsAFailureASilenceAndASignal) {
    AdapterWatch watch;
    watch.take(TRACE_DBG_FLOW, kRunner + " ExecCommand_(/bin/tool dump (x))");
    EXPECT_EQ("/bin/tool dump (x)", watch.command());
    EXPECT_EQ(Event::kCommandEnds, watch.take(TRACE_DBG_ERROR, kRunner + " [/bin/tool dump (x)] command failed! (2)"));
    EXPECT_EQ("failed", watch.outcome());
    EXPECT_EQ(Event::kCommandEnds, watch.take(TRACE_DBG_BOUNDARY, "[LEAVE] " + kRunner + ", rc=-1"));
    EXPECT_EQ("printed nothing in 10 s", watch.outcome());
    watch.take(TRACE_DBG_BOUNDARY, "[LEAVE] " + kRunner + ", rc=2");
    EXPECT_EQ("was ended by signal 2", watch.outcome());
    watch.take(TRACE_DBG_FLOW, kRunner + " ExecCommand_(/bin/tool next)");
    EXPECT_EQ("", watch.outcome());
}

TEST(AdapterWatch, ShowsTheCommandWithoutTheToolsDirectory) {
    AdapterWatch watch;
    EXPECT_EQ("", watch.shownCommand());
    for (const char* command : {"/usr/sbin/tool dump /a/b", "tool dump /a/b"}) {
        watch.take(TRACE_DBG_FLOW, kRunner + " ExecCommand_(" + command + ")");
        EXPECT_EQ("tool dump /a/b", watch.shownCommand());
    }
    watch.take(TRACE_DBG_FLOW, kRunner + " ExecCommand_(/bin/tool)");
    EXPECT_EQ("tool", watch.shownCommand());
}

TEST(AdapterWatch, PassesOverOtherLines) {
    AdapterWatch watch;
    EXPECT_EQ(Event::kNone, watch.take(TRACE_DBG_FLOW, "CEmulexCommon::ExecCommand_() [START]"));
    EXPECT_EQ(Event::kNone, watch.take(TRACE_DBG_BOUNDARY, kRunner + " ExecCommand_(/bin/tool)"));
    EXPECT_EQ(Event::kNone, watch.take(TRACE_DBG_FLOW, ""));
    EXPECT_EQ("", watch.command());
}

}  // namespace
