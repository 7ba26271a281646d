#ifndef KVL_TESTS_FOUNDATION_FOUNDATION_TEST_H
#define KVL_TESTS_FOUNDATION_FOUNDATION_TEST_H

#include "tests/support/private_machine_test.h"

namespace kvl::test {

/// A test of operations that open descriptors of their own. When it ends, it checks that they closed each one no more
/// than once; PrivateMachineTest checks that none was left open.
class FoundationTest : public PrivateMachineTest {
protected:
    void SetUp() override {
        PrivateMachineTest::SetUp();
        strayCloses_ = strayCloses();
    }

    void TearDown() override {
        EXPECT_EQ(strayCloses(), strayCloses_) << "a descriptor was closed that was not open";
        PrivateMachineTest::TearDown();
    }

private:
    int strayCloses_ = 0;
};

}  // namespace kvl::test

#endif
