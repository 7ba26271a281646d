#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/provider/kvl_program.h"

namespace {

using kvl::test::Outcome;
using kvl::test::rootWithKvl;
using kvl::test::runInside;
using testing::HasSubstr;
using testing::StartsWith;

const std::string kProgram = KVL_PROGRAM;

Outcome runOnServer(const std::string& script) {
    return runInside(rootWithKvl(std::string(KVL_MACHINES_FOLDER) + "/one-port"), script);
}

TEST(ProcessStart, MakesAReportForAClosedStandardOutputAFailure) {
    const Outcome outcome = runOnServer(kProgram + " report >&-; echo $?");
    EXPECT_EQ("3\n", outcome.output);
    EXPECT_EQ(
        "kvl: the report could not be written to standard output: see whether it can be written and there is room for "
        "it\n",
        outcome.errors);
}

TEST(ProcessStart, WritesAFileWithAllStandardStreamsClosed) {
    const Outcome outcome = runOnServer(kProgram + " report -o /tmp/report <&- >&- 2>&-; head -n 3 /tmp/report");
    EXPECT_THAT(outcome.output, HasSubstr("Port eth0"));
}

TEST(ProcessStart, MakesHelpThatCannotBeWrittenAFailure) {
    const Outcome outcome = runOnServer(kProgram + " --help > /dev/full; echo $?; " + kProgram +
                                        " report --help >&-; echo $?; " + kProgram + " --version > /dev/full; echo $?");
    EXPECT_EQ("3\n3\n3\n", outcome.output);
    EXPECT_THAT(outcome.errors, StartsWith("kvl: the help could not be written to standard output\n"));
}

TEST(ProcessStart, LearnsOfTheEndOfCommandsWhereTheCallerIgnoresThat) {
    const Outcome outcome = runOnServer("trap '' CHLD; " + kProgram + " report > /dev/null; echo $?");
    EXPECT_EQ("0\n", outcome.output);
    EXPECT_EQ("", outcome.errors);
}

TEST(ProcessStart, LeavesNoTemporaryFileAtASizeLimit) {
    const Outcome outcome = runOnServer("mkdir /tmp/out; echo old > /tmp/out/report; (ulimit -f 1; " + kProgram +
                                        " report -o /tmp/out/report; echo $?); ls -A /tmp/out; cat /tmp/out/report");
    EXPECT_EQ("3\nreport\nold\n", outcome.output);
}

TEST(ProcessStart, KeepsTheModeOfAReportThatIsThere) {
    const Outcome outcome = runOnServer("echo old > /tmp/report; chmod 644 /tmp/report; " + kProgram +
                                        " report -o /tmp/report > /dev/null; stat -c %a /tmp/report; " + kProgram +
                                        " report --format xml -o /tmp/report > /dev/null; stat -c %a /tmp/report");
    EXPECT_EQ("644\n644\n", outcome.output);
}

}  // namespace
