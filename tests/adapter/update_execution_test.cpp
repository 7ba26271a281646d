#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/adapter/update_test.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

constexpr unsigned long kEarlierError = 38;
constexpr std::size_t kTenMebibytes = 10 * 1024 * 1024;
const std::string kReports = "/tmp/reports";
const Lines kGoodOutput = {"Working", "Done", "Ended"};
const MessageFile kMessages = {{"Done"}, {"Ended"}};
const Lines kNoLines;

/// Updaters and the checks of their output, behind an earlier error that a good call leaves.
class UpdateExecution : public UpdateTest {
protected:
    void SetUp() override {
        UpdateTest::SetUp();
        CEmulexCommon::SetLastError(kEarlierError);
        machine.file(messageFile, kMessages.text());
    }

    bool update(const std::string& command, int resultMode) {
        exitCode = 1000;
        const bool isUpdated = CEmulexCommon::EmulexUpdate(command, output, workDir, &exitCode, reportDir, messageFile,
                                                           resultMode, module);
        EXPECT_THAT(TestHost::operatorMessages(), testing::IsEmpty());
        return isUpdated;
    }

    bool check() { return CEmulexCommon::CheckUpdateResult_(output, messageFile, module); }

    /// Checks an output that is all there with a message file of these lines.
    bool check(const std::string& messageText, const std::string& outputText) {
        machine.file(messageFile, messageText);
        machine.file(output, outputText);
        forget();
        CEmulexCommon::SetLastError(kEarlierError);
        return check();
    }

    static unsigned long lastError() { return CEmulexCommon::GetLastError(); }

    static Sleeps looks(std::size_t number) { return Sleeps(number, 30000); }

    std::string output = "/tmp/result";
    std::string workDir;
    std::string reportDir;
    std::string messageFile = "/tmp/message.txt";
    unsigned long exitCode = 0;
};

/// What the judgement of a good output traces that is complete at the first look.
Lines goodJudgement(const MessageFile& messages = kMessages) {
    return resultCheckTrace(messages.trace() + endLookTrace(kGoodOutput, true) +
                            successLookTrace({"Working", "Done"}, true));
}

// ---- EmulexUpdate: the run ----

using UpdaterRun = UpdateExecution;

TEST_F(UpdaterRun, PassesTheCommandToTheShellAsItStands) {
    EXPECT_TRUE(update("printf '[%s]' \"a  b\" 'c\"d' $((1 + 1)) | cat; true", 1));
    EXPECT_EQ(contentOf(output), "[a  b][c\"d][2]");
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), updaterTrace(1, {}));
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
        EXPECT_EQ(TestHost::trace(), updaterTrace(mode, {notRunTrace("echo ran >/tmp/ran")}));
        EXPECT_EQ(contentOf("/tmp/ran"), "(absent)");
        EXPECT_EQ(contentOf(output), "(absent)");
    }
}

TEST_F(UpdaterRun, FailsForAnEmptyCommand) {
    EXPECT_FALSE(update("", 1));
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(TestHost::trace(), updaterTrace(1, {"2 Failed to update execute()(11)(Windows Error code:17)."}));
}

TEST_F(UpdaterRun, FailsWhereItCannotFork) {
    libc().failingForks = 1;
    EXPECT_FALSE(update("true", 1));
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(exitCode, 255U);
    EXPECT_EQ(TestHost::trace(), updaterTrace(1, {"2 Failed to update execute(true)(11)(Windows Error code:17)."}));
}

TEST_F(UpdaterRun, FailsWhereASignalEndsTheUpdaterWhateverItPrinted) {
    const std::string command = "echo 0; echo Done; echo Ended; kill -9 $$";
    for (const int mode : {1, 2, 3, 4, 5}) {
        SCOPED_TRACE(mode);
        forget();
        EXPECT_FALSE(update(command, mode));
        EXPECT_EQ(takeError(), 17U);
        EXPECT_EQ(exitCode, 255U);
        EXPECT_EQ(TestHost::trace(), updaterTrace(mode, {notRunTrace(command)}));
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

// ---- EmulexUpdate: the exit code ----

using UpdaterExitCode = UpdateExecution;

TEST_F(UpdaterExitCode, OfZeroIsASuccessWhateverThePrintedText) {
    output = "/tmp/result";
    messageFile = "";
    EXPECT_TRUE(update("echo failed", 1));
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), updaterTrace(1, {}));
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
        EXPECT_EQ(TestHost::trace(),
                  updaterTrace(1, {"2 Failed to update(" + command + ")(ReturnCode=" + text + ")."}));
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
        EXPECT_EQ(TestHost::trace(), updaterTrace(1, {"2 Failed to update(echo ran >/tmp/ran)(ReturnCode=0x1)."}));
        EXPECT_EQ(contentOf("/tmp/ran"), "(absent)");
    }
}

// ---- EmulexUpdate: the first line ----

using UpdaterFirstLine = UpdateExecution;

TEST_F(UpdaterFirstLine, OfZeroIsASuccessWhateverTheExitCode) {
    for (const char* text : {"0\\n", "0", "0\\nfailed\\n"}) {
        SCOPED_TRACE(text);
        forget();
        EXPECT_TRUE(update("printf '" + std::string(text) + "'; exit 5", 2));
        EXPECT_EQ(exitCode, 5U);
        EXPECT_EQ(lastError(), kEarlierError);
        EXPECT_EQ(TestHost::trace(), updaterTrace(2, {}));
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
        EXPECT_EQ(TestHost::trace(), updaterTrace(2, {updateFailedTrace(command)}));
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
        EXPECT_EQ(TestHost::trace(),
                  (Lines{"4 CEmulexCommon::EmulexUpdate() Resultmode = 2 [START]", notOpenedTrace(file)}));
    }
    EXPECT_EQ(contentOf("/tmp/ran"), "ran\n");  // without a result file the updater runs
}

TEST_F(UpdaterFirstLine, OfADirectoryIsEmpty) {
    output = "/tmp";
    EXPECT_FALSE(update("echo 0", 2));
    EXPECT_EQ(exitCode, 1U);
    EXPECT_EQ(lastError(), 33U);
    EXPECT_EQ(TestHost::trace(), updaterTrace(2, {updateFailedTrace("echo 0")}));
}

// ---- EmulexUpdate: the output ----

using UpdaterOutput = UpdateExecution;

TEST_F(UpdaterOutput, WithASuccessTextAndAnEndTextIsASuccessWhateverTheExitCode) {
    for (const unsigned long code : {0UL, 1UL, 255UL}) {
        SCOPED_TRACE(code);
        forget();
        EXPECT_TRUE(update(printing(kGoodOutput) + "\nexit " + std::to_string(code), 3));
        EXPECT_EQ(exitCode, code);
        EXPECT_EQ(lastError(), kEarlierError);
        EXPECT_EQ(TestHost::trace(), updaterTrace(3, goodJudgement()));
        EXPECT_EQ(TestHost::trace(), goodUpdaterTrace(kMessages, kGoodOutput, 1));
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
    EXPECT_EQ(TestHost::trace(), updaterTrace(3, {"2 Failed to open file(/tmp/result)."}));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdaterOutput, WithoutTheEndTextFailsWithOneCode) {
    EXPECT_FALSE(update("echo Done", 3));
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), 33U);
    EXPECT_EQ(TestHost::trace(),
              updaterTrace(3, resultCheckTrace(kMessages.trace() + 5 * endLookTrace({"Done"}, false) +
                                               Lines{"2 No such end message."}) +
                                  Lines{updateFailedTrace("echo Done")}));
    EXPECT_EQ(TestHost::sleeps(), looks(5));
}

TEST_F(UpdaterOutput, WithoutTheSuccessTextFailsWithTheSameCode) {
    EXPECT_FALSE(update("echo Ended", 3));
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), 33U);
    EXPECT_EQ(TestHost::trace(), updaterTrace(3, resultCheckTrace(kMessages.trace() + endLookTrace({"Ended"}, true) +
                                                                  successLookTrace({"Ended"}, false)) +
                                                     Lines{updateFailedTrace("echo Ended")}));
    EXPECT_EQ(TestHost::sleeps(), looks(1));
}

TEST_F(UpdaterOutput, FailsWithTheSameCodeWithoutTheMessageFileOrASuccessTextInIt) {
    fs::remove(messageFile);
    EXPECT_FALSE(update("exit 4", 3));
    EXPECT_EQ(exitCode, 4U);
    EXPECT_EQ(takeError(), 33U);
    EXPECT_EQ(takeTrace(), updaterTrace(3, resultCheckTrace({"2 File open error /tmp/message.txt"}) +
                                               Lines{updateFailedTrace("exit 4")}));

    const MessageFile onlyEnd = {{}, {"Ended"}};
    machine.file(messageFile, onlyEnd.text());
    EXPECT_FALSE(update("echo Ended", 3));
    EXPECT_EQ(takeError(), 33U);
    EXPECT_EQ(TestHost::trace(),
              updaterTrace(3, resultCheckTrace(onlyEnd.trace()) + Lines{updateFailedTrace("echo Ended")}));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdaterOutput, FailsWithTheSameCodeWhereTheResultFileCannotBeOpened) {
    output = "/tmp/absent/result";
    EXPECT_FALSE(update("echo Done; echo Ended", 3));
    EXPECT_EQ(exitCode, 1U);
    EXPECT_EQ(lastError(), 33U);
    EXPECT_EQ(TestHost::trace(), updaterTrace(3, resultCheckTrace(kMessages.trace() + Lines{"2 File Open Error"}) +
                                                     Lines{updateFailedTrace("echo Done; echo Ended")}));
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
    EXPECT_EQ(TestHost::trace(), updaterTrace(3, goodJudgement()));
}

TEST_F(UpdaterOutput, IsWrittenInTheWorkDirectoryButLookedForHereWhereItsPathIsRelative) {
    workDir = "/tmp/elsewhere";
    machine.directory(workDir);
    output = "only-there";
    EXPECT_FALSE(update("echo 0", 2));
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(contentOf("/tmp/elsewhere/only-there"), "0\n");
    EXPECT_EQ(TestHost::trace(),
              (Lines{"4 CEmulexCommon::EmulexUpdate() Resultmode = 2 [START]", notOpenedTrace("only-there")}));
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
    EXPECT_EQ(TestHost::trace(),
              updaterTrace(
                  3, resultCheckTrace(kMessages.trace() + 2 * endLookTrace({"Working"}, false) +
                                      endLookTrace(kGoodOutput, true) + successLookTrace({"Working", "Done"}, true))));
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
    const Lines lines = Lines(kTenMebibytes / 1024, line) + Lines{"Done", "Ended"};
    machine.file("/tmp/large", textOf(lines));
    EXPECT_TRUE(update("cat /tmp/large", 3));
    const Lines upToSuccess(lines.begin(), lines.end() - 1);
    EXPECT_TRUE(TestHost::trace() == updaterTrace(3, resultCheckTrace(kMessages.trace() + endLookTrace(lines, true) +
                                                                      successLookTrace(upToSuccess, true))));
}

TEST_F(UpdaterOutput, IsReadWholeAlsoInOneLineWithoutAnEnd) {
    EXPECT_TRUE(update("head -c " + std::to_string(kTenMebibytes) + " /dev/zero | tr '\\0' x; printf 'Done Ended'", 3));
    const Lines line = {std::string(kTenMebibytes, 'x') + "Done Ended"};
    EXPECT_TRUE(TestHost::trace() == updaterTrace(3, resultCheckTrace(kMessages.trace() + endLookTrace(line, true) +
                                                                      successLookTrace(line, true))));
}

// ---- EmulexUpdate: reports ----

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

const std::string kNoReportTrace = "1 After to find reports file.There is not APInstall update file.";
const std::string kOneReportTrace = "1 After to find reports file.There is one update file.";
const std::string kSomeReportsTrace = "1 After to find reports file.There is some update file.";

TEST_F(UpdaterReport, WithASuccessTextAndAnEndTextIsASuccessWhateverTheExitCode) {
    EXPECT_TRUE(update(leaving({"report.txt", "other.log"}) + "exit 7", 4));
    EXPECT_EQ(exitCode, 7U);
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), updaterTrace(4, Lines{kOneReportTrace} + goodJudgement()));
    EXPECT_EQ(TestHost::sleeps(), looks(1));
    EXPECT_EQ(namesIn(kReports), (Lines{"other.log", "report.txt"}));
    EXPECT_EQ(contentOf(output), "");
}

TEST_F(UpdaterReport, WithoutTheTextsIsAFailureThatNamesTheDirectory) {
    EXPECT_FALSE(update(leaving({"report.txt"}, "Ended\\n") + "echo Done; echo Ended", 4));
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), 33U);
    EXPECT_EQ(TestHost::trace(),
              updaterTrace(4, Lines{kOneReportTrace} +
                                  resultCheckTrace(kMessages.trace() + endLookTrace({"Ended"}, true) +
                                                   successLookTrace({"Ended"}, false)) +
                                  Lines{"2 Failed to update(/tmp/reports)."}));
}

TEST_F(UpdaterReport, IsNotLookedForWithoutTheNameOfAMessageFile) {
    messageFile = "";
    EXPECT_FALSE(update(leaving({"one.txt", "two.txt"}), 4));
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), updaterTrace(4, {"2 Failed to open file()."}));
    EXPECT_EQ(namesIn(kReports), (Lines{"one.txt", "two.txt"}));
}

TEST_F(UpdaterReport, IsMissedWithoutAnError) {
    machine.file(kReports + "/earlier.txt", textOf(kGoodOutput));
    EXPECT_FALSE(update(leaving({"report.log"}) + printing(kGoodOutput), 4));
    EXPECT_EQ(exitCode, 0U);
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), updaterTrace(4, {kNoReportTrace}));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
    EXPECT_EQ(namesIn(kReports), (Lines{"report.log"}));
}

TEST_F(UpdaterReport, IsMissedWithoutADirectory) {
    reportDir = "";
    EXPECT_FALSE(update("true", 4));
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), updaterTrace(4, {kNoReportTrace}));
}

TEST_F(UpdaterReport, OfWhichThereAreSeveralIsAFailureWithAllOfThemDeleted) {
    for (const Lines& names : {Lines{"a.txt", "b.txt"}, Lines{"a.txt", "b.txt", "c.txt"}}) {
        forget();
        CEmulexCommon::SetLastError(kEarlierError);
        EXPECT_FALSE(update(leaving(names + Lines{"kept.log"}), 4));
        EXPECT_EQ(exitCode, 0U);
        EXPECT_EQ(lastError(), 33U);
        EXPECT_EQ(TestHost::trace(),
                  updaterTrace(4, Lines{kSomeReportsTrace} +
                                      resultCheckTrace(kMessages.trace() + Lines{"2 File Open Error"}) +
                                      Lines{"2 Failed to update(/tmp/reports)."}));
        EXPECT_EQ(TestHost::sleeps(), looks(1));
        EXPECT_EQ(namesIn(kReports), (Lines{"kept.log"}));
    }
}

TEST_F(UpdaterReport, OfWhichThereAreSeveralAreDeletedBeforeThatIsTold) {
    Lines present;
    TestHost::onTrace([&present](const std::string& line) {
        if (line == kSomeReportsTrace) {
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
    EXPECT_EQ(namesIn(kReports), kNoLines);
}

TEST_F(UpdaterReport, OfWhichThereAreSeveralIsAFailureAtOnceWithoutEndTexts) {
    const MessageFile messages = {{"Done"}, {}};
    machine.file(messageFile, messages.text());
    EXPECT_FALSE(update(leaving({"a.txt", "b.txt"}), 4));
    EXPECT_EQ(lastError(), 33U);
    EXPECT_EQ(TestHost::trace(), updaterTrace(4, Lines{kSomeReportsTrace} +
                                                     resultCheckTrace(messages.trace() + Lines{"2 File Open Error"}) +
                                                     Lines{"2 Failed to update(/tmp/reports)."}));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdaterReport, IsTheFirstOfSeveralWhereThatOneStays) {
    // A file that its directory doesn't let go is still read.
    EXPECT_TRUE(update(leaving({"a.txt"}) + leaving({"b.txt"}, "other\\n") + "chmod 555 " + kReports, 4));
    EXPECT_EQ(TestHost::trace(), updaterTrace(4, Lines{kSomeReportsTrace} + goodJudgement()));
    chmod(kReports.c_str(), 0755);
}

// ---- EmulexUpdate: other modes ----

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
        EXPECT_EQ(TestHost::trace(), updaterTrace(mode, {}));
        EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
    }
}

// ---- CheckUpdateResult_: the message file ----

using UpdateMessages = UpdateExecution;

TEST_F(UpdateMessages, ThatCannotBeOpenedFailTheCheck) {
    machine.file(output, textOf(kGoodOutput));
    fs::remove(messageFile);
    EXPECT_FALSE(check());
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(takeTrace(), resultCheckTrace({"2 File open error /tmp/message.txt"}));

    machine.file(messageFile, kMessages.text());
    chmod(messageFile.c_str(), 0);
    EXPECT_FALSE(check());
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(takeTrace(), resultCheckTrace({"2 File open error /tmp/message.txt"}));

    messageFile = "";
    EXPECT_FALSE(check());
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(takeTrace(), resultCheckTrace({"2 File open error "}));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdateMessages, WithoutASuccessTextFailTheCheckAtOnceWithoutACode) {
    EXPECT_FALSE(check("EndMessage=Ended\n", "Ended\n"));
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), resultCheckTrace({"1 log_mes_ifs. buf=[EndMessage=Ended]", "1 endMessage[0]=[Ended]",
                                                   "2 no successMessage"}));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdateMessages, WithoutAnyTextFailTheCheckLikewise) {
    EXPECT_FALSE(check("", "Done\n"));
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), resultCheckTrace({"2 no successMessage"}));
}

TEST_F(UpdateMessages, ThatAreADirectoryHoldNoText) {
    fs::remove(messageFile);
    machine.directory(messageFile);
    machine.file(output, textOf(kGoodOutput));
    EXPECT_FALSE(check());
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), resultCheckTrace({"2 no successMessage"}));
}

TEST_F(UpdateMessages, WithoutAnEndTextNeedNoSleep) {
    EXPECT_TRUE(check("SuccessMessage=Done\n", "Done\n"));
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), resultCheckTrace(Lines{"1 log_mes_ifs. buf=[SuccessMessage=Done]",
                                                        "1 successMessage[0]=[Done]", "1 no endMessage"} +
                                                  successLookTrace({"Done"}, true)));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdateMessages, AreReadByLinesOfWhichOthersAreIgnoredAndEmptyOnesSkipped) {
    EXPECT_TRUE(
        check("# texts\n\nsuccessmessage=no\nSuccessMessage=Done\nSuccess=no\n\n\nENDMESSAGE=no\nSuccessMessage\n",
              "Done\n"));
    EXPECT_EQ(
        TestHost::trace(),
        resultCheckTrace(Lines{"1 log_mes_ifs. buf=[# texts]", "1 log_mes_ifs. buf=[]",
                               "1 log_mes_ifs. buf=[successmessage=no]", "1 log_mes_ifs. buf=[SuccessMessage=Done]",
                               "1 successMessage[0]=[Done]", "1 log_mes_ifs. buf=[Success=no]", "1 log_mes_ifs. buf=[]",
                               "1 log_mes_ifs. buf=[]", "1 log_mes_ifs. buf=[ENDMESSAGE=no]",
                               "1 log_mes_ifs. buf=[SuccessMessage]", "1 no endMessage"} +
                         successLookTrace({"Done"}, true)));
}

TEST_F(UpdateMessages, AreReadToALastLineWithoutAnEnd) {
    EXPECT_TRUE(check("SuccessMessage=Done", "Done"));
    EXPECT_EQ(TestHost::trace(), resultCheckTrace(Lines{"1 log_mes_ifs. buf=[SuccessMessage=Done]",
                                                        "1 successMessage[0]=[Done]", "1 no endMessage"} +
                                                  successLookTrace({"Done"}, true)));
}

TEST_F(UpdateMessages, OfOneKindAreNumberedInTheOrderOfTheFile) {
    EXPECT_TRUE(check("EndMessage=one\nSuccessMessage=A\nEndMessage=two\nSuccessMessage=B\n", "B\ntwo\n"));
    EXPECT_EQ(TestHost::trace(),
              resultCheckTrace(Lines{"1 log_mes_ifs. buf=[EndMessage=one]", "1 endMessage[0]=[one]",
                                     "1 log_mes_ifs. buf=[SuccessMessage=A]", "1 successMessage[0]=[A]",
                                     "1 log_mes_ifs. buf=[EndMessage=two]", "1 endMessage[1]=[two]",
                                     "1 log_mes_ifs. buf=[SuccessMessage=B]", "1 successMessage[1]=[B]"} +
                               endLookTrace({"B", "two"}, true) + successLookTrace({"B"}, true)));
}

TEST_F(UpdateMessages, AreCutFromAFixedColumnWhereverTheKeyStands) {
    EXPECT_TRUE(check("  SuccessMessage=Done\nxEndMessage=Ended\nxSuccessMessage=\n", "e=Done\n=Ended\n"));
    EXPECT_EQ(TestHost::trace(),
              resultCheckTrace(Lines{"1 log_mes_ifs. buf=[  SuccessMessage=Done]", "1 successMessage[0]=[e=Done]",
                                     "1 log_mes_ifs. buf=[xEndMessage=Ended]", "1 endMessage[0]=[=Ended]",
                                     "1 log_mes_ifs. buf=[xSuccessMessage=]", "1 successMessage[1]=[=]"} +
                               endLookTrace({"e=Done", "=Ended"}, true) + successLookTrace({"e=Done"}, true)));
}

TEST_F(UpdateMessages, OfBothKindsComeFromALineWithBothKeys) {
    EXPECT_TRUE(check("SuccessMessage=EndMessage=x\nEndMessage=SuccessMessage=y\n", "age=EndMessage=x\n"));
    EXPECT_EQ(
        TestHost::trace(),
        resultCheckTrace(Lines{"1 log_mes_ifs. buf=[SuccessMessage=EndMessage=x]", "1 successMessage[0]=[EndMessage=x]",
                               "1 endMessage[0]=[age=EndMessage=x]", "1 log_mes_ifs. buf=[EndMessage=SuccessMessage=y]",
                               "1 successMessage[1]=[essMessage=y]", "1 endMessage[1]=[SuccessMessage=y]"} +
                         endLookTrace({"age=EndMessage=x"}, true) + successLookTrace({"age=EndMessage=x"}, true)));
}

TEST_F(UpdateMessages, LoseBlanksAndLineEndsAroundThemButNothingElse) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"  Done  ", "Done"},  {"\r Done \r \r", "Done"}, {"All  is\rdone ", "All  is\rdone"}, {"\tDone\t", "\tDone\t"},
        {" \tDone", "\tDone"}, {"\vDone\f", "\vDone\f"},  {"\"Done\" ", "\"Done\""},           {"=Done", "=Done"},
    };
    for (const auto& [value, text] : rows) {
        EXPECT_TRUE(check("SuccessMessage=" + value + "\n", text + "\n")) << value;
        EXPECT_EQ(TestHost::trace(), resultCheckTrace(Lines{"1 log_mes_ifs. buf=[SuccessMessage=" + value + "]",
                                                            "1 successMessage[0]=[" + text + "]", "1 no endMessage"} +
                                                      successLookTrace({text}, true)));
    }
}

TEST_F(UpdateMessages, MayHaveCarriageReturnsAtTheLineEnds) {
    EXPECT_TRUE(check("SuccessMessage=Done\r\n\r\nEndMessage=Ended\r\n", "Done\r\nEnded\r\n"));
    EXPECT_EQ(TestHost::trace(),
              resultCheckTrace(Lines{"1 log_mes_ifs. buf=[SuccessMessage=Done\r]", "1 successMessage[0]=[Done]",
                                     "1 log_mes_ifs. buf=[\r]", "1 log_mes_ifs. buf=[EndMessage=Ended\r]",
                                     "1 endMessage[0]=[Ended]"} +
                               endLookTrace({"Done\r", "Ended\r"}, true) + successLookTrace({"Done\r"}, true)));
}

TEST_F(UpdateMessages, ThatAreEmptyAreFoundInTheFirstLine) {
    for (const char* value : {"", " ", " \r \r"}) {
        EXPECT_TRUE(check("SuccessMessage=" + std::string(value) + "\nEndMessage=" + value + "\n", "\nfailed\n"));
        EXPECT_EQ(TestHost::trace(),
                  resultCheckTrace(
                      Lines{"1 log_mes_ifs. buf=[SuccessMessage=" + std::string(value) + "]", "1 successMessage[0]=[]",
                            "1 log_mes_ifs. buf=[EndMessage=" + std::string(value) + "]", "1 endMessage[0]=[]"} +
                      endLookTrace({""}, true) + successLookTrace({""}, true)));
        EXPECT_EQ(TestHost::sleeps(), looks(1));
    }
}

TEST_F(UpdateMessages, ThatAreEmptyAreNotFoundInAnEmptyOutput) {
    EXPECT_FALSE(check("SuccessMessage=\n", ""));
    EXPECT_EQ(lastError(), 37U);
    EXPECT_FALSE(check("SuccessMessage=\nEndMessage=\n", ""));
    EXPECT_EQ(lastError(), 36U);
    EXPECT_EQ(TestHost::sleeps(), looks(5));
}

TEST_F(UpdateMessages, CountUpToFiveOfAKind) {
    const MessageFile messages = {{"S1", "S2", "S3", "S4", "S5"}, {"E1", "E2", "E3", "E4", "E5"}};
    EXPECT_TRUE(check(messages.text(), "S5\nE5\n"));
    EXPECT_EQ(TestHost::trace(),
              resultCheckTrace(messages.trace() + endLookTrace({"S5", "E5"}, true) + successLookTrace({"S5"}, true)));
}

TEST_F(UpdateMessages, BehindTheFifthOfAKindAreReadButNotStored) {
    const MessageFile messages = {{"S1", "S2", "S3", "S4", "S5"}, {"E1", "E2", "E3", "E4", "E5"}};
    const std::string text = messages.text() + "SuccessMessage=S6\nEndMessage=E6\nEndMessage=E7\n";
    const Lines read =
        messages.trace() + Lines{"1 log_mes_ifs. buf=[SuccessMessage=S6]", "1 log_mes_ifs. buf=[EndMessage=E6]",
                                 "1 log_mes_ifs. buf=[EndMessage=E7]"};
    EXPECT_TRUE(check(text, "S1\nE5\n"));
    EXPECT_EQ(TestHost::trace(),
              resultCheckTrace(read + endLookTrace({"S1", "E5"}, true) + successLookTrace({"S1"}, true)));
    EXPECT_FALSE(check(text, "S6\nE1\n"));
    EXPECT_EQ(lastError(), 37U);
    EXPECT_EQ(TestHost::trace(),
              resultCheckTrace(read + endLookTrace({"S6", "E1"}, true) + successLookTrace({"S6", "E1"}, false)));
    EXPECT_FALSE(check(text, "S1\nE6\nE7\n"));
    EXPECT_EQ(lastError(), 36U);
    EXPECT_EQ(TestHost::trace(),
              resultCheckTrace(read + 5 * endLookTrace({"S1", "E6", "E7"}, false) + Lines{"2 No such end message."}));
}

TEST_F(UpdateMessages, OfOneKindBehindTheFifthLeaveTheOtherKindAlone) {
    const MessageFile messages = {{"S1", "S2", "S3", "S4", "S5", "S6"}, {"Ended"}};
    EXPECT_TRUE(check(messages.text(), "S2\nEnded\n"));
}

TEST_F(UpdateMessages, AreOfAnyLength) {
    const std::string text(100000, 'x');
    EXPECT_TRUE(check("SuccessMessage=" + text + "y\n", text + "y\n"));
    EXPECT_FALSE(check("SuccessMessage=" + text + "y\n", text + "z\n"));
}

TEST_F(UpdateMessages, AreComparedByteForByte) {
    const std::string noUtf8 = "\xff\xfe\x80";
    EXPECT_TRUE(check("SuccessMessage=" + noUtf8 + "\n", "a" + noUtf8 + "b\n"));
    const std::string withZero("a\0b", 3);
    EXPECT_TRUE(check("SuccessMessage=" + withZero + "\n", "x" + withZero + "\n"));
    EXPECT_FALSE(check("SuccessMessage=" + withZero + "\n", std::string("xa\0c\n", 5)));
    EXPECT_FALSE(check("SuccessMessage=Done\n", "done DONE\n"));
    EXPECT_FALSE(check("SuccessMessage=D.*e\n", "Done\n"));
}

// ---- CheckUpdateResult_: the end text ----

using UpdateEnd = UpdateExecution;

TEST_F(UpdateEnd, IsLookedForOnceThirtySecondsHavePassed) {
    machine.file(output, textOf(kGoodOutput));
    Lines tracedBefore;
    TestHost::onSleep([&] { tracedBefore = TestHost::trace(); });
    EXPECT_TRUE(check());
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(tracedBefore, Lines{"4 CEmulexCommon::CheckUpdateResult_() [START]"} + kMessages.trace());
    EXPECT_EQ(TestHost::trace(), goodJudgement());
    EXPECT_EQ(TestHost::sleeps(), looks(1));
}

TEST_F(UpdateEnd, MayComeAtEachOfTheFiveLooks) {
    for (std::size_t look = 1; look <= 5; ++look) {
        SCOPED_TRACE(look);
        forget();
        machine.file(output, "Working\n");
        atSleep(look, [this] { machine.file(output, textOf(kGoodOutput)); });
        EXPECT_TRUE(check());
        EXPECT_EQ(lastError(), kEarlierError);
        EXPECT_EQ(TestHost::trace(),
                  resultCheckTrace(kMessages.trace() + (look - 1) * endLookTrace({"Working"}, false) +
                                   endLookTrace(kGoodOutput, true) + successLookTrace({"Working", "Done"}, true)));
        EXPECT_EQ(TestHost::sleeps(), looks(look));
    }
}

TEST_F(UpdateEnd, IsGivenUpAtTheFifthLook) {
    machine.file(output, "Working\nDone\n");
    EXPECT_FALSE(check());
    EXPECT_EQ(lastError(), 36U);
    EXPECT_EQ(TestHost::trace(), resultCheckTrace(kMessages.trace() + 5 * endLookTrace({"Working", "Done"}, false) +
                                                  Lines{"2 No such end message."}));
    EXPECT_EQ(TestHost::sleeps(), looks(5));
}

TEST_F(UpdateEnd, IsGivenUpLikewiseInAnEmptyOutput) {
    machine.file(output, "");
    EXPECT_FALSE(check());
    EXPECT_EQ(lastError(), 36U);
    EXPECT_EQ(TestHost::trace(), resultCheckTrace(kMessages.trace() + Lines{"2 No such end message."}));
    EXPECT_EQ(TestHost::sleeps(), looks(5));
}

TEST_F(UpdateEnd, IsNotWaitedForInAMissingFile) {
    EXPECT_FALSE(check());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), resultCheckTrace(kMessages.trace() + Lines{"2 File Open Error"}));
    EXPECT_EQ(TestHost::sleeps(), looks(1));
}

TEST_F(UpdateEnd, IsNotWaitedForInAFileThatGoesAway) {
    machine.file(output, "Working\n");
    atSleep(3, [this] { fs::remove(output); });
    EXPECT_FALSE(check());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(),
              resultCheckTrace(kMessages.trace() + 2 * endLookTrace({"Working"}, false) + Lines{"2 File Open Error"}));
    EXPECT_EQ(TestHost::sleeps(), looks(3));
}

TEST_F(UpdateEnd, IsWaitedForInADirectory) {
    machine.directory(output);
    EXPECT_FALSE(check());
    EXPECT_EQ(lastError(), 36U);
    EXPECT_EQ(TestHost::sleeps(), looks(5));
    EXPECT_EQ(TestHost::trace(), resultCheckTrace(kMessages.trace() + Lines{"2 No such end message."}));
}

TEST_F(UpdateEnd, IsAnyOfTheEndTexts) {
    const MessageFile messages = {{"Done"}, {"first", "second", "third"}};
    for (const std::string& text : messages.end) {
        EXPECT_TRUE(check(messages.text(), "Done\nthe " + text + "!\n"));
        EXPECT_EQ(TestHost::trace(),
                  resultCheckTrace(messages.trace() + endLookTrace({"Done", "the " + text + "!"}, true) +
                                   successLookTrace({"Done"}, true)));
    }
}

TEST_F(UpdateEnd, StandsInOneLineWithItsCaseAndEndsTheReading) {
    EXPECT_TRUE(check(kMessages.text(), "ended\nEn\nded\nnowEndednow\nDone\n"));
    EXPECT_EQ(TestHost::trace(),
              resultCheckTrace(kMessages.trace() + endLookTrace({"ended", "En", "ded", "nowEndednow"}, true) +
                               successLookTrace({"ended", "En", "ded", "nowEndednow", "Done"}, true)));
}

// ---- CheckUpdateResult_: the success text ----

using UpdateSuccess = UpdateExecution;

TEST_F(UpdateSuccess, IsLookedForFromTheStartOfTheOutputOnBothSidesOfTheEndText) {
    EXPECT_TRUE(check(kMessages.text(), "Done\nEnded\n"));
    EXPECT_EQ(TestHost::trace(), resultCheckTrace(kMessages.trace() + endLookTrace({"Done", "Ended"}, true) +
                                                  successLookTrace({"Done"}, true)));
    EXPECT_TRUE(check(kMessages.text(), "Ended\nDone\nmore\n"));
    EXPECT_EQ(TestHost::trace(), resultCheckTrace(kMessages.trace() + endLookTrace({"Ended"}, true) +
                                                  successLookTrace({"Ended", "Done"}, true)));
}

TEST_F(UpdateSuccess, IsAnyOfTheSuccessTexts) {
    const MessageFile messages = {{"first", "second", "third"}, {}};
    for (const std::string& text : messages.success) {
        EXPECT_TRUE(check(messages.text(), "start\nthe " + text + "!\n"));
        EXPECT_EQ(TestHost::trace(),
                  resultCheckTrace(messages.trace() + successLookTrace({"start", "the " + text + "!"}, true)));
    }
}

TEST_F(UpdateSuccess, FailsTheCheckWhereItIsMissing) {
    EXPECT_FALSE(check(kMessages.text(), "done\nDo\nne\nEnded\n"));
    EXPECT_EQ(lastError(), 37U);
    EXPECT_EQ(TestHost::trace(),
              resultCheckTrace(kMessages.trace() + endLookTrace({"done", "Do", "ne", "Ended"}, true) +
                               successLookTrace({"done", "Do", "ne", "Ended"}, false)));
    EXPECT_EQ(TestHost::sleeps(), looks(1));
}

TEST_F(UpdateSuccess, FailsTheCheckAtOnceInAMissingFileWithoutEndTexts) {
    const MessageFile messages = {{"Done"}, {}};
    machine.file(messageFile, messages.text());
    EXPECT_FALSE(check());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), resultCheckTrace(messages.trace() + Lines{"2 File Open Error"}));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdateSuccess, FailsTheCheckInAFileThatGoesAwayBehindTheEndText) {
    machine.file(output, textOf(kGoodOutput));
    TestHost::onTrace([this](const std::string& line) {
        if (line == "1 Find endmsg[] in [Ended]") {
            fs::remove(output);
        }
    });
    EXPECT_FALSE(check());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(),
              resultCheckTrace(kMessages.trace() + endLookTrace(kGoodOutput, true) + Lines{"2 File Open Error"}));
}

// ---- UpdateProceedingFileCreate_ ----

class ProceedingMarker : public UpdateExecution {
protected:
    bool mark(const std::string& directory) { return CEmulexCommon::UpdateProceedingFileCreate_(directory, module); }

    const std::string marker = "/tmp/marks/UpdateProceeding.txt";
};

const Lines kMarkerTrace = {"4 CEmulexCommon::UpdateProceedingFileCreate_() [Start]",
                            "4 CEmulexCommon::UpdateProceedingFileCreate_() [END]"};

Lines failedMarkerTrace(const std::string& path) {
    return {kMarkerTrace[0], "2 Update faile name(" + path + ")", kMarkerTrace[1]};
}

TEST_F(ProceedingMarker, IsMadeAsAnEmptyFile) {
    machine.directory("/tmp/marks");
    EXPECT_TRUE(mark("/tmp/marks"));
    EXPECT_EQ(namesIn("/tmp/marks"), (Lines{"UpdateProceeding.txt"}));
    EXPECT_EQ(contentOf(marker), "");
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), kMarkerTrace);
}

TEST_F(ProceedingMarker, KeepsItsContentWhereItIsThere) {
    machine.file(marker, "text\n");
    setModified(marker, 1000000000);
    EXPECT_TRUE(mark("/tmp/marks"));
    EXPECT_EQ(contentOf(marker), "text\n");
    struct stat file {};
    EXPECT_EQ(stat(marker.c_str(), &file), 0);
    EXPECT_EQ(file.st_mtime, 1000000000);
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), kMarkerTrace);
}

TEST_F(ProceedingMarker, KeepsItsContentAlsoWhereItCannotBeRead) {
    machine.file(marker, "text\n");
    chmod(marker.c_str(), 0200);
    EXPECT_TRUE(mark("/tmp/marks"));
    chmod(marker.c_str(), 0600);
    EXPECT_EQ(contentOf(marker), "text\n");
    EXPECT_EQ(TestHost::trace(), kMarkerTrace);
}

TEST_F(ProceedingMarker, FailsWhereItCannotBeWritten) {
    machine.file(marker, "text\n");
    chmod(marker.c_str(), 0400);
    EXPECT_FALSE(mark("/tmp/marks"));
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), failedMarkerTrace(marker));
    EXPECT_EQ(contentOf(marker), "text\n");
}

TEST_F(ProceedingMarker, FailsWithoutItsDirectoryAndWhereItIsADirectory) {
    EXPECT_FALSE(mark("/tmp/absent"));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(takeTrace(), failedMarkerTrace("/tmp/absent/UpdateProceeding.txt"));
    EXPECT_FALSE(fs::exists("/tmp/absent"));
    machine.directory(marker);
    EXPECT_FALSE(mark("/tmp/marks"));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(takeTrace(), failedMarkerTrace(marker));
}

TEST_F(ProceedingMarker, FailsInADirectoryThatIsNotToBeWritten) {
    machine.directory("/tmp/marks");
    chmod("/tmp/marks", 0555);
    EXPECT_FALSE(mark("/tmp/marks"));
    chmod("/tmp/marks", 0755);
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), failedMarkerTrace(marker));
    EXPECT_THAT(namesIn("/tmp/marks"), testing::IsEmpty());
}

TEST_F(ProceedingMarker, MakesItselfDeletedByTheReaderOfVersions) {
    machine.file(kTool, "");
    EXPECT_TRUE(mark(kWorkRoot + "/temp"));
    EXPECT_TRUE(CEmulexCommon::DelOperatingVersion_(kWorkRoot + "/temp", module));
    EXPECT_EQ(contentOf(kWorkRoot + "/temp/UpdateProceeding.txt"), "(absent)");
}

}  // namespace
}  // namespace kvl::test
