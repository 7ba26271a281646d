#include <filesystem>

#include "tests/adapter/adapter_test.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

class Tool : public AdapterTest {};

using ProgramFilesFolder = Tool;
using OcmManagerInstallPath = Tool;
using NecessaryComponents = Tool;

const Lines kProgramFilesTrace = {"4 CEmulexCommon::GetProgramFilesFolder_() [START]",
                                  "4 CEmulexCommon::GetProgramFilesFolder_() [END]"};

// ---- GetProgramFilesFolder_ ----

TEST_F(ProgramFilesFolder, LeavesTheTextAsItIs) {
    std::string path = "abc";
    EXPECT_TRUE(CEmulexCommon::GetProgramFilesFolder_(&path, module));
    EXPECT_EQ(path, "abc");
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(TestHost::trace(), kProgramFilesTrace);
}

TEST_F(ProgramFilesFolder, FailsWithoutAResult) {
    EXPECT_FALSE(CEmulexCommon::GetProgramFilesFolder_(nullptr, module));
    EXPECT_EQ(takeError(), 1U);
    EXPECT_EQ(TestHost::trace(), kProgramFilesTrace);
}

// ---- GetOCMManagerInstallPath ----

TEST_F(OcmManagerInstallPath, IsTheToolWhereItIsInstalled) {
    machine.file(kTool, "");
    std::string path = "earlier";
    EXPECT_TRUE(CEmulexCommon::GetOCMManagerInstallPath(&path, module));
    EXPECT_EQ(path, "/usr/sbin/ocmanager/hbacmd");
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(TestHost::trace(), (Lines{"4 CEmulexCommon::GetOCMManagerInstallPath [START]",
                                        "1 CEmulexCommon::GetOCMManagerInstallPath() [END]"}));
}

TEST_F(OcmManagerInstallPath, IsUntouchedWithoutTheTool) {
    std::string path = "earlier";
    EXPECT_FALSE(CEmulexCommon::GetOCMManagerInstallPath(&path, module));
    EXPECT_EQ(path, "earlier");
    EXPECT_EQ(takeError(), 11U);
    EXPECT_EQ(TestHost::trace(), (Lines{"4 CEmulexCommon::GetOCMManagerInstallPath [START]",
                                        "1 CEmulexCommon::GetOCMManagerInstallPath() [END]"}));
}

TEST_F(OcmManagerInstallPath, FailsWithoutAResultWhetherTheToolIsThereOrNot) {
    machine.file(kTool, "");
    EXPECT_FALSE(CEmulexCommon::GetOCMManagerInstallPath(nullptr, module));
    EXPECT_EQ(takeError(), 1U);
    EXPECT_EQ(TestHost::trace(), (Lines{"4 CEmulexCommon::GetOCMManagerInstallPath [START]",
                                        "4 CEmulexCommon::GetOCMManagerInstallPath(1) [END]"}));
}

// ---- NecessaryComponentCheck ----

TEST_F(NecessaryComponents, AreAllThereWithTheTool) {
    machine.file(kTool, "");
    EXPECT_THAT(CEmulexCommon::NecessaryComponentCheck(module), testing::IsEmpty());
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(TestHost::trace(), (Lines{"4 CEmulexCommon::NecessaryComponentCheck() [START]"} + kToolFoundTrace));
}

TEST_F(NecessaryComponents, LackTheOneComponentWithoutTheTool) {
    const std::list<CNecessaryComponentInfo> missing = CEmulexCommon::NecessaryComponentCheck(module);
    ASSERT_EQ(missing.size(), 1U);
    EXPECT_EQ(missing.front().name, "One Command Manager");
    EXPECT_EQ(takeError(), 11U);
    EXPECT_EQ(TestHost::trace(), (Lines{"4 CEmulexCommon::NecessaryComponentCheck() [START]",
                                        "4 CEmulexCommon::GetOCMManagerInstallPath [START]",
                                        "1 CEmulexCommon::GetOCMManagerInstallPath() [END]"}));
}

// ---- CreateLocalDirectory ----

class LocalDirectory : public AdapterTest {
protected:
    void SetUp() override {
        AdapterTest::SetUp();
        fs::remove_all(kInstallPath + "/tmp");
    }

    void TearDown() override {
        EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
        AdapterTest::TearDown();
    }

    static Lines tree() {
        Lines paths;
        for (const auto& entry : fs::recursive_directory_iterator(kInstallPath + "/tmp")) {
            if (entry.is_directory()) {
                paths.push_back(entry.path().string().substr(kInstallPath.size()));
            }
        }
        std::sort(paths.begin(), paths.end());
        return paths;
    }
};

TEST_F(LocalDirectory, HasCacheAndTempWithBothFamiliesEach) {
    EXPECT_TRUE(CEmulexCommon::CreateLocalDirectory());
    EXPECT_EQ(tree(), (Lines{"/tmp/EMULEX", "/tmp/EMULEX/cache", "/tmp/EMULEX/cache/CNA", "/tmp/EMULEX/cache/FC",
                             "/tmp/EMULEX/temp", "/tmp/EMULEX/temp/CNA", "/tmp/EMULEX/temp/FC"}));
    EXPECT_EQ(takeError(), 0U);
}

TEST_F(LocalDirectory, IsMadeAgainOnEachCallWithItsFilesLeftAlone) {
    EXPECT_TRUE(CEmulexCommon::CreateLocalDirectory());
    machine.file(kWorkRoot + "/cache/FC/kept.txt", "text");
    EXPECT_TRUE(CEmulexCommon::CreateLocalDirectory());
    EXPECT_EQ(contentOf(kWorkRoot + "/cache/FC/kept.txt"), "text");
}

TEST_F(LocalDirectory, EndsAtTheFirstDirectoryThatCannotBeMade) {
    const Lines order = {"cache", "cache/FC", "cache/CNA", "temp", "temp/FC", "temp/CNA"};
    for (std::size_t blocked = 0; blocked < order.size(); ++blocked) {
        SCOPED_TRACE(order[blocked]);
        fs::remove_all(kInstallPath + "/tmp");
        machine.file(kWorkRoot + "/" + order[blocked], "a file in the way");
        EXPECT_FALSE(CEmulexCommon::CreateLocalDirectory());
        EXPECT_EQ(takeError(), blocked < 3 ? 18U : 19U);
        for (std::size_t place = 0; place < order.size(); ++place) {
            // The directory above the obstacle is there already.
            const bool isAbove = order[blocked].compare(0, order[place].size() + 1, order[place] + "/") == 0;
            EXPECT_EQ(fs::is_directory(kWorkRoot + "/" + order[place]), place < blocked || isAbove) << order[place];
        }
    }
}

}  // namespace
}  // namespace kvl::test
