#ifndef KVL_TESTS_ADAPTER_MANAGEMENT_TOOL_CHECK_H
#define KVL_TESTS_ADAPTER_MANAGEMENT_TOOL_CHECK_H

#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/adapter/adapter_test.h"
#include "tests/adapter/literal_trace.h"
#include "tests/foundation/descriptor_in_file.h"

namespace kvl::test {

inline const std::string kAnswer = kWorkRoot + "/temp/rpm_grep_result.txt";

struct Setting {
    std::string key;
    std::string line;
};

/// A configuration file, with the lines that a silent install leaves, and the whole traces of a check that differs in
/// the scan of this file alone.
struct SettingsFile {
    std::string path;
    std::vector<Setting> settings;
    std::string failed;
    std::string passed;

    std::string text() const { return textWithout(settings.size()); }

    std::string textWithout(std::size_t place) const { return textWith(place, ""); }

    /// The lines in order, one of them replaced.
    std::string textWith(std::size_t place, const std::string& replacement) const {
        std::string lines;
        for (std::size_t setting = 0; setting < settings.size(); ++setting) {
            lines += setting == place ? replacement : settings[setting].line + "\n";
        }
        return lines;
    }
};

inline const SettingsFile kDiscovery = {
    "/etc/emulexDiscConfig",
    {{"ClientRemoteOperation", "ClientRemoteOperation:disabled"},
     {"ClientOperationMode", "ClientOperationMode:enabled"},
     {"ClientReadOnlyOperation", "ClientReadOnlyOperation:disabled"},
     {"TcpSocketPortNumber", "TcpSocketPortNumber:23333"}},
    R"(
        1 CEmulexCommon::OCMInstallCheck() [START]
        4 [ENTER] static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)
        1 static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string) ARG Check ModuleKind=kind
        4 [LEAVE] static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)
        4 ARG Check ModuleKind=kind
        {scan}
        1 0 < iDiskKeyWordCount ) || ( iRet != true )
        1 CEmulexCommon::OCMInstallCheck() [END]
    )",
    R"(
        1 CEmulexCommon::OCMInstallCheck() [START]
        4 [ENTER] static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)
        1 static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string) ARG Check ModuleKind=kind
        4 [LEAVE] static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)
        4 ARG Check ModuleKind=kind
        {scan}
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
    )",
};

inline const SettingsFile kManagement = {
    "/etc/emulexRMConfig",
    {{"ServerRemoteOperation", "ServerRemoteOperation:enabled"},
     {"ManagementHost", "ManagementHost:false"},
     {"SecureManagement", "SecureManagement:disabled"},
     {"MngmtHostIpAddress", "MngmtHostIpAddress:0"},
     {"ExclusiveHostMgmnt", "ExclusiveHostMgmnt:false"}},
    R"(
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
        {scan}
        1 ( 0 < iRmKeyWordCount ) || ( iRet != true )
        1 CEmulexCommon::OCMInstallCheck() [END]
    )",
    R"(
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
        {scan}
        1 CEmulexCommon::OCMInstallCheck() [END]
    )",
};

inline const SettingsFile* const kFiles[] = {&kDiscovery, &kManagement};

/// The whole trace of a check that passes.
inline const std::string kPassed = R"(
    1 CEmulexCommon::OCMInstallCheck() [START]
    4 [ENTER] static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)
    1 static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string) ARG Check ModuleKind={kind}
    4 [LEAVE] static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)
    4 ARG Check ModuleKind={kind}
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
)";

/// What is traced before the package is looked for.
inline const std::string kUpToThePackage = R"(
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
)";

/// The whole trace of a check that fails after both files were right.
inline const std::string kFailedAtThePackage = R"(
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
    {failure}
    1 CEmulexCommon::OCMInstallCheck() [END]
)";

/// The management tool as a silent install left it, on a machine with an `rpm` that knows other packages.
class ManagementToolCheck : public AdapterTest {
protected:
    void SetUp() override {
        AdapterTest::SetUp();
        laySettings();
        machine.command("/bin/rpm -qa", "kernel-2.6.32-358.el6.x86_64\nelxocmcore-10.2.261.1-1.x86_64\n");
        CEmulexCommon::SetLastError(kEarlierError);
    }

    void TearDown() override {
        EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
        EXPECT_EQ(libc().sleeps, 0);
        EXPECT_THAT(TestHost::operatorMessages(), testing::IsEmpty());
        EXPECT_THAT(TestHost::deletions(), testing::IsEmpty());
        EXPECT_THAT(machine.commandsMissing(), testing::IsEmpty());
        AdapterTest::TearDown();
    }

    void laySettings() {
        for (const SettingsFile* file : kFiles) {
            machine.file(file->path, file->text());
        }
    }

    /// Hides what the shell's commands print from whoever runs the tests.
    bool check(const std::string& kind = "kind") {
        const DescriptorInFile output(STDOUT_FILENO, "/tmp/output");
        const DescriptorInFile errors(STDERR_FILENO, "/tmp/errors");
        return CEmulexCommon::OCMInstallCheck("unused", kind, module);
    }

    /// A new trace and no answer yet, with this in one file and the right lines in the other.
    void lay(const SettingsFile& file, const std::string& text) {
        std::filesystem::remove(kAnswer);
        laySettings();
        machine.file(file.path, text);
        forget();
    }

    /// The shell's command ends so, with this in the file of its answer.
    void answer(const std::string& text, int status = 0) {
        libc().system = [this, text, status](const char* command) {
            EXPECT_EQ(TestHost::trace(), traceOf(kUpToThePackage));
            commands.emplace_back(command);
            machine.file(kAnswer, text);
            return status;
        };
    }

    /// @param values  of the placeholders in the scan
    static Values withScan(const std::string& scan, Values values) {
        values.insert(values.begin(), {"scan", scan});
        return values;
    }

    void expectFailureInFile(const SettingsFile& file, const Values& values, const std::string& scan) {
        EXPECT_FALSE(check());
        EXPECT_EQ(TestHost::trace(), traceOf(withScan(scan, values), file.failed));
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlierError);
        EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
        EXPECT_FALSE(std::filesystem::exists(kAnswer));
    }

    void expectPass(const SettingsFile& file, const Values& values, const std::string& scan) {
        EXPECT_TRUE(check());
        EXPECT_EQ(TestHost::trace(), traceOf(withScan(scan, values), file.passed));
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlierError);
    }

    void expectFailureInFile(const SettingsFile& file, const std::string& scan) { expectFailureInFile(file, {}, scan); }

    void expectPass(const SettingsFile& file, const std::string& scan) { expectPass(file, {}, scan); }

    static constexpr unsigned long kEarlierError = 14;
    Lines commands;
};

}  // namespace kvl::test

#endif
