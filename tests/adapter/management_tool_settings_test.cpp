#include "tests/adapter/management_tool_check.h"

namespace kvl::test {
namespace {

// ---- Settings ----

TEST_F(ManagementToolCheck, FailsForEachSettingThatIsMissing) {
    struct Row {
        const SettingsFile* file;
        std::size_t missing;
        std::string scan;
    };
    const Row rows[] = {
        {&kDiscovery, 0, R"(
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
        {&kDiscovery, 1, R"(
            1 emulexDiscConfig:[ClientRemoteOperation:disabled]
            1 find[ClientRemoteOperation] in [ClientRemoteOperation:disabled]
            1 silent [ClientRemoteOperation]
            1 emulexDiscConfig:[ClientReadOnlyOperation:disabled]
            1 find[ClientReadOnlyOperation] in [ClientReadOnlyOperation:disabled]
            1 silent [ClientReadOnlyOperation:disabled]
            1 emulexDiscConfig:[TcpSocketPortNumber:23333]
            1 find[TcpSocketPortNumber] in [TcpSocketPortNumber:23333]
            1 silent [TcpSocketPortNumber:23333]
        )"},
        {&kDiscovery, 2, R"(
            1 emulexDiscConfig:[ClientRemoteOperation:disabled]
            1 find[ClientRemoteOperation] in [ClientRemoteOperation:disabled]
            1 silent [ClientRemoteOperation]
            1 emulexDiscConfig:[ClientOperationMode:enabled]
            1 find[ClientOperationMode] in [ClientOperationMode:enabled]
            1 silent [ClientOperationMode:enabled]
            1 emulexDiscConfig:[TcpSocketPortNumber:23333]
            1 find[TcpSocketPortNumber] in [TcpSocketPortNumber:23333]
            1 silent [TcpSocketPortNumber:23333]
        )"},
        {&kDiscovery, 3, R"(
            1 emulexDiscConfig:[ClientRemoteOperation:disabled]
            1 find[ClientRemoteOperation] in [ClientRemoteOperation:disabled]
            1 silent [ClientRemoteOperation]
            1 emulexDiscConfig:[ClientOperationMode:enabled]
            1 find[ClientOperationMode] in [ClientOperationMode:enabled]
            1 silent [ClientOperationMode:enabled]
            1 emulexDiscConfig:[ClientReadOnlyOperation:disabled]
            1 find[ClientReadOnlyOperation] in [ClientReadOnlyOperation:disabled]
            1 silent [ClientReadOnlyOperation:disabled]
        )"},
        {&kManagement, 0, R"(
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
        {&kManagement, 1, R"(
            1 emulexRMConfig:[ServerRemoteOperation:enabled]
            1 find[ServerRemoteOperation] in [ServerRemoteOperation:enabled]
            1 silent [ServerRemoteOperation:enabled]
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
        {&kManagement, 2, R"(
            1 emulexRMConfig:[ServerRemoteOperation:enabled]
            1 find[ServerRemoteOperation] in [ServerRemoteOperation:enabled]
            1 silent [ServerRemoteOperation:enabled]
            1 emulexRMConfig:[ManagementHost:false]
            1 find[ManagementHost] in [ManagementHost:false]
            1 silent [ManagementHost:false]
            1 emulexRMConfig:[MngmtHostIpAddress:0]
            1 find[MngmtHostIpAddress] in [MngmtHostIpAddress:0]
            1 silent [MngmtHostIpAddress:0]
            1 emulexRMConfig:[ExclusiveHostMgmnt:false]
            1 find[ExclusiveHostMgmnt] in [ExclusiveHostMgmnt:false]
            1 silent [ExclusiveHostMgmnt:false]
        )"},
        {&kManagement, 3, R"(
            1 emulexRMConfig:[ServerRemoteOperation:enabled]
            1 find[ServerRemoteOperation] in [ServerRemoteOperation:enabled]
            1 silent [ServerRemoteOperation:enabled]
            1 emulexRMConfig:[ManagementHost:false]
            1 find[ManagementHost] in [ManagementHost:false]
            1 silent [ManagementHost:false]
            1 emulexRMConfig:[SecureManagement:disabled]
            1 find[SecureManagement] in [SecureManagement:disabled]
            1 silent [SecureManagement:disabled]
            1 emulexRMConfig:[ExclusiveHostMgmnt:false]
            1 find[ExclusiveHostMgmnt] in [ExclusiveHostMgmnt:false]
            1 silent [ExclusiveHostMgmnt:false]
        )"},
        {&kManagement, 4, R"(
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
        )"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.file->settings[row.missing].key);
        lay(*row.file, row.file->textWithout(row.missing));
        expectFailureInFile(*row.file, row.scan);
    }
}

/// A file in which {line} stands in place of one setting.
struct WrongSetting {
    const SettingsFile* file;
    std::size_t place;
    std::string scan;
};

const WrongSetting kWrongSettings[] = {
    {&kDiscovery, 0, R"(
        1 emulexDiscConfig:[{line}]
        1 find[ClientRemoteOperation] in [{line}]
        1 not silent  [ClientRemoteOperation]
    )"},
    {&kDiscovery, 1, R"(
        1 emulexDiscConfig:[ClientRemoteOperation:disabled]
        1 find[ClientRemoteOperation] in [ClientRemoteOperation:disabled]
        1 silent [ClientRemoteOperation]
        1 emulexDiscConfig:[{line}]
        1 find[ClientOperationMode] in [{line}]
        1 not silent [{line}]
    )"},
    {&kDiscovery, 2, R"(
        1 emulexDiscConfig:[ClientRemoteOperation:disabled]
        1 find[ClientRemoteOperation] in [ClientRemoteOperation:disabled]
        1 silent [ClientRemoteOperation]
        1 emulexDiscConfig:[ClientOperationMode:enabled]
        1 find[ClientOperationMode] in [ClientOperationMode:enabled]
        1 silent [ClientOperationMode:enabled]
        1 emulexDiscConfig:[{line}]
        1 find[ClientReadOnlyOperation] in [{line}]
        1 not silent [{line}]
    )"},
    {&kDiscovery, 3, R"(
        1 emulexDiscConfig:[ClientRemoteOperation:disabled]
        1 find[ClientRemoteOperation] in [ClientRemoteOperation:disabled]
        1 silent [ClientRemoteOperation]
        1 emulexDiscConfig:[ClientOperationMode:enabled]
        1 find[ClientOperationMode] in [ClientOperationMode:enabled]
        1 silent [ClientOperationMode:enabled]
        1 emulexDiscConfig:[ClientReadOnlyOperation:disabled]
        1 find[ClientReadOnlyOperation] in [ClientReadOnlyOperation:disabled]
        1 silent [ClientReadOnlyOperation:disabled]
        1 emulexDiscConfig:[{line}]
        1 find[TcpSocketPortNumber] in [{line}]
        1 not silent [{line}]
    )"},
    {&kManagement, 0, R"(
        1 emulexRMConfig:[{line}]
        1 find[ServerRemoteOperation] in [{line}]
        1 not silent [{line}]
    )"},
    {&kManagement, 1, R"(
        1 emulexRMConfig:[ServerRemoteOperation:enabled]
        1 find[ServerRemoteOperation] in [ServerRemoteOperation:enabled]
        1 silent [ServerRemoteOperation:enabled]
        1 emulexRMConfig:[{line}]
        1 find[ManagementHost] in [{line}]
        1 not silent [{line}]
    )"},
    {&kManagement, 2, R"(
        1 emulexRMConfig:[ServerRemoteOperation:enabled]
        1 find[ServerRemoteOperation] in [ServerRemoteOperation:enabled]
        1 silent [ServerRemoteOperation:enabled]
        1 emulexRMConfig:[ManagementHost:false]
        1 find[ManagementHost] in [ManagementHost:false]
        1 silent [ManagementHost:false]
        1 emulexRMConfig:[{line}]
        1 find[SecureManagement] in [{line}]
        1 not silent [{line}]
    )"},
    {&kManagement, 3, R"(
        1 emulexRMConfig:[ServerRemoteOperation:enabled]
        1 find[ServerRemoteOperation] in [ServerRemoteOperation:enabled]
        1 silent [ServerRemoteOperation:enabled]
        1 emulexRMConfig:[ManagementHost:false]
        1 find[ManagementHost] in [ManagementHost:false]
        1 silent [ManagementHost:false]
        1 emulexRMConfig:[SecureManagement:disabled]
        1 find[SecureManagement] in [SecureManagement:disabled]
        1 silent [SecureManagement:disabled]
        1 emulexRMConfig:[{line}]
        1 find[MngmtHostIpAddress] in [{line}]
        1 not silent [{line}]
    )"},
    {&kManagement, 4, R"(
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
        1 emulexRMConfig:[{line}]
        1 find[ExclusiveHostMgmnt] in [{line}]
        1 not silent [{line}]
    )"},
};

TEST_F(ManagementToolCheck, FailsAtOnceForEachSettingWithAnotherValue) {
    for (const WrongSetting& row : kWrongSettings) {
        const std::string line = row.file->settings[row.place].key + ":other";
        SCOPED_TRACE(line);
        lay(*row.file, row.file->textWith(row.place, line + "\n"));
        expectFailureInFile(*row.file, {{"line", line}}, row.scan);
    }
}

TEST_F(ManagementToolCheck, TracesAWrongRemoteOperationByItsKeyAndWithTwoBlanks) {
    lay(kDiscovery, "ClientRemoteOperation:enabled\n");
    expectFailureInFile(kDiscovery, R"(
        1 emulexDiscConfig:[ClientRemoteOperation:enabled]
        1 find[ClientRemoteOperation] in [ClientRemoteOperation:enabled]
        1 not silent  [ClientRemoteOperation]
    )");
    lay(kDiscovery, "TcpSocketPortNumber:1\n");
    expectFailureInFile(kDiscovery, R"(
        1 emulexDiscConfig:[TcpSocketPortNumber:1]
        1 find[TcpSocketPortNumber] in [TcpSocketPortNumber:1]
        1 not silent [TcpSocketPortNumber:1]
    )");
}

TEST_F(ManagementToolCheck, ComparesTheWholeLine) {
    const std::string key = "TcpSocketPortNumber";
    for (const std::string& line :
         {key, key + ":", key + ":2333", key + ":233330", key + ":23333:", key + "s:23333", "x" + key + ":23333",
          key + "=23333", key + ":23333\r", key + ":\t23333", "\t" + key + ":23333", key + ":23333\t",
          "#" + key + ":23333", ";" + key + ":23333", key + ":23333#", key + ":%s%n"}) {
        SCOPED_TRACE(line);
        lay(kDiscovery, line + "\n");
        expectFailureInFile(kDiscovery, {{"line", line}}, R"(
            1 emulexDiscConfig:[{line}]
            1 find[TcpSocketPortNumber] in [{line}]
            1 not silent [{line}]
        )");
    }
}

TEST_F(ManagementToolCheck, ComparesBehindAZeroByteToo) {
    lay(kDiscovery, "TcpSocketPortNumber:23333" + std::string(1, '\0') + "\n");
    expectFailureInFile(kDiscovery, R"(
        1 emulexDiscConfig:[TcpSocketPortNumber:23333]
        1 find[TcpSocketPortNumber] in [TcpSocketPortNumber:23333]
        1 not silent [TcpSocketPortNumber:23333]
    )");
}

TEST_F(ManagementToolCheck, FailsForALineThatEndsInACarriageReturn) {
    for (const WrongSetting& row : kWrongSettings) {
        const std::string line = row.file->settings[row.place].line + "\r";
        lay(*row.file, row.file->textWith(row.place, line + "\n"));
        expectFailureInFile(*row.file, {{"line", line}}, row.scan);
    }
}

TEST_F(ManagementToolCheck, TakesACommentedLineForAWrongValue) {
    lay(kDiscovery, "# ClientRemoteOperation:disabled\n" + kDiscovery.text());
    expectFailureInFile(kDiscovery, R"(
        1 emulexDiscConfig:[# ClientRemoteOperation:disabled]
        1 emulexDiscConfig space delete:[#ClientRemoteOperation:disabled]
        1 find[ClientRemoteOperation] in [#ClientRemoteOperation:disabled]
        1 not silent  [ClientRemoteOperation]
    )");
}

TEST_F(ManagementToolCheck, LooksForTheKeysCaseSensitively) {
    lay(kDiscovery, kDiscovery.textWith(3, "tcpsocketportnumber:23333\n"));
    expectFailureInFile(kDiscovery, R"(
        1 emulexDiscConfig:[ClientRemoteOperation:disabled]
        1 find[ClientRemoteOperation] in [ClientRemoteOperation:disabled]
        1 silent [ClientRemoteOperation]
        1 emulexDiscConfig:[ClientOperationMode:enabled]
        1 find[ClientOperationMode] in [ClientOperationMode:enabled]
        1 silent [ClientOperationMode:enabled]
        1 emulexDiscConfig:[ClientReadOnlyOperation:disabled]
        1 find[ClientReadOnlyOperation] in [ClientReadOnlyOperation:disabled]
        1 silent [ClientReadOnlyOperation:disabled]
        1 emulexDiscConfig:[tcpsocketportnumber:23333]
    )");
    lay(kManagement, "ManagementHost:False\n");
    expectFailureInFile(kManagement, R"(
        1 emulexRMConfig:[ManagementHost:False]
        1 find[ManagementHost] in [ManagementHost:False]
        1 not silent [ManagementHost:False]
    )");
}

TEST_F(ManagementToolCheck, TakesTheSettingsInAnyOrder) {
    const std::pair<const SettingsFile*, std::string> rows[] = {
        {&kDiscovery, R"(
            1 emulexDiscConfig:[TcpSocketPortNumber:23333]
            1 find[TcpSocketPortNumber] in [TcpSocketPortNumber:23333]
            1 silent [TcpSocketPortNumber:23333]
            1 emulexDiscConfig:[ClientReadOnlyOperation:disabled]
            1 find[ClientReadOnlyOperation] in [ClientReadOnlyOperation:disabled]
            1 silent [ClientReadOnlyOperation:disabled]
            1 emulexDiscConfig:[ClientOperationMode:enabled]
            1 find[ClientOperationMode] in [ClientOperationMode:enabled]
            1 silent [ClientOperationMode:enabled]
            1 emulexDiscConfig:[ClientRemoteOperation:disabled]
            1 find[ClientRemoteOperation] in [ClientRemoteOperation:disabled]
            1 silent [ClientRemoteOperation]
        )"},
        {&kManagement, R"(
            1 emulexRMConfig:[ExclusiveHostMgmnt:false]
            1 find[ExclusiveHostMgmnt] in [ExclusiveHostMgmnt:false]
            1 silent [ExclusiveHostMgmnt:false]
            1 emulexRMConfig:[MngmtHostIpAddress:0]
            1 find[MngmtHostIpAddress] in [MngmtHostIpAddress:0]
            1 silent [MngmtHostIpAddress:0]
            1 emulexRMConfig:[SecureManagement:disabled]
            1 find[SecureManagement] in [SecureManagement:disabled]
            1 silent [SecureManagement:disabled]
            1 emulexRMConfig:[ManagementHost:false]
            1 find[ManagementHost] in [ManagementHost:false]
            1 silent [ManagementHost:false]
            1 emulexRMConfig:[ServerRemoteOperation:enabled]
            1 find[ServerRemoteOperation] in [ServerRemoteOperation:enabled]
            1 silent [ServerRemoteOperation:enabled]
        )"},
    };
    for (const auto& [file, scan] : rows) {
        std::string text;
        for (auto setting = file->settings.rbegin(); setting != file->settings.rend(); ++setting) {
            text += setting->line + "\n";
        }
        lay(*file, text);
        expectPass(*file, scan);
    }
}

TEST_F(ManagementToolCheck, PassesOverOtherLines) {
    const std::string others = "\n# a comment\n100%s\nClient\n\r\n\t\nKey:value\n";
    const std::pair<const SettingsFile*, std::string> rows[] = {
        {&kDiscovery, R"(
            1 emulexDiscConfig:[]
            1 emulexDiscConfig:[# a comment]
            1 emulexDiscConfig space delete:[#a comment]
            1 emulexDiscConfig space delete:[#acomment]
            1 emulexDiscConfig:[100%s]
            1 emulexDiscConfig:[Client]
            1 emulexDiscConfig:[{CR}]
            1 emulexDiscConfig:[{TAB}]
            1 emulexDiscConfig:[Key:value]
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
            1 emulexRMConfig:[]
            1 emulexRMConfig:[# a comment]
            1 emulexRMConfig space delete:[#a comment]
            1 emulexRMConfig space delete:[#acomment]
            1 emulexRMConfig:[100%s]
            1 emulexRMConfig:[Client]
            1 emulexRMConfig:[{CR}]
            1 emulexRMConfig:[{TAB}]
            1 emulexRMConfig:[Key:value]
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
        lay(*file, others + file->text());
        expectPass(*file, scan);
    }
}

TEST_F(ManagementToolCheck, LooksForEachFilesOwnKeysAlone) {
    lay(kDiscovery, "ServerRemoteOperation:disabled\nManagementHost:true\n" + kDiscovery.text());
    expectPass(kDiscovery, R"(
        1 emulexDiscConfig:[ServerRemoteOperation:disabled]
        1 emulexDiscConfig:[ManagementHost:true]
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
    )");
    lay(kManagement, "ClientRemoteOperation:enabled\nTcpSocketPortNumber:1\n" + kManagement.text());
    expectPass(kManagement, R"(
        1 emulexRMConfig:[ClientRemoteOperation:enabled]
        1 emulexRMConfig:[TcpSocketPortNumber:1]
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
    )");
}

TEST_F(ManagementToolCheck, CountsALineThatOccursTwiceForOneThatIsMissing) {
    const std::pair<const SettingsFile*, std::string> rows[] = {
        {&kDiscovery, R"(
            1 emulexDiscConfig:[ClientRemoteOperation:disabled]
            1 find[ClientRemoteOperation] in [ClientRemoteOperation:disabled]
            1 silent [ClientRemoteOperation]
            1 emulexDiscConfig:[ClientRemoteOperation:disabled]
            1 find[ClientRemoteOperation] in [ClientRemoteOperation:disabled]
            1 silent [ClientRemoteOperation]
            1 emulexDiscConfig:[ClientOperationMode:enabled]
            1 find[ClientOperationMode] in [ClientOperationMode:enabled]
            1 silent [ClientOperationMode:enabled]
            1 emulexDiscConfig:[ClientReadOnlyOperation:disabled]
            1 find[ClientReadOnlyOperation] in [ClientReadOnlyOperation:disabled]
            1 silent [ClientReadOnlyOperation:disabled]
        )"},
        {&kManagement, R"(
            1 emulexRMConfig:[ServerRemoteOperation:enabled]
            1 find[ServerRemoteOperation] in [ServerRemoteOperation:enabled]
            1 silent [ServerRemoteOperation:enabled]
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
        )"},
    };
    for (const auto& [file, scan] : rows) {
        lay(*file, file->settings.front().line + "\n" + file->textWithout(file->settings.size() - 1));
        expectPass(*file, scan);
    }
}

TEST_F(ManagementToolCheck, CountsOneLineForAll) {
    lay(kDiscovery,
        "ClientReadOnlyOperation:disabled\nClientReadOnlyOperation:disabled\nClientReadOnlyOperation:disabled\n"
        "ClientReadOnlyOperation:disabled\n");
    expectPass(kDiscovery, R"(
        1 emulexDiscConfig:[ClientReadOnlyOperation:disabled]
        1 find[ClientReadOnlyOperation] in [ClientReadOnlyOperation:disabled]
        1 silent [ClientReadOnlyOperation:disabled]
        1 emulexDiscConfig:[ClientReadOnlyOperation:disabled]
        1 find[ClientReadOnlyOperation] in [ClientReadOnlyOperation:disabled]
        1 silent [ClientReadOnlyOperation:disabled]
        1 emulexDiscConfig:[ClientReadOnlyOperation:disabled]
        1 find[ClientReadOnlyOperation] in [ClientReadOnlyOperation:disabled]
        1 silent [ClientReadOnlyOperation:disabled]
        1 emulexDiscConfig:[ClientReadOnlyOperation:disabled]
        1 find[ClientReadOnlyOperation] in [ClientReadOnlyOperation:disabled]
        1 silent [ClientReadOnlyOperation:disabled]
    )");
}

TEST_F(ManagementToolCheck, DoesNotReadBehindTheLastLineThatWasOutstanding) {
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
        lay(*file, file->text() + file->settings[0].key + ":other\nmore\n");
        expectPass(*file, scan);
    }
}

TEST_F(ManagementToolCheck, FailsForALineThatOccursTwiceWithAnotherValueTheSecondTime) {
    lay(kManagement, "ManagementHost:false\nManagementHost:true\n" + kManagement.text());
    expectFailureInFile(kManagement, R"(
        1 emulexRMConfig:[ManagementHost:false]
        1 find[ManagementHost] in [ManagementHost:false]
        1 silent [ManagementHost:false]
        1 emulexRMConfig:[ManagementHost:true]
        1 find[ManagementHost] in [ManagementHost:true]
        1 not silent [ManagementHost:true]
    )");
}

TEST_F(ManagementToolCheck, TakesTheFirstKeyOfTheTableInALineThatHoldsTwo) {
    struct Row {
        const SettingsFile* file;
        std::size_t first;
        std::string scan;
    };
    const Row rows[] = {
        {&kDiscovery, 0, R"(
            1 emulexDiscConfig:[{line}]
            1 find[ClientRemoteOperation] in [{line}]
            1 not silent  [ClientRemoteOperation]
        )"},
        {&kDiscovery, 1, R"(
            1 emulexDiscConfig:[{line}]
            1 find[ClientOperationMode] in [{line}]
            1 not silent [{line}]
        )"},
        {&kDiscovery, 2, R"(
            1 emulexDiscConfig:[{line}]
            1 find[ClientReadOnlyOperation] in [{line}]
            1 not silent [{line}]
        )"},
        {&kManagement, 0, R"(
            1 emulexRMConfig:[{line}]
            1 find[ServerRemoteOperation] in [{line}]
            1 not silent [{line}]
        )"},
        {&kManagement, 1, R"(
            1 emulexRMConfig:[{line}]
            1 find[ManagementHost] in [{line}]
            1 not silent [{line}]
        )"},
        {&kManagement, 2, R"(
            1 emulexRMConfig:[{line}]
            1 find[SecureManagement] in [{line}]
            1 not silent [{line}]
        )"},
        {&kManagement, 3, R"(
            1 emulexRMConfig:[{line}]
            1 find[MngmtHostIpAddress] in [{line}]
            1 not silent [{line}]
        )"},
    };
    for (const Row& row : rows) {
        for (std::size_t second = row.first + 1; second < row.file->settings.size(); ++second) {
            const std::string line = row.file->settings[second].line + row.file->settings[row.first].line;
            SCOPED_TRACE(line);
            lay(*row.file, line + "\n" + row.file->text());
            expectFailureInFile(*row.file, {{"line", line}}, row.scan);
        }
    }
}

// ---- Blanks ----

TEST_F(ManagementToolCheck, DeletesBlanksFromTheLeftBeforeItCompares) {
    lay(kDiscovery, kDiscovery.textWith(3, "  TcpSocketPortNumber : 23333 \n"));
    expectPass(kDiscovery, R"(
        1 emulexDiscConfig:[ClientRemoteOperation:disabled]
        1 find[ClientRemoteOperation] in [ClientRemoteOperation:disabled]
        1 silent [ClientRemoteOperation]
        1 emulexDiscConfig:[ClientOperationMode:enabled]
        1 find[ClientOperationMode] in [ClientOperationMode:enabled]
        1 silent [ClientOperationMode:enabled]
        1 emulexDiscConfig:[ClientReadOnlyOperation:disabled]
        1 find[ClientReadOnlyOperation] in [ClientReadOnlyOperation:disabled]
        1 silent [ClientReadOnlyOperation:disabled]
        1 emulexDiscConfig:[  TcpSocketPortNumber : 23333 ]
        1 emulexDiscConfig space delete:[ TcpSocketPortNumber : 23333 ]
        1 emulexDiscConfig space delete:[TcpSocketPortNumber : 23333 ]
        1 emulexDiscConfig space delete:[TcpSocketPortNumber: 23333 ]
        1 emulexDiscConfig space delete:[TcpSocketPortNumber:23333 ]
        1 emulexDiscConfig space delete:[TcpSocketPortNumber:23333]
        1 find[TcpSocketPortNumber] in [TcpSocketPortNumber:23333]
        1 silent [TcpSocketPortNumber:23333]
    )");
}

TEST_F(ManagementToolCheck, TracesDeletedBlanksUnderEachFilesName) {
    lay(kManagement, kManagement.textWith(3, "MngmtHostIpAddress: 0\n"));
    expectPass(kManagement, R"(
        1 emulexRMConfig:[ServerRemoteOperation:enabled]
        1 find[ServerRemoteOperation] in [ServerRemoteOperation:enabled]
        1 silent [ServerRemoteOperation:enabled]
        1 emulexRMConfig:[ManagementHost:false]
        1 find[ManagementHost] in [ManagementHost:false]
        1 silent [ManagementHost:false]
        1 emulexRMConfig:[SecureManagement:disabled]
        1 find[SecureManagement] in [SecureManagement:disabled]
        1 silent [SecureManagement:disabled]
        1 emulexRMConfig:[MngmtHostIpAddress: 0]
        1 emulexRMConfig space delete:[MngmtHostIpAddress:0]
        1 find[MngmtHostIpAddress] in [MngmtHostIpAddress:0]
        1 silent [MngmtHostIpAddress:0]
        1 emulexRMConfig:[ExclusiveHostMgmnt:false]
        1 find[ExclusiveHostMgmnt] in [ExclusiveHostMgmnt:false]
        1 silent [ExclusiveHostMgmnt:false]
    )");
}

TEST_F(ManagementToolCheck, FindsAKeyThatBlanksTakeApart) {
    lay(kDiscovery, kDiscovery.textWith(0, "Client Remote Operation:disabled\n"));
    expectPass(kDiscovery, R"(
        1 emulexDiscConfig:[Client Remote Operation:disabled]
        1 emulexDiscConfig space delete:[ClientRemote Operation:disabled]
        1 emulexDiscConfig space delete:[ClientRemoteOperation:disabled]
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
    )");
}

TEST_F(ManagementToolCheck, EmptiesALineOfBlanks) {
    lay(kDiscovery, "   \n" + kDiscovery.text());
    expectPass(kDiscovery, R"(
        1 emulexDiscConfig:[   ]
        1 emulexDiscConfig space delete:[  ]
        1 emulexDiscConfig space delete:[ ]
        1 emulexDiscConfig space delete:[]
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
    )");
}

TEST_F(ManagementToolCheck, LeavesTabsAlone) {
    lay(kDiscovery, "TcpSocketPortNumber: \t23333\n");
    expectFailureInFile(kDiscovery, R"(
        1 emulexDiscConfig:[TcpSocketPortNumber: {TAB}23333]
        1 emulexDiscConfig space delete:[TcpSocketPortNumber:{TAB}23333]
        1 find[TcpSocketPortNumber] in [TcpSocketPortNumber:{TAB}23333]
        1 not silent [TcpSocketPortNumber:{TAB}23333]
    )");
}

// ---- Long lines ----

TEST_F(ManagementToolCheck, ReadsALineOf10000CharactersWhole) {
    const std::string comment = std::string(10000, '#');
    lay(kDiscovery, comment + "\n" + kDiscovery.text());
    expectPass(kDiscovery, {{"comment", comment}}, R"(
        1 emulexDiscConfig:[{comment}]
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
    )");

    const std::string line = std::string(10000, 'x') + "TcpSocketPortNumber:23333";
    lay(kDiscovery, line + "\n");
    expectFailureInFile(kDiscovery, {{"line", line}}, R"(
        1 emulexDiscConfig:[{line}]
        1 find[TcpSocketPortNumber] in [{line}]
        1 not silent [{line}]
    )");
}

}  // namespace
}  // namespace kvl::test
