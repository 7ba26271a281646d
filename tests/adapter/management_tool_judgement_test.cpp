#include <filesystem>

#include "tests/adapter/management_tool_update.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

TEST_F(ManagementToolUpdate, FailsAtTheUninstallScriptAndDoesNotInstall) {
    layScript("x64/uninstall.sh", {"in use", "REMOVED"});
    machine.file(kUninstallOutput, "a longer text: removed\n");
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
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=removed]
        1 successMessage[0]=[removed]
        1 log_mes_ifs. buf=[SuccessMessage=installed]
        1 successMessage[1]=[installed]
        1 no endMessage
        1 Result file check success msg [in use]
        1 Result file check success msg [REMOVED]
        2 No such success message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/uninstall.sh).
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_uninstall.txt).
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(machine.commandsRun(), readyCommands() + Lines{kUninstall});
    EXPECT_EQ(contentOf(kUninstallOutput), "in use\nREMOVED\n");
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolUpdate, FailsAtTheInstallScriptAndLeavesItsOutput) {
    layScript("x64/install.sh", {"no space"});
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
        1 Result file check success msg [no space]
        2 No such success message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/install.sh -q).
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_install.txt).
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(machine.commandsRun(), updateCommands());
    EXPECT_EQ(contentOf(kInstallOutput), "no space\n");
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_install.txt", "temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolUpdate, JudgesTheScriptsByTheirTextsAndNotByTheirExitCodes) {
    layScript("x64/uninstall.sh", kUninstallLines, "exit 1");
    layScript("x64/install.sh", kInstallLines, "exit 255");
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), traceOf(kUpdated));
}

TEST_F(ManagementToolUpdate, JudgesBothScriptsByAllTextsOfTheMessageFile) {
    layScript("x64/uninstall.sh", kInstallLines);
    layScript("x64/install.sh", kUninstallLines);
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
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
        1 Result file check success msg [the tool is installed]
        1 Find SuccessMsg[] in [the tool is installed]
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
        1 Result file check success msg [the tool is removed]
        1 Find SuccessMsg[] in [the tool is removed]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
}

TEST_F(ManagementToolUpdate, FailsForAScriptThatASignalEnds) {
    const std::string whereItEndsTheRemoval = R"(
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
        2 Failed to update execute(/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/uninstall.sh)(11)(Windows Error code:17).
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_uninstall.txt).
        4 CEmulexCommon::OCMUpdate() [END]
    )";
    const std::string whereItEndsTheInstallation = R"(
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
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        2 Failed to update execute(/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/install.sh -q)(11)(Windows Error code:17).
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_install.txt).
        4 CEmulexCommon::OCMUpdate() [END]
    )";
    for (const bool isInstall : {false, true}) {
        const std::string command = isInstall ? kInstall + " -q" : kUninstall;
        machine.program("/sbin/sh", "#!/bin/sh\n[ \"$2\" = '" + command + "' ] && kill -9 $$\nexec /bin/sh \"$@\"\n");
        fs::remove_all(kTemp);
        forget();
        expectFailure(17, traceOf(isInstall ? whereItEndsTheInstallation : whereItEndsTheRemoval));
        EXPECT_EQ(machine.commandsRun(), readyCommands() + (isInstall ? Lines{kUninstall} : Lines{}));
        EXPECT_EQ(contentOf(kUninstallOutput), isInstall ? "the tool is removed\n" : "");
        EXPECT_EQ(contentOf(kInstallOutput), isInstall ? "" : "(absent)");
    }
}

TEST_F(ManagementToolUpdate, FailsForAnOutputThatCannotBeWritten) {
    machine.directory(kUninstallOutput);
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
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolUpdate, FailsForAnInstallOutputThatCannotBeWrittenAndIsNotSkippedThen) {
    // A link into a directory that is missing: there is no output yet, and none can be made.
    fs::create_symlink("/tmp/absent/output", kInstallOutput);
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
        2 File Open Error
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/install.sh -q).
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_install.txt).
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(machine.commandsRun(), readyCommands() + Lines{kUninstall});
    EXPECT_EQ(contentOf(kUninstallOutput), "the tool is removed\n");
    EXPECT_TRUE(fs::is_symlink(kInstallOutput));
    EXPECT_FALSE(fs::exists("/tmp/absent"));
    forget();
    EXPECT_FALSE(update());
    EXPECT_EQ(machine.commandsRun(), readyCommands() + Lines{kUninstall});
}

TEST_F(ManagementToolUpdate, FailsBehindTheUninstallScriptWithoutAMessageFile) {
    fs::remove(kModuleFiles + "/x64/message.txt");
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
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        2 File open error /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/message.txt
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/uninstall.sh).
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_uninstall.txt).
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(contentOf(kUninstallOutput), "the tool is removed\n");
    EXPECT_EQ(machine.commandsRun(), readyCommands({"install.sh", "uninstall.sh"}) + Lines{kUninstall});
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolUpdate, FailsBehindTheUninstallScriptWithoutASuccessText) {
    layMessages("EndMessage=ended\n");
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
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[EndMessage=ended]
        1 endMessage[0]=[ended]
        2 no successMessage
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/uninstall.sh).
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_uninstall.txt).
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
    EXPECT_EQ(machine.commandsRun(), readyCommands() + Lines{kUninstall});
    EXPECT_EQ(contentOf(kUninstallOutput), "the tool is removed\n");
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolUpdate, WaitsForTheEndOfEachScript) {
    layMessages(kMessages + "EndMessage=ended\n");
    layScript("x64/uninstall.sh", {"the tool is removed", "ended"});
    layScript("x64/install.sh", {"the tool is installed", "ended"});
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
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
        1 log_mes_ifs. buf=[EndMessage=ended]
        1 endMessage[0]=[ended]
        1 Result file check endmsg [the tool is removed]
        1 Result file check endmsg [ended]
        1 Find endmsg[] in [ended]
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
        1 log_mes_ifs. buf=[EndMessage=ended]
        1 endMessage[0]=[ended]
        1 Result file check endmsg [the tool is installed]
        1 Result file check endmsg [ended]
        1 Find endmsg[] in [ended]
        1 Result file check success msg [the tool is installed]
        1 Find SuccessMsg[] in [the tool is installed]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(TestHost::sleeps(), (Sleeps{30000, 30000}));
}

TEST_F(ManagementToolUpdate, FailsForAScriptThatNeverTellsOfItsEnd) {
    layMessages(kMessages + "EndMessage=ended\n");
    layScript("x64/uninstall.sh", {"removed", "ended"});
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
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=removed]
        1 successMessage[0]=[removed]
        1 log_mes_ifs. buf=[SuccessMessage=installed]
        1 successMessage[1]=[installed]
        1 log_mes_ifs. buf=[EndMessage=ended]
        1 endMessage[0]=[ended]
        1 Result file check endmsg [removed]
        1 Result file check endmsg [ended]
        1 Find endmsg[] in [ended]
        1 Result file check success msg [removed]
        1 Find SuccessMsg[] in [removed]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=removed]
        1 successMessage[0]=[removed]
        1 log_mes_ifs. buf=[SuccessMessage=installed]
        1 successMessage[1]=[installed]
        1 log_mes_ifs. buf=[EndMessage=ended]
        1 endMessage[0]=[ended]
        1 Result file check endmsg [the tool is installed]
        1 Result file check endmsg [the tool is installed]
        1 Result file check endmsg [the tool is installed]
        1 Result file check endmsg [the tool is installed]
        1 Result file check endmsg [the tool is installed]
        2 No such end message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/install.sh -q).
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_install.txt).
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(TestHost::sleeps(), (Sleeps{30000, 30000, 30000, 30000, 30000, 30000}));
    EXPECT_EQ(machine.commandsRun(), updateCommands());
    EXPECT_EQ(contentOf(kInstallOutput), "the tool is installed\n");
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_install.txt", "temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolUpdate, FailsForAnUninstallScriptThatNeverTellsOfItsEndAndDoesNotInstall) {
    layMessages(kMessages + "EndMessage=ended\n");
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
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=removed]
        1 successMessage[0]=[removed]
        1 log_mes_ifs. buf=[SuccessMessage=installed]
        1 successMessage[1]=[installed]
        1 log_mes_ifs. buf=[EndMessage=ended]
        1 endMessage[0]=[ended]
        1 Result file check endmsg [the tool is removed]
        1 Result file check endmsg [the tool is removed]
        1 Result file check endmsg [the tool is removed]
        1 Result file check endmsg [the tool is removed]
        1 Result file check endmsg [the tool is removed]
        2 No such end message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/uninstall.sh).
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_uninstall.txt).
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(TestHost::sleeps(), (Sleeps{30000, 30000, 30000, 30000, 30000}));
    EXPECT_EQ(machine.commandsRun(), readyCommands() + Lines{kUninstall});
    EXPECT_EQ(contentOf(kUninstallOutput), "the tool is removed\n");
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

}  // namespace
}  // namespace kvl::test
