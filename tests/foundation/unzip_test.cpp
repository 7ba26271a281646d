#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "foundation/CUnzip_Utility.h"
#include "tests/foundation/descriptor_in_file.h"
#include "tests/foundation/foundation_test.h"

namespace kvl::test {
namespace {

const std::string kArchives = std::string(KVL_BUILD_DIRECTORY) + "/machines/archives";
const std::string kTop = "/tmp/top";
const std::string kFolder = kTop + "/folder";
const std::string kOut = "/tmp/out";
const std::vector<unsigned long> kAllPauses = {1000, 6000, 11000, 16000, 21000};

std::string start(const std::string& operation) {
    return "4 CUnzip_Utility::" + operation + " [START]";
}
std::string end(const std::string& operation) {
    return "4 CUnzip_Utility::" + operation + " [END]";
}

// ---- DeleteFolder ----

class DeleteFolder : public FoundationTest {
protected:
    static bool deleteFolder(const std::string& path) { return CUnzip_Utility::DeleteFolder(path, kModule); }
};

const Lines kDeleteBoundaries = {start("DeleteFolder"), end("DeleteFolder")};

TEST_F(DeleteFolder, RemovesAnEmptyFolder) {
    machine.directory(kFolder);
    EXPECT_TRUE(deleteFolder(kFolder));
    EXPECT_THAT(namesIn(kTop), testing::IsEmpty());
    EXPECT_EQ(TestHost::trace(), kDeleteBoundaries);
}

TEST_F(DeleteFolder, RemovesEveryKindOfName) {
    for (const std::string name : {".hidden", "..more", "-rf", "with \"quotes\" and 'quotes'", "line\nfeed", "*"}) {
        machine.file(kFolder + "/" + name, "text");
    }
    machine.file(kFolder + "/" + std::string(255, 'n'), "text");
    EXPECT_TRUE(deleteFolder(kFolder));
    EXPECT_THAT(namesIn(kTop), testing::IsEmpty());
    EXPECT_EQ(TestHost::trace(), kDeleteBoundaries);
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(DeleteFolder, RemovesAThousandFiles) {
    for (int number = 0; number < 1000; ++number) {
        machine.file(kFolder + "/" + std::to_string(number), "");
    }
    EXPECT_TRUE(deleteFolder(kFolder));
    EXPECT_THAT(namesIn(kTop), testing::IsEmpty());
}

TEST_F(DeleteFolder, RemovesAnInnerFolderFirst) {
    machine.file(kFolder + "/inner/deep/file", "text");
    EXPECT_TRUE(deleteFolder(kFolder));
    EXPECT_EQ(TestHost::removals(), (Lines{kFolder + "/inner/deep", kFolder + "/inner", kFolder}));
    EXPECT_THAT(namesIn(kTop), testing::IsEmpty());
    EXPECT_EQ(TestHost::trace(), (Lines{start("DeleteFolder"), start("DeleteFolder"), start("DeleteFolder"),
                                        end("DeleteFolder"), end("DeleteFolder"), end("DeleteFolder")}));
}

TEST_F(DeleteFolder, IsDoneWithAMissingPath) {
    EXPECT_TRUE(deleteFolder("/tmp/absent"));
    EXPECT_EQ(TestHost::trace(), kDeleteBoundaries);
}

TEST_F(DeleteFolder, RefusesAnEmptyPath) {
    EXPECT_FALSE(deleteFolder(""));
    EXPECT_EQ(TestHost::trace(),
              (Lines{start("DeleteFolder"), "2 CUnzip_Utility::DeleteFolder Invalid input path", end("DeleteFolder")}));
}

TEST_F(DeleteFolder, RefusesAPathOfMoreThan4096Characters) {
    EXPECT_FALSE(deleteFolder(std::string(4097, '/')));
    EXPECT_EQ(TestHost::trace(), (Lines{start("DeleteFolder"), "2 CUnzip_Utility::DeleteFolder Input path is too long",
                                        end("DeleteFolder")}));
}

TEST_F(DeleteFolder, AllowsAPathOf4096Characters) {
    // No file can have such a path, so there is nothing to do.
    EXPECT_TRUE(deleteFolder(std::string(4096, '/')));
    EXPECT_EQ(TestHost::trace(), kDeleteBoundaries);
}

TEST_F(DeleteFolder, FailsForAFile) {
    machine.file("/tmp/file", "text");
    EXPECT_FALSE(deleteFolder("/tmp/file"));
    EXPECT_EQ(contentOf("/tmp/file"), "text");
    EXPECT_EQ(TestHost::trace(), kDeleteBoundaries);
}

TEST_F(DeleteFolder, RemovesALinkBelowItWithoutFollowingIt) {
    machine.file("/tmp/top/kept/file", "text");
    machine.directory(kFolder);
    std::filesystem::create_symlink("/tmp/top/kept", kFolder + "/link");
    EXPECT_TRUE(deleteFolder(kFolder));
    EXPECT_EQ(contentOf("/tmp/top/kept/file"), "text");
    EXPECT_EQ(namesIn(kTop), (Lines{"kept"}));
    EXPECT_EQ(TestHost::trace(), kDeleteBoundaries);
}

TEST_F(DeleteFolder, EmptiesTheTargetOfALinkAndFails) {
    machine.file("/tmp/top/target/file", "text");
    std::filesystem::create_symlink("/tmp/top/target", kFolder);
    EXPECT_FALSE(deleteFolder(kFolder));
    EXPECT_EQ(namesIn(kTop), (Lines{"folder", "target"}));
    EXPECT_THAT(namesIn("/tmp/top/target"), testing::IsEmpty());
}

TEST_F(DeleteFolder, LeavesALinkToNowhereAndFails) {
    machine.file(kFolder + "/file", "text");
    std::filesystem::create_symlink("nowhere", kFolder + "/dangling");
    EXPECT_FALSE(deleteFolder(kFolder));
    EXPECT_EQ(namesIn(kFolder), (Lines{"dangling"}));
    EXPECT_EQ(TestHost::trace(), kDeleteBoundaries);
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(DeleteFolder, LeavesAFileThatCannotBeReadAndFails) {
    machine.file(kFolder + "/unreadable", "text");
    chmod((kFolder + "/unreadable").c_str(), 0);
    EXPECT_FALSE(deleteFolder(kFolder));
    EXPECT_EQ(namesIn(kFolder), (Lines{"unreadable"}));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(DeleteFolder, TakesAFolderThatCannotBeReadForGone) {
    machine.directory(kFolder);
    chmod(kFolder.c_str(), 0);
    EXPECT_TRUE(deleteFolder(kFolder));
    EXPECT_EQ(namesIn(kTop), (Lines{"folder"}));
}

TEST_F(DeleteFolder, StopsAtTheFirstFileThatStays) {
    machine.file(kFolder + "/one", "text");
    machine.file(kFolder + "/two", "text");
    chmod(kFolder.c_str(), 0555);
    EXPECT_FALSE(deleteFolder(kFolder));
    EXPECT_EQ(namesIn(kFolder), (Lines{"one", "two"}));
    EXPECT_EQ(TestHost::sleeps(), kAllPauses);
    EXPECT_EQ(TestHost::trace(), kDeleteBoundaries);
}

TEST_F(DeleteFolder, StopsAtTheFirstInnerFolderThatStays) {
    for (const std::string inner : {"/one", "/two"}) {
        machine.file(kFolder + inner + "/file", "text");
        chmod((kFolder + inner).c_str(), 0555);
    }
    EXPECT_FALSE(deleteFolder(kFolder));
    EXPECT_EQ(namesIn(kFolder), (Lines{"one", "two"}));
    EXPECT_EQ(TestHost::sleeps(), kAllPauses);
    EXPECT_EQ(TestHost::trace(),
              (Lines{start("DeleteFolder"), start("DeleteFolder"), end("DeleteFolder"), end("DeleteFolder")}));
}

TEST_F(DeleteFolder, FailsForEntriesThatItCannotAskFor) {
    machine.file(kFolder + "/file", "text");
    chmod(kFolder.c_str(), 0444);
    EXPECT_FALSE(deleteFolder(kFolder));
    chmod(kFolder.c_str(), 0755);
    EXPECT_EQ(namesIn(kFolder), (Lines{"file"}));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(DeleteFolder, FailsWhereTheEmptiedFolderStays) {
    machine.file("/tmp/above/folder/file", "text");
    chmod("/tmp/above", 0555);
    EXPECT_FALSE(deleteFolder("/tmp/above/folder"));
    EXPECT_EQ(namesIn("/tmp/above"), (Lines{"folder"}));
    EXPECT_THAT(namesIn("/tmp/above/folder"), testing::IsEmpty());
    EXPECT_EQ(TestHost::trace(), kDeleteBoundaries);
}

// ---- Unzip ----

class Unzip : public FoundationTest {
protected:
    void SetUp() override {
        FoundationTest::SetUp();
        machine.directory(kOut);
    }

    /// Lays down an `unzip` in front of the real one.
    void standIn(kvl::machines::Ending ending = {}) { machine.anyCommand("/bin/unzip", "unpacked\n", ending); }

    bool unzip(const std::string& zipPath, const std::string& outPath = kOut) {
        const DescriptorInFile output(STDOUT_FILENO, "/tmp/output");
        const DescriptorInFile errors(STDERR_FILENO, "/tmp/errors");
        return CUnzip_Utility::Unzip(zipPath, outPath, kModule);
    }

    bool updateModuleUnzip(std::list<std::string> files, const std::string& directory = kArchives) {
        const DescriptorInFile output(STDOUT_FILENO, "/tmp/output");
        const DescriptorInFile errors(STDERR_FILENO, "/tmp/errors");
        return CUnzip_Utility::UpdateModuleUnzip(directory, &files, kOut, &baseName, kModule);
    }

    /// The trace of a call that traces these lines after its arguments.
    static Lines traceOf(const std::string& zipPath, const Lines& lines, const std::string& outPath = kOut) {
        return Lines{start("Unzip"),
                     "1 CUnzip_Utility::Unzip ARG Check tsZipPath=" + zipPath + " tsOutPath=" + outPath} +
               lines + Lines{end("Unzip")};
    }

    static std::string failedWith(int status) {
        return "2 CUnzip_Utility::Unzip() unzip() failed. dwRtnCode=" + std::to_string(status);
    }

    std::string baseName = "before";
};

TEST_F(Unzip, RunsUnzipThatOverwrites) {
    standIn();
    EXPECT_TRUE(unzip("/tmp/a module.zip"));
    EXPECT_EQ(machine.commandsRun(), (std::vector<std::string>{"/bin/unzip -o /tmp/a module.zip -d /tmp/out"}));
    EXPECT_EQ(TestHost::trace(), traceOf("/tmp/a module.zip", {}));
}

TEST_F(Unzip, PutsBothPathsBetweenDoubleQuotes) {
    machine.program("/bin/unzip", "#!/bin/sh\nfor word; do echo \"[$word]\"; done\n");
    machine.directory("/tmp/my out");
    EXPECT_TRUE(unzip("/tmp/a module's; echo.zip", "/tmp/my out"));
    EXPECT_EQ(contentOf("/tmp/output"), "[-o]\n[/tmp/a module's; echo.zip]\n[-d]\n[/tmp/my out]\n");
}

TEST_F(Unzip, LeavesAQuoteInAPathToTheShell) {
    machine.program("/bin/unzip", "#!/bin/sh\nfor word; do echo \"[$word]\"; done\n");
    EXPECT_TRUE(unzip("/tmp/a\" \"b.zip"));
    EXPECT_EQ(contentOf("/tmp/output"), "[-o]\n[/tmp/a]\n[b.zip]\n[-d]\n[/tmp/out]\n");
    forget();
    EXPECT_FALSE(unzip("/tmp/a\"b.zip"));
    EXPECT_EQ(TestHost::trace(), traceOf("/tmp/a\"b.zip", {failedWith(2)}));
}

TEST_F(Unzip, LeavesTheOutputOfUnzipToTheHost) {
    machine.program("/bin/unzip", "#!/bin/sh\necho out\necho err >&2\n");
    EXPECT_TRUE(unzip("/tmp/a.zip"));
    EXPECT_EQ(contentOf("/tmp/output"), "out\n");
    EXPECT_EQ(contentOf("/tmp/errors"), "err\n");
}

TEST_F(Unzip, StartsNoProcessWithoutTheOutputDirectory) {
    standIn();
    libc().failingForks = 1;
    EXPECT_FALSE(unzip("/tmp/a.zip", "/tmp/absent"));
    EXPECT_EQ(libc().failingForks, 1);
    EXPECT_EQ(TestHost::trace(),
              traceOf("/tmp/a.zip", {"2 CUnzip_Utility::Unzip() Output dir is not found."}, "/tmp/absent"));
    EXPECT_FALSE(std::filesystem::exists("/tmp/absent"));
}

TEST_F(Unzip, StartsNoProcessForAnOutputDirectoryThatCannotBeRead) {
    standIn();
    chmod(kOut.c_str(), 0300);
    EXPECT_EQ(access(kOut.c_str(), W_OK | X_OK), 0);
    libc().failingForks = 1;
    EXPECT_FALSE(unzip("/tmp/a.zip"));
    EXPECT_EQ(libc().failingForks, 1);
    EXPECT_EQ(TestHost::trace(), traceOf("/tmp/a.zip", {"2 CUnzip_Utility::Unzip() Output dir is not found."}));
}

TEST_F(Unzip, LeavesItToUnzipToRefuseAFileForADirectory) {
    machine.file("/tmp/file", "text");
    standIn({9});
    EXPECT_FALSE(unzip("/tmp/a.zip", "/tmp/file"));
    EXPECT_EQ(machine.commandsRun(), (std::vector<std::string>{"/bin/unzip -o /tmp/a.zip -d /tmp/file"}));
    EXPECT_EQ(TestHost::trace(), traceOf("/tmp/a.zip", {failedWith(9)}, "/tmp/file"));
}

TEST_F(Unzip, RunsInTheDirectoryOfTheCaller) {
    machine.program("/bin/unzip", "#!/bin/sh\npwd -P\n");
    machine.directory("/tmp/callers place");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path("/tmp/callers place");
    EXPECT_TRUE(unzip("a.zip"));
    std::filesystem::current_path(before);
    EXPECT_EQ(contentOf("/tmp/output"), "/tmp/callers place\n");
}

TEST_F(Unzip, FailsWhereItCannotFork) {
    standIn();
    libc().failingForks = 1;
    EXPECT_FALSE(unzip("/tmp/a.zip"));
    EXPECT_EQ(TestHost::trace(), traceOf("/tmp/a.zip", {"2 CUnzip_Utility::Unzip() ExecForeignModule() failed."}));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(Unzip, FailsWhereASignalEndsTheShell) {
    machine.program("/bin/unzip", "#!/bin/sh\nkill -9 $PPID $$\n");
    // The shell may have made itself the program, or wait for it.
    EXPECT_FALSE(unzip("/tmp/a.zip\"; kill -9 $$; \""));
    EXPECT_EQ(TestHost::trace(),
              traceOf("/tmp/a.zip\"; kill -9 $$; \"", {"2 CUnzip_Utility::Unzip() ExecForeignModule() failed."}));
}

TEST_F(Unzip, FailsForEveryOtherExitCodeThanZero) {
    for (const int status : {1, 2, 9, 255}) {
        standIn({status});
        forget();
        EXPECT_FALSE(unzip("/tmp/a.zip")) << status;
        EXPECT_EQ(TestHost::trace(), traceOf("/tmp/a.zip", {failedWith(status)})) << status;
    }
}

TEST_F(Unzip, RunsACommandOf8223CharactersWhole) {
    standIn();
    const std::string zipPath(8223 - std::string("unzip -o \"\" -d \"/tmp/out\"").size(), 'x');
    EXPECT_TRUE(unzip(zipPath));
    EXPECT_EQ(machine.commandsRun(), (std::vector<std::string>{"/bin/unzip -o " + zipPath + " -d /tmp/out"}));
}

TEST_F(Unzip, CutsALongerCommandAndRunsIt) {
    standIn();
    // The cut takes the closing quote away, and the shell complains.
    const std::string zipPath(8224 - std::string("unzip -o \"\" -d \"/tmp/out\"").size(), 'x');
    EXPECT_FALSE(unzip(zipPath));
    EXPECT_EQ(TestHost::trace(), traceOf(zipPath, {failedWith(2)}));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    // Here it leaves a command that the shell can run.
    EXPECT_TRUE(unzip("a.zip\" " + std::string(9000, 'x')));
    const std::string rest(8223 - std::string("unzip -o \"a.zip\" ").size(), 'x');
    EXPECT_EQ(machine.commandsRun(), (std::vector<std::string>{"/bin/unzip -o a.zip " + rest}));
}

TEST_F(Unzip, UnpacksAnArchiveAndOverwritesFiles) {
    machine.file(kOut + "/readme.txt", "yesterday's");
    EXPECT_TRUE(unzip(kArchives + "/module.zip"));
    EXPECT_EQ(contentOf(kOut + "/readme.txt"), "read me\n");
    EXPECT_EQ(contentOf(kOut + "/x86/install.sh"), "echo installed\n");
    EXPECT_EQ(namesIn(kOut), (Lines{"readme.txt", "x86"}));
    EXPECT_EQ(TestHost::trace(), traceOf(kArchives + "/module.zip", {}));
    EXPECT_NE(contentOf("/tmp/output").find("install.sh"), std::string::npos);
}

TEST_F(Unzip, FailsForAMissingArchive) {
    EXPECT_FALSE(unzip("/tmp/absent.zip"));
    EXPECT_EQ(TestHost::trace(), traceOf("/tmp/absent.zip", {failedWith(9)}));
}

TEST_F(Unzip, FailsForADamagedArchive) {
    const std::string archive = contentOf(kArchives + "/module.zip");
    machine.file("/tmp/cut.zip", archive.substr(0, archive.size() / 2));
    EXPECT_FALSE(unzip("/tmp/cut.zip"));
    EXPECT_EQ(TestHost::trace(), traceOf("/tmp/cut.zip", {failedWith(9)}));
    EXPECT_THAT(namesIn(kOut), testing::IsEmpty());

    std::string changed = archive;
    changed.replace(changed.find("read me"), 7, "read ME");
    machine.file("/tmp/changed.zip", changed);
    forget();
    EXPECT_FALSE(unzip("/tmp/changed.zip"));
    EXPECT_EQ(TestHost::trace(), traceOf("/tmp/changed.zip", {failedWith(2)}));
}

TEST_F(Unzip, FailsForAnEmptyFileAndAnEmptyArchive) {
    machine.file("/tmp/empty.zip", "");
    EXPECT_FALSE(unzip("/tmp/empty.zip"));
    EXPECT_EQ(TestHost::trace(), traceOf("/tmp/empty.zip", {failedWith(9)}));
    machine.file("/tmp/nothing.zip", "PK\5\6" + std::string(18, '\0'));
    forget();
    EXPECT_FALSE(unzip("/tmp/nothing.zip"));
    EXPECT_EQ(TestHost::trace(), traceOf("/tmp/nothing.zip", {failedWith(1)}));
}

TEST_F(Unzip, KeepsAbsolutePathsBelowTheOutputDirectoryAndFailsForTheWarning) {
    EXPECT_FALSE(unzip(kArchives + "/absolute.zip"));
    EXPECT_EQ(TestHost::trace(), traceOf(kArchives + "/absolute.zip", {failedWith(1)}));
    EXPECT_EQ(contentOf(kOut + "/tmp/absolute.txt"), "absolute\n");
    EXPECT_EQ(contentOf("/tmp/absolute.txt"), "(absent)");
}

TEST_F(Unzip, KeepsPathsThatLeadUpwardBelowTheOutputDirectoryAndFailsForTheWarning) {
    EXPECT_FALSE(unzip(kArchives + "/upward.zip"));
    EXPECT_EQ(TestHost::trace(), traceOf(kArchives + "/upward.zip", {failedWith(1)}));
    EXPECT_EQ(contentOf(kOut + "/above.txt"), "above\n");
    EXPECT_EQ(contentOf("/tmp/above.txt"), "(absent)");
}

TEST_F(Unzip, UnpacksNamesThatHoldQuotesAndTheLongestName) {
    EXPECT_TRUE(unzip(kArchives + "/quotes.zip"));
    EXPECT_TRUE(unzip(kArchives + "/long_name.zip"));
    EXPECT_EQ(contentOf(kOut + "/it's \"quoted\".txt"), "quoted\n");
    EXPECT_EQ(contentOf(kOut + "/" + std::string(255, '0')), "long\n");
    EXPECT_TRUE(CUnzip_Utility::DeleteFolder(kOut, kModule));
}

TEST_F(Unzip, UnpacksALinkToNowhereThatThenStays) {
    EXPECT_TRUE(unzip(kArchives + "/dangling.zip"));
    EXPECT_EQ(std::filesystem::read_symlink(kOut + "/dangling"), "nowhere");
    EXPECT_FALSE(CUnzip_Utility::DeleteFolder(kOut, kModule));
    EXPECT_EQ(namesIn(kOut), (Lines{"dangling"}));
}

// ---- UpdateModuleUnzip ----

using UpdateModuleUnzip = Unzip;

TEST_F(UpdateModuleUnzip, UnpacksTheFirstArchiveAlone) {
    standIn();
    EXPECT_TRUE(updateModuleUnzip({"a.txt", "b-1.2.zip", "c.zip"}, "/tmp/modules"));
    EXPECT_EQ(machine.commandsRun(), (std::vector<std::string>{"/bin/unzip -o /tmp/modules/b-1.2.zip -d /tmp/out"}));
    EXPECT_EQ(baseName, "b-1");
    EXPECT_EQ(TestHost::trace(), Lines{start("UpdateModuleUnzip")} + traceOf("/tmp/modules/b-1.2.zip", {}) +
                                     Lines{end("UpdateModuleUnzip")});
}

TEST_F(UpdateModuleUnzip, LeavesTheListAsItIs) {
    standIn();
    std::list<std::string> files = {"a.txt", "b.zip"};
    const DescriptorInFile output(STDOUT_FILENO, "/tmp/output");
    EXPECT_TRUE(CUnzip_Utility::UpdateModuleUnzip("/tmp", &files, kOut, &baseName, kModule));
    EXPECT_EQ(files, (std::list<std::string>{"a.txt", "b.zip"}));
}

TEST_F(UpdateModuleUnzip, LeavesTheBaseNameAloneWithoutAnArchive) {
    const Lines boundaries = {start("UpdateModuleUnzip"), end("UpdateModuleUnzip")};
    for (const std::list<std::string>& files :
         {std::list<std::string>{}, {"a.txt", "zip", "b.ZIP", "c.tar", ".zi"}, {""}}) {
        forget();
        EXPECT_FALSE(updateModuleUnzip(files));
        EXPECT_EQ(baseName, "before");
        EXPECT_EQ(TestHost::trace(), boundaries);
    }
}

TEST_F(UpdateModuleUnzip, TakesANameForAnArchiveThatHoldsTheExtensionAnywhere) {
    standIn();
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"a.zip.txt", "a"}, {"b.zipper", "b"}, {".zip", ""}, {"two.dots.zip", "two"}, {".hidden.zip", ""}};
    for (const auto& [file, expected] : rows) {
        forget();
        EXPECT_TRUE(updateModuleUnzip({file}, "/tmp/modules")) << file;
        EXPECT_EQ(machine.commandsRun(),
                  (std::vector<std::string>{"/bin/unzip -o /tmp/modules/" + file + " -d /tmp/out"}));
        EXPECT_EQ(baseName, expected) << file;
    }
}

TEST_F(UpdateModuleUnzip, SetsTheBaseNameAlsoWhereUnpackingFails) {
    machine.file("/tmp/damaged.x.zip", "no archive");
    EXPECT_FALSE(updateModuleUnzip({"damaged.x.zip", "module.zip"}, "/tmp"));
    EXPECT_EQ(baseName, "damaged");
    EXPECT_THAT(namesIn(kOut), testing::IsEmpty());
    EXPECT_EQ(TestHost::trace(), Lines{start("UpdateModuleUnzip")} + traceOf("/tmp/damaged.x.zip", {failedWith(9)}) +
                                     Lines{end("UpdateModuleUnzip")});
}

TEST_F(UpdateModuleUnzip, SetsTheBaseNameAlsoWithoutTheOutputDirectory) {
    std::filesystem::remove(kOut);
    EXPECT_FALSE(updateModuleUnzip({"module.zip"}));
    EXPECT_EQ(baseName, "module");
}

TEST_F(UpdateModuleUnzip, UnpacksARealArchive) {
    EXPECT_TRUE(updateModuleUnzip({"module.zip"}));
    EXPECT_EQ(baseName, "module");
    EXPECT_EQ(namesIn(kOut), (Lines{"readme.txt", "x86"}));
}

}  // namespace
}  // namespace kvl::test
