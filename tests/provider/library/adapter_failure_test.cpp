#include "provider/library/adapter_failure.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "adapter/CEmulexCommon.h"
#include "adapter/error_codes.h"

namespace {

using kvl::provider::describe;
using kvl::provider::Failure;
using kvl::provider::lastFailure;
using testing::HasSubstr;
using testing::Not;

TEST(AdapterFailure, HasAdviceOfItsOwnForEachCodeOfAnInventory) {
    for (const unsigned long code : {5UL, 6UL, 7UL, 8UL, 9UL, 11UL, 13UL, 14UL, 15UL, 17UL, 18UL, 19UL}) {
        CEmulexCommon::SetLastError(code);
        const Failure failure = lastFailure();
        EXPECT_EQ(CEmulexCommon::GetLastErrorToChractor(), failure.number);
        EXPECT_EQ(kvl::findAdapterError(code)->name, failure.name);
        EXPECT_THAT(failure.next, Not(HasSubstr("-v")));
        EXPECT_EQ(failure.meaning + " (error " + failure.number + "): " + failure.next, describe(failure));
    }
}

TEST(AdapterFailure, AdvisesToLookAtTheTraceForOtherCodes) {
    CEmulexCommon::SetLastError(38);
    EXPECT_EQ("the versions are not equal (error 26): run the command again with -v, which shows each step",
              describe(lastFailure()));
    CEmulexCommon::SetLastError(0);
    EXPECT_EQ("the library tells no reason (error 0): run the command again with -v, which shows each step",
              describe(lastFailure()));
}

TEST(AdapterFailure, OfThisProgramTellsNoNumber) {
    const Failure failure = kvl::provider::ownFailure("no-catalogue", "there is none", "bring one");
    EXPECT_EQ("", failure.number);
    EXPECT_EQ("no-catalogue", failure.name);
    EXPECT_EQ("there is none: bring one", describe(failure));
}

TEST(AdapterFailure, OfTheToolHasNoCode) {
    CEmulexCommon::SetLastError(17);
    const Failure failure = kvl::provider::toolFailure("hbacmd dump failed");
    EXPECT_EQ("0", failure.number);
    EXPECT_EQ("tool-failed", failure.name);
    EXPECT_EQ("hbacmd dump failed", failure.meaning);
}

}  // namespace
