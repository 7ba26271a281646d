#include <filesystem>

#include "tests/adapter/management_tool_update.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

using ManagementToolModule = ManagementToolUpdate;

const Lines kToolRemoved = {"Removing the management tool", "Uninstall completed.", "Setup has ended."};
const Lines kToolInstalled = {"Installing the management tool 6.4.3.1", "Install completed.", "Setup has ended."};

TEST_F(ManagementToolModule, ReplacesTheToolByOneThatStandsAsASilentInstallLeavesIt) {
    machine.file(kTool, "the old tool\n");
    machine.anyCommand("/bin/rpm", "");
    EXPECT_TRUE(updateFromArchive("tool"));
    EXPECT_EQ(TestHost::trace(), traceOf({{"modules", kModules}}, R"(
        4 CEmulexCommon::OCMUpdate() [START]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [END]
        4 CUnzip_Utility::UpdateModuleUnzip [START]
        4 CUnzip_Utility::Unzip [START]
        1 CUnzip_Utility::Unzip ARG Check tsZipPath={modules}/tool/module.zip tsOutPath=/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp
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
        1 log_mes_ifs. buf=[SuccessMessage=Uninstall completed]
        1 successMessage[0]=[Uninstall completed]
        1 log_mes_ifs. buf=[SuccessMessage=Install completed]
        1 successMessage[1]=[Install completed]
        1 log_mes_ifs. buf=[EndMessage=Setup has ended]
        1 endMessage[0]=[Setup has ended]
        1 Result file check endmsg [Removing the management tool]
        1 Result file check endmsg [Uninstall completed.]
        1 Result file check endmsg [Setup has ended.]
        1 Find endmsg[] in [Setup has ended.]
        1 Result file check success msg [Removing the management tool]
        1 Result file check success msg [Uninstall completed.]
        1 Find SuccessMsg[] in [Uninstall completed.]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Uninstall completed]
        1 successMessage[0]=[Uninstall completed]
        1 log_mes_ifs. buf=[SuccessMessage=Install completed]
        1 successMessage[1]=[Install completed]
        1 log_mes_ifs. buf=[EndMessage=Setup has ended]
        1 endMessage[0]=[Setup has ended]
        1 Result file check endmsg [Installing the management tool 6.4.3.1]
        1 Result file check endmsg [Install completed.]
        1 Result file check endmsg [Setup has ended.]
        1 Find endmsg[] in [Setup has ended.]
        1 Result file check success msg [Installing the management tool 6.4.3.1]
        1 Result file check success msg [Install completed.]
        1 Find SuccessMsg[] in [Install completed.]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(machine.commandsRun(), moduleCommands({"install.sh", "message.txt", "uninstall.sh", "version"}));
    EXPECT_EQ(TestHost::sleeps(), (Sleeps{30000, 30000}));
    EXPECT_EQ(contentOf(kUninstallOutput), textOf(kToolRemoved));
    EXPECT_EQ(contentOf(kInstallOutput), textOf(kToolInstalled));
    EXPECT_EQ(fs::read_symlink(kTool), "/.machine/hbacmd");
    EXPECT_EQ(namesIn(kScratch), (Lines{"x64", "x86"}));
    EXPECT_TRUE(quietly([this] { return CEmulexCommon::OCMInstallCheck("", "", module); }));
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(ManagementToolModule, HasScriptsFor32BitMachinesToo) {
    machine.command("/bin/uname -m", "i686\n");
    for (const std::string name : {"tool", "tool-without-x64"}) {
        fs::remove_all(kTemp);
        forget();
        EXPECT_TRUE(updateFromArchive(name));
        EXPECT_EQ(TestHost::trace(), traceOf({{"modules", kModules}, {"name", name}}, R"(
            4 CEmulexCommon::OCMUpdate() [START]
            4 CUnzip_Utility::DeleteFolder [START]
            4 CUnzip_Utility::DeleteFolder [END]
            4 CUnzip_Utility::UpdateModuleUnzip [START]
            4 CUnzip_Utility::Unzip [START]
            1 CUnzip_Utility::Unzip ARG Check tsZipPath={modules}/{name}/module.zip tsOutPath=/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp
            4 CUnzip_Utility::Unzip [END]
            4 CUnzip_Utility::UpdateModuleUnzip [END]
            4 CCommon_Information::GetArchitectureInfo [START]
            4 CCommon_Information::GetArchitectureInfo [END]
            1 Search uninstall.sh in [/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x86]
            1 Search uninstall.sh end
            1 filename = [uninstall.sh]
            1 Execute command [chmod 777 /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x86/*]
            4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
            4 CEmulexCommon::CheckUpdateResult_() [START]
            1 log_mes_ifs. buf=[SuccessMessage=Uninstall completed]
            1 successMessage[0]=[Uninstall completed]
            1 log_mes_ifs. buf=[SuccessMessage=Install completed]
            1 successMessage[1]=[Install completed]
            1 log_mes_ifs. buf=[EndMessage=Setup has ended]
            1 endMessage[0]=[Setup has ended]
            1 Result file check endmsg [Removing the management tool]
            1 Result file check endmsg [Uninstall completed.]
            1 Result file check endmsg [Setup has ended.]
            1 Find endmsg[] in [Setup has ended.]
            1 Result file check success msg [Removing the management tool]
            1 Result file check success msg [Uninstall completed.]
            1 Find SuccessMsg[] in [Uninstall completed.]
            1 Update Result Check OK
            4 CEmulexCommon::CheckUpdateResult_() [END]
            4 CEmulexCommon::EmulexUpdate() [END]
            4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
            4 CEmulexCommon::CheckUpdateResult_() [START]
            1 log_mes_ifs. buf=[SuccessMessage=Uninstall completed]
            1 successMessage[0]=[Uninstall completed]
            1 log_mes_ifs. buf=[SuccessMessage=Install completed]
            1 successMessage[1]=[Install completed]
            1 log_mes_ifs. buf=[EndMessage=Setup has ended]
            1 endMessage[0]=[Setup has ended]
            1 Result file check endmsg [Installing the management tool 6.4.3.1]
            1 Result file check endmsg [Install completed.]
            1 Result file check endmsg [Setup has ended.]
            1 Find endmsg[] in [Setup has ended.]
            1 Result file check success msg [Installing the management tool 6.4.3.1]
            1 Result file check success msg [Install completed.]
            1 Find SuccessMsg[] in [Install completed.]
            1 Update Result Check OK
            4 CEmulexCommon::CheckUpdateResult_() [END]
            4 CEmulexCommon::EmulexUpdate() [END]
            4 CEmulexCommon::OCMUpdate() [END]
        )"));
        EXPECT_EQ(machine.commandsRun(),
                  moduleCommands({"install.sh", "message.txt", "uninstall.sh", "version"}, kScratch + "/x86"));
    }
}

TEST_F(ManagementToolModule, LeavesTheOldToolWhereItsScriptsAreMissing) {
    machine.file(kTool, "the old tool\n");
    for (const std::string name : {"tool-without-x64", "tool-without-uninstall"}) {
        fs::remove_all(kTemp);
        forget();
        EXPECT_FALSE(updateFromArchive(name));
        EXPECT_EQ(TestHost::trace(), traceOf({{"modules", kModules}, {"name", name}}, R"(
            4 CEmulexCommon::OCMUpdate() [START]
            4 CUnzip_Utility::DeleteFolder [START]
            4 CUnzip_Utility::DeleteFolder [END]
            4 CUnzip_Utility::UpdateModuleUnzip [START]
            4 CUnzip_Utility::Unzip [START]
            1 CUnzip_Utility::Unzip ARG Check tsZipPath={modules}/{name}/module.zip tsOutPath=/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp
            4 CUnzip_Utility::Unzip [END]
            4 CUnzip_Utility::UpdateModuleUnzip [END]
            4 CCommon_Information::GetArchitectureInfo [START]
            4 CCommon_Information::GetArchitectureInfo [END]
            1 Search uninstall.sh in [/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64]
            2 Failed to find update module.There is not uninstall.sh file.
            4 CEmulexCommon::OCMUpdate() [END]
        )"));
        EXPECT_EQ(machine.commandsRun(), (Lines{"/bin/uname -m"}));
        EXPECT_EQ(takeError(), 29U);
        EXPECT_EQ(contentOf(kTool), "the old tool\n");
        EXPECT_EQ(filesLeft(), (Lines{"tmp"}));
    }
}

TEST_F(ManagementToolModule, TakesTheOldToolAwayWhereItsInstallScriptIsMissing) {
    machine.file(kTool, "the old tool\n");
    EXPECT_FALSE(updateFromArchive("tool-without-install"));
    EXPECT_EQ(TestHost::trace(), traceOf({{"modules", kModules}}, R"(
        4 CEmulexCommon::OCMUpdate() [START]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [END]
        4 CUnzip_Utility::UpdateModuleUnzip [START]
        4 CUnzip_Utility::Unzip [START]
        1 CUnzip_Utility::Unzip ARG Check tsZipPath={modules}/tool-without-install/module.zip tsOutPath=/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp
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
        1 log_mes_ifs. buf=[SuccessMessage=Uninstall completed]
        1 successMessage[0]=[Uninstall completed]
        1 log_mes_ifs. buf=[SuccessMessage=Install completed]
        1 successMessage[1]=[Install completed]
        1 log_mes_ifs. buf=[EndMessage=Setup has ended]
        1 endMessage[0]=[Setup has ended]
        1 Result file check endmsg [Removing the management tool]
        1 Result file check endmsg [Uninstall completed.]
        1 Result file check endmsg [Setup has ended.]
        1 Find endmsg[] in [Setup has ended.]
        1 Result file check success msg [Removing the management tool]
        1 Result file check success msg [Uninstall completed.]
        1 Find SuccessMsg[] in [Uninstall completed.]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to find update module.There is not ufi file.
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(machine.commandsRun(), moduleCommands({"message.txt", "uninstall.sh", "version"}));
    EXPECT_EQ(takeError(), 29U);
    EXPECT_FALSE(fs::exists(kTool));
    EXPECT_EQ(contentOf(kUninstallOutput), textOf(kToolRemoved));
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolModule, LeavesTheOldToolWhereItsUninstallScriptFails) {
    machine.file(kTool, "the old tool\n");
    EXPECT_FALSE(updateFromArchive("tool-failing-uninstall"));
    const Lines output = {"Removing the management tool", "Uninstall failed: the tool is in use.", "Setup has ended."};
    EXPECT_EQ(TestHost::trace(), traceOf({{"modules", kModules}}, R"(
        4 CEmulexCommon::OCMUpdate() [START]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [END]
        4 CUnzip_Utility::UpdateModuleUnzip [START]
        4 CUnzip_Utility::Unzip [START]
        1 CUnzip_Utility::Unzip ARG Check tsZipPath={modules}/tool-failing-uninstall/module.zip tsOutPath=/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp
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
        1 log_mes_ifs. buf=[SuccessMessage=Uninstall completed]
        1 successMessage[0]=[Uninstall completed]
        1 log_mes_ifs. buf=[SuccessMessage=Install completed]
        1 successMessage[1]=[Install completed]
        1 log_mes_ifs. buf=[EndMessage=Setup has ended]
        1 endMessage[0]=[Setup has ended]
        1 Result file check endmsg [Removing the management tool]
        1 Result file check endmsg [Uninstall failed: the tool is in use.]
        1 Result file check endmsg [Setup has ended.]
        1 Find endmsg[] in [Setup has ended.]
        1 Result file check success msg [Removing the management tool]
        1 Result file check success msg [Uninstall failed: the tool is in use.]
        1 Result file check success msg [Setup has ended.]
        2 No such success message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/uninstall.sh).
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_uninstall.txt).
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(machine.commandsRun(),
              moduleCommands({"failing.uninstall", "install.sh", "message.txt", "uninstall.sh", "version"}));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(contentOf(kTool), "the old tool\n");
    EXPECT_FALSE(fs::exists(kInstallOutput));
}

TEST_F(ManagementToolModule, LeavesTheMachineWithoutAToolWhereItsInstallScriptFails) {
    machine.file(kTool, "the old tool\n");
    EXPECT_FALSE(updateFromArchive("tool-failing-install"));
    const Lines output = {"Installing the management tool 6.4.3.1", "Install failed: a package is broken.",
                          "Setup has ended."};
    EXPECT_EQ(TestHost::trace(), traceOf({{"modules", kModules}}, R"(
        4 CEmulexCommon::OCMUpdate() [START]
        4 CUnzip_Utility::DeleteFolder [START]
        4 CUnzip_Utility::DeleteFolder [END]
        4 CUnzip_Utility::UpdateModuleUnzip [START]
        4 CUnzip_Utility::Unzip [START]
        1 CUnzip_Utility::Unzip ARG Check tsZipPath={modules}/tool-failing-install/module.zip tsOutPath=/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp
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
        1 log_mes_ifs. buf=[SuccessMessage=Uninstall completed]
        1 successMessage[0]=[Uninstall completed]
        1 log_mes_ifs. buf=[SuccessMessage=Install completed]
        1 successMessage[1]=[Install completed]
        1 log_mes_ifs. buf=[EndMessage=Setup has ended]
        1 endMessage[0]=[Setup has ended]
        1 Result file check endmsg [Removing the management tool]
        1 Result file check endmsg [Uninstall completed.]
        1 Result file check endmsg [Setup has ended.]
        1 Find endmsg[] in [Setup has ended.]
        1 Result file check success msg [Removing the management tool]
        1 Result file check success msg [Uninstall completed.]
        1 Find SuccessMsg[] in [Uninstall completed.]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
        4 CEmulexCommon::EmulexUpdate() [END]
        4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Uninstall completed]
        1 successMessage[0]=[Uninstall completed]
        1 log_mes_ifs. buf=[SuccessMessage=Install completed]
        1 successMessage[1]=[Install completed]
        1 log_mes_ifs. buf=[EndMessage=Setup has ended]
        1 endMessage[0]=[Setup has ended]
        1 Result file check endmsg [Installing the management tool 6.4.3.1]
        1 Result file check endmsg [Install failed: a package is broken.]
        1 Result file check endmsg [Setup has ended.]
        1 Find endmsg[] in [Setup has ended.]
        1 Result file check success msg [Installing the management tool 6.4.3.1]
        1 Result file check success msg [Install failed: a package is broken.]
        1 Result file check success msg [Setup has ended.]
        2 No such success message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
        2 Failed to update(/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/install.sh -q).
        4 CEmulexCommon::EmulexUpdate() [END]
        2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_install.txt).
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_EQ(machine.commandsRun(),
              moduleCommands({"failing.install", "install.sh", "message.txt", "uninstall.sh", "version"}));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_FALSE(fs::exists(kTool));
    forget();
    EXPECT_TRUE(updateFromArchive("tool"));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::OCMUpdate() [START]
        1 OCM update is previously-reported.OCM Update is skipped
        4 CEmulexCommon::OCMUpdate() [END]
    )"));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    EXPECT_FALSE(fs::exists(kTool));
}

}  // namespace
}  // namespace kvl::test
