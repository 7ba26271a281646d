#include <cerrno>
#include <type_traits>

#include "tests/adapter/adapter_test.h"

namespace kvl::test {
namespace {

const std::uint32_t kErrorAtLoad = CEmulexCommon::m_dwLastError;
const std::string kTextAtLoad = CEmulexCommon::GetLastErrorToChractor();

class LastError : public AdapterTest {
protected:
    void TearDown() override {
        EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
        AdapterTest::TearDown();
    }
};

TEST_F(LastError, IsZeroWhenTheLibraryIsLoaded) {
    EXPECT_EQ(kErrorAtLoad, 0U);
    EXPECT_EQ(kTextAtLoad, "0");
}

TEST_F(LastError, IsWhatWasSet) {
    CEmulexCommon::SetLastError(17);
    EXPECT_EQ(CEmulexCommon::GetLastError(), 17U);
    EXPECT_EQ(CEmulexCommon::m_dwLastError, 17U);
    CEmulexCommon::m_dwLastError = 5;
    EXPECT_EQ(CEmulexCommon::GetLastError(), 5U);
    CEmulexCommon::SetLastError(0);
    EXPECT_EQ(CEmulexCommon::GetLastError(), 0U);
}

TEST_F(LastError, HasThirtyTwoBits) {
    EXPECT_TRUE((std::is_same_v<decltype(CEmulexCommon::m_dwLastError), std::uint32_t>));
    CEmulexCommon::SetLastError((1UL << 32) + 6);
    EXPECT_EQ(CEmulexCommon::GetLastError(), 6U);
}

TEST_F(LastError, IsPrintedInLowerCaseHexadecimalUpTo38) {
    const struct {
        unsigned long code;
        std::string text;
    } rows[] = {{0, "0"},
                {1, "1"},
                {9, "9"},
                {15, "f"},
                {17, "11"},
                {30, "1e"},
                {37, "25"},
                {38, "26"},
                {39, "no errcode"},
                {255, "no errcode"},
                {0xffffffffUL, "no errcode"}};
    for (const auto& row : rows) {
        CEmulexCommon::SetLastError(row.code);
        EXPECT_EQ(CEmulexCommon::GetLastErrorToChractor(), row.text) << row.code;
    }
}

TEST_F(LastError, HasNoPartInTheExplanationOfErrno) {
    CEmulexCommon::SetLastError(17);
    errno = ENOENT;
    EXPECT_EQ(CEmulexCommon::GetLastErrorExplanation(), "No such file or directory");
    CEmulexCommon::SetLastError(0);
    errno = EACCES;
    EXPECT_EQ(CEmulexCommon::GetLastErrorExplanation(), "Permission denied");
}

TEST_F(LastError, IsNotClearedByASuccess) {
    CEmulexCommon::SetLastError(17);
    EXPECT_TRUE(CEmulexCommon::CreateLocalDirectory());
    EXPECT_EQ(CEmulexCommon::GetLastError(), 17U);
}

}  // namespace
}  // namespace kvl::test
