#include <sys/stat.h>

#include <filesystem>

#include "tests/adapter/management_tool_check.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

// ---- The whole check ----

TEST_F(ManagementToolCheck, PassesASilentInstall) {
    EXPECT_TRUE(check("util"));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        1 CEmulexCommon::OCMInstallCheck() [START]
        4 [ENTER] static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)
        1 static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string) ARG Check ModuleKind=util
        4 [LEAVE] static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)
        4 ARG Check ModuleKind=util
        1 emulexDiscConfig:[ClientRemoteOperation:disabled]
        1 find[ClientRemoteOperation] in [ClientRemoteOperation:disabled]
        1 silent [ClientRemoteOperation]
        1 emulexDiscConfig:[ClientOperationMode:enabled]
        1 find[ClientOperationMode] in [ClientOperationMode:enabled]
        1 silent [ClientOperationMode:enabled]
        1 emulexDiscConfig:[ClientReadOnlyOperation:disabled]
        1 find[ClientReadOnlyOperation] in [ClientReadOnlyOperation:disabled]
        1 silent [ClientReadOnlyOperation:disabled]
        1 emulexDiscConfig:[TcpSocketPortNumber:23333]
        1 find[TcpSocketPortNumber] in [TcpSocketPortNumber:23333]
        1 silent [TcpSocketPortNumber:23333]
        1 emulexRMConfig:[ServerRemoteOperation:enabled]
        1 find[ServerRemoteOperation] in [ServerRemoteOperation:enabled]
        1 silent [ServerRemoteOperation:enabled]
        1 emulexRMConfig:[ManagementHost:false]
        1 find[ManagementHost] in [ManagementHost:false]
        1 silent [ManagementHost:false]
        1 emulexRMConfig:[SecureManagement:disabled]
        1 find[SecureManagement] in [SecureManagement:disabled]
        1 silent [SecureManagement:disabled]
        1 emulexRMConfig:[MngmtHostIpAddress:0]
        1 find[MngmtHostIpAddress] in [MngmtHostIpAddress:0]
        1 silent [MngmtHostIpAddress:0]
        1 emulexRMConfig:[ExclusiveHostMgmnt:false]
        1 find[ExclusiveHostMgmnt] in [ExclusiveHostMgmnt:false]
        1 silent [ExclusiveHostMgmnt:false]
        1 CEmulexCommon::OCMInstallCheck() [END]
    )"));
    EXPECT_EQ(takeError(), kEarlierError);
    EXPECT_EQ(machine.commandsRun(), (Lines{"/bin/rpm -qa"}));
}

TEST_F(ManagementToolCheck, LeavesNothingBehindButTheAnswerOfThePackageManager) {
    EXPECT_TRUE(check());
    EXPECT_EQ(namesIn(kWorkRoot + "/temp"), (Lines{"CNA", "FC", "rpm_grep_result.txt"}));
    EXPECT_EQ(contentOf(kAnswer), "1\n");
    EXPECT_EQ(contentOf(kDiscovery.path), kDiscovery.text());
    EXPECT_EQ(contentOf(kManagement.path), kManagement.text());
}

TEST_F(ManagementToolCheck, CanBeRepeated) {
    EXPECT_TRUE(check());
    const Lines first = takeTrace();
    EXPECT_TRUE(check());
    EXPECT_EQ(TestHost::trace(), first);
    EXPECT_EQ(contentOf(kAnswer), "1\n");
}

TEST_F(ManagementToolCheck, TracesTheModuleKindAndDoesNotJudgeByIt) {
    for (const std::string kind : {"util", "UTIL", "", "driver", "%s %n %d"}) {
        forget();
        EXPECT_TRUE(check(kind)) << kind;
        EXPECT_EQ(TestHost::trace(), traceOf({{"kind", kind}}, kPassed));
    }
}

TEST_F(ManagementToolCheck, DoesNotUseTheFirstArgument) {
    for (const std::string unused : {"", "util", "/etc/other"}) {
        forget();
        EXPECT_TRUE(CEmulexCommon::OCMInstallCheck(unused, "kind", module));
        EXPECT_EQ(TestHost::trace(), traceOf({{"kind", "kind"}}, kPassed));
    }
}

TEST_F(ManagementToolCheck, IsTheSameForEveryModuleName) {
    for (const char* name : {"fc", "another"}) {
        useModule(name);
        forget();
        EXPECT_TRUE(check());
        EXPECT_EQ(TestHost::trace(), traceOf({{"kind", "kind"}}, kPassed));
        EXPECT_EQ(TestHost::modules(), (Lines{name}));
    }
}

// ---- Files ----

TEST_F(ManagementToolCheck, FailsWithACodeForAFileThatCannotBeOpened) {
    const std::pair<const SettingsFile*, std::string> rows[] = {
        {&kDiscovery, R"(
            1 CEmulexCommon::OCMInstallCheck() [START]
            4 [ENTER] static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)
            1 static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string) ARG Check ModuleKind=kind
            4 [LEAVE] static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)
            4 ARG Check ModuleKind=kind
            2 Failed to open file(/etc/emulexDiscConfig).
            1 CEmulexCommon::OCMInstallCheck() [END]
        )"},
        {&kManagement, R"(
            1 CEmulexCommon::OCMInstallCheck() [START]
            4 [ENTER] static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)
            1 static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string) ARG Check ModuleKind=kind
            4 [LEAVE] static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)
            4 ARG Check ModuleKind=kind
            1 emulexDiscConfig:[ClientRemoteOperation:disabled]
            1 find[ClientRemoteOperation] in [ClientRemoteOperation:disabled]
            1 silent [ClientRemoteOperation]
            1 emulexDiscConfig:[ClientOperationMode:enabled]
            1 find[ClientOperationMode] in [ClientOperationMode:enabled]
            1 silent [ClientOperationMode:enabled]
            1 emulexDiscConfig:[ClientReadOnlyOperation:disabled]
            1 find[ClientReadOnlyOperation] in [ClientReadOnlyOperation:disabled]
            1 silent [ClientReadOnlyOperation:disabled]
            1 emulexDiscConfig:[TcpSocketPortNumber:23333]
            1 find[TcpSocketPortNumber] in [TcpSocketPortNumber:23333]
            1 silent [TcpSocketPortNumber:23333]
            2 Failed to open file(/etc/emulexRMConfig).
            1 CEmulexCommon::OCMInstallCheck() [END]
        )"},
    };
    for (const auto& [file, trace] : rows) {
        for (const bool isThere : {false, true}) {
            lay(*file, file->text());
            if (isThere) {
                chmod(file->path.c_str(), 0);
            } else {
                fs::remove(file->path);
            }
            EXPECT_FALSE(check());
            EXPECT_EQ(TestHost::trace(), traceOf(trace));
            EXPECT_EQ(takeError(), 17U);
            EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
            fs::remove(file->path);
        }
    }
    EXPECT_FALSE(fs::exists(kAnswer));
}

TEST_F(ManagementToolCheck, DoesNotOpenTheSecondFileBehindAWrongFirstOne) {
    fs::remove(kManagement.path);
    machine.file(kDiscovery.path, "ClientOperationMode:disabled\n");
    expectFailureInFile(kDiscovery, R"(
        1 emulexDiscConfig:[ClientOperationMode:disabled]
        1 find[ClientOperationMode] in [ClientOperationMode:disabled]
        1 not silent [ClientOperationMode:disabled]
    )");
}

TEST_F(ManagementToolCheck, FailsForAnEmptyFileWithoutACode) {
    for (const SettingsFile* file : kFiles) {
        lay(*file, "");
        expectFailureInFile(*file, "");
    }
}

TEST_F(ManagementToolCheck, TakesADirectoryForAnEmptyFile) {
    for (const SettingsFile* file : kFiles) {
        laySettings();
        forget();
        fs::remove(file->path);
        machine.directory(file->path);
        expectFailureInFile(*file, "");
        fs::remove(file->path);
    }
}

TEST_F(ManagementToolCheck, ReadsALastLineWithoutALineFeed) {
    const std::pair<const SettingsFile*, std::string> rows[] = {
        {&kDiscovery, R"(
            1 emulexDiscConfig:[ClientRemoteOperation:disabled]
            1 find[ClientRemoteOperation] in [ClientRemoteOperation:disabled]
            1 silent [ClientRemoteOperation]
            1 emulexDiscConfig:[ClientOperationMode:enabled]
            1 find[ClientOperationMode] in [ClientOperationMode:enabled]
            1 silent [ClientOperationMode:enabled]
            1 emulexDiscConfig:[ClientReadOnlyOperation:disabled]
            1 find[ClientReadOnlyOperation] in [ClientReadOnlyOperation:disabled]
            1 silent [ClientReadOnlyOperation:disabled]
            1 emulexDiscConfig:[TcpSocketPortNumber:23333]
            1 find[TcpSocketPortNumber] in [TcpSocketPortNumber:23333]
            1 silent [TcpSocketPortNumber:23333]
        )"},
        {&kManagement, R"(
            1 emulexRMConfig:[ServerRemoteOperation:enabled]
            1 find[ServerRemoteOperation] in [ServerRemoteOperation:enabled]
            1 silent [ServerRemoteOperation:enabled]
            1 emulexRMConfig:[ManagementHost:false]
            1 find[ManagementHost] in [ManagementHost:false]
            1 silent [ManagementHost:false]
            1 emulexRMConfig:[SecureManagement:disabled]
            1 find[SecureManagement] in [SecureManagement:disabled]
            1 silent [SecureManagement:disabled]
            1 emulexRMConfig:[MngmtHostIpAddress:0]
            1 find[MngmtHostIpAddress] in [MngmtHostIpAddress:0]
            1 silent [MngmtHostIpAddress:0]
            1 emulexRMConfig:[ExclusiveHostMgmnt:false]
            1 find[ExclusiveHostMgmnt] in [ExclusiveHostMgmnt:false]
            1 silent [ExclusiveHostMgmnt:false]
        )"},
    };
    for (const auto& [file, scan] : rows) {
        std::string text = file->text();
        text.pop_back();
        lay(*file, text);
        expectPass(*file, scan);
    }
}

// ---- The package ----

TEST_F(ManagementToolCheck, AsksThePackageManagerThroughTheShell) {
    answer("1\n");
    EXPECT_TRUE(check());
    EXPECT_EQ(commands, (Lines{"rpm -qa | grep elxocmjvm-..........rpm;echo $? > "
                               "/opt/tarvenn/kvl/tmp/EMULEX/temp/rpm_grep_result.txt"}));
    EXPECT_EQ(TestHost::trace(), traceOf({{"kind", "kind"}}, kPassed));
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(ManagementToolCheck, FailsWhereThePackageIsInstalled) {
    machine.command("/bin/rpm -qa", "kernel\nelxocmjvm-10.2.26.1.rpm\nzlib\n");
    EXPECT_FALSE(check());
    EXPECT_EQ(TestHost::trace(), traceOf({{"failure", "1 I found elxocmjvm-xxxx.xxxx.rpm. "}}, kFailedAtThePackage));
    EXPECT_EQ(takeError(), kEarlierError);
    EXPECT_EQ(contentOf(kAnswer), "0\n");
    EXPECT_EQ(machine.commandsRun(), (Lines{"/bin/rpm -qa"}));
}

TEST_F(ManagementToolCheck, FindsThePackageByTenCharactersOfAVersionAndAnEnding) {
    const struct {
        std::string package;
        bool isFound;
    } rows[] = {
        {"elxocmjvm-1234567890rpm", true},       {"elxocmjvm-10.2.26.1.rpm", true},
        {"elxocmjvm-          rpm", true},       {"an-elxocmjvm-10.2.26.1.rpm-more", true},
        {"elxocmjvm-10.2.261.1.rpm", false},     {"elxocmjvm-10.2.6.1.rpm", false},
        {"elxocmjvm-10.2.26.1-1.x86_64", false}, {"elxocmjvm-10.2.26.1", false},
        {"elxocmgui-10.2.26.1.rpm", false},      {"ELXOCMJVM-10.2.26.1.rpm", false},
        {"elxocmjvm-10.2.26.1.\nrpm", false},    {"", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.package);
        machine.command("/bin/rpm -qa", row.package + "\n");
        forget();
        EXPECT_EQ(check(), !row.isFound);
        EXPECT_EQ(contentOf(kAnswer), row.isFound ? "0\n" : "1\n");
    }
}

TEST_F(ManagementToolCheck, PassesWhereThePackageManagerFails) {
    machine.command("/bin/rpm -qa", "", {1});
    EXPECT_TRUE(check());
    EXPECT_EQ(contentOf(kAnswer), "1\n");
    machine.dropCommand("/bin/rpm");
    forget();
    EXPECT_TRUE(check());
    EXPECT_EQ(contentOf(kAnswer), "1\n");
    EXPECT_EQ(TestHost::trace(), traceOf({{"kind", "kind"}}, kPassed));
}

TEST_F(ManagementToolCheck, FailsForThePackageOfAPackageManagerThatFails) {
    machine.command("/bin/rpm -qa", "elxocmjvm-10.2.26.1.rpm\n", {1});
    EXPECT_FALSE(check());
    EXPECT_EQ(contentOf(kAnswer), "0\n");
}

TEST_F(ManagementToolCheck, PassesWhereGrepFails) {
    machine.program("/bin/grep", "#!/bin/sh\ncat > /dev/null\nexit 2\n");
    EXPECT_TRUE(check());
    EXPECT_EQ(contentOf(kAnswer), "2\n");
    machine.dropCommand("/bin/grep");
    machine.command("/bin/rpm -qa", "");
    forget();
    EXPECT_TRUE(check());
    EXPECT_EQ(contentOf(kAnswer), "127\n");
    EXPECT_EQ(TestHost::trace(), traceOf({{"kind", "kind"}}, kPassed));
}

TEST_F(ManagementToolCheck, TakesTheFirstLineOfTheAnswerForFoundIfItIsZeroAlone) {
    for (const std::string text : {"0", "0\n", "0\n1\n"}) {
        answer(text);
        forget();
        EXPECT_FALSE(check()) << text;
        EXPECT_EQ(TestHost::trace(),
                  traceOf({{"failure", "1 I found elxocmjvm-xxxx.xxxx.rpm. "}}, kFailedAtThePackage));
    }
    for (const std::string text : {"", "\n", "\n0\n", "1\n0\n", "00\n", " 0\n", "0 \n", "0\r\n", "zero\n"}) {
        answer(text);
        forget();
        EXPECT_TRUE(check()) << text;
        EXPECT_EQ(TestHost::trace(), traceOf({{"kind", "kind"}}, kPassed));
    }
}

TEST_F(ManagementToolCheck, TakesNoEarlierAnswer) {
    machine.file(kAnswer, "0\n");
    EXPECT_TRUE(check());
    EXPECT_EQ(contentOf(kAnswer), "1\n");
}

TEST_F(ManagementToolCheck, FailsWithTheRawResultWhereTheShellFails) {
    for (const int status : {256, 512, 32512, 9, 139, -1}) {
        answer("1\n", status);
        forget();
        EXPECT_FALSE(check()) << status;
        EXPECT_EQ(TestHost::trace(),
                  traceOf({{"failure", "2 _tsystem error (rpm grep). ({status})"}, {"status", std::to_string(status)}},
                          kFailedAtThePackage));
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlierError);
    }
}

TEST_F(ManagementToolCheck, FailsWhereTheShellCannotWriteTheAnswer) {
    const Lines trace = traceOf({{"failure", "2 _tsystem error (rpm grep). (512)"}}, kFailedAtThePackage);
    machine.directory(kAnswer);
    EXPECT_FALSE(check());
    EXPECT_EQ(takeTrace(), trace);
    fs::remove(kAnswer);

    chmod((kWorkRoot + "/temp").c_str(), 0555);
    EXPECT_FALSE(check());
    EXPECT_EQ(takeTrace(), trace);
    EXPECT_FALSE(fs::exists(kAnswer));
    chmod((kWorkRoot + "/temp").c_str(), 0755);

    fs::remove_all(kWorkRoot + "/temp");
    EXPECT_FALSE(check());
    EXPECT_EQ(takeTrace(), trace);
    EXPECT_FALSE(fs::exists(kWorkRoot + "/temp"));
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(ManagementToolCheck, FailsWithoutACodeWhereTheAnswerCannotBeOpened) {
    const Lines trace =
        traceOf({{"failure", "2 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/rpm_grep_result.txt)."}},
                kFailedAtThePackage);
    libc().system = [](const char*) { return 0; };
    EXPECT_FALSE(check());
    EXPECT_EQ(takeTrace(), trace);
    machine.file(kAnswer, "1\n");
    chmod(kAnswer.c_str(), 0);
    EXPECT_FALSE(check());
    EXPECT_EQ(takeTrace(), trace);
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(ManagementToolCheck, TakesADirectoryForAnEmptyAnswer) {
    machine.directory(kAnswer);
    libc().system = [](const char*) { return 0; };
    EXPECT_TRUE(check());
    EXPECT_EQ(TestHost::trace(), traceOf({{"kind", "kind"}}, kPassed));
}

}  // namespace
}  // namespace kvl::test
