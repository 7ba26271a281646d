#ifndef KVL_TESTS_REFERENCE_HOST_HOST_TEST_H
#define KVL_TESTS_REFERENCE_HOST_HOST_TEST_H

#include <gtest/gtest.h>

#include <string>

#include "tests/reference_host/scratch_directory.h"

namespace kvl::test {

/// A test whose install directory is a scratch directory and whose trace has no settings but those.
class HostTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    static void setVariable(const char* name, const std::string& value);

    ScratchDirectory scratch_;
};

}  // namespace kvl::test

#endif
