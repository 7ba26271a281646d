#include "provider/run/quiet_output.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>

namespace {

using kvl::provider::QuietOutput;

TEST(QuietOutput, KeepsWhatCommandsPrintOutOfTheProgramsOutput) {
    testing::internal::CaptureStdout();
    std::cout << "before ";
    {
        QuietOutput output;
        EXPECT_EQ("", output.lastLine());
        EXPECT_EQ(0, std::system("echo one; echo 'two '; echo"));
        EXPECT_EQ("two", output.lastLine());
        output.forget();
        EXPECT_EQ("", output.lastLine());
        EXPECT_EQ(0, std::system("printf three"));
        EXPECT_EQ("three", output.lastLine());
    }
    std::cout << "behind" << std::flush;
    EXPECT_EQ("before behind", testing::internal::GetCapturedStdout());
}

TEST(QuietOutput, WritesToTheProgramsOutputWhenItIsTold) {
    const std::string large(1'000'000, 'x');
    testing::internal::CaptureStdout();
    {
        const QuietOutput output;
        EXPECT_EQ(0, std::system("echo of a command"));
        output.write("");
        output.write("told\n");
        output.write(large);
        EXPECT_EQ("of a command", output.lastLine());
    }
    EXPECT_EQ("told\n" + large, testing::internal::GetCapturedStdout());
}

TEST(QuietOutput, GivesUpWhereItsOutputIsFull) {
    const kvl::host::FileDescriptor kept(dup(STDOUT_FILENO));
    const kvl::host::FileDescriptor full(open("/dev/full", O_WRONLY | O_CLOEXEC));
    dup2(full.number(), STDOUT_FILENO);
    {
        const QuietOutput output;
        output.write("told");
    }
    dup2(kept.number(), STDOUT_FILENO);
}

TEST(QuietOutput, KeepsTheErrorsOfCommandsAwayAndTheProgramsOwnNot) {
    testing::internal::CaptureStderr();
    std::cerr << "before ";
    {
        QuietOutput output;
        EXPECT_EQ(0, std::system("echo one; echo two >&2"));
        EXPECT_EQ("two", output.lastLine());
        EXPECT_EQ(0, std::system("echo three >&2; echo four"));
        EXPECT_EQ("four", output.lastLine());
        EXPECT_EQ(0, std::system("echo five >/dev/stderr; echo six"));
        EXPECT_EQ("six", output.lastLine());
        std::cerr << "within " << 1 << ' ' << std::flush;
    }
    EXPECT_EQ(0, std::system("printf 'behind ' >&2"));
    std::cerr << "end";
    EXPECT_EQ("before within 1 behind end", testing::internal::GetCapturedStderr());
}

TEST(QuietOutput, ShowsTheOperatorOnRequestWhatIsNew) {
    const std::string large(10'000, 'x');
    testing::internal::CaptureStderr();
    {
        QuietOutput output;
        output.show();
        EXPECT_EQ(0, std::system("echo one >&2; echo two"));
        output.show();
        output.show();
        std::cerr << "between\n";
        EXPECT_EQ(0, std::system("echo three"));
        output.show();
        output.forget();
        EXPECT_EQ(0, std::system("echo forgotten"));
        output.forget();
        EXPECT_EQ(0, std::system(("printf " + large).c_str()));
        output.show();
        EXPECT_THAT(output.lastLine(), testing::EndsWith("xx")) << "what was shown is not forgotten";
        EXPECT_EQ(0, std::system("echo not shown"));
    }
    EXPECT_EQ("one\ntwo\nbetween\nthree\n" + large, testing::internal::GetCapturedStderr());
}

TEST(QuietOutput, LeavesClosedStreamsClosed) {
    const kvl::host::FileDescriptor kept(dup(STDERR_FILENO));
    close(STDERR_FILENO);
    {
        const QuietOutput output;
        std::cerr << "lost" << std::flush;
        EXPECT_FALSE(std::cerr.good());
        EXPECT_EQ(0, std::system("echo one >&2"));
        EXPECT_EQ("one", output.lastLine());
    }
    EXPECT_EQ(-1, fcntl(STDERR_FILENO, F_GETFD));
    EXPECT_TRUE(std::cerr.good());
    dup2(kept.number(), STDERR_FILENO);
}

TEST(QuietOutput, KnowsTheEndOfALongOutput) {
    const QuietOutput output;
    EXPECT_EQ(0, std::system("seq 1 2000"));
    EXPECT_EQ("2000", output.lastLine());
}

}  // namespace
