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

/// A machine with the tool, a list and a report, where an earlier call failed.
class EarlierError : public AdapterTest {
protected:
    void SetUp() override {
        AdapterTest::SetUp();
        machine.anyCommand(kTool, "", {});
        layList({Port()});
        CEmulexCommon::SetLastError(kEarlier);
    }

    void TearDown() override {
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlier);
        AdapterTest::TearDown();
    }

    static constexpr unsigned long kEarlier = 7;
};

TEST_F(EarlierError, SurvivesTheFoundTool) {
    std::string path;
    EXPECT_TRUE(CEmulexCommon::GetProgramFilesFolder_(&path, module));
    EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlier);
    EXPECT_TRUE(CEmulexCommon::GetOCMManagerInstallPath(&path, module));
    EXPECT_EQ(path, kTool);
    EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlier);
    EXPECT_THAT(CEmulexCommon::NecessaryComponentCheck(module), testing::IsEmpty());
}

TEST_F(EarlierError, SurvivesACommandWhetherItSucceedsOrFails) {
    EXPECT_EQ(CEmulexCommon::ExecCommand_(kTool, module), 0);
    EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlier);
    machine.anyCommand(kTool, "", {1});
    EXPECT_EQ(CEmulexCommon::ExecCommand_(kTool, module), -1);
    EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlier);
    machine.anyCommand(kTool, "", {});
    EXPECT_EQ(CEmulexCommon::ExecCommand_(kTool + " > /tmp/empty", module), -1);
}

TEST_F(EarlierError, SurvivesTheReadersOfReportFiles) {
    machine.file("/tmp/report.txt", "Tag\nKey: 1\nPort WWPN/MAC: id\n");
    for (const std::string key : {"Key", "absent"}) {
        std::pair<std::string, std::string> result;
        EXPECT_TRUE(CEmulexCommon::GetKeyValueFromFile_("/tmp/report.txt", key, ":", result, module, 0));
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlier) << key;
        EXPECT_TRUE(CEmulexCommon::GetTagKeyValueFromFile_("/tmp/report.txt", "Tag", key, ":", result, module, 0));
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlier) << key;
    }
    EXPECT_TRUE(CEmulexCommon::CheckDumpFileKeyWord_("/tmp/report.txt", "id", module));
    EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlier);
    EXPECT_FALSE(CEmulexCommon::CheckDumpFileKeyWord_("/tmp/report.txt", "another", module));
}

TEST_F(EarlierError, SurvivesTheSearchForTheLatestFile) {
    machine.file(kDumps + "/a.txt", "");
    EXPECT_EQ(CEmulexCommon::LatestFile(kDumps, "*.txt", module), kDumps + "/a.txt");
    EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlier);
    EXPECT_EQ(CEmulexCommon::LatestFile(kDumps, "*.log", module), "");
}

TEST_F(EarlierError, SurvivesTheDeviceCatalogue) {
    const std::string entries = "[SuportDevice]\nSuportDeviceNum=1\nVendor1=VEN_10DF\nDevice1=DEV_0700\n";
    for (const std::string name : {"CnaVCFac.ini", "FcVCFac.ini"}) {
        machine.file(kInstallPath + "/" + name, entries);
        std::list<std::string> numbers;
        std::list<std::string> hardware;
        EXPECT_TRUE(CEmulexCommon::GetDeviceIdList(name, &numbers, &numbers, &numbers, &numbers, module));
        EXPECT_EQ(numbers.size(), 1U);
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlier) << name;
        EXPECT_TRUE(CEmulexCommon::GetVenDevIdList(name, &hardware, &hardware, &hardware, &hardware, module));
        EXPECT_EQ(hardware.size(), 1U);
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlier) << name;
    }
    std::list<std::string> vendors;
    EXPECT_TRUE(CEmulexCommon::GetVenderIdList(&vendors, module));
    EXPECT_EQ(vendors.size(), 1U);
}

TEST_F(EarlierError, SurvivesTheAdapterList) {
    std::list<Record> records;
    EXPECT_TRUE(CEmulexCommon::GetHBAInfoList(&records, module));
    EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlier);
    Record record;
    EXPECT_TRUE(CEmulexCommon::GetHBAInfo("5:0.0", &record, module));
}

}  // namespace
}  // namespace kvl::test
