#include <sys/stat.h>

#include <csignal>
#include <filesystem>

#include "tests/adapter/management_tool_update.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

// ---- Finding the scripts ----

TEST_F(ManagementToolUpdate, FailsForAModuleWithoutTheDirectory) {
    fs::rename(kModuleFiles + "/x64", kModuleFiles + "/x86");
    expectFailure(29, traceOf(R"(
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
        1 Search uninstall.sh in [/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64]
        2 Failed to find update module.There is not uninstall.sh file.
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(machine.commandsRun(), unpackCommands());
    EXPECT_EQ(filesLeft(), (Lines{"tmp"}));
    EXPECT_EQ(namesIn(kScratch), (Lines{"x86"}));
}

TEST_F(ManagementToolUpdate, FailsForAModuleWithoutTheUninstallScript) {
    for (const std::string name : {"Uninstall.sh", "uninstall.sh.txt", "uninstall", "an uninstall.sh"}) {
        fs::remove_all(kModuleFiles);
        laySources("x64");
        fs::rename(kModuleFiles + "/x64/uninstall.sh", kModuleFiles + "/x64/" + name);
        fs::remove_all(kScratch);
        forget();
        expectFailure(29, traceOf(R"(
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
            1 Search uninstall.sh in [/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64]
            2 Failed to find update module.There is not uninstall.sh file.
            4 CEmulexCommon::OCMUpdate() [END]
        )"));
        EXPECT_EQ(machine.commandsRun(), unpackCommands());
        EXPECT_EQ(filesLeft(), (Lines{"tmp"}));
    }
}

TEST_F(ManagementToolUpdate, FailsForSeveralUninstallScripts) {
    nameListedTwice() = "uninstall.sh";
    expectFailure(29, traceOf(R"(
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
        1 Search uninstall.sh in [/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64]
        2 Failed to find update module.There is some ufi file.
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(machine.commandsRun(), unpackCommands());
    EXPECT_EQ(filesLeft(), (Lines{"tmp"}));
}

TEST_F(ManagementToolUpdate, RemovesTheOldToolBeforeItMissesTheInstallScript) {
    fs::remove(kModuleFiles + "/x64/install.sh");
    expectFailure(29, traceOf(R"(
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
        2 Failed to find update module.There is not ufi file.
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(machine.commandsRun(), readyCommands({"message.txt", "uninstall.sh"}) + Lines{kUninstall});
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolUpdate, RemovesTheOldToolBeforeItFindsSeveralInstallScripts) {
    nameListedTwice() = "install.sh";
    expectFailure(29, traceOf(R"(
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
        2 Failed to find update module.There is some ufi file.
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(machine.commandsRun(), readyCommands() + Lines{kUninstall});
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolUpdate, MissesAnInstallScriptThatTheUninstallScriptTakesAway) {
    layScript("x64/uninstall.sh", kUninstallLines, "rm " + kInstall);
    expectFailure(29, traceOf(R"(
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
        2 Failed to find update module.There is not ufi file.
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(machine.commandsRun(), readyCommands() + Lines{kUninstall});
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
    EXPECT_EQ(namesIn(kDirectory), (Lines{"message.txt", "uninstall.sh"}));
}

TEST_F(ManagementToolUpdate, RunsAnInstallScriptThatTheUninstallScriptBrings) {
    fs::rename(kModuleFiles + "/x64/install.sh", "/tmp/install.sh");
    chmod("/tmp/install.sh", 0755);
    layScript("x64/uninstall.sh", kUninstallLines, "mv /tmp/install.sh " + kInstall);
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), traceOf(kUpdated));
    EXPECT_EQ(machine.commandsRun(),
              (readyCommands({"message.txt", "uninstall.sh"}) + Lines{kUninstall, kInstall + " -q"}));
    EXPECT_EQ(contentOf(kInstallOutput), "the tool is installed\n");
    EXPECT_EQ(takeError(), kEarlierError);
}

// ---- Making the scripts runnable ----

TEST_F(ManagementToolUpdate, MakesAllFilesRunnableByOneCommand) {
    Lines commands;
    libc().system = [&commands](const char* command) {
        EXPECT_EQ(TestHost::trace().back(), "1 Execute command [chmod 777 /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/*]");
        commands.emplace_back(command);
        for (const auto& entry : fs::directory_iterator(kDirectory)) {
            fs::permissions(entry.path(), fs::perms::all);
        }
        return 0;
    };
    EXPECT_TRUE(update());
    EXPECT_EQ(commands, (Lines{"chmod 777 /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/*"}));
    EXPECT_EQ(TestHost::trace(), traceOf(kUpdated));
}

TEST_F(ManagementToolUpdate, GoesOnWhereThatFailsAndTracesTheRawResult) {
    chmod((kModuleFiles + "/x64/uninstall.sh").c_str(), 0755);
    chmod((kModuleFiles + "/x64/install.sh").c_str(), 0755);
    for (const int status : {256, 127 * 256, SIGKILL, -1}) {
        SCOPED_TRACE(status);
        libc().system = [status](const char*) { return status; };
        fs::remove_all(kTemp);
        forget();
        EXPECT_TRUE(update());
        EXPECT_EQ(TestHost::trace(), traceOf({{"status", std::to_string(status)}}, R"(
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
            1 Search uninstall.sh in [/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64]
            1 Search uninstall.sh end
            1 filename = [uninstall.sh]
            1 Execute command [chmod 777 /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/*]
            16 [chmod 777 /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/*] return [{status}]
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
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlierError);
    }
}

TEST_F(ManagementToolUpdate, FailsAtTheUninstallScriptThatCouldNotBeMadeRunnable) {
    machine.program("/bin/chmod", logging("exit 1"));
    expectFailure(17, traceOf(R"(
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
        1 Search uninstall.sh in [/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64]
        1 Search uninstall.sh end
        1 filename = [uninstall.sh]
        1 Execute command [chmod 777 /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/*]
        16 [chmod 777 /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/*] return [256]
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=removed]
        1 successMessage[0]=[removed]
        1 log_mes_ifs. buf=[SuccessMessage=installed]
        1 successMessage[1]=[installed]
        1 no endMessage
        2 No such success message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/uninstall.sh).
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_uninstall.txt).
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(machine.commandsRun(), readyCommands());
    EXPECT_EQ(contentOf(kUninstallOutput), "");
    EXPECT_FALSE(fs::exists(kInstallOutput));
}

TEST_F(ManagementToolUpdate, GoesOnWithoutChmod) {
    machine.dropCommand("/bin/chmod");
    expectFailure(17, traceOf(R"(
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
        1 Search uninstall.sh in [/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64]
        1 Search uninstall.sh end
        1 filename = [uninstall.sh]
        1 Execute command [chmod 777 /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/*]
        16 [chmod 777 /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/*] return [32512]
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=removed]
        1 successMessage[0]=[removed]
        1 log_mes_ifs. buf=[SuccessMessage=installed]
        1 successMessage[1]=[installed]
        1 no endMessage
        2 No such success message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/uninstall.sh).
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_uninstall.txt).
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(machine.commandsRun(), unpackCommands());
    EXPECT_EQ(contentOf(kUninstallOutput), "");
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

}  // namespace
}  // namespace kvl::test
