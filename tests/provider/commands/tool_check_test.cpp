#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <ostream>

#include "tests/provider/adapter_server.h"

namespace {

using kvl::test::Outcome;
using kvl::test::replayKvl;
using kvl::test::runOnServer;
using nlohmann::json;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kFunctions = R"(
discovery=/etc/emulexDiscConfig
management=/etc/emulexRMConfig
set_line() { sed -i "s/^$2.*/$3/" $1; }
package() { echo "$1" >>/.machine/commands/bin/rpm/-qa; }
)";

Outcome check(const std::string& change, const std::string& options = "") {
    return runOnServer(kFunctions + change + "\nrun kvl tool-check " + options);
}

TEST(ToolCheck, AnswersByTheExitCodeAndASentence) {
    const Outcome silent = replayKvl("adapters-mixed", {"tool-check"});
    EXPECT_EQ(0, silent.status);
    EXPECT_EQ("silent install\n", silent.output);
    EXPECT_EQ("", silent.errors);
    const Outcome other = replayKvl("adapters-fc", {"tool-check", "--family", "fc"});
    EXPECT_EQ(17, other.status);
    EXPECT_EQ(
        "not a silent install: /etc/emulexRMConfig has the line 'ServerRemoteOperation:disabled' where "
        "'ServerRemoteOperation:enabled' belongs\n",
        other.output);
    EXPECT_EQ("", other.errors);
}

TEST(ToolCheck, IsADocumentForPrograms) {
    EXPECT_EQ(json::parse(R"({"silent": true, "reason": null, "file": null, "line": null, "expected": []})"),
              json::parse(replayKvl("adapters-mixed", {"tool-check", "--format", "json"}).output));
    EXPECT_EQ(json::parse(R"({"silent": false, "reason": "wrong-line", "file": "/etc/emulexRMConfig",
                              "line": "ServerRemoteOperation:disabled", "expected": ["ServerRemoteOperation:enabled"]})"),
              json::parse(replayKvl("adapters-fc", {"tool-check", "--format", "json"}).output));
}

struct Case {
    const char* change;
    const char* reason;  // after "not a silent install: "
};

void PrintTo(const Case& row, std::ostream* stream) {
    *stream << row.change;
}

class ToolThatIsNotSilent : public testing::TestWithParam<Case> {};

TEST_P(ToolThatIsNotSilent, IsToldWithItsReason) {
    const Outcome outcome = check(GetParam().change);
    EXPECT_EQ("not a silent install: " + std::string(GetParam().reason) + "\nended with 17\n", outcome.output);
    EXPECT_EQ("", outcome.errors);
}

INSTANTIATE_TEST_SUITE_P(
    Changes, ToolThatIsNotSilent,
    testing::Values(
        Case{
            "set_line $discovery ClientRemoteOperation 'ClientRemoteOperation:enabled'",
            "/etc/emulexDiscConfig has the line 'ClientRemoteOperation:enabled' where 'ClientRemoteOperation:disabled' "
            "belongs"},
        Case{"set_line $discovery ClientOperationMode 'ClientOperationMode : off'",
             "/etc/emulexDiscConfig has the line 'ClientOperationMode : off' where 'ClientOperationMode:enabled' "
             "belongs"},
        Case{"set_line $discovery ClientReadOnlyOperation '#ClientReadOnlyOperation:disabled'",
             "/etc/emulexDiscConfig has the line '#ClientReadOnlyOperation:disabled' where "
             "'ClientReadOnlyOperation:disabled' belongs"},
        Case{"set_line $discovery TcpSocketPortNumber 'TcpSocketPortNumber:2333'",
             "/etc/emulexDiscConfig has the line 'TcpSocketPortNumber:2333' where 'TcpSocketPortNumber:23333' belongs"},
        Case{"set_line $discovery TcpSocketPortNumber \"$(printf 'TcpSocketPortNumber:23333\\r')\"",
             "/etc/emulexDiscConfig has the line 'TcpSocketPortNumber:23333 ', with a character that can't be printed, "
             "where 'TcpSocketPortNumber:23333' belongs"},
        Case{"set_line $management ManagementHost 'ManagementHost:true'",
             "/etc/emulexRMConfig has the line 'ManagementHost:true' where 'ManagementHost:false' belongs"},
        Case{"set_line $management SecureManagement 'SecureManagement:enabled'",
             "/etc/emulexRMConfig has the line 'SecureManagement:enabled' where 'SecureManagement:disabled' belongs"},
        Case{"set_line $management MngmtHostIpAddress 'MngmtHostIpAddress:10.0.0.1'",
             "/etc/emulexRMConfig has the line 'MngmtHostIpAddress:10.0.0.1' where 'MngmtHostIpAddress:0' belongs"},
        Case{"set_line $management ExclusiveHostMgmnt 'ExclusiveHostMgmnt:%s]'",
             "/etc/emulexRMConfig has the line 'ExclusiveHostMgmnt:%s]' where 'ExclusiveHostMgmnt:false' belongs"},
        Case{"sed -i '/^ClientOperationMode/d; /^Tcp/d' $discovery",
             "/etc/emulexDiscConfig lacks 'ClientOperationMode:enabled', 'TcpSocketPortNumber:23333'"},
        Case{": >$discovery",
             "/etc/emulexDiscConfig lacks 'ClientRemoteOperation:disabled', 'ClientOperationMode:enabled', "
             "'ClientReadOnlyOperation:disabled', 'TcpSocketPortNumber:23333'"},
        Case{": >$management",
             "/etc/emulexRMConfig lacks 'ServerRemoteOperation:enabled', 'ManagementHost:false', "
             "'SecureManagement:disabled', 'MngmtHostIpAddress:0', 'ExclusiveHostMgmnt:false'"},
        Case{"sed -i '$d' $management", "/etc/emulexRMConfig lacks 'ExclusiveHostMgmnt:false'"},
        Case{"rm $discovery; mkdir $discovery",
             "/etc/emulexDiscConfig lacks 'ClientRemoteOperation:disabled', 'ClientOperationMode:enabled', "
             "'ClientReadOnlyOperation:disabled', 'TcpSocketPortNumber:23333'"},
        Case{"package elxocmjvm-6.3.12.11.rpm",
             "the package elxocmjvm is installed, which a silent install leaves out"}));

TEST(ToolCheck, TakesBlanksAndFurtherLinesAsTheLibraryDoes) {
    const Outcome outcome = check(
        "set_line $discovery TcpSocketPortNumber 'TcpSocketPortNumber : 23333 '\n"
        "echo 'ClientRemoteOperation:enabled' >>$discovery; package elxocmjvm-6.3.12.1-1.x86_64");
    EXPECT_EQ("silent install\nended with 0\n", outcome.output);
}

TEST(ToolCheck, TellsMissingLinesAsADocument) {
    const json document = json::parse(replayKvl("adapters-none", {"tool-check", "--format", "json"}).output);
    EXPECT_EQ("/etc/emulexDiscConfig could not be opened", document["error"]["meaning"]);
    EXPECT_EQ("11", document["error"]["number"]);
    const Outcome outcome =
        runOnServer(std::string(kFunctions) + "sed -i '$d' $management; kvl tool-check --format json\n");
    EXPECT_EQ(json::parse(R"({"silent": false, "reason": "missing-lines", "file": "/etc/emulexRMConfig", "line": null,
                              "expected": ["ExclusiveHostMgmnt:false"]})"),
              json::parse(outcome.output));
    const Outcome package =
        runOnServer(std::string(kFunctions) + "package elxocmjvm-6.3.12.11.rpm; kvl tool-check --format json\n");
    EXPECT_EQ(json::parse(R"({"silent": false, "reason": "package-installed", "file": null, "line": null,
                              "expected": []})"),
              json::parse(package.output));
}

constexpr const char* kUnopened =
    " could not be opened (error 11): see whether the OneCommand Manager is installed, which brings its settings, and "
    "run this as root\n";
constexpr const char* kRpm =
    "kvl: 'rpm -qa' failed, so whether the package elxocmjvm is installed can't be told (error 0): run that command by "
    "hand, and see what it prints\n";

struct Doubt {
    const char* change;
    std::string sentence;
};

void PrintTo(const Doubt& row, std::ostream* stream) {
    *stream << row.change;
}

class ToolThatCantBeChecked : public testing::TestWithParam<Doubt> {};

TEST_P(ToolThatCantBeChecked, IsToldWithTheReason) {
    const Outcome outcome = check(GetParam().change);
    EXPECT_EQ("ended with 3\n", outcome.output);
    EXPECT_EQ(GetParam().sentence, outcome.errors);
}

INSTANTIATE_TEST_SUITE_P(
    Changes, ToolThatCantBeChecked,
    testing::Values(
        Doubt{"rm $discovery", std::string("kvl: /etc/emulexDiscConfig") + kUnopened},
        Doubt{"rm $management", std::string("kvl: /etc/emulexRMConfig") + kUnopened},
        Doubt{"chmod 0 $management", std::string("kvl: /etc/emulexRMConfig") + kUnopened}, Doubt{"rm /bin/rpm", kRpm},
        Doubt{"echo 1 >/.machine/commands/bin/rpm/-qa.status", kRpm},
        Doubt{"mkdir -p $tree/temp/rpm_grep_result.txt; chmod 700 $tree",
              "kvl: the installed packages could not be told (error 0): see whether "
              "/opt/tarvenn/kvl/tmp/EMULEX/temp/rpm_grep_result.txt can be written and the disk has room\n"},
        Doubt{"mkdir -p $tree/temp; chmod 700 $tree; ln -s /dev/full $tree/temp/rpm_grep_result.txt",
              "kvl: the installed packages could not be told (error 0): see whether "
              "/opt/tarvenn/kvl/tmp/EMULEX/temp/rpm_grep_result.txt can be written and the disk has room\n"},
        Doubt{"mkdir -p $tree; chmod 700 $tree; : >$tree/temp",
              "kvl: a temporary directory could not be made (error 13): see whether tmp/EMULEX/temp below the install "
              "directory can be made; as root, remove what stands in its way\n"}));

TEST(ToolCheck, TellsWhatItWaitsForOnATerminalAlone) {
    const std::string shown = kvl::test::runOnTerminal({"replay", "adapters-mixed", "--", "tool-check"});
    EXPECT_THAT(shown, AllOf(StartsWith("\rthe tool's settings and rpm -qa\r"), EndsWith(" \rsilent install\r\n")));
    EXPECT_EQ("silent install\r\n",
              kvl::test::runOnTerminal({"replay", "adapters-mixed", "--", "tool-check", "--quiet"}));
}

TEST(ToolCheck, TracesUnderTheFamilysName) {
    const Outcome outcome = runOnServer(
        "export KVL_TRACE_LEVELS=4\nkvl tool-check --family fc; grep -c 'fc.*ModuleKind=OCM' "
        "/opt/tarvenn/kvl/log/kvl.log; kvl tool-check; grep -c 'cna.*ModuleKind=OCM' "
        "/opt/tarvenn/kvl/log/kvl.log");
    EXPECT_EQ("silent install\n1\nsilent install\n1\n", outcome.output);
}

TEST(ToolCheck, TakesTurnsWithOtherRuns) {
    auto options = kvl::test::rootWithKvl(std::string(KVL_MACHINES_FOLDER) + "/adapters-mixed");
    options.binds.push_back({"/usr/bin/flock"});
    const Outcome outcome = kvl::test::runInside(
        options, kvl::test::lockingInside() + std::string(KVL_PROGRAM) + " tool-check --wait 0; echo $?");
    EXPECT_EQ("3\n", outcome.output);
    EXPECT_THAT(outcome.errors, HasSubstr("still works on this machine"));
}

}  // namespace
