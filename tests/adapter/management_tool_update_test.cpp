#include <sys/stat.h>

#include <filesystem>

#include "tests/adapter/management_tool_update.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

// ---- The whole update ----

TEST_F(ManagementToolUpdate, UnpacksTheModuleAndRunsItsTwoScripts) {
    EXPECT_TRUE(update());
    const std::string x64 = "/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64";
    EXPECT_EQ(TestHost::trace(), traceOf(kUpdated));
    EXPECT_EQ(machine.commandsRun(),
              (Lines{"/bin/unzip -o /tmp/modules/tool.zip -d /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp", "/bin/uname -m",
                     "/bin/chmod 777 " + x64 + "/install.sh " + x64 + "/message.txt " + x64 + "/uninstall.sh",
                     x64 + "/uninstall.sh", x64 + "/install.sh -q"}));
    EXPECT_THAT(TestHost::operatorMessages(), testing::IsEmpty());
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(ManagementToolUpdate, LeavesTheOutputsAndTheUnpackedModule) {
    EXPECT_TRUE(update());
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_install.txt", "temp_ocm_uninstall.txt", "tmp"}));
    EXPECT_EQ(contentOf("/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_uninstall.txt"), "the tool is removed\n");
    EXPECT_EQ(contentOf("/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_install.txt"), "the tool is installed\n");
    EXPECT_EQ(namesIn(kScratch), (Lines{"x64"}));
    EXPECT_EQ(namesIn(kDirectory), (Lines{"install.sh", "message.txt", "uninstall.sh"}));
    for (const std::string& name : namesIn(kDirectory)) {
        EXPECT_EQ(fs::status(kDirectory + "/" + name).permissions(), fs::perms::all) << name;
    }
}

TEST_F(ManagementToolUpdate, IsTheSameForEveryModuleName) {
    for (const char* name : {"cna", "fc", "another"}) {
        useModule(name);
        forget();
        fs::remove_all(kTemp);
        EXPECT_TRUE(update());
        EXPECT_EQ(TestHost::trace(), traceOf(kUpdated));
        EXPECT_EQ(TestHost::modules(), (Lines{name}));
    }
}

TEST_F(ManagementToolUpdate, DoesNotUseTwoArguments) {
    for (const bool unused : {false, true}) {
        fs::remove_all(kTemp);
        forget();
        std::list<std::string> files = {"tool.zip"};
        EXPECT_TRUE(quietly([&] {
            return CEmulexCommon::OCMUpdate(unused ? "" : "/tmp/other", "/tmp/modules", &files, unused, module);
        }));
        EXPECT_EQ(TestHost::trace(), traceOf(kUpdated));
        EXPECT_EQ(machine.commandsRun(), updateCommands());
    }
}

TEST_F(ManagementToolUpdate, LeavesTheListOfFilesAlone) {
    std::list<std::string> files = {"readme.txt", "tool.zip", "other.zip"};
    EXPECT_TRUE(quietly([&] { return CEmulexCommon::OCMUpdate("", "/tmp/modules", &files, false, module); }));
    EXPECT_EQ(files, (std::list<std::string>{"readme.txt", "tool.zip", "other.zip"}));
}

TEST_F(ManagementToolUpdate, MakesTheWorkingTreeWhereItIsMissing) {
    fs::remove_all(kInstallPath + "/tmp");
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), traceOf(kUpdated));
    EXPECT_EQ(contentOf(kInstallOutput), "the tool is installed\n");
}

TEST_F(ManagementToolUpdate, RunsTheScriptsInTheDirectoryOfTheCallerAndWithoutStandardError) {
    layScript("x64/uninstall.sh", {}, "pwd -P\necho lost >&2\necho removed");
    layScript("x64/install.sh", {}, "pwd -P\necho lost >&2\necho installed");
    machine.directory("/tmp/callers place");
    const fs::path before = fs::current_path();
    fs::current_path("/tmp/callers place");
    EXPECT_TRUE(update());
    fs::current_path(before);
    EXPECT_EQ(contentOf(kUninstallOutput), "/tmp/callers place\nremoved\n");
    EXPECT_EQ(contentOf(kInstallOutput), "/tmp/callers place\ninstalled\n");
    EXPECT_EQ(contentOf("/tmp/errors"), "");
}

TEST_F(ManagementToolUpdate, DeletesNoReport) {
    machine.file(kTemp + "/report.txt", "text");
    machine.file("/tmp/callers place/report.txt", "text");
    const fs::path before = fs::current_path();
    fs::current_path("/tmp/callers place");
    EXPECT_TRUE(update());
    fs::current_path(before);
    EXPECT_EQ(contentOf(kTemp + "/report.txt"), "text");
    EXPECT_EQ(contentOf("/tmp/callers place/report.txt"), "text");
}

TEST_F(ManagementToolUpdate, HasTheScriptsRunAsTheyAreCalledByTheShell) {
    machine.program("/sbin/sh", "#!/bin/sh\nprintf '%s\\n' \"$2\" >>/tmp/commands\nexec /bin/sh \"$@\"\n");
    EXPECT_TRUE(update());
    EXPECT_EQ(contentOf("/tmp/commands"), "unzip -o \"/tmp/modules/tool.zip\" -d \"" + kScratch + "\"\nuname -m\n" +
                                              kUninstall + "\n" + kInstall + " -q\n");
}

// ---- An update that has been done ----

TEST_F(ManagementToolUpdate, IsSkippedAfterASuccess) {
    EXPECT_TRUE(update());
    forget();
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::OCMUpdate() [START]
        1 OCM update is previously-reported.OCM Update is skipped
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    EXPECT_EQ(contentOf(kInstallOutput), "the tool is installed\n");
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(ManagementToolUpdate, IsSkippedForTheOtherFamilyToo) {
    EXPECT_TRUE(update());
    useModule("fc");
    forget();
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::OCMUpdate() [START]
        1 OCM update is previously-reported.OCM Update is skipped
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(TestHost::modules(), (Lines{"fc"}));
}

TEST_F(ManagementToolUpdate, IsSkippedAfterAFailedInstallation) {
    layScript("x64/install.sh", {"no space"});
    EXPECT_FALSE(update());
    EXPECT_EQ(takeError(), 17U);
    layScript("x64/install.sh", kInstallLines);
    forget();
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::OCMUpdate() [START]
        1 OCM update is previously-reported.OCM Update is skipped
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    EXPECT_EQ(takeError(), 0U);
}

TEST_F(ManagementToolUpdate, IsNotSkippedAfterAFailedRemoval) {
    layScript("x64/uninstall.sh", {"in use"});
    EXPECT_FALSE(update());
    layScript("x64/uninstall.sh", kUninstallLines);
    forget();
    EXPECT_TRUE(update());
    EXPECT_EQ(machine.commandsRun(), updateCommands());
    EXPECT_EQ(contentOf(kUninstallOutput), "the tool is removed\n");
}

TEST_F(ManagementToolUpdate, IsSkippedForWhateverStandsAtTheInstallOutput) {
    const std::function<void()> rows[] = {
        [this] { machine.file(kInstallOutput, ""); },
        [this] {
            machine.file(kInstallOutput, "text");
            chmod(kInstallOutput.c_str(), 0);
        },
        [this] { machine.directory(kInstallOutput); },
        [] { fs::create_symlink("/etc/passwd", kInstallOutput); },
    };
    for (const auto& lay : rows) {
        lay();
        forget();
        EXPECT_TRUE(update());
        EXPECT_EQ(TestHost::trace(), traceOf(R"(
            4 CEmulexCommon::OCMUpdate() [START]
            1 OCM update is previously-reported.OCM Update is skipped
            4 CEmulexCommon::OCMUpdate() [END]
        )"));
        EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_install.txt"}));
        fs::remove(kInstallOutput);
    }
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(ManagementToolUpdate, IsNotSkippedForALinkToNowhere) {
    fs::create_symlink("/tmp/nowhere", kInstallOutput);
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), traceOf(kUpdated));
}

TEST_F(ManagementToolUpdate, LooksAtNoFileOfTheModuleWhereItIsSkipped) {
    machine.file(kInstallOutput, "");
    EXPECT_TRUE(CEmulexCommon::OCMUpdate("", "/tmp/absent", nullptr, false, module));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::OCMUpdate() [START]
        1 OCM update is previously-reported.OCM Update is skipped
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
}

TEST_F(ManagementToolUpdate, IsDoneAgainWhereTheInstallOutputIsTakenAway) {
    EXPECT_TRUE(update());
    fs::remove(kInstallOutput);
    machine.file(kScratch + "/left.txt", "text");
    forget();
    EXPECT_TRUE(update());
    EXPECT_EQ(machine.commandsRun(), updateCommands());
    EXPECT_EQ(namesIn(kScratch), (Lines{"x64"}));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::OCMUpdate() [START]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [END]
        4 CUnzip_Utility::DeleteFolder [END]
        4 CUnzip_Utility::UpdateModuleUnzip [START]
        4 CUnzip_Utility::Unzip [START]
        1 CUnzip_Utility::Unzip ARG Check tsZipPath=/tmp/modules/tool.zip tsOutPath=/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp
        4 CUnzip_Utility::Unzip [END]
        4 CUnzip_Utility::UpdateModuleUnzip [END]
        4 CCommon_Information::GetArchitectureInfo [START]
        4 CCommon_Information::GetArchitectureInfo [END]
        1 Search uninstall.sh in [/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64]
        1 Search uninstall.sh end
        1 filename = [uninstall.sh]
        1 Execute command [chmod 777 /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/*]
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=removed]
        1 successMessage[0]=[removed]
        1 log_mes_ifs. buf=[SuccessMessage=installed]
        1 successMessage[1]=[installed]
        1 no endMessage
        1 Result file check success msg [the tool is removed]
        1 Find SuccessMsg[] in [the tool is removed]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=removed]
        1 successMessage[0]=[removed]
        1 log_mes_ifs. buf=[SuccessMessage=installed]
        1 successMessage[1]=[installed]
        1 no endMessage
        1 Result file check success msg [the tool is installed]
        1 Find SuccessMsg[] in [the tool is installed]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
}

// ---- The scratch directory ----

TEST_F(ManagementToolUpdate, FailsForAScratchDirectoryThatCannotBeDeleted) {
    machine.file(kScratch, "a file in the way");
    expectReportedFailure(
        28, "1c", [this] { return update(); }, traceOf(R"(
        4 CEmulexCommon::OCMUpdate() [START]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [END]
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(contentOf(kScratch), "a file in the way");
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(ManagementToolUpdate, WaitsForAFileOfTheScratchDirectoryAndFails) {
    machine.file(kScratch + "/busy", "text");
    chmod(kScratch.c_str(), 0555);
    EXPECT_FALSE(update());
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::OCMUpdate() [START]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [END]
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(TestHost::operatorMessages(), (Lines{"cna MSGID_EMULEX_0004_F ocm 1c"}));
    EXPECT_EQ(TestHost::sleeps(), kAllPauses);
    EXPECT_EQ(takeError(), 28U);
    chmod(kScratch.c_str(), 0755);
    EXPECT_EQ(namesIn(kScratch), (Lines{"busy"}));
}

TEST_F(ManagementToolUpdate, FailsForAScratchDirectoryThatCannotBeMade) {
    fs::remove_all(kTemp);
    machine.file(kTemp, "a file in the way");
    expectReportedFailure(
        19, "13", [this] { return update(); }, traceOf(R"(
        4 CEmulexCommon::OCMUpdate() [START]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [END]
        2 Failed to get create unzip folder
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(contentOf(kTemp), "a file in the way");
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(ManagementToolUpdate, TellsTheOperatorBeforeItTraces) {
    fs::remove_all(kTemp);
    machine.file(kTemp, "a file in the way");
    std::size_t messagesBefore = 0;
    TestHost::onTrace([&](const std::string& line) {
        if (line == "2 Failed to get create unzip folder") {
            messagesBefore = TestHost::operatorMessages().size();
        }
    });
    EXPECT_FALSE(update());
    EXPECT_EQ(messagesBefore, 1U);
}

// ---- The archive ----

TEST_F(ManagementToolUpdate, FailsForAModuleWithoutAnArchive) {
    for (const std::list<std::string>& files :
         {std::list<std::string>{}, {"readme.txt", "tool.ZIP"}, {"tool.tar.gz"}}) {
        fs::remove_all(kScratch);
        expectReportedFailure(
            26, "1a", [&] { return update("/tmp/modules", files); }, traceOf(R"(
            4 CEmulexCommon::OCMUpdate() [START]
            4 CUnzip_Utility::DeleteFolder [START]
            4 CUnzip_Utility::DeleteFolder [END]
            4 CUnzip_Utility::UpdateModuleUnzip [START]
            4 CUnzip_Utility::UpdateModuleUnzip [END]
            4 CEmulexCommon::OCMUpdate() [END]
        )"));
        EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    }
}

TEST_F(ManagementToolUpdate, FailsForAnArchiveThatCannotBeUnpackedAndLeavesTheScratchDirectory) {
    machine.program("/bin/unzip", logging("echo half >\"$4/half\"\nexit 9"));
    EXPECT_FALSE(update());
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::OCMUpdate() [START]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [END]
        4 CUnzip_Utility::UpdateModuleUnzip [START]
        4 CUnzip_Utility::Unzip [START]
        1 CUnzip_Utility::Unzip ARG Check tsZipPath=/tmp/modules/tool.zip tsOutPath=/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp
        2 CUnzip_Utility::Unzip() unzip() failed. dwRtnCode=9
        4 CUnzip_Utility::Unzip [END]
        4 CUnzip_Utility::UpdateModuleUnzip [END]
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(TestHost::operatorMessages(), (Lines{"cna MSGID_EMULEX_0004_F ocm 1a"}));
    EXPECT_EQ(takeError(), 26U);
    EXPECT_EQ(machine.commandsRun(), (Lines{"/bin/unzip -o /tmp/modules/tool.zip -d " + kScratch}));
    EXPECT_EQ(namesIn(kScratch), (Lines{"half"}));
    EXPECT_EQ(filesLeft(), (Lines{"tmp"}));
}

TEST_F(ManagementToolUpdate, FailsForSpoiledArchives) {
    const std::pair<std::string, int> rows[] = {
        {"tool-damaged-archive", 9}, {"tool-empty-archive", 1}, {"tool-no-archive", 9}};
    for (const auto& [name, status] : rows) {
        SCOPED_TRACE(name);
        fs::remove_all(kScratch);
        const Values values = {{"modules", kModules}, {"name", name}, {"status", std::to_string(status)}};
        expectReportedFailure(
            26, "1a", [this, name = name] { return updateFromArchive(name); }, traceOf(values, R"(
            4 CEmulexCommon::OCMUpdate() [START]
            4 CUnzip_Utility::DeleteFolder [START]
            4 CUnzip_Utility::DeleteFolder [END]
            4 CUnzip_Utility::UpdateModuleUnzip [START]
            4 CUnzip_Utility::Unzip [START]
            1 CUnzip_Utility::Unzip ARG Check tsZipPath={modules}/{name}/module.zip tsOutPath=/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp
            2 CUnzip_Utility::Unzip() unzip() failed. dwRtnCode={status}
            4 CUnzip_Utility::Unzip [END]
            4 CUnzip_Utility::UpdateModuleUnzip [END]
            4 CEmulexCommon::OCMUpdate() [END]
        )"));
        EXPECT_EQ(namesIn(kScratch), Lines{});
    }
}

// ---- The machine's directory ----

TEST_F(ManagementToolUpdate, TakesTheDirectoryOfTheArchitecture) {
    laySources("x86");
    const std::pair<std::string, std::string> rows[] = {
        {"i386", "x86"},        {"i686", "x86"},        {"x86_64", "x64"},    {"i686 x86_64", "x86"},
        {"x86_64 i386", "x86"}, {"x86_64 i686", "x86"}, {"xxi686-pc", "x86"}, {"an x86_64.", "x64"}};
    for (const auto& [architecture, directory] : rows) {
        SCOPED_TRACE(architecture);
        machine.command("/bin/uname -m", architecture + "\n");
        fs::remove_all(kTemp);
        forget();
        EXPECT_TRUE(update());
        const std::string path = kScratch + "/" + directory;
        EXPECT_EQ(TestHost::trace(), traceOf({{"directory", directory}}, R"(
            4 CEmulexCommon::OCMUpdate() [START]
            4 CUnzip_Utility::DeleteFolder [START]
            4 CUnzip_Utility::DeleteFolder [END]
            4 CUnzip_Utility::UpdateModuleUnzip [START]
            4 CUnzip_Utility::Unzip [START]
            1 CUnzip_Utility::Unzip ARG Check tsZipPath=/tmp/modules/tool.zip tsOutPath=/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp
            4 CUnzip_Utility::Unzip [END]
            4 CUnzip_Utility::UpdateModuleUnzip [END]
            4 CCommon_Information::GetArchitectureInfo [START]
            4 CCommon_Information::GetArchitectureInfo [END]
            1 Search uninstall.sh in [/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/{directory}]
            1 Search uninstall.sh end
            1 filename = [uninstall.sh]
            1 Execute command [chmod 777 /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/{directory}/*]
            4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
            4 CEmulexCommon::CheckUpdateResult_() [START]
            1 log_mes_ifs. buf=[SuccessMessage=removed]
            1 successMessage[0]=[removed]
            1 log_mes_ifs. buf=[SuccessMessage=installed]
            1 successMessage[1]=[installed]
            1 no endMessage
            1 Result file check success msg [the tool is removed]
            1 Find SuccessMsg[] in [the tool is removed]
            1 Update Result Check OK
            4 CEmulexCommon::CheckUpdateResult_() [END]
            4 CEmulexCommon::EmulexUpdate() [END]
            4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
            4 CEmulexCommon::CheckUpdateResult_() [START]
            1 log_mes_ifs. buf=[SuccessMessage=removed]
            1 successMessage[0]=[removed]
            1 log_mes_ifs. buf=[SuccessMessage=installed]
            1 successMessage[1]=[installed]
            1 no endMessage
            1 Result file check success msg [the tool is installed]
            1 Find SuccessMsg[] in [the tool is installed]
            1 Update Result Check OK
            4 CEmulexCommon::CheckUpdateResult_() [END]
            4 CEmulexCommon::EmulexUpdate() [END]
            4 CEmulexCommon::OCMUpdate() [END]
        )"));
        const Lines commands = {
            "/bin/chmod 777 " + path + "/install.sh " + path + "/message.txt " + path + "/uninstall.sh",
            path + "/uninstall.sh", path + "/install.sh -q"};
        EXPECT_EQ(machine.commandsRun(), unpackCommands() + commands);
    }
}

TEST_F(ManagementToolUpdate, FailsWithoutACodeForAnotherArchitecture) {
    laySources("x86");
    for (const std::string text : {"ppc64", "i586", "x86", "x64", "amd64", "I686", "x86-64", ""}) {
        SCOPED_TRACE(text);
        machine.command("/bin/uname -m", text + "\n");
        fs::remove_all(kScratch);
        forget();
        expectFailure(kEarlierError, traceOf(R"(
            4 CEmulexCommon::OCMUpdate() [START]
            4 CUnzip_Utility::DeleteFolder [START]
            4 CUnzip_Utility::DeleteFolder [END]
            4 CUnzip_Utility::UpdateModuleUnzip [START]
            4 CUnzip_Utility::Unzip [START]
            1 CUnzip_Utility::Unzip ARG Check tsZipPath=/tmp/modules/tool.zip tsOutPath=/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp
            4 CUnzip_Utility::Unzip [END]
            4 CUnzip_Utility::UpdateModuleUnzip [END]
            4 CCommon_Information::GetArchitectureInfo [START]
            4 CCommon_Information::GetArchitectureInfo [END]
            2 Failed to get os architecture.
            4 CEmulexCommon::OCMUpdate() [END]
        )"));
        EXPECT_EQ(machine.commandsRun(), unpackCommands());
        EXPECT_EQ(filesLeft(), (Lines{"tmp"}));
        EXPECT_EQ(namesIn(kScratch), (Lines{"x64", "x86"}));
    }
}

TEST_F(ManagementToolUpdate, FailsWithoutACodeForAnArchitectureThatCannotBeAskedFor) {
    machine.command("/bin/uname -m", "x86_64\n", {1});
    expectFailure(kEarlierError, traceOf(R"(
        4 CEmulexCommon::OCMUpdate() [START]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [END]
        4 CUnzip_Utility::UpdateModuleUnzip [START]
        4 CUnzip_Utility::Unzip [START]
        1 CUnzip_Utility::Unzip ARG Check tsZipPath=/tmp/modules/tool.zip tsOutPath=/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp
        4 CUnzip_Utility::Unzip [END]
        4 CUnzip_Utility::UpdateModuleUnzip [END]
        4 CCommon_Information::GetArchitectureInfo [START]
        4 CCommon_Information::GetArchitectureInfo [END]
        2 Failed to get os architecture.
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(machine.commandsRun(), unpackCommands());
    EXPECT_EQ(filesLeft(), (Lines{"tmp"}));
}

}  // namespace
}  // namespace kvl::test
