#include "provider/operation/library_call.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <optional>
#include <ostream>
#include <stdexcept>

#include "adapter/CEmulexCommon.h"
#include "host/CTraceUtility.h"
#include "tests/machines/outside.h"

namespace {

using kvl::provider::Change;
using kvl::provider::describe;
using kvl::provider::LibraryCall;
using TheRun = kvl::provider::Run;
using kvl::provider::RunOptions;
using kvl::provider::Steps;
using kvl::provider::TraceEvent;
using kvl::provider::Turn;
using kvl::test::ScratchDirectory;

const std::string kUnpacking = "CUnzip_Utility::Unzip [START]";
const std::string kUpdater = "CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]";

void trace(TRACE_DBG_LEVEL level, const std::string& text) {
    CTraceUtility::WriteDebug("fc", level, "%s", text.c_str());
}

/// Runs calls that trace as the library does.
class LibraryCallTest : public testing::Test {
protected:
    LibraryCallTest() {
        setenv("KVL_INSTALL_PATH", scratch_.path().c_str(), 1);
        setenv("KVL_SYSTEM_LOG", "no", 1);
    }

    Steps steps() const {
        return {{{"delete the marker"}, TraceEvent::kNone, "", Change::kNothing, ""},
                {{"unzip"}, TraceEvent::kUnpacking, "unpacking", Change::kNothing, ""},
                {{"one"}, TraceEvent::kUpdaterStart, "writing one", Change::kBootCode, scratch_ / "output"},
                {{"another"}, TraceEvent::kUpdaterStart, "writing another", Change::kFirmware, scratch_ / "output"}};
    }

    /// @return why it failed
    std::string failureOf(const std::function<bool()>& call) {
        LibraryCall libraryCall(run(), steps());
        EXPECT_FALSE(libraryCall.make(call));
        return describe(libraryCall.failure());
    }

    TheRun& run() {
        if (!run_) {
            run_.emplace(RunOptions{0, false, false}, Turn::kNotNeeded);
        }
        return *run_;
    }
    void endRun() { run_.reset(); }
    const ScratchDirectory& scratch() const { return scratch_; }

private:
    const ScratchDirectory scratch_;
    std::optional<TheRun> run_;
};

TEST_F(LibraryCallTest, FollowsItsStepsInTheirOrder) {
    testing::internal::CaptureStderr();
    LibraryCall libraryCall(run(), steps());
    EXPECT_TRUE(libraryCall.make([&] {
        trace(TRACE_DBG_BOUNDARY, kUpdater);  // too early
        EXPECT_FALSE(libraryCall.hasChanged());
        trace(TRACE_DBG_BOUNDARY, kUnpacking);
        trace(TRACE_DBG_BOUNDARY, kUnpacking);
        EXPECT_FALSE(libraryCall.hasChanged());
        trace(TRACE_DBG_BOUNDARY, "behind: " + kUpdater);
        EXPECT_FALSE(libraryCall.hasBegun(Change::kBootCode));
        trace(TRACE_DBG_BOUNDARY, kUpdater);
        EXPECT_TRUE(libraryCall.hasChanged());
        EXPECT_TRUE(libraryCall.hasBegun(Change::kBootCode));
        EXPECT_FALSE(libraryCall.hasBegun(Change::kFirmware));
        trace(TRACE_DBG_BOUNDARY, kUpdater);
        trace(TRACE_DBG_BOUNDARY, kUpdater);
        EXPECT_TRUE(libraryCall.hasBegun(Change::kFirmware));
        return true;
    }));
    trace(TRACE_DBG_BOUNDARY, kUnpacking);
    endRun();
    EXPECT_EQ("[1/3] unpacking\n[2/3] writing one\n[3/3] writing another\n", testing::internal::GetCapturedStderr());
    EXPECT_EQ("", libraryCall.failure().meaning);
}

TEST_F(LibraryCallTest, TellsTheLastErrorOfACallThatBeginsNoStep) {
    CEmulexCommon::SetLastError(kvl::kNoTool);
    EXPECT_EQ("the library tells no reason (error 0): run the command again with -v, which shows each step",
              failureOf([] { return false; }));
    EXPECT_EQ(
        "the folder of an unpacked module could not be deleted (error 1c): remove the folder by hand, and see "
        "why it can't be deleted",
        failureOf([] {
            CEmulexCommon::SetLastError(kvl::kUnpackFolderNotDeleted);
            return false;
        }));
}

TEST_F(LibraryCallTest, TellsTheStepThatFailedAndTheLastErrorWithoutACause) {
    EXPECT_EQ(
        "unpacking failed: the update module could not be unpacked (error 1a): see whether the module's archive "
        "is whole and 'unzip' is installed",
        failureOf([] {
            trace(TRACE_DBG_BOUNDARY, kUnpacking);
            trace(TRACE_DBG_ERROR, "something else");
            trace(TRACE_DBG_FLOW, "No such end message.");
            CEmulexCommon::SetLastError(kvl::kNotUnpacked);
            return false;
        }));
}

TEST_F(LibraryCallTest, TellsTheFirstCauseOfTheStepThatFailed) {
    EXPECT_EQ("writing one failed: its output does not report success (error 11): nothing was printed into " +
                  scratch() / "output",
              failureOf([] {
                  trace(TRACE_DBG_BOUNDARY, kUnpacking);
                  trace(TRACE_DBG_ERROR, "No such end message.");
                  trace(TRACE_DBG_BOUNDARY, kUpdater);
                  trace(TRACE_DBG_ERROR, "No such success message.");
                  trace(TRACE_DBG_ERROR, "File Open Error");
                  CEmulexCommon::SetLastError(kvl::kFileNotOpened);
                  return false;
              }));
}

TEST_F(LibraryCallTest, TellsAFormThatTheLibraryDoesNotExpect) {
    EXPECT_EQ(
        "hbacmd's list of the adapters does not have the expected form (error 0): see what 'hbacmd listhbas' "
        "prints: tmp/EMULEX/temp/Listhbas.txt below the install directory holds it",
        failureOf([]() -> bool { throw std::out_of_range("basic_string::substr"); }));
}

struct CauseRow {
    const char* line;
    const char* words;
};

void PrintTo(const CauseRow& row, std::ostream* stream) {
    *stream << row.line;
}

class Cause : public LibraryCallTest, public testing::WithParamInterface<CauseRow> {};

TEST_P(Cause, IsToldInWords) {
    EXPECT_EQ(std::string("unpacking failed: ") + GetParam().words +
                  " (error 0): run the command again with -v, which shows each step",
              failureOf([] {
                  trace(TRACE_DBG_BOUNDARY, kUnpacking);
                  trace(TRACE_DBG_ERROR, GetParam().line);
                  return false;
              }));
}

INSTANTIATE_TEST_SUITE_P(
    Table, Cause,
    testing::Values(
        CauseRow{"No such end message.", "its output did not come to its end in 150 s"},
        CauseRow{"No such success message.", "its output does not report success"},
        CauseRow{"no successMessage", "the module's message.txt holds no text of success"},
        CauseRow{"File open error /m/message.txt", "the module's message.txt can't be read"},
        CauseRow{"File Open Error", "its output can't be read"},
        CauseRow{"Failed to update execute(x)(11)(Windows Error code:17).",
                 "it could not be started, or a signal ended it"},
        CauseRow{"Failed to execute command:x ,return:0", "it did not report 'Download Complete' in four runs"},
        CauseRow{"Failed to get create unzip folder", "the directory can't be made"},
        CauseRow{"CUnzip_Utility::Unzip() unzip() failed. dwRtnCode=1", "'unzip' failed"},
        CauseRow{"CUnzip_Utility::Unzip() ExecForeignModule() failed.",
                 "'unzip' could not be run, or a signal ended it"},
        CauseRow{"Failed to get delete update module folder(/x)", "the directory can't be removed"},
        CauseRow{"Failed to get os architecture.", "what kind of machine this is can't be told"},
        CauseRow{"Failed to find update module.There is not ufi file.", "no install.sh was unpacked to follow it"}));

struct LastWords {
    std::string output;
    std::string words;
};

void PrintTo(const LastWords& row, std::ostream* stream) {
    *stream << row.words;
}

class UpdatersOutput : public LibraryCallTest, public testing::WithParamInterface<LastWords> {};

TEST_P(UpdatersOutput, IsQuotedByItsLastWords) {
    scratch().write("output", GetParam().output);
    EXPECT_EQ("writing one failed: the library tells no reason (error 0): it said last '" + GetParam().words + "'; " +
                  scratch() / "output" + " holds the rest",
              failureOf([] {
                  trace(TRACE_DBG_BOUNDARY, kUnpacking);
                  trace(TRACE_DBG_BOUNDARY, kUpdater);
                  return false;
              }));
}

INSTANTIATE_TEST_SUITE_P(Outputs, UpdatersOutput,
                         testing::Values(LastWords{"one\ntwo\n", "two"}, LastWords{"one\ntwo", "two"},
                                         LastWords{"one \r\n\r\n  \n", "one"}, LastWords{"a\x1b[2J\tb\n", "a [2J b"},
                                         LastWords{std::string(200, 'x'), std::string(200, 'x')},
                                         LastWords{"y" + std::string(200, 'x') + "\n", std::string(200, 'x')},
                                         LastWords{std::string(10'000, '.') + "end", std::string(197, '.') + "end"},
                                         LastWords{"last" + std::string(4092, '\n'), "last"}));

TEST_F(LibraryCallTest, SaysThatNothingWasPrintedOfOutputThatIsEmptyOrBlank) {
    const auto failing = [] {
        trace(TRACE_DBG_BOUNDARY, kUnpacking);
        trace(TRACE_DBG_BOUNDARY, kUpdater);
        return false;
    };
    const std::string sentence =
        "writing one failed: the library tells no reason (error 0): nothing was printed into " + scratch() / "output";
    for (const std::string output : {"", "\n \r\n"}) {
        scratch().write("output", output);
        EXPECT_EQ(sentence, failureOf(failing));
    }
}

struct FailedCommandRow {
    TRACE_DBG_LEVEL level;
    const char* line;
    const char* sentence;
};

void PrintTo(const FailedCommandRow& row, std::ostream* stream) {
    *stream << row.line;
}

class BootCommand : public LibraryCallTest, public testing::WithParamInterface<FailedCommandRow> {};

TEST_P(BootCommand, IsNamedWithHowItEnded) {
    LibraryCall libraryCall(run(), steps());
    EXPECT_FALSE(libraryCall.make([] {
        trace(GetParam().level, GetParam().line);
        return false;
    }));
    EXPECT_EQ(GetParam().sentence, libraryCall.failedCommand());
}

INSTANTIATE_TEST_SUITE_P(
    Endings, BootCommand,
    testing::Values(
        FailedCommandRow{TRACE_DBG_ERROR, "depmod -a error.(256)", "'depmod -a' ended with 1"},
        FailedCommandRow{TRACE_DBG_ERROR, "depmod -a error.(35072)", "'depmod -a' was ended by signal 9"},
        FailedCommandRow{TRACE_DBG_ERROR, "depmod -a error.(9)", "'depmod -a' could not be run, or a signal ended it"},
        FailedCommandRow{TRACE_DBG_ERROR, "depmod -a error.(-1)", "'depmod -a' could not be run, or a signal ended it"},
        FailedCommandRow{TRACE_DBG_FLOW, "mv -f command error.(0,1)", "'mv -f' ended with 1"},
        FailedCommandRow{TRACE_DBG_FLOW, "dracut command error.(0,137)", "'dracut' was ended by signal 9"},
        FailedCommandRow{TRACE_DBG_FLOW, "dracut command error.(1,0)",
                         "'dracut' could not be run, or a signal ended it"}));

TEST_F(LibraryCallTest, KnowsTheFilesThatCouldNotBeOpened) {
    LibraryCall libraryCall(run(), steps());
    libraryCall.make([] {
        trace(TRACE_DBG_ERROR, "Failed to open file(/etc/depmod.d/x.conf).");
        return false;
    });
    EXPECT_TRUE(libraryCall.isUnopened("/etc/depmod.d/x.conf"));
    EXPECT_FALSE(libraryCall.isUnopened("/etc/depmod.d/y.conf"));
    EXPECT_EQ("", libraryCall.failedCommand());
}

}  // namespace
