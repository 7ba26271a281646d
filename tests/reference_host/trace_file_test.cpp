#include "reference_host/trace_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/reference_host/host_test.h"

namespace {

using kvl::host::TraceFile;
using kvl::test::HostTest;
using kvl::test::lay;
using kvl::test::linesOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::SizeIs;

class TraceFileTest : public HostTest {};

TEST_F(TraceFileTest, MakesMissingDirectories) {
    TraceFile(scratch_ / "a/b/trace.log").write("text");
    EXPECT_THAT(linesOf(scratch_ / "a/b/trace.log"), ElementsAre(EndsWith(" text")));
}

TEST_F(TraceFileTest, AppendsToWhatIsThere) {
    lay(scratch_ / "trace.log", "earlier\n");
    TraceFile(scratch_ / "trace.log").write("text");
    EXPECT_THAT(linesOf(scratch_ / "trace.log"), ElementsAre("earlier", EndsWith(" text")));
}

TEST_F(TraceFileTest, KeepsThreeOlderFilesOfLimitedSize) {
    constexpr std::size_t kLimit = 300;
    TraceFile file(scratch_ / "trace.log", kLimit);
    for (int i = 0; i < 100; ++i) {
        file.write("line " + std::to_string(i));
    }
    EXPECT_THAT(scratch_.entries(), ElementsAre("trace.1.log", "trace.2.log", "trace.3.log", "trace.log"));
    for (const std::string& name : scratch_.entries()) {
        EXPECT_LE(std::filesystem::file_size(scratch_ / name), kLimit);
    }
    EXPECT_THAT(linesOf(scratch_ / "trace.log").back(), EndsWith(" line 99"));
}

TEST_F(TraceFileTest, WritesALineAboveItsLimitWhole) {
    const std::string line(1000, 'x');
    TraceFile(scratch_ / "trace.log", 300).write(line);
    EXPECT_THAT(linesOf(scratch_ / "trace.log"), ElementsAre(EndsWith(line)));
}

TEST_F(TraceFileTest, OnlyAppendsToTheFileBehindALink) {
    lay(scratch_ / "real", "");
    std::filesystem::create_symlink("real", scratch_ / "trace.log");
    TraceFile file(scratch_ / "trace.log", 100);
    for (int i = 0; i < 10; ++i) {
        file.write("text");
    }
    EXPECT_TRUE(std::filesystem::is_symlink(scratch_ / "trace.log"));
    EXPECT_THAT(linesOf(scratch_ / "real"), SizeIs(10));
}

TEST_F(TraceFileTest, OutlivesTheLossOfItsDirectory) {
    kvl::test::layDirectory(scratch_ / "log");
    TraceFile file(scratch_ / "log/trace.log", 100);
    file.write("before");
    std::filesystem::remove_all(scratch_ / "log");
    lay(scratch_ / "log", "no directory");
    file.write(std::string(80, 'x'));
    file.write("lost");
    std::filesystem::remove(scratch_ / "log");
    file.write("after");
    EXPECT_THAT(linesOf(scratch_ / "log/trace.log"), ElementsAre(EndsWith(" after")));
}

TEST_F(TraceFileTest, IsClosedInStartedPrograms) {
    const std::string path = scratch_ / "trace.log";
    TraceFile file(path);
    file.write("text");
    int found = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        if (std::filesystem::read_symlink(entry.path(), error) == path) {
            const int number = std::atoi(entry.path().filename().c_str());
            EXPECT_NE(::fcntl(number, F_GETFD) & FD_CLOEXEC, 0);
            ++found;
        }
    }
    EXPECT_EQ(found, 1);
}

}  // namespace
