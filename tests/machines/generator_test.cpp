#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "machines/replay.h"
#include "tests/machines/outside.h"
#include "tests/machines/recording_check.h"

namespace kvl::test {
namespace {

using testing::IsEmpty;

Outcome generate(const std::string& directory, const std::string& numbers) {
    return runOutside("sh '" KVL_MACHINES_FOLDER "/generate-large-server' '" + directory + "' " + numbers);
}

long countOf(const std::string& text, const std::string& line) {
    long count = 0;
    for (std::size_t at = text.find(line); at != std::string::npos; at = text.find(line, at + 1)) {
        ++count;
    }
    return count;
}

TEST(GenerateLargeServer, MakesTheSameFilesOfTheSameNumbers) {
    const ScratchDirectory scratch;
    EXPECT_EQ(generate(scratch / "first", "6 2 5").status, 0);
    EXPECT_EQ(generate(scratch / "second", "6 2 5").status, 0);
    const auto first = readTree(scratch / "first");
    EXPECT_GT(first.size(), 50U);
    EXPECT_EQ(first, readTree(scratch / "second"));
}

TEST(GenerateLargeServer, MakesSoundRecordingsOfEverySize) {
    for (const char* numbers : {"1 0 0", "1 0 3", "4 2 3", "9 0 4", "30 7 40", "224 112 8"}) {
        const ScratchDirectory scratch;
        const Outcome outcome = generate(scratch / "server", numbers);
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        EXPECT_THAT(faultsOf(scratch / "server"), IsEmpty()) << numbers;
    }
}

TEST(GenerateLargeServer, MadeTheSixtyFourPortServer) {
    const std::string recording = machines::findRecording("sixty-four-port");
    const std::string interfaces = readFile(recording + "/commands/sbin/ifconfig/-a");
    EXPECT_EQ(countOf("\n" + interfaces, "\neth"), 64 + 32);
    EXPECT_EQ(countOf("\n" + interfaces, "\nbond"), 16 + 32);
    EXPECT_EQ(countOf(readFile(recording + "/files/proc/net/vlan/config"), "\n"), 2 + 64);
}

TEST(GenerateLargeServer, RefusesNumbersThatMakeNoServer) {
    const ScratchDirectory scratch;
    for (const char* numbers : {"", "1 2", "0 0 0", "3 2 0", "four 0 0", "225 0 0", "08 0 0", "1 0 -1"}) {
        const Outcome outcome = generate(scratch / "server", numbers);
        EXPECT_EQ(outcome.status, 2) << numbers;
        EXPECT_EQ(outcome.errors.rfind("usage: ", 0), 0U) << numbers;
    }
}

}  // namespace
}  // namespace kvl::test
