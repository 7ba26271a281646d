#include "provider/output/quiet_output.h"

#include <gtest/gtest.h>

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

TEST(QuietOutput, KnowsTheEndOfALongOutput) {
    const QuietOutput output;
    EXPECT_EQ(0, std::system("seq 1 2000"));
    EXPECT_EQ("2000", output.lastLine());
}

}  // namespace
