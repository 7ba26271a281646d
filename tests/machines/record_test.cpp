#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "machines/replay.h"
#include "tests/machines/outside.h"
#include "tests/machines/recording_check.h"

namespace kvl::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kRecord = KVL_MACHINES_FOLDER "/record";

// Records, inside a private root, the server that another recording laid down.
class Record : public testing::TestWithParam<std::string> {
protected:
    Outcome record(const std::string& machine, const std::string& arguments) {
        machines::PrivateRootOptions options;
        options.recording = machines::findRecording(machine);
        options.binds = {{kRecord}, {scratch_.path(), true}};
        return runInside(options, "/bin/sh '" + std::string(kRecord) + "' " + arguments);
    }

    ScratchDirectory scratch_;
};

TEST_P(Record, TellsOfARecordedServerWhatItsRecordingTold) {
    const Outcome outcome = record(GetParam(), "'" + scratch_ / "again" + "' 'Server again'");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(faultsOf(scratch_ / "again"), IsEmpty());

    auto first = readTree(machines::findRecording(GetParam()));
    auto again = readTree(scratch_ / "again");
    EXPECT_THAT(again["README.md"], HasSubstr("# Server again\n"));
    first.erase("README.md");
    again.erase("README.md");
    EXPECT_EQ(again, first);
}

std::string parameterName(const testing::TestParamInfo<std::string>& info) {
    std::string name = info.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Machines, Record,
                         testing::Values("bond-modes", "debian-12-guest", "four-port", "odd-names", "one-port"),
                         parameterName);

TEST_F(Record, SaysSoWhenThereIsNoInterfaceToRecord) {
    const Outcome outcome = record("every-command-fails", "'" + scratch_ / "again" + "'");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("ifconfig -a told nothing"));
}

TEST_F(Record, LeavesADirectoryAloneThatIsThereAlready) {
    const Outcome outcome = record("one-port", "'" + scratch_.path() + "'");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("is there already"));
    EXPECT_THAT(readTree(scratch_.path()), IsEmpty());
}

TEST_F(Record, ExplainsItself) {
    const Outcome help = record("one-port", "--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, HasSubstr("usage: record DIRECTORY [TITLE]"));
    const Outcome wrong = record("one-port", "");
    EXPECT_EQ(wrong.status, 2);
    EXPECT_THAT(wrong.errors, HasSubstr("usage: record DIRECTORY [TITLE]"));
}

}  // namespace
}  // namespace kvl::test
