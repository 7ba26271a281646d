#include <sys/stat.h>

#include <filesystem>

#include "tests/adapter/update_execution.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

class ProceedingMarker : public UpdateExecution {
protected:
    bool mark(const std::string& directory) { return CEmulexCommon::UpdateProceedingFileCreate_(directory, module); }

    const std::string marker = "/tmp/marks/UpdateProceeding.txt";
};

TEST_F(ProceedingMarker, IsMadeAsAnEmptyFile) {
    machine.directory("/tmp/marks");
    EXPECT_TRUE(mark("/tmp/marks"));
    EXPECT_EQ(namesIn("/tmp/marks"), (Lines{"UpdateProceeding.txt"}));
    EXPECT_EQ(contentOf(marker), "");
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::UpdateProceedingFileCreate_() [Start]
        4 CEmulexCommon::UpdateProceedingFileCreate_() [END]
    )"));
}

TEST_F(ProceedingMarker, KeepsItsContentWhereItIsThere) {
    machine.file(marker, "text\n");
    setModified(marker, 1000000000);
    EXPECT_TRUE(mark("/tmp/marks"));
    EXPECT_EQ(contentOf(marker), "text\n");
    struct stat file {};
    EXPECT_EQ(stat(marker.c_str(), &file), 0);
    EXPECT_EQ(file.st_mtime, 1000000000);
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::UpdateProceedingFileCreate_() [Start]
        4 CEmulexCommon::UpdateProceedingFileCreate_() [END]
    )"));
}

TEST_F(ProceedingMarker, KeepsItsContentAlsoWhereItCannotBeRead) {
    machine.file(marker, "text\n");
    chmod(marker.c_str(), 0200);
    EXPECT_TRUE(mark("/tmp/marks"));
    chmod(marker.c_str(), 0600);
    EXPECT_EQ(contentOf(marker), "text\n");
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::UpdateProceedingFileCreate_() [Start]
        4 CEmulexCommon::UpdateProceedingFileCreate_() [END]
    )"));
}

TEST_F(ProceedingMarker, FailsWhereItCannotBeWritten) {
    machine.file(marker, "text\n");
    chmod(marker.c_str(), 0400);
    EXPECT_FALSE(mark("/tmp/marks"));
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::UpdateProceedingFileCreate_() [Start]
        2 Update faile name(/tmp/marks/UpdateProceeding.txt)
        4 CEmulexCommon::UpdateProceedingFileCreate_() [END]
    )"));
    EXPECT_EQ(contentOf(marker), "text\n");
}

TEST_F(ProceedingMarker, FailsWithoutItsDirectoryAndWhereItIsADirectory) {
    EXPECT_FALSE(mark("/tmp/absent"));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(takeTrace(), traceOf(R"(
        4 CEmulexCommon::UpdateProceedingFileCreate_() [Start]
        2 Update faile name(/tmp/absent/UpdateProceeding.txt)
        4 CEmulexCommon::UpdateProceedingFileCreate_() [END]
    )"));
    EXPECT_FALSE(fs::exists("/tmp/absent"));
    machine.directory(marker);
    EXPECT_FALSE(mark("/tmp/marks"));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(takeTrace(), traceOf(R"(
        4 CEmulexCommon::UpdateProceedingFileCreate_() [Start]
        2 Update faile name(/tmp/marks/UpdateProceeding.txt)
        4 CEmulexCommon::UpdateProceedingFileCreate_() [END]
    )"));
}

TEST_F(ProceedingMarker, FailsInADirectoryThatIsNotToBeWritten) {
    machine.directory("/tmp/marks");
    chmod("/tmp/marks", 0555);
    EXPECT_FALSE(mark("/tmp/marks"));
    chmod("/tmp/marks", 0755);
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::UpdateProceedingFileCreate_() [Start]
        2 Update faile name(/tmp/marks/UpdateProceeding.txt)
        4 CEmulexCommon::UpdateProceedingFileCreate_() [END]
    )"));
    EXPECT_THAT(namesIn("/tmp/marks"), testing::IsEmpty());
}

TEST_F(ProceedingMarker, MakesItselfDeletedByTheReaderOfVersions) {
    machine.file(kTool, "");
    EXPECT_TRUE(mark(kWorkRoot + "/temp"));
    EXPECT_TRUE(CEmulexCommon::DelOperatingVersion_(kWorkRoot + "/temp", module));
    EXPECT_EQ(contentOf(kWorkRoot + "/temp/UpdateProceeding.txt"), "(absent)");
}

}  // namespace
}  // namespace kvl::test
