#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <list>
#include <string>

#include "host/CFileUtility.h"
#include "reference_host/install_path.h"
#include "tests/reference_host/host_test.h"

namespace {

using kvl::test::HostTest;
using kvl::test::lay;
using kvl::test::layDirectory;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class GetInstallPath : public HostTest {};
class CreateFolder : public HostTest {};
class IsFileExist : public HostTest {};
class SearchFile : public HostTest {
protected:
    std::list<std::string> search(const std::string& pattern) const {
        std::list<std::string> found;
        CFileUtility::SearchFile(scratch_.path(), pattern, &found, false);
        return found;
    }
};
class DeleteAllFileByExtendName : public HostTest {};

TEST_F(GetInstallPath, IsTheVariableWithoutSlashesAtItsEnd) {
    for (const char* value : {"/srv/kvl", "/srv/kvl/", "/srv/kvl//"}) {
        setVariable("KVL_INSTALL_PATH", value);
        EXPECT_EQ(CFileUtility::GetInstallPath(0), "/srv/kvl");
    }
    setVariable("KVL_INSTALL_PATH", "/");
    EXPECT_EQ(CFileUtility::GetInstallPath(0), "");
}

TEST_F(GetInstallPath, IsTheProductsDirectoryWithoutTheVariable) {
    setVariable("KVL_INSTALL_PATH", "");
    EXPECT_EQ(CFileUtility::GetInstallPath(0), "/opt/tarvenn/kvl");
    ::unsetenv("KVL_INSTALL_PATH");
    EXPECT_EQ(CFileUtility::GetInstallPath(0), "/opt/tarvenn/kvl");
}

TEST_F(GetInstallPath, IsThatOfATemporaryInstallationAsLongAsThereIsOne) {
    EXPECT_FALSE(kvl::host::isInstallationTemporary());
    {
        const kvl::host::TemporaryInstallation installation(scratch_ / "other");
        EXPECT_TRUE(kvl::host::isInstallationTemporary());
        EXPECT_EQ(CFileUtility::GetInstallPath(0), scratch_ / "other");
        EXPECT_EQ(kvl::host::configuredInstallPath(), scratch_.path());
    }
    EXPECT_FALSE(kvl::host::isInstallationTemporary());
    EXPECT_EQ(CFileUtility::GetInstallPath(0), scratch_.path());
}

TEST_F(CreateFolder, MakesMissingParents) {
    EXPECT_TRUE(CFileUtility::CreateFolder(scratch_ / "a/b/c"));
    EXPECT_TRUE(std::filesystem::is_directory(scratch_ / "a/b/c"));
}

TEST_F(CreateFolder, SucceedsForADirectoryThatIsThere) {
    EXPECT_TRUE(CFileUtility::CreateFolder(scratch_ / "a"));
    EXPECT_TRUE(CFileUtility::CreateFolder(scratch_ / "a"));
    EXPECT_TRUE(CFileUtility::CreateFolder(scratch_ / "a/"));
    EXPECT_TRUE(CFileUtility::CreateFolder(scratch_ / "new/"));
}

TEST_F(CreateFolder, SucceedsForALinkToADirectory) {
    layDirectory(scratch_ / "real");
    std::filesystem::create_directory_symlink("real", scratch_ / "link");
    EXPECT_TRUE(CFileUtility::CreateFolder(scratch_ / "link"));
    EXPECT_TRUE(CFileUtility::CreateFolder(scratch_ / "link/below"));
    EXPECT_TRUE(std::filesystem::is_directory(scratch_ / "real/below"));
}

TEST_F(CreateFolder, FailsWhereAFileIsInTheWay) {
    lay(scratch_ / "file", "");
    EXPECT_FALSE(CFileUtility::CreateFolder(scratch_ / "file"));
    EXPECT_FALSE(CFileUtility::CreateFolder(scratch_ / "file/below"));
    EXPECT_FALSE(CFileUtility::CreateFolder(""));
}

TEST_F(IsFileExist, IsTrueForWhateverIsThere) {
    lay(scratch_ / "file", "");
    layDirectory(scratch_ / "directory");
    EXPECT_TRUE(CFileUtility::IsFileExist(scratch_ / "file"));
    EXPECT_TRUE(CFileUtility::IsFileExist(scratch_ / "directory"));
    EXPECT_FALSE(CFileUtility::IsFileExist(scratch_ / "missing"));
    EXPECT_FALSE(CFileUtility::IsFileExist(scratch_ / "file/below"));
    EXPECT_FALSE(CFileUtility::IsFileExist(""));
}

TEST_F(SearchFile, GivesTheNamesThatMatchWithoutTheDirectory) {
    for (const char* name : {"cache_dump_1.txt", "cache_dump_.txt", "dump.txt", "a.grp", "a.txt.old", "install.sh"}) {
        lay(scratch_ / name, "");
    }
    EXPECT_THAT(search("cache_dump_*.txt"), ElementsAre("cache_dump_.txt", "cache_dump_1.txt"));
    EXPECT_THAT(search("*.txt"), ElementsAre("cache_dump_.txt", "cache_dump_1.txt", "dump.txt"));
    EXPECT_THAT(search("*.grp"), ElementsAre("a.grp"));
    EXPECT_THAT(search("install.sh"), ElementsAre("install.sh"));
    EXPECT_THAT(search("uninstall.sh"), IsEmpty());
    EXPECT_THAT(search("*.TXT"), IsEmpty());
    EXPECT_THAT(search(""), IsEmpty());
}

TEST_F(SearchFile, SortsTheNamesByTheirBytes) {
    for (const char* name : {"b.ufi", "B.ufi", "\xc3\xa4.ufi", "a.ufi", "10.ufi", "9.ufi"}) {
        lay(scratch_ / name, "");
    }
    EXPECT_THAT(search("*.ufi"), ElementsAre("10.ufi", "9.ufi", "B.ufi", "a.ufi", "b.ufi", "\xc3\xa4.ufi"));
}

TEST_F(SearchFile, ReplacesEarlierContentOfTheList) {
    lay(scratch_ / "new.prg", "");
    std::list<std::string> found{"old"};
    CFileUtility::SearchFile(scratch_.path(), "*.prg", &found, false);
    EXPECT_THAT(found, ElementsAre("new.prg"));
}

TEST_F(SearchFile, EmptiesTheListForAMissingDirectory) {
    for (const std::string& directory : {scratch_ / "missing", std::string()}) {
        std::list<std::string> found{"old"};
        CFileUtility::SearchFile(directory, "*", &found, false);
        EXPECT_THAT(found, IsEmpty());
    }
}

TEST_F(SearchFile, LeavesDirectoriesOut) {
    layDirectory(scratch_ / "directory.txt");
    lay(scratch_ / "file.txt", "");
    std::filesystem::create_directory_symlink("directory.txt", scratch_ / "directory_link.txt");
    std::filesystem::create_symlink("file.txt", scratch_ / "file_link.txt");
    EXPECT_THAT(search("*"), ElementsAre("file.txt", "file_link.txt"));
    EXPECT_THAT(search("directory.txt"), IsEmpty());
    EXPECT_THAT(search("."), IsEmpty());
}

TEST_F(SearchFile, FindsAPlainNameThatLooksLikeAPattern) {
    lay(scratch_ / "a[1].all", "");
    lay(scratch_ / "a\\b.all", "");
    EXPECT_THAT(search("a[1].all"), ElementsAre("a[1].all"));
    EXPECT_THAT(search("a\\*.all"), ElementsAre("a\\b.all"));
}

TEST_F(SearchFile, IgnoresTheLackOfAList) {
    CFileUtility::SearchFile(scratch_.path(), "*", nullptr, false);
}

TEST_F(DeleteAllFileByExtendName, DeletesTheFilesWithThatExtensionAlone) {
    for (const char* name : {"a.txt", "b.c.txt", "a.TXT", "a.txt2", "txt", "atxt"}) {
        lay(scratch_ / name, "");
    }
    CFileUtility::DeleteAllFileByExtendName(scratch_.path(), "txt");
    EXPECT_THAT(scratch_.entries(), ElementsAre("a.TXT", "a.txt2", "atxt", "txt"));
}

TEST_F(DeleteAllFileByExtendName, DeletesFilesOfEveryKind) {
    lay(scratch_ / "file.txt", "");
    ASSERT_EQ(::mkfifo((scratch_ / "pipe.txt").c_str(), 0600), 0);
    CFileUtility::DeleteAllFileByExtendName(scratch_.path(), "txt");
    EXPECT_THAT(scratch_.entries(), IsEmpty());
}

TEST_F(DeleteAllFileByExtendName, DeletesLinksAndNotTheirTargets) {
    lay(scratch_ / "target", "");
    layDirectory(scratch_ / "directory");
    lay(scratch_ / "directory/a.txt", "");
    for (const char* target : {"target", "directory", "missing"}) {
        std::filesystem::create_symlink(target, scratch_ / (std::string(target) + "-link.txt"));
    }
    CFileUtility::DeleteAllFileByExtendName(scratch_.path(), "txt");
    EXPECT_THAT(scratch_.entries(), ElementsAre("directory", "target"));
    EXPECT_TRUE(std::filesystem::exists(scratch_ / "directory/a.txt"));
}

TEST_F(DeleteAllFileByExtendName, DeletesNoDirectory) {
    layDirectory(scratch_ / "empty.txt");
    layDirectory(scratch_ / "full.txt");
    lay(scratch_ / "full.txt/a.txt", "");
    CFileUtility::DeleteAllFileByExtendName(scratch_.path(), "txt");
    EXPECT_THAT(scratch_.entries(), ElementsAre("empty.txt", "full.txt"));
    EXPECT_TRUE(std::filesystem::exists(scratch_ / "full.txt/a.txt"));
}

TEST_F(DeleteAllFileByExtendName, DeletesNothingForAnEmptyText) {
    lay(scratch_ / "a.txt", "");
    lay(scratch_ / "b.", "");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(scratch_.path());
    CFileUtility::DeleteAllFileByExtendName("", "txt");
    std::filesystem::current_path(before);
    CFileUtility::DeleteAllFileByExtendName(scratch_.path(), "");
    EXPECT_THAT(scratch_.entries(), ElementsAre("a.txt", "b."));
}

TEST_F(DeleteAllFileByExtendName, IgnoresAMissingDirectory) {
    CFileUtility::DeleteAllFileByExtendName(scratch_ / "missing", "txt");
}

}  // namespace
