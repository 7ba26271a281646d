#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/provider/kvl_program.h"

namespace {

using kvl::test::Outcome;
using kvl::test::readFile;
using kvl::test::replayKvl;
using kvl::test::rootWithKvl;
using kvl::test::runInside;

const std::string kOnePort = std::string(KVL_MACHINES_FOLDER) + "/one-port";
const std::string kSource = std::string(KVL_MACHINES_FOLDER) + "/../provider/example/smallest_provider.cpp";

Outcome runProvider(const std::string& arguments) {
    auto options = rootWithKvl(kOnePort);
    options.environment["ASAN_OPTIONS"] = "detect_leaks=0";  // it looks for the process in /proc
    return runInside(options, std::string(KVL_SMALLEST_PROVIDER) + " " + arguments);
}

TEST(SmallestProvider, WritesTheReportThatKvlWrites) {
    const Outcome outcome = runProvider("/tmp/report.xml 14e4 && cat /tmp/report.xml");
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ(replayKvl("one-port", {"report", "--format", "xml", "--vendor", "14e4", "--translate", "never"}).output,
              outcome.output);
}

TEST(SmallestProvider, TellsItsUsage) {
    const Outcome outcome = runProvider("/tmp/report.xml");
    EXPECT_EQ(2, outcome.status);
    EXPECT_THAT(outcome.errors, testing::HasSubstr("FILE VENDOR..."));
}

TEST(SmallestProvider, TellsThatTheFileCouldNotBeWritten) {
    EXPECT_EQ(1, runProvider("/no/such/directory/report.xml 14e4").status);
}

TEST(SmallestProvider, IsUnderFortyLines) {
    const std::string text = readFile(kSource);
    EXPECT_FALSE(text.empty());
    EXPECT_LT(std::count(text.begin(), text.end(), '\n'), 40);
}

}  // namespace
