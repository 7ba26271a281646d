#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/adapter/update_execution.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kTenMebibytes = 10 * 1024 * 1024;
const std::string kReports = "/tmp/reports";

// ---- The run ----

using UpdaterRun = UpdateExecution;

TEST_F(UpdaterRun, PassesTheCommandToTheShellAsItStands) {
    EXPECT_TRUE(update("printf '[%s]' \"a  b\" 'c\"d' $((1 + 1)) | cat; true", 1));
    EXPECT_EQ(contentOf(output), "[a  b][c\"d][2]");
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 1 [START]
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
}

TEST_F(UpdaterRun, WaitsWithoutALimit) {
    EXPECT_TRUE(update("sleep 0.01; echo late", 1));
    EXPECT_EQ(contentOf(output), "late\n");
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdaterRun, EmptiesTheResultFileOfAnEarlierRunAndLeavesItsOwn) {
    machine.file(output, "a longer text of an earlier run\n");
    EXPECT_TRUE(update("echo new", 1));
    EXPECT_EQ(contentOf(output), "new\n");
}

TEST_F(UpdaterRun, TakesPlaceInTheWorkDirectory) {
    machine.directory("/tmp/place/inner");
    workDir = "/tmp/place";
    EXPECT_TRUE(update("pwd", 1));
    EXPECT_EQ(contentOf(output), "/tmp/place\n");
}

TEST_F(UpdaterRun, TakesPlaceInARelativeWorkDirectoryAndInTheCurrentOneForNone) {
    machine.directory("/tmp/place/inner");
    const fs::path before = fs::current_path();
    fs::current_path("/tmp/place");
    workDir = "inner";
    EXPECT_TRUE(update("pwd", 1));
    EXPECT_EQ(contentOf(output), "/tmp/place/inner\n");
    workDir = "";
    EXPECT_TRUE(update("pwd", 1));
    EXPECT_EQ(contentOf(output), "/tmp/place\n");
    fs::current_path(before);
}

TEST_F(UpdaterRun, FailsInEveryModeWhereTheUpdaterCannotBeRun) {
    for (const int mode : {1, 2, 3, 4, 0, 5}) {
        SCOPED_TRACE(mode);
        forget();
        workDir = "/tmp/absent";
        EXPECT_FALSE(update("echo ran >/tmp/ran", mode));
        EXPECT_EQ(takeError(), 17U);
        EXPECT_EQ(exitCode, 255U);
        EXPECT_EQ(TestHost::trace(), traceOf({{"mode", std::to_string(mode)}}, R"(
            4 CEmulexCommon::EmulexUpdate() Resultmode = {mode} [START]
            2 Failed to update execute(echo ran >/tmp/ran)(11)(Windows Error code:17).
            4 CEmulexCommon::EmulexUpdate() [END]
        )"));
        EXPECT_EQ(contentOf("/tmp/ran"), "(absent)");
        EXPECT_EQ(contentOf(output), "(absent)");
    }
}

TEST_F(UpdaterRun, FailsForAnEmptyCommand) {
    EXPECT_FALSE(update("", 1));
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 1 [START]
        2 Failed to update execute()(11)(Windows Error code:17).
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
}

TEST_F(UpdaterRun, FailsWhereItCannotFork) {
    libc().failingForks = 1;
    EXPECT_FALSE(update("true", 1));
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 1 [START]
        2 Failed to update execute(true)(11)(Windows Error code:17).
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
}

TEST_F(UpdaterRun, FailsWhereASignalEndsTheUpdaterWhateverItPrinted) {
    const std::string command = "echo 0; echo Done; echo Ended; kill -9 $$";
    for (const int mode : {1, 2, 3, 4, 5}) {
        SCOPED_TRACE(mode);
        forget();
        EXPECT_FALSE(update(command, mode));
        EXPECT_EQ(takeError(), 17U);
        EXPECT_EQ(exitCode, 255U);
        EXPECT_EQ(TestHost::trace(), traceOf({{"mode", std::to_string(mode)}, {"command", command}}, R"(
            4 CEmulexCommon::EmulexUpdate() Resultmode = {mode} [START]
            2 Failed to update execute({command})(11)(Windows Error code:17).
            4 CEmulexCommon::EmulexUpdate() [END]
        )"));
        EXPECT_EQ(contentOf(output), "0\nDone\nEnded\n");
        EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
    }
}

TEST_F(UpdaterRun, DeletesTheTextReportsBeforehandInEveryMode) {
    for (const int mode : {1, 2, 3, 4, 0, 5}) {
        SCOPED_TRACE(mode);
        for (const char* name : {"one.txt", "two.txt", "kept.log", "txt"}) {
            machine.file(kReports + "/" + name, "Done\nEnded\n");
        }
        reportDir = kReports;
        update("ls " + kReports, mode);
        EXPECT_EQ(contentOf(output), "kept.log\ntxt\n");
        EXPECT_EQ(namesIn(kReports), (Lines{"kept.log", "txt"}));
    }
}

TEST_F(UpdaterRun, DeletesTheTextReportsAlsoWhereTheUpdaterCannotBeRun) {
    machine.file(kReports + "/one.txt", "");
    reportDir = kReports;
    EXPECT_FALSE(update("", 1));
    EXPECT_THAT(namesIn(kReports), testing::IsEmpty());
}

TEST_F(UpdaterRun, DeletesNothingWithoutAReportDirectory) {
    machine.file("/tmp/place/one.txt", "");
    machine.file("/one.txt", "");
    const fs::path before = fs::current_path();
    fs::current_path("/tmp/place");
    EXPECT_TRUE(update("true", 1));
    fs::current_path(before);
    EXPECT_EQ(contentOf("/tmp/place/one.txt"), "");
    EXPECT_EQ(contentOf("/one.txt"), "");
}

// ---- The exit code ----

using UpdaterExitCode = UpdateExecution;

TEST_F(UpdaterExitCode, OfZeroIsASuccessWhateverThePrintedText) {
    output = "/tmp/result";
    messageFile = "";
    EXPECT_TRUE(update("echo failed", 1));
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 1 [START]
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
}

TEST_F(UpdaterExitCode, OfAnyOtherValueIsAFailure) {
    const std::vector<std::pair<unsigned long, std::string>> rows = {
        {1, "0x1"}, {10, "0xa"}, {127, "0x7f"}, {255, "0xff"}};
    for (const auto& [code, text] : rows) {
        SCOPED_TRACE(text);
        forget();
        CEmulexCommon::SetLastError(kEarlierError);
        const std::string command = "echo 0; echo Done; echo Ended; exit " + std::to_string(code);
        EXPECT_FALSE(update(command, 1));
        EXPECT_EQ(exitCode, code);
        EXPECT_EQ(lastError(), 33U);
        EXPECT_EQ(TestHost::trace(), traceOf({{"command", command}, {"code", text}}, R"(
            4 CEmulexCommon::EmulexUpdate() Resultmode = 1 [START]
            2 Failed to update({command})(ReturnCode={code}).
            4 CEmulexCommon::EmulexUpdate() [END]
        )"));
    }
}

TEST_F(UpdaterExitCode, IsOneWhereTheResultFileCannotBeOpenedOrTheWorkDirectoryIsAFile) {
    machine.file("/tmp/file", "");
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"/tmp/absent/result", ""}, {"/tmp", ""}, {"/tmp/result", "/tmp/file"}};
    for (const auto& [file, directory] : rows) {
        SCOPED_TRACE(file);
        forget();
        output = file;
        workDir = directory;
        EXPECT_FALSE(update("echo ran >/tmp/ran", 1));
        EXPECT_EQ(exitCode, 1U);
        EXPECT_EQ(takeError(), 33U);
        EXPECT_EQ(TestHost::trace(), traceOf(R"(
            4 CEmulexCommon::EmulexUpdate() Resultmode = 1 [START]
            2 Failed to update(echo ran >/tmp/ran)(ReturnCode=0x1).
            4 CEmulexCommon::EmulexUpdate() [END]
        )"));
        EXPECT_EQ(contentOf("/tmp/ran"), "(absent)");
    }
}

// ---- The first line ----

using UpdaterFirstLine = UpdateExecution;

TEST_F(UpdaterFirstLine, OfZeroIsASuccessWhateverTheExitCode) {
    for (const char* text : {"0\\n", "0", "0\\nfailed\\n"}) {
        SCOPED_TRACE(text);
        forget();
        EXPECT_TRUE(update("printf '" + std::string(text) + "'; exit 5", 2));
        EXPECT_EQ(exitCode, 5U);
        EXPECT_EQ(lastError(), kEarlierError);
        EXPECT_EQ(TestHost::trace(), traceOf(R"(
            4 CEmulexCommon::EmulexUpdate() Resultmode = 2 [START]
            4 CEmulexCommon::EmulexUpdate() [END]
        )"));
    }
}

TEST_F(UpdaterFirstLine, OfAnythingElseIsAFailure) {
    for (const char* text : {"", "\\n", "\\n0\\n", "0 \\n", " 0\\n", "0\\r\\n", "0\\t\\n", "00\\n", "1\\n", "O\\n"}) {
        SCOPED_TRACE(text);
        forget();
        CEmulexCommon::SetLastError(kEarlierError);
        const std::string command = "printf '" + std::string(text) + "'";
        EXPECT_FALSE(update(command, 2));
        EXPECT_EQ(exitCode, 0U);
        EXPECT_EQ(lastError(), 33U);
        EXPECT_EQ(TestHost::trace(), traceOf({{"command", command}}, R"(
            4 CEmulexCommon::EmulexUpdate() Resultmode = 2 [START]
            2 Failed to update({command}).
            4 CEmulexCommon::EmulexUpdate() [END]
        )"));
    }
}

TEST_F(UpdaterFirstLine, IsReadOfAnyLength) {
    const std::string command = "head -c " + std::to_string(kTenMebibytes) + " /dev/zero | tr '\\0' 0";
    EXPECT_FALSE(update(command, 2));
    EXPECT_EQ(lastError(), 33U);
    EXPECT_TRUE(update("echo 0; head -c " + std::to_string(kTenMebibytes) + " /dev/zero", 2));
}

TEST_F(UpdaterFirstLine, OfAFileThatCannotBeOpenedFailsWithoutAnEndLine) {
    for (const char* file : {"/tmp/absent/result", ""}) {
        SCOPED_TRACE(file);
        forget();
        output = file;
        EXPECT_FALSE(update("echo ran >/tmp/ran", 2));
        EXPECT_EQ(takeError(), 17U);
        EXPECT_EQ(TestHost::trace(), traceOf({{"file", file}}, R"(
            4 CEmulexCommon::EmulexUpdate() Resultmode = 2 [START]
            2 Failed to open file({file}).
        )"));
    }
    EXPECT_EQ(contentOf("/tmp/ran"), "ran\n");  // without a result file the updater runs
}

TEST_F(UpdaterFirstLine, OfADirectoryIsEmpty) {
    output = "/tmp";
    EXPECT_FALSE(update("echo 0", 2));
    EXPECT_EQ(exitCode, 1U);
    EXPECT_EQ(lastError(), 33U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 2 [START]
        2 Failed to update(echo 0).
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
}

// ---- The output ----

using UpdaterOutput = UpdateExecution;

TEST_F(UpdaterOutput, WithASuccessTextAndAnEndTextIsASuccessWhateverTheExitCode) {
    for (const unsigned long code : {0UL, 1UL, 255UL}) {
        SCOPED_TRACE(code);
        forget();
        EXPECT_TRUE(update(printing(kGoodOutput) + "\nexit " + std::to_string(code), 3));
        EXPECT_EQ(exitCode, code);
        EXPECT_EQ(lastError(), kEarlierError);
        EXPECT_EQ(TestHost::trace(), traceOf(R"(
            4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
            4 CEmulexCommon::CheckUpdateResult_() [START]
            1 log_mes_ifs. buf=[SuccessMessage=Done]
            1 successMessage[0]=[Done]
            1 log_mes_ifs. buf=[EndMessage=Ended]
            1 endMessage[0]=[Ended]
            1 Result file check endmsg [Working]
            1 Result file check endmsg [Done]
            1 Result file check endmsg [Ended]
            1 Find endmsg[] in [Ended]
            1 Result file check success msg [Working]
            1 Result file check success msg [Done]
            1 Find SuccessMsg[] in [Done]
            1 Update Result Check OK
            4 CEmulexCommon::CheckUpdateResult_() [END]
            4 CEmulexCommon::EmulexUpdate() [END]
        )"));
        EXPECT_EQ(TestHost::sleeps(), looks(1));
        EXPECT_EQ(contentOf(output), textOf(kGoodOutput));
    }
}

TEST_F(UpdaterOutput, FailsWithoutTheNameOfAMessageFileAndNamesTheResultFileInstead) {
    messageFile = "";
    EXPECT_FALSE(update("echo ran", 3));
    EXPECT_EQ(contentOf(output), "ran\n");
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        2 Failed to open file(/tmp/result).
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdaterOutput, WithoutTheEndTextFailsWithOneCode) {
    EXPECT_FALSE(update("echo Done", 3));
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), 33U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [Done]
        1 Result file check endmsg [Done]
        1 Result file check endmsg [Done]
        1 Result file check endmsg [Done]
        1 Result file check endmsg [Done]
        2 No such end message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(echo Done).
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
    EXPECT_EQ(TestHost::sleeps(), looks(5));
}

TEST_F(UpdaterOutput, WithoutTheSuccessTextFailsWithTheSameCode) {
    EXPECT_FALSE(update("echo Ended", 3));
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), 33U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [Ended]
        1 Find endmsg[] in [Ended]
        1 Result file check success msg [Ended]
        2 No such success message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(echo Ended).
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
    EXPECT_EQ(TestHost::sleeps(), looks(1));
}

TEST_F(UpdaterOutput, FailsWithTheSameCodeWithoutTheMessageFileOrASuccessTextInIt) {
    fs::remove(messageFile);
    EXPECT_FALSE(update("exit 4", 3));
    EXPECT_EQ(exitCode, 4U);
    EXPECT_EQ(takeError(), 33U);
    EXPECT_EQ(takeTrace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        2 File open error /tmp/message.txt
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(exit 4).
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));

    machine.file(messageFile, "EndMessage=Ended\n");
    EXPECT_FALSE(update("echo Ended", 3));
    EXPECT_EQ(takeError(), 33U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        2 no successMessage
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(echo Ended).
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdaterOutput, FailsWithTheSameCodeWhereTheResultFileCannotBeOpened) {
    output = "/tmp/absent/result";
    EXPECT_FALSE(update("echo Done; echo Ended", 3));
    EXPECT_EQ(exitCode, 1U);
    EXPECT_EQ(lastError(), 33U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        2 File Open Error
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(echo Done; echo Ended).
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
    EXPECT_EQ(TestHost::sleeps(), looks(1));
}

TEST_F(UpdaterOutput, OfAWorkDirectoryThatIsAFileIsThatOfTheEarlierRun) {
    // The updater is not started, but the child ends by itself before it becomes a shell, and nothing empties the
    // result file.
    machine.file("/tmp/file", "");
    machine.file(output, textOf(kGoodOutput));
    workDir = "/tmp/file";
    EXPECT_TRUE(update("true", 3));
    EXPECT_EQ(exitCode, 1U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [Working]
        1 Result file check endmsg [Done]
        1 Result file check endmsg [Ended]
        1 Find endmsg[] in [Ended]
        1 Result file check success msg [Working]
        1 Result file check success msg [Done]
        1 Find SuccessMsg[] in [Done]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
}

TEST_F(UpdaterOutput, IsWrittenInTheWorkDirectoryButLookedForHereWhereItsPathIsRelative) {
    workDir = "/tmp/elsewhere";
    machine.directory(workDir);
    output = "only-there";
    EXPECT_FALSE(update("echo 0", 2));
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(contentOf("/tmp/elsewhere/only-there"), "0\n");
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 2 [START]
        2 Failed to open file(only-there).
    )"));
}

TEST_F(UpdaterOutput, MayBeFinishedByAGrandchildThatHoldsTheResultFile) {
    machine.file("/tmp/go", "");
    atSleep(3, [this] {
        unlink("/tmp/go");
        while (contentOf(output) != textOf(kGoodOutput)) {
            usleep(1000);
        }
    });
    EXPECT_TRUE(update("(while [ -e /tmp/go ]; do sleep 0.01; done; echo Done; echo Ended) & echo Working", 3));
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [Working]
        1 Result file check endmsg [Working]
        1 Result file check endmsg [Working]
        1 Result file check endmsg [Done]
        1 Result file check endmsg [Ended]
        1 Find endmsg[] in [Ended]
        1 Result file check success msg [Working]
        1 Result file check success msg [Done]
        1 Find SuccessMsg[] in [Done]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
    EXPECT_EQ(TestHost::sleeps(), looks(3));
}

TEST_F(UpdaterOutput, IsAFailureWhereAGrandchildGoesOnPastTheLastLook) {
    machine.file("/tmp/go", "");
    const std::string command = "(while [ -e /tmp/go ]; do sleep 0.01; done; echo Ended) & echo Done";
    EXPECT_FALSE(update(command, 3));
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), 33U);
    EXPECT_EQ(TestHost::sleeps(), looks(5));
    EXPECT_EQ(contentOf(output), "Done\n");
    unlink("/tmp/go");
    while (contentOf(output) != "Done\nEnded\n") {
        usleep(1000);
    }
}

TEST_F(UpdaterOutput, OfTenMebibytesIsReadWhole) {
    const std::string line(1023, 'x');
    const std::size_t number = kTenMebibytes / 1024;
    machine.file("/tmp/large", textOf(Lines(number, line)) + "Done\nEnded\n");
    EXPECT_TRUE(update("cat /tmp/large", 3));
    const Values values = {{"end looks", textOf(Lines(number, "1 Result file check endmsg [" + line + "]"))},
                           {"success looks", textOf(Lines(number, "1 Result file check success msg [" + line + "]"))}};
    EXPECT_TRUE(TestHost::trace() == traceOf(values, R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        {end looks}
        1 Result file check endmsg [Done]
        1 Result file check endmsg [Ended]
        1 Find endmsg[] in [Ended]
        {success looks}
        1 Result file check success msg [Done]
        1 Find SuccessMsg[] in [Done]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
}

TEST_F(UpdaterOutput, IsReadWholeAlsoInOneLineWithoutAnEnd) {
    EXPECT_TRUE(update("head -c " + std::to_string(kTenMebibytes) + " /dev/zero | tr '\\0' x; printf 'Done Ended'", 3));
    EXPECT_TRUE(TestHost::trace() == traceOf({{"line", std::string(kTenMebibytes, 'x') + "Done Ended"}}, R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [{line}]
        1 Find endmsg[] in [{line}]
        1 Result file check success msg [{line}]
        1 Find SuccessMsg[] in [{line}]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
}

// ---- Reports ----

class UpdaterReport : public UpdateExecution {
protected:
    void SetUp() override {
        UpdateExecution::SetUp();
        reportDir = kReports;
        machine.directory(kReports);
    }

    /// A command that leaves reports with this text.
    static std::string leaving(const Lines& names, const std::string& text = textOf(kGoodOutput)) {
        std::string command;
        for (const std::string& name : names) {
            command += "printf '" + text + "' >" + kReports + "/" + name + "; ";
        }
        return command;
    }
};

TEST_F(UpdaterReport, WithASuccessTextAndAnEndTextIsASuccessWhateverTheExitCode) {
    EXPECT_TRUE(update(leaving({"report.txt", "other.log"}) + "exit 7", 4));
    EXPECT_EQ(exitCode, 7U);
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 4 [START]
        1 After to find reports file.There is one update file.
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [Working]
        1 Result file check endmsg [Done]
        1 Result file check endmsg [Ended]
        1 Find endmsg[] in [Ended]
        1 Result file check success msg [Working]
        1 Result file check success msg [Done]
        1 Find SuccessMsg[] in [Done]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
    EXPECT_EQ(TestHost::sleeps(), looks(1));
    EXPECT_EQ(namesIn(kReports), (Lines{"other.log", "report.txt"}));
    EXPECT_EQ(contentOf(output), "");
}

TEST_F(UpdaterReport, WithoutTheTextsIsAFailureThatNamesTheDirectory) {
    EXPECT_FALSE(update(leaving({"report.txt"}, "Ended\\n") + "echo Done; echo Ended", 4));
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), 33U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 4 [START]
        1 After to find reports file.There is one update file.
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [Ended]
        1 Find endmsg[] in [Ended]
        1 Result file check success msg [Ended]
        2 No such success message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(/tmp/reports).
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
}

TEST_F(UpdaterReport, IsNotLookedForWithoutTheNameOfAMessageFile) {
    messageFile = "";
    EXPECT_FALSE(update(leaving({"one.txt", "two.txt"}), 4));
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 4 [START]
        2 Failed to open file().
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
    EXPECT_EQ(namesIn(kReports), (Lines{"one.txt", "two.txt"}));
}

TEST_F(UpdaterReport, IsMissedWithoutAnError) {
    machine.file(kReports + "/earlier.txt", textOf(kGoodOutput));
    EXPECT_FALSE(update(leaving({"report.log"}) + printing(kGoodOutput), 4));
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 4 [START]
        1 After to find reports file.There is not APInstall update file.
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
    EXPECT_EQ(namesIn(kReports), (Lines{"report.log"}));
}

TEST_F(UpdaterReport, IsMissedWithoutADirectory) {
    reportDir = "";
    EXPECT_FALSE(update("true", 4));
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 4 [START]
        1 After to find reports file.There is not APInstall update file.
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
}

TEST_F(UpdaterReport, OfWhichThereAreSeveralIsAFailureWithAllOfThemDeleted) {
    for (const Lines& names : {Lines{"a.txt", "b.txt"}, Lines{"a.txt", "b.txt", "c.txt"}}) {
        forget();
        CEmulexCommon::SetLastError(kEarlierError);
        EXPECT_FALSE(update(leaving(names + Lines{"kept.log"}), 4));
        EXPECT_EQ(exitCode, 0U);
        EXPECT_EQ(lastError(), 33U);
        EXPECT_EQ(TestHost::trace(), traceOf(R"(
            4 CEmulexCommon::EmulexUpdate() Resultmode = 4 [START]
            1 After to find reports file.There is some update file.
            4 CEmulexCommon::CheckUpdateResult_() [START]
            1 log_mes_ifs. buf=[SuccessMessage=Done]
            1 successMessage[0]=[Done]
            1 log_mes_ifs. buf=[EndMessage=Ended]
            1 endMessage[0]=[Ended]
            2 File Open Error
            4 CEmulexCommon::CheckUpdateResult_() [END]
            2 Failed to update(/tmp/reports).
            4 CEmulexCommon::EmulexUpdate() [END]
        )"));
        EXPECT_EQ(TestHost::sleeps(), looks(1));
        EXPECT_EQ(namesIn(kReports), (Lines{"kept.log"}));
    }
}

TEST_F(UpdaterReport, OfWhichThereAreSeveralAreDeletedBeforeThatIsTold) {
    Lines present;
    TestHost::onTrace([&present](const std::string& line) {
        if (line == "1 After to find reports file.There is some update file.") {
            present = namesIn(kReports);
        }
    });
    EXPECT_FALSE(update(leaving({"a.txt", "b.txt", "kept.log"}), 4));
    EXPECT_EQ(present, (Lines{"kept.log"}));
}

TEST_F(UpdaterReport, OfAnEarlierRunIsDeletedBehindTheStartLine) {
    machine.file(kReports + "/earlier.txt", "");
    Lines present;
    TestHost::onTrace([&present](const std::string& line) {
        if (line == "4 CEmulexCommon::EmulexUpdate() Resultmode = 4 [START]") {
            present = namesIn(kReports);
        }
    });
    EXPECT_FALSE(update("true", 4));
    EXPECT_EQ(present, (Lines{"earlier.txt"}));
    EXPECT_EQ(namesIn(kReports), Lines{});
}

TEST_F(UpdaterReport, OfWhichThereAreSeveralIsAFailureAtOnceWithoutEndTexts) {
    machine.file(messageFile, "SuccessMessage=Done\n");
    EXPECT_FALSE(update(leaving({"a.txt", "b.txt"}), 4));
    EXPECT_EQ(lastError(), 33U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 4 [START]
        1 After to find reports file.There is some update file.
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 no endMessage
        2 File Open Error
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(/tmp/reports).
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdaterReport, IsTheFirstOfSeveralWhereThatOneStays) {
    // A file that its directory doesn't let go is still read.
    EXPECT_TRUE(update(leaving({"a.txt"}) + leaving({"b.txt"}, "other\\n") + "chmod 555 " + kReports, 4));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::EmulexUpdate() Resultmode = 4 [START]
        1 After to find reports file.There is some update file.
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [Working]
        1 Result file check endmsg [Done]
        1 Result file check endmsg [Ended]
        1 Find endmsg[] in [Ended]
        1 Result file check success msg [Working]
        1 Result file check success msg [Done]
        1 Find SuccessMsg[] in [Done]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
    )"));
    chmod(kReports.c_str(), 0755);
}

// ---- Other modes ----

using UpdaterOtherMode = UpdateExecution;

TEST_F(UpdaterOtherMode, FailsWithoutAnErrorOnceTheUpdaterHasRun) {
    for (const int mode : {0, 5, -1, 33}) {
        SCOPED_TRACE(mode);
        forget();
        fs::remove(output);
        EXPECT_FALSE(update("echo 0; echo Done; echo Ended; exit 3", mode));
        EXPECT_EQ(contentOf(output), "0\nDone\nEnded\n");
        EXPECT_EQ(exitCode, 3U);
        EXPECT_EQ(lastError(), kEarlierError);
        EXPECT_EQ(TestHost::trace(), traceOf({{"mode", std::to_string(mode)}}, R"(
            4 CEmulexCommon::EmulexUpdate() Resultmode = {mode} [START]
            4 CEmulexCommon::EmulexUpdate() [END]
        )"));
        EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
    }
}

}  // namespace
}  // namespace kvl::test
