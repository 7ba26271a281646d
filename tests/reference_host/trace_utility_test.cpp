#include <gmock/gmock.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <regex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "host/CTraceUtility.h"
#include "reference_host/trace_log.h"
#include "reference_host/trace_observer.h"
#include "tests/reference_host/host_test.h"

namespace {

using kvl::host::reloadTraceSettings;
using kvl::host::setTraceObserver;
using kvl::host::wantsLevel;
using kvl::test::HostTest;
using kvl::test::linesOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr TRACE_DBG_LEVEL kLevels[] = {TRACE_DBG_FLOW, TRACE_DBG_ERROR, TRACE_DBG_BOUNDARY, TRACE_DBG_WARNING,
                                       TRACE_DBG_NOTICE};

class TraceUtility : public HostTest {
protected:
    void setLevels(const std::string& levels) {
        setVariable("KVL_TRACE_LEVELS", levels);
        reloadTraceSettings();
    }

    void setFile(const std::string& path) {
        setVariable("KVL_TRACE_FILE", path);
        reloadTraceSettings();
    }

    std::vector<std::string> lines() const { return linesOf(file_); }

    const std::string file_ = scratch_ / "log/kvl.log";
};

class WriteDebug : public TraceUtility {};
class WriteTrace : public TraceUtility {};
class TraceObserver : public TraceUtility {};

TEST_F(WriteDebug, WritesTimeLevelModuleAndText) {
    CTraceUtility::WriteDebug("cna", TRACE_DBG_ERROR, "[%s] command failed! (%d, %x)", "ls", -2, 0x1e);
    ASSERT_THAT(lines(), SizeIs(1));
    const std::regex shape(
        R"(\d{4}-\d{2}-\d{2} \d{2}:\d{2}:\d{2}\.\d{3} ERROR \[cna\] \[ls\] command failed! \(-2, 1e\))");
    EXPECT_TRUE(std::regex_match(lines().front(), shape)) << lines().front();
}

TEST_F(WriteDebug, NamesEachLevel) {
    setLevels("55");
    for (const TRACE_DBG_LEVEL level : kLevels) {
        CTraceUtility::WriteDebug("m", level, "text");
    }
    EXPECT_THAT(lines(),
                ElementsAre(EndsWith(" FLOW [m] text"), EndsWith(" ERROR [m] text"), EndsWith(" BOUNDARY [m] text"),
                            EndsWith(" WARNING [m] text"), EndsWith(" NOTICE [m] text")));
}

TEST_F(WriteDebug, WritesTheLevelsOfTheMaskAlone) {
    for (const TRACE_DBG_LEVEL allowed : kLevels) {
        setFile(scratch_ / std::to_string(allowed));
        setLevels(std::to_string(allowed));
        for (const TRACE_DBG_LEVEL level : kLevels) {
            CTraceUtility::WriteDebug("m", level, "level %d", static_cast<int>(level));
        }
        EXPECT_THAT(linesOf(scratch_ / std::to_string(allowed)),
                    ElementsAre(EndsWith("level " + std::to_string(allowed))));
    }
}

TEST_F(WriteDebug, WritesErrorsAndWarningsWithoutAMask) {
    for (const char* levels : {"", "all", "2,4", "-1", "0x3f", " 1", "99999999999999999999"}) {
        setLevels(levels);
        for (const TRACE_DBG_LEVEL level : kLevels) {
            EXPECT_EQ(wantsLevel(level), level == TRACE_DBG_ERROR || level == TRACE_DBG_WARNING) << levels;
        }
    }
}

TEST_F(WriteDebug, WritesNothingForAnEmptyMask) {
    setLevels("0");
    for (const TRACE_DBG_LEVEL level : kLevels) {
        CTraceUtility::WriteDebug("m", level, "text");
    }
    EXPECT_FALSE(std::filesystem::exists(file_));
}

TEST_F(WriteDebug, FormatsALineOnlyIfSomebodyWantsIt) {
    int formatted = -1;
    EXPECT_FALSE(wantsLevel(TRACE_DBG_FLOW));
    CTraceUtility::WriteDebug("m", TRACE_DBG_FLOW, "four%n", &formatted);
    EXPECT_EQ(formatted, -1);

    setTraceObserver([](const std::string&, TRACE_DBG_LEVEL, const std::string&) {});
    EXPECT_TRUE(wantsLevel(TRACE_DBG_FLOW));
    CTraceUtility::WriteDebug("m", TRACE_DBG_FLOW, "four%n", &formatted);
    EXPECT_EQ(formatted, 4);
    EXPECT_FALSE(std::filesystem::exists(file_));
}

TEST_F(WriteDebug, FormatsLinesOfAnyLengthWhole) {
    for (const std::size_t length : {511U, 512U, 513U, 100000U}) {
        const std::string text(length, 'x');
        CTraceUtility::WriteDebug("m", TRACE_DBG_ERROR, "%s%s", text.c_str(), "|");
        EXPECT_THAT(lines().back(), EndsWith("[m] " + text + "|"));
    }
}

TEST_F(WriteDebug, KeepsOneRecordOnOneLine) {
    CTraceUtility::WriteDebug("a\nb", TRACE_DBG_ERROR, "one\ntwo\r\n\tthree\x1b[0m\x7f\xc3\xa4\\n");
    EXPECT_THAT(lines(), ElementsAre(EndsWith("[a\\nb] one\\ntwo\\r\\n\tthree\\x1b[0m\\x7f\xc3\xa4\\n")));
}

TEST_F(WriteDebug, TakesNullTexts) {
    CTraceUtility::WriteDebug(nullptr, TRACE_DBG_ERROR, nullptr);
    EXPECT_THAT(lines(), ElementsAre(EndsWith(" ERROR [(null)] ")));
}

TEST_F(WriteDebug, KeepsErrno) {
    const std::string errnoText = "%m%s";  // GNU's own, of which a literal would be warned
    for (const char* file : {"/proc/kvl/none", file_.c_str()}) {
        setFile(file);
        errno = ENOSPC;
        CTraceUtility::WriteDebug("m", TRACE_DBG_ERROR, errnoText.c_str(), "");
        EXPECT_EQ(errno, ENOSPC);
    }
    EXPECT_THAT(lines().back(), EndsWith("No space left on device"));
}

TEST_F(WriteDebug, IsSilentWhereTheFileCannotBeWritten) {
    kvl::test::layDirectory(scratch_ / "directory");
    ASSERT_EQ(::mkfifo((scratch_ / "pipe").c_str(), 0600), 0);
    for (const std::string& file :
         {scratch_ / "directory", scratch_ / "pipe", std::string("/dev/full"), std::string("/proc/kvl/none")}) {
        setFile(file);
        for (int i = 0; i < 3; ++i) {
            EXPECT_NO_THROW(CTraceUtility::WriteDebug("m", TRACE_DBG_ERROR, "text")) << file;
        }
    }
}

TEST_F(WriteDebug, WritesAgainOnceTheFileCanBeWritten) {
    setFile(scratch_ / "trace");
    kvl::test::layDirectory(scratch_ / "trace");
    CTraceUtility::WriteDebug("m", TRACE_DBG_ERROR, "lost");
    std::filesystem::remove(scratch_ / "trace");
    CTraceUtility::WriteDebug("m", TRACE_DBG_ERROR, "kept");
    EXPECT_THAT(linesOf(scratch_ / "trace"), ElementsAre(EndsWith("kept")));
}

TEST_F(WriteDebug, TakesLinesOfManyThreads) {
    constexpr int kThreads = 4;
    constexpr int kLines = 200;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([thread] {
            for (int line = 0; line < kLines; ++line) {
                CTraceUtility::WriteDebug("m", TRACE_DBG_ERROR, "thread %d line %d.", thread, line);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::regex shape(R"(.* ERROR \[m\] thread \d line \d+\.)");
    EXPECT_THAT(lines(), SizeIs(kThreads * kLines));
    for (const std::string& line : lines()) {
        EXPECT_TRUE(std::regex_match(line, shape)) << line;
    }
}

TEST_F(WriteTrace, FillsTheTextOfTheMessage) {
    CTraceUtility::WriteTrace("cna", "MSGID_EMULEX_0004_F", "ocm", "timed out");
    CTraceUtility::WriteTrace("fc", "MSGID_EMULEX_FC_0004_F", "ocm", "timed out");
    CTraceUtility::WriteTrace("cna", "MSGID_EMULEX_0020_F", "1e");
    CTraceUtility::WriteTrace("fc", "MSGID_EMULEX_FC_0019_F", "1e");
    EXPECT_THAT(
        lines(),
        ElementsAre(
            EndsWith(" OPERATOR [cna] MSGID_EMULEX_0004_F: The update of ocm for a converged network adapter failed: "
                     "timed out"),
            EndsWith(" OPERATOR [fc] MSGID_EMULEX_FC_0004_F: The update of ocm for a Fibre Channel adapter failed: "
                     "timed out"),
            EndsWith(" OPERATOR [cna] MSGID_EMULEX_0020_F: A version of a converged network adapter has the wrong "
                     "form (error 1e)"),
            EndsWith(" OPERATOR [fc] MSGID_EMULEX_FC_0019_F: A version of a Fibre Channel adapter has the wrong form "
                     "(error 1e)")));
}

TEST_F(WriteTrace, IgnoresTheMask) {
    setLevels("0");
    CTraceUtility::WriteTrace("cna", "MSGID_EMULEX_0020_F", "1e");
    EXPECT_THAT(lines(), SizeIs(1));
}

TEST_F(WriteTrace, TakesArgumentsAsTheyAre) {
    CTraceUtility::WriteTrace("cna", "MSGID_EMULEX_0004_F", "%s%n", "one\ntwo");
    EXPECT_THAT(lines(), ElementsAre(EndsWith("The update of %s%n for a converged network adapter failed: one\\ntwo")));
}

TEST_F(WriteTrace, RecordsAnUnknownIdentifier) {
    CTraceUtility::WriteTrace("cna", "MSGID_OTHER");
    CTraceUtility::WriteTrace("cna", nullptr);
    EXPECT_THAT(lines(), ElementsAre(EndsWith(" OPERATOR [cna] MSGID_OTHER: no text is known for this message"),
                                     EndsWith(" OPERATOR [cna] (null): no text is known for this message")));
}

TEST_F(WriteTrace, NeverFailsItsCaller) {
    setFile("/proc/kvl/none");
    errno = ENOSPC;
    EXPECT_NO_THROW(CTraceUtility::WriteTrace("cna", "MSGID_EMULEX_0004_F", nullptr, nullptr));
    EXPECT_EQ(errno, ENOSPC);
}

TEST_F(TraceObserver, SeesEveryLevelWhateverTheMask) {
    setLevels("0");
    std::vector<std::string> seen;
    setTraceObserver([&seen](const std::string& module, TRACE_DBG_LEVEL level, const std::string& text) {
        seen.push_back(module + " " + std::to_string(level) + " " + text);
    });
    for (const TRACE_DBG_LEVEL level : kLevels) {
        CTraceUtility::WriteDebug("m", level, "a\n%d", 7);
    }
    setTraceObserver({});
    CTraceUtility::WriteDebug("m", TRACE_DBG_ERROR, "unseen");
    EXPECT_THAT(seen, ElementsAre("m 1 a\n7", "m 2 a\n7", "m 4 a\n7", "m 16 a\n7", "m 32 a\n7"));
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(TraceObserver, MayTraceItself) {
    int calls = 0;
    setTraceObserver([&calls](const std::string&, TRACE_DBG_LEVEL, const std::string&) {
        ++calls;
        CTraceUtility::WriteDebug("m", TRACE_DBG_ERROR, "from the observer");
    });
    CTraceUtility::WriteDebug("m", TRACE_DBG_ERROR, "first");
    CTraceUtility::WriteDebug("m", TRACE_DBG_ERROR, "second");
    EXPECT_EQ(calls, 2);
    EXPECT_THAT(lines(), SizeIs(4));
}

TEST_F(TraceObserver, MayRemoveItself) {
    int calls = 0;
    setTraceObserver([&calls](const std::string&, TRACE_DBG_LEVEL, const std::string&) {
        ++calls;
        setTraceObserver({});
    });
    CTraceUtility::WriteDebug("m", TRACE_DBG_FLOW, "first");
    CTraceUtility::WriteDebug("m", TRACE_DBG_FLOW, "second");
    EXPECT_EQ(calls, 1);
}

TEST_F(TraceObserver, MayThrow) {
    setTraceObserver(
        [](const std::string&, TRACE_DBG_LEVEL, const std::string&) { throw std::runtime_error("observer"); });
    EXPECT_NO_THROW(CTraceUtility::WriteDebug("m", TRACE_DBG_ERROR, "text"));
    EXPECT_THAT(lines(), SizeIs(1));
}

TEST_F(TraceObserver, ChangesWhileOtherThreadsTrace) {
    std::atomic<int> calls{0};
    std::atomic<bool> done{false};
    std::thread tracer([&done] {
        while (!done) {
            CTraceUtility::WriteDebug("m", TRACE_DBG_FLOW, "text");
        }
    });
    for (int i = 0; i < 200; ++i) {
        setTraceObserver([&calls](const std::string&, TRACE_DBG_LEVEL, const std::string&) { ++calls; });
        const int before = calls;
        while (calls == before) {
            std::this_thread::yield();
        }
        setTraceObserver({});
    }
    done = true;
    tracer.join();
    EXPECT_GE(calls, 200);
}

}  // namespace
