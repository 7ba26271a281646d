#include "provider/library/trace_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/provider/update/update_server.h"

namespace {

using kvl::provider::readTraceLine;
using kvl::provider::TracedEvent;
using kvl::provider::TraceEvent;
using kvl::provider::TraceRow;
using kvl::provider::traceTable;
using kvl::test::updateOnServer;
using testing::Contains;

struct Line {
    TRACE_DBG_LEVEL level;
    std::string text;
};

/// The lines that the library traces, out of the trace files that a script prints: "DATE TIME LEVEL [MODULE] TEXT".
std::vector<Line> tracedLines(const std::string& output) {
    const std::map<std::string, TRACE_DBG_LEVEL> levels = {
        {"FLOW", TRACE_DBG_FLOW}, {"ERROR", TRACE_DBG_ERROR}, {"BOUNDARY", TRACE_DBG_BOUNDARY}};
    std::vector<Line> lines;
    std::istringstream stream(output);
    for (std::string line; std::getline(stream, line);) {
        for (const auto& [name, level] : levels) {
            const auto label = line.find(" " + name + " [");
            const auto text = line.find("] ", label);
            if (label != std::string::npos && text != std::string::npos) {
                lines.push_back({level, line.substr(text + 2)});
                break;
            }
        }
    }
    return lines;
}

/// What runs on which recorded server, so that the library traces all that the table knows.
struct Scenario {
    const char* machine;
    const char* script;
};

constexpr Scenario kScenarios[] = {
    {"four-port", "kvl report >/dev/null"},
    {"every-command-fails", "kvl report >/dev/null"},
    {"adapters-mixed", "kvl adapters --versions; fault failing; kvl adapters"},
    // Updates that succeed.
    {"adapters-mixed", "firmware 02:00.0 OCe11102; firmware 15:00.0 fcelx_8g1p; tool_update tool"},
    // Updates that fail.
    {"adapters-mixed", "fault never-ending; firmware 02:00.0 OCe11102"},
    {"adapters-mixed", "fault incomplete-download; firmware 02:00.0 OCe11102-only-success-text"},
    {"adapters-mixed", "fault incomplete-download; firmware 02:00.0 OCe11102-only-end-text"},
    {"adapters-mixed",
     "fault incomplete-download; during Download \"rm $tree/temp/CNA/unpacked/message.txt\"; firmware 02:00.0 "
     "OCe11102"},
    {"adapters-mixed", "during Download \"rm $tree/temp/CNA/firm/*; exit 1\"; firmware 02:00.0 OCe11102"},
    {"adapters-mixed", "during Download 'kill -KILL $PPID; exit 1'; firmware 02:00.0 OCe11102"},
    {"adapters-mixed", "fault incomplete-download 4; firmware 02:00.0 OCe11102-without-message"},
    {"adapters-mixed", "during Download 'chmod 500 $tree/temp/CNA/unpacked'; firmware 02:00.0 OCe11102"},
    {"adapters-mixed", "after_unzip 'mkdir $4/locked; ln -s /nowhere $4/locked/link'; firmware 02:00.0 OCe11102"},
    {"adapters-mixed", "kvl adapters; ln -s /nowhere $tree/temp/tmp; tool_update tool"},
    {"adapters-mixed", "instead_of_unzip 'exit 9'; tool_update tool"},
    {"adapters-mixed", "instead_of_unzip 'kill -KILL $PPID'; tool_update tool"},
    {"adapters-mixed",
     "after_unzip 'rm /bin/uname; echo \"#!/bin/sh\" >/bin/uname; chmod 755 /bin/uname'; tool_update tool"},
    {"adapters-mixed", "after_unzip 'rm $4/x64/install.sh'; tool_update tool"},
    // The boot files.
    {"adapters-mixed", "kvl boot-files --override lpfc --rebuild-initramfs"},
    {"adapters-mixed",
     "replace /sbin/depmod 'exit 1'; kvl boot-files --override lpfc; replace /sbin/dracut 'exit 1'; kvl boot-files "
     "--rebuild-initramfs"},
    {"adapters-mixed", "replace /bin/mv 'exit 1'; kvl boot-files --rebuild-initramfs"},
    // The check of the management tool.
    {"adapters-mixed", "kvl tool-check; sed -i '$d' /etc/emulexRMConfig; kvl tool-check"},
    {"adapters-mixed", "sed -i '$d' /etc/emulexDiscConfig; kvl tool-check"},
    {"adapters-mixed",
     "sed -i 's/^ManagementHost.*/ManagementHost:true/' /etc/emulexRMConfig; kvl tool-check; rm /etc/emulexRMConfig; "
     "kvl tool-check"},
    {"adapters-mixed", "replace /bin/rpm 'echo elxocmjvm-6.3.12.11.rpm'; kvl tool-check"},
    {"adapters-mixed", "mkdir -p $tree/temp/rpm_grep_result.txt; kvl tool-check"},
};

const std::vector<Line>& libraryTrace() {
    static const std::vector<Line> lines = [] {
        std::string output;
        for (const Scenario& scenario : kScenarios) {
            output += updateOnServer("{ export KVL_TRACE_LEVELS=55 KVL_TRACE_FILE=/tmp/trace\n" +
                                         std::string(scenario.script) + "\n} >/dev/null 2>&1; cat /tmp/trace",
                                     scenario.machine)
                          .output;
        }
        return tracedLines(output);
    }();
    return lines;
}

bool matches(const TraceRow& row, const Line& line) {
    return row.level == line.level && line.text.compare(0, row.begins.size(), row.begins) == 0 &&
           (row.ends.empty() || line.text.find(row.ends, row.begins.size()) != std::string::npos);
}

/// Each row is for a line that the library traces.
void expectEachRowTraced() {
    for (const TraceRow& row : traceTable()) {
        EXPECT_TRUE(std::any_of(libraryTrace().begin(), libraryTrace().end(), [&row](const Line& line) {
            return matches(row, line);
        })) << row.begins;
    }
}

/// Each line is read by one row at most.
void expectOneRowALine() {
    for (const Line& line : libraryTrace()) {
        std::vector<TraceEvent> events;
        for (const TraceRow& row : traceTable()) {
            if (matches(row, line)) {
                events.push_back(row.event);
            }
        }
        EXPECT_LE(events.size(), 1U) << line.text;
        EXPECT_EQ(events.empty() ? TraceEvent::kNone : events.front(), readTraceLine(line.level, line.text).event)
            << line.text;
    }
}

/// Every line of the command runners is recognised.
void expectCommandsRecognised() {
    const std::vector<TraceEvent> expected = {TraceEvent::kCommandBegins, TraceEvent::kCommandFails,
                                              TraceEvent::kCommandEnds};
    std::size_t count = 0;
    for (const Line& line : libraryTrace()) {
        const auto contains = [&line](const char* part) { return line.text.find(part) != std::string::npos; };
        const bool isOfRunner = contains("CNetworkParameter::ExecCommand(const char*, ...)") ||
                                contains("CEmulexCommon::ExecCommand_(std::string, std::string)");
        if (isOfRunner && !contains("[ENTER]")) {
            ++count;
            EXPECT_THAT(expected, Contains(readTraceLine(line.level, line.text).event)) << line.text;
        }
    }
    EXPECT_GT(count, 50U);
}

/// What the update procedures trace of their steps is recognised, each step by an event of its own.
void expectStepsRecognised() {
    const std::vector<std::string> steps = {"CUnzip_Utility::DeleteFolder [START]",
                                            "CUnzip_Utility::Unzip [START]",
                                            "CEmulexCommon::GetHBAInfo() [START]",
                                            "bios update file name(",
                                            "Search uninstall.sh in [",
                                            "CEmulexCommon::EmulexUpdate() Resultmode = ",
                                            "CEmulexCommon::DepmodExecute() [START]",
                                            "Execute depmod command by _tsystem method [",
                                            "CEmulexCommon::DracutExcute() [START]"};
    std::set<TraceEvent> events;
    for (const std::string& step : steps) {
        const auto found = std::find_if(libraryTrace().begin(), libraryTrace().end(), [&step](const Line& line) {
            return line.text.compare(0, step.size(), step) == 0;
        });
        ASSERT_NE(libraryTrace().end(), found) << step;
        events.insert(readTraceLine(found->level, found->text).event);
    }
    EXPECT_EQ(steps.size(), events.size()) << "each by an event of its own";
    EXPECT_EQ(0U, events.count(TraceEvent::kNone));
}

// In one test, since the library's trace is long in the making.
TEST(TraceTable, AgreesWithWhatTheLibraryTraces) {
    expectEachRowTraced();
    expectOneRowALine();
    expectCommandsRecognised();
    expectStepsRecognised();
}

TEST(TraceTable, GivesWhatStandsBetweenBeginningAndEnd) {
    const TracedEvent begins = readTraceLine(
        TRACE_DBG_FLOW, "static int CEmulexCommon::ExecCommand_(std::string, std::string) ExecCommand_(tool dump (x))");
    EXPECT_EQ(TraceEvent::kCommandBegins, begins.event);
    EXPECT_EQ("tool dump (x)", begins.value);
    const TracedEvent file = readTraceLine(TRACE_DBG_ERROR, "Failed to open file(/a).b).");
    EXPECT_EQ(TraceEvent::kFileNotOpened, file.event);
    EXPECT_EQ("/a).b", file.value);
    EXPECT_EQ("/etc/emulexRMConfig", readTraceLine(TRACE_DBG_FLOW, "emulexRMConfig:[x]").detail);
}

TEST(TraceTable, PassesOverOtherLevelsAndTextsThatAreCutOff) {
    EXPECT_EQ(TraceEvent::kNone, readTraceLine(TRACE_DBG_ERROR, "CUnzip_Utility::Unzip [START]").event);
    EXPECT_EQ(TraceEvent::kNone, readTraceLine(TRACE_DBG_ERROR, "Failed to open file(/a").event);
    EXPECT_EQ(TraceEvent::kNone, readTraceLine(TRACE_DBG_FLOW, "").event);
}

}  // namespace
