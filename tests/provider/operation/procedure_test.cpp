#include "provider/operation/procedure.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <ostream>
#include <stdexcept>

#include "adapter/CEmulexCommon.h"
#include "host/CTraceUtility.h"
#include "tests/machines/outside.h"

namespace {

using kvl::provider::AdapterSession;
using kvl::provider::describe;
using kvl::provider::Procedure;
using kvl::provider::ProcedureStep;
using kvl::provider::RunOptions;
using kvl::test::ScratchDirectory;

void trace(TRACE_DBG_LEVEL level, const std::string& text) {
    CTraceUtility::WriteDebug("fc", level, "%s", text.c_str());
}

/// Runs calls that trace as the library does.
class ProcedureTest : public testing::Test {
protected:
    ProcedureTest() {
        setenv("KVL_INSTALL_PATH", scratch_.path().c_str(), 1);
        setenv("KVL_SYSTEM_LOG", "no", 1);
    }

    std::vector<ProcedureStep> steps() const {
        return {{"Unzip [START]", "unpacking", false, ""},
                {"Resultmode", "writing one", true, scratch_ / "output"},
                {"Resultmode", "writing another", true, scratch_ / "output"}};
    }

    /// @return why it failed
    std::string run(const std::function<bool()>& call) {
        Procedure procedure(session(), steps());
        EXPECT_FALSE(procedure.run(call));
        return describe(procedure.failure());
    }

    AdapterSession& session() {
        if (!session_) {
            session_.emplace(RunOptions{0, false, false, false});
        }
        return *session_;
    }
    void endSession() { session_.reset(); }
    const ScratchDirectory& scratch() const { return scratch_; }

private:
    const ScratchDirectory scratch_;
    std::optional<AdapterSession> session_;
};

TEST_F(ProcedureTest, FollowsItsStepsInTheirOrder) {
    testing::internal::CaptureStderr();
    Procedure procedure(session(), steps());
    EXPECT_TRUE(procedure.run([&] {
        trace(TRACE_DBG_BOUNDARY, "Resultmode = 3: too early");
        EXPECT_FALSE(procedure.hasBegun(0));
        trace(TRACE_DBG_BOUNDARY, "Unzip [START]");
        trace(TRACE_DBG_BOUNDARY, "Unzip [START]");
        EXPECT_TRUE(procedure.hasBegun(0));
        EXPECT_FALSE(procedure.hasBegun(1));
        EXPECT_FALSE(procedure.hasChanged());
        trace(TRACE_DBG_BOUNDARY, "the Resultmode stands behind");
        EXPECT_FALSE(procedure.hasBegun(1));
        trace(TRACE_DBG_BOUNDARY, "Resultmode = 3");
        EXPECT_TRUE(procedure.hasChanged());
        EXPECT_FALSE(procedure.hasBegun(2));
        trace(TRACE_DBG_BOUNDARY, "Resultmode = 3");
        trace(TRACE_DBG_BOUNDARY, "Resultmode = 3");
        EXPECT_TRUE(procedure.hasBegun(2));
        return true;
    }));
    trace(TRACE_DBG_BOUNDARY, "Unzip [START]");
    endSession();
    EXPECT_EQ("[1/3] unpacking\n[2/3] writing one\n[3/3] writing another\n", testing::internal::GetCapturedStderr());
    EXPECT_EQ("", procedure.failure().meaning);
}

TEST_F(ProcedureTest, TellsTheLastErrorOfACallThatBeginsNoStep) {
    CEmulexCommon::SetLastError(kvl::kNoTool);
    EXPECT_EQ("the library tells no reason (error 0): run the command again with -v, which shows each step",
              run([] { return false; }));
    EXPECT_EQ(
        "the folder of an unpacked module could not be deleted (error 1c): remove the folder by hand, and see "
        "why it can't be deleted",
        run([] {
            CEmulexCommon::SetLastError(kvl::kUnpackFolderNotDeleted);
            return false;
        }));
}

TEST_F(ProcedureTest, TellsTheStepThatFailedAndTheLastErrorWithoutACause) {
    EXPECT_EQ(
        "unpacking failed: the update module could not be unpacked (error 1a): see whether the module's archive "
        "is whole and 'unzip' is installed",
        run([] {
            trace(TRACE_DBG_BOUNDARY, "Unzip [START]");
            trace(TRACE_DBG_ERROR, "something else");
            trace(TRACE_DBG_FLOW, "No such end message.");
            CEmulexCommon::SetLastError(kvl::kNotUnpacked);
            return false;
        }));
}

TEST_F(ProcedureTest, TellsTheFirstCauseOfTheStepThatFailed) {
    EXPECT_EQ("writing one failed: its output does not report success (error 11): nothing was printed into " +
                  scratch() / "output",
              run([] {
                  trace(TRACE_DBG_BOUNDARY, "Unzip [START]");
                  trace(TRACE_DBG_ERROR, "No such end message.");
                  trace(TRACE_DBG_BOUNDARY, "Resultmode = 3");
                  trace(TRACE_DBG_ERROR, "No such success message.");
                  trace(TRACE_DBG_ERROR, "File Open Error");
                  CEmulexCommon::SetLastError(kvl::kFileNotOpened);
                  return false;
              }));
}

TEST_F(ProcedureTest, TellsAFormThatTheLibraryDoesNotExpect) {
    EXPECT_EQ(
        "hbacmd's list of the adapters does not have the expected form (error 0): see what 'hbacmd listhbas' "
        "prints: tmp/EMULEX/temp/Listhbas.txt below the install directory holds it",
        run([]() -> bool { throw std::out_of_range("basic_string::substr"); }));
}

struct CauseRow {
    const char* line;
    const char* words;
};

void PrintTo(const CauseRow& row, std::ostream* stream) {
    *stream << row.line;
}

class Cause : public ProcedureTest, public testing::WithParamInterface<CauseRow> {};

TEST_P(Cause, IsToldInWords) {
    EXPECT_EQ(std::string("unpacking failed: ") + GetParam().words +
                  " (error 0): run the command again with -v, which shows each step",
              run([] {
                  trace(TRACE_DBG_BOUNDARY, "Unzip [START]");
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

class UpdatersOutput : public ProcedureTest, public testing::WithParamInterface<LastWords> {};

TEST_P(UpdatersOutput, IsQuotedByItsLastWords) {
    scratch().write("output", GetParam().output);
    EXPECT_EQ("writing one failed: the library tells no reason (error 0): it said last '" + GetParam().words + "'; " +
                  scratch() / "output" + " holds the rest",
              run([] {
                  trace(TRACE_DBG_BOUNDARY, "Unzip [START]");
                  trace(TRACE_DBG_BOUNDARY, "Resultmode = 3");
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

TEST_F(ProcedureTest, SaysThatNothingWasPrintedOfOutputThatIsEmptyOrBlank) {
    const auto failing = [] {
        trace(TRACE_DBG_BOUNDARY, "Unzip [START]");
        trace(TRACE_DBG_BOUNDARY, "Resultmode = 3");
        return false;
    };
    const std::string sentence =
        "writing one failed: the library tells no reason (error 0): nothing was printed into " + scratch() / "output";
    for (const std::string output : {"", "\n \r\n"}) {
        scratch().write("output", output);
        EXPECT_EQ(sentence, run(failing));
    }
}

}  // namespace
