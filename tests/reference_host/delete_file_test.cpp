#include <gmock/gmock.h>

#include <filesystem>

#include "host/HostFunctions.h"
#include "tests/reference_host/host_test.h"

namespace {

using kvl::test::HostTest;
using kvl::test::lay;
using kvl::test::layDirectory;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DeleteFile : public HostTest {};
class RemoveDirectory : public HostTest {};

TEST_F(DeleteFile, DeletesAFile) {
    lay(scratch_ / "file", "");
    EXPECT_NE(DeleteFileA((scratch_ / "file").c_str()), 0);
    EXPECT_THAT(scratch_.entries(), IsEmpty());
}

TEST_F(DeleteFile, DeletesALinkAndNotItsTarget) {
    lay(scratch_ / "file", "");
    std::filesystem::create_symlink("file", scratch_ / "link");
    EXPECT_NE(DeleteFileA((scratch_ / "link").c_str()), 0);
    EXPECT_THAT(scratch_.entries(), ElementsAre("file"));
}

TEST_F(DeleteFile, FailsForAnythingElse) {
    layDirectory(scratch_ / "directory");
    EXPECT_EQ(DeleteFileA((scratch_ / "missing").c_str()), 0);
    EXPECT_EQ(DeleteFileA((scratch_ / "directory").c_str()), 0);
    EXPECT_EQ(DeleteFileA(""), 0);
    EXPECT_EQ(DeleteFileA(nullptr), 0);
    EXPECT_THAT(scratch_.entries(), ElementsAre("directory"));
}

TEST_F(RemoveDirectory, RemovesAnEmptyDirectory) {
    layDirectory(scratch_ / "directory");
    EXPECT_NE(RemoveDirectoryA((scratch_ / "directory").c_str()), 0);
    EXPECT_THAT(scratch_.entries(), IsEmpty());
}

TEST_F(RemoveDirectory, FailsForAnythingElse) {
    layDirectory(scratch_ / "full/below");
    lay(scratch_ / "file", "");
    EXPECT_EQ(RemoveDirectoryA((scratch_ / "full").c_str()), 0);
    EXPECT_EQ(RemoveDirectoryA((scratch_ / "file").c_str()), 0);
    EXPECT_EQ(RemoveDirectoryA((scratch_ / "missing").c_str()), 0);
    EXPECT_EQ(RemoveDirectoryA(""), 0);
    EXPECT_EQ(RemoveDirectoryA(nullptr), 0);
    EXPECT_THAT(scratch_.entries(), ElementsAre("file", "full"));
}

}  // namespace
