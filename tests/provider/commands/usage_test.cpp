#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "provider/commands/command_line.h"
#include "provider/commands/performed_update.h"
#include "provider/provider_error.h"
#include "tests/provider/kvl_program.h"

namespace {

using kvl::provider::Arguments;
using kvl::provider::readCommandLine;
using kvl::test::Outcome;
using kvl::test::runKvl;
using testing::HasSubstr;
using testing::StartsWith;

struct WrongUsage {
    Arguments arguments;
    const char* sentence;
};

void PrintTo(const WrongUsage& row, std::ostream* stream) {
    *stream << kvl::test::quoted(row.arguments);
}

class Refused : public testing::TestWithParam<WrongUsage> {};

TEST_P(Refused, WithASentence) {
    try {
        readCommandLine(GetParam().arguments);
        FAIL() << "accepted";
    } catch (const kvl::provider::WrongUsage& error) {
        EXPECT_THAT(error.what(), HasSubstr(GetParam().sentence));
    }
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, Refused,
    testing::Values(
        WrongUsage{{}, "a command is missing ('kvl --help' tells the usage)"},
        WrongUsage{{"frobnicate"}, "there is no command 'frobnicate'"},
        WrongUsage{{"--frobnicate"}, "there is no command '--frobnicate'"},
        WrongUsage{{"report", "extra"}, "not expected: extra ('kvl report --help' tells the usage)"},
        WrongUsage{{"report", "--frobnicate", "3", "--vendor", "8086", "x"},
                   "not expected: --frobnicate 3 x ('kvl report"},
        WrongUsage{{"report", "--vendor"}, "--vendor needs a value: ID ('kvl report"},
        WrongUsage{{"report", "--vendor", "8086x"}, "and not '8086x'"},
        WrongUsage{{"report", "--vendor", "18086"}, "and not '18086'"},
        WrongUsage{{"report", "--vendor", "0x"}, "and not '0x'"}, WrongUsage{{"report", "--vendor", ""}, "and not ''"},
        WrongUsage{{"report", "--vendor", "8086", "14e4"}, "not expected: 14e4"},
        WrongUsage{{"report", "--vendor", "8086", "--all-vendors"}, "--vendor excludes --all-vendors"},
        WrongUsage{{"report", "--skip", "rings"},
                   "--skip: 'rings' is none of offload,pause,ring,coalesce,vendor-items"},
        WrongUsage{{"report", "--section", "physical,bond"}, "--section: 'bond' is none of common,physical,team,vlan"},
        WrongUsage{{"report", "--section", ""}, "--section: '' is none of"},
        WrongUsage{{"report", "--module", "../other"}, "and not '../other'"},
        WrongUsage{{"report", "--module", ".hidden"}, "and not '.hidden'"},
        WrongUsage{{"report", "--module", "-x"}, "--module"},
        WrongUsage{{"report", "--module", "a b"}, "and not 'a b'"},
        WrongUsage{{"report", "--module", ""}, "and not ''"},
        WrongUsage{{"report", "--module", std::string(65, 'x')}, "at most 64"},
        WrongUsage{{"report", "-o", ""}, "-o takes the name of a file"},
        WrongUsage{{"report", "-o"}, "--output needs a value: FILE"},
        WrongUsage{{"report", "--format", "json"}, "--format: 'json' is none of text,xml"},
        WrongUsage{{"report", "--translate", "always"}, "--translate: 'always' is none of auto,never"},
        WrongUsage{{"report", "--wait", "-1"}, "--wait: Value -1 not in range 0 to 86400"},
        WrongUsage{{"report", "--wait", "soon"}, "--wait: Value soon not in range"},
        WrongUsage{{"report", "--wait", "86401"}, "--wait: Value 86401 not in range"},
        WrongUsage{{"report", "-v", "--quiet"}, "excludes"},
        WrongUsage{{"report", "--quiet=perhaps"}, "--quiet doesn't take 'perhaps' ('kvl report"},
        WrongUsage{{"update"}, "a command is missing ('kvl update --help' tells the usage)"},
        WrongUsage{{"tool-check", "--family", "iscsi"}, "--family: 'iscsi' is none of cna|fc"},
        WrongUsage{{"tool-check", "--format", "xml"}, "--format: 'xml' is none of text|json"},
        WrongUsage{{"tool-check", "extra"}, "not expected: extra ('kvl tool-check --help' tells the usage)"},
        WrongUsage{{"pending", "--add", "NIC"}, "--add: 'NIC' is none of nic|fcoe|iscsi"},
        WrongUsage{{"pending", "--add", "nic;id"}, "--add: 'nic;id' is none of nic|fcoe|iscsi"},
        WrongUsage{{"pending", "--add", "nic,fcoe"}, "--add: 'nic,fcoe' is none of nic|fcoe|iscsi"},
        WrongUsage{{"pending", "--add", ""}, "--add: '' is none of nic|fcoe|iscsi"},
        WrongUsage{{"pending", "--add"}, "--add needs a value: nic|fcoe|iscsi"},
        WrongUsage{{"pending", "--add", "nic", "fcoe"}, "not expected: fcoe"},
        WrongUsage{{"pending", "--add", "nic", "--take"}, " excludes --"},
        WrongUsage{{"pending", "--format", "xml"}, "--format: 'xml' is none of text|json"},
        WrongUsage{{"boot-files"},
                   "boot-files needs --override or --rebuild-initramfs, or both ('kvl boot-files --help'"},
        WrongUsage{{"boot-files", "--dry-run"}, "boot-files needs --override or --rebuild-initramfs"},
        WrongUsage{{"boot-files", "--override"}, "--override needs a value: LIST"},
        WrongUsage{{"boot-files", "--override", ""}, "--override: '' is none of be2net,lpfc,be2iscsi"},
        WrongUsage{{"boot-files", "--override", "lpfc,e1000"}, "--override: 'e1000' is none of be2net,lpfc,be2iscsi"},
        WrongUsage{{"boot-files", "--override", "lpfc", "be2net"}, "not expected: be2net"},
        WrongUsage{{"boot-files", "--override", "lpfc", "--restore-on-failure"},
                   "--restore-on-failure requires --rebuild-initramfs"},
        WrongUsage{{"boot-files", "--rebuild-initramfs", "--yes"}, "not expected: --yes"},
        WrongUsage{{"boot-files", "--rebuild-initramfs", "--wait", "-1"}, "--wait: Value -1 not in range"},
        WrongUsage{{"replay"}, "replay needs the name or the directory"},
        WrongUsage{{"replay", "one-port"}, "replay needs a command behind '--'"},
        WrongUsage{{"replay", "one-port", "--"}, "replay needs a command behind '--'"},
        WrongUsage{{"replay", "one-port", "--", "frobnicate"}, "there is no command 'frobnicate'"},
        WrongUsage{{"replay", "one-port", "--", "report", "--format", "json"}, "--format: 'json'"},
        WrongUsage{{"replay", "one-port", "--", "report", "-o", "x"}, "redirect standard output instead"},
        WrongUsage{{"replay", "one-port", "--", "report", "--output=x"}, "redirect standard output instead"},
        WrongUsage{{"replay", "one-port", "--", "report", "-ox"}, "redirect standard output instead"},
        WrongUsage{{"replay", "one-port", "--", "replay", "one-port", "--", "report"}, "a replay can't be replayed"}));

struct RightUsage {
    Arguments arguments;
    const char* fileToWrite;
};

void PrintTo(const RightUsage& row, std::ostream* stream) {
    *stream << kvl::test::quoted(row.arguments);
}

class Accepted : public testing::TestWithParam<RightUsage> {};

TEST_P(Accepted, WithItsFile) {
    EXPECT_EQ(GetParam().fileToWrite, readCommandLine(GetParam().arguments).fileToWrite);
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, Accepted,
    testing::Values(RightUsage{{"report"}, ""}, RightUsage{{"report", "-o", "x"}, "x"},
                    RightUsage{{"report", "--vendor", "8086", "--vendor", "0x14E4"}, ""},
                    RightUsage{{"report", "--all-vendors", "-v"}, ""},
                    RightUsage{{"report", "--skip", "offload,pause", "--skip", "vendor-items"}, ""},
                    RightUsage{{"report", "--section", "common,physical,team,vlan"}, ""},
                    RightUsage{{"report", "--module", "A.b-c_9"}, ""},
                    RightUsage{{"report", "--module", std::string(64, 'x')}, ""},
                    RightUsage{{"report", "--wait", "0"}, ""}, RightUsage{{"report", "--wait", "86400"}, ""},
                    RightUsage{{"tool-check", "--family", "fc", "--format", "json", "--wait", "0", "-v"}, ""},
                    RightUsage{{"pending"}, ""}, RightUsage{{"pending", "--take", "--format", "json"}, ""},
                    RightUsage{{"pending", "--add", "nic", "--add", "fcoe", "--add", "iscsi", "--add", "nic"}, ""},
                    RightUsage{{"boot-files", "--override", "be2net,lpfc,be2iscsi", "--override", "lpfc"}, ""},
                    RightUsage{{"boot-files", "--rebuild-initramfs", "--restore-on-failure", "--dry-run", "--quiet"},
                               ""},
                    RightUsage{{"replay", "one-port", "--", "report"}, ""},
                    RightUsage{{"replay", "one-port", "--root", "dir", "--", "report", "-o", "x"}, ""}));

struct RunCase {
    Arguments arguments;
    int status;
    const char* output;
    const char* errors;
};

void PrintTo(const RunCase& row, std::ostream* stream) {
    *stream << kvl::test::quoted(row.arguments);
}

class RunOfKvl : public testing::TestWithParam<RunCase> {};

TEST_P(RunOfKvl, EndsAsTold) {
    const Outcome outcome = runKvl(GetParam().arguments);
    EXPECT_EQ(GetParam().status, outcome.status);
    EXPECT_THAT(outcome.output, StartsWith(GetParam().output));
    EXPECT_THAT(outcome.errors, StartsWith(GetParam().errors));
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, RunOfKvl,
    testing::Values(RunCase{{"--version"}, 0, "kvl 1", ""}, RunCase{{"--help"}, 0, "Reports the LAN", ""},
                    RunCase{{"report", "--help"}, 0, "Report the LAN", ""},
                    RunCase{{"replay", "--help"}, 0, "Run a command on a recorded server", ""},
                    RunCase{{}, 2, "", "kvl: a command is missing"},
                    RunCase{{"report", "--format", "json"}, 2, "", "kvl: --format: 'json'"},
                    RunCase{
                        {"report", "-o", "/nowhere/x"}, 2, "", "kvl: -o /nowhere/x: there is no directory /nowhere\n"},
                    RunCase{{"report", "-o", "/dev/null"}, 2, "", "kvl: -o /dev/null is no regular file"},
                    RunCase{{"report", "-o", "/"}, 2, "", "kvl: -o / is no regular file"},
                    RunCase{{"replay", "no-such-server", "--", "report"},
                            2,
                            "",
                            "kvl: there is no recorded machine no-such-server. Known are: "}));

TEST(Help, TellsTheExitCodesOfEachCommand) {
    const std::vector<std::pair<Arguments, const char*>> commands = {
        {{"--help"},
         "Exit codes:\n"
         "  0  done, and nothing is missing\n"
         "  2  wrong usage; nothing was done\n"
         "  All others are the command's own: 'kvl COMMAND --help' tells them.\n"},
        {{"report", "--help"},
         "Exit codes:\n"
         "  0  report written\n"
         "  1  report written, but something could not be collected (named on standard error)\n"
         "  2  wrong usage\n"
         "  3  no report: nothing could be collected, the report could not be written, or the run was\n"
         "     refused; the reason stands on standard error\n"},
        {{"replay", "--help"},
         "Exit codes:\n"
         "  0  report written\n"
         "  1  report written, but something could not be collected (named on standard error)\n"
         "  2  wrong usage\n"
         "  3  no report: nothing could be collected, the report could not be written, or the run was\n"
         "     refused; the reason stands on standard error\n"}};
    for (const auto& [arguments, exitCodes] : commands) {
        const std::string help = runKvl(arguments).output;
        EXPECT_THAT(help, HasSubstr(exitCodes));
        EXPECT_THAT(help, HasSubstr("Examples:\n"));
    }
}

TEST(Help, TellsTheExitCodesOfTheCommandsAroundAnUpdate) {
    for (const auto& [command, exitCodes] : std::vector<std::pair<const char*, const char*>>{
             {"tool-check",
              "Exit codes:\n"
              "  0   the tool stands as a silent install left it\n"
              "  2   wrong usage\n"
              "  3   that could not be told; the reason stands on standard error\n"
              "  17  it does not\n"},
             {"pending",
              "Exit codes:\n"
              "  0   listed, marked or taken\n"
              "  2   wrong usage\n"
              "  3   that could not be done, or not wholly; the reason stands on standard error\n"},
             {"boot-files", kvl::provider::kUpdateExitHelp}}) {
        const Outcome outcome = runKvl({command, "--help"});
        EXPECT_EQ(0, outcome.status);
        EXPECT_THAT(outcome.output, HasSubstr(exitCodes));
        EXPECT_THAT(outcome.output, HasSubstr("Examples:\n  kvl " + std::string(command)));
    }
}

TEST(ReplayList, NamesTheRecordedServersWithTheirTitles) {
    const Outcome outcome = runKvl({"replay", "--list"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_THAT(outcome.output, HasSubstr("\nfour-port            Four-port server\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\nsixty-four-port      "));
}

}  // namespace
