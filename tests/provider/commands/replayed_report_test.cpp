#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/provider/kvl_program.h"

namespace {

namespace fs = std::filesystem;
using kvl::test::copyRecording;
using kvl::test::Outcome;
using kvl::test::quoted;
using kvl::test::readFile;
using kvl::test::replayKvl;
using kvl::test::rootWithKvl;
using kvl::test::runInside;
using kvl::test::runKvl;
using kvl::test::runOnTerminal;
using kvl::test::runOutside;
using kvl::test::ScratchDirectory;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string kResultDirectory = "/opt/tarvenn/kvl/provider/tmp";

std::string expected(const std::string& file) {
    return readFile(std::string(KVL_EXPECTED_FOLDER) + "/" + file);
}

/// A one-port server of which a test changes what a command prints, or how it ends.
class ChangedServer : public testing::Test {
protected:
    void print(const std::string& command, const std::string& output) const {
        scratch.write("one-port/commands/" + command, output);
    }
    void end(const std::string& command, const std::string& ending) const { print(command + ".status", ending); }
    Outcome replay(const std::vector<std::string>& arguments = {"report"}) const {
        return replayKvl(recording, arguments);
    }

    const ScratchDirectory scratch;
    const std::string recording = copyRecording("one-port", scratch);
};

TEST(ReplayedReport, ShowsTheFourPortServerAsText) {
    const Outcome outcome = replayKvl("four-port", {"report"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ(expected("four_port_report.txt"), outcome.output);
    EXPECT_EQ("", outcome.errors);
}

TEST(ReplayedReport, HasTheBareMachineWithoutTranslations) {
    const Outcome outcome = replayKvl("four-port", {"report", "--translate", "never"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ(expected("four_port_report_untranslated.txt"), outcome.output);
    EXPECT_EQ("", outcome.errors);
}

TEST(ReplayedReport, ShowsTheOnePortServerAsText) {
    const Outcome outcome = replayKvl("one-port", {"report"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ(expected("one_port_report.txt"), outcome.output);
    EXPECT_EQ("", outcome.errors);
}

TEST(ReplayedReport, IsADocumentThatXmlReadersAccept) {
    for (const std::string machine : {"four-port", "one-port", "sixty-four-port", "debian-12-guest"}) {
        const Outcome outcome = runOutside(std::string(KVL_PROGRAM) + " replay " + machine +
                                           " -- report --format xml | xmllint --xpath 'count(//physical_port)' -");
        EXPECT_EQ(0, outcome.status) << outcome.errors;
        const std::string ports = machine == "sixty-four-port" ? "64" : machine == "four-port" ? "4" : "";
        EXPECT_THAT(outcome.output, StartsWith(ports));
    }
}

TEST(ReplayedReport, TellsThatNothingCouldBeCollected) {
    const Outcome outcome = replayKvl("every-command-fails", {"report"});
    EXPECT_EQ(3, outcome.status);
    EXPECT_EQ("", outcome.output);
    EXPECT_EQ("kvl: nothing could be collected: /sbin/ifconfig -a failed\n", outcome.errors);
}

TEST(ReplayedReport, IsLimitedToTheVendorsThatAreNamed) {
    const std::vector<std::string> report = {"report", "--section", "physical", "--vendor"};
    const auto portsOf = [&](std::vector<std::string> vendors) {
        vendors.insert(vendors.begin(), report.begin(), report.end());
        return replayKvl("four-port", vendors).output;
    };
    EXPECT_THAT(portsOf({"8086"}), AllOf(HasSubstr("Port eth0"), HasSubstr("Port eth1"), Not(HasSubstr("eth2"))));
    EXPECT_THAT(portsOf({"0x14E4"}), AllOf(HasSubstr("Port eth2"), HasSubstr("Port eth3"), Not(HasSubstr("eth0"))));
    EXPECT_THAT(portsOf({"8086", "--vendor", "14e4"}), AllOf(HasSubstr("Port eth0"), HasSubstr("Port eth3")));
    EXPECT_EQ("Ports: none\n", portsOf({"1af4"}));
}

TEST(ReplayedReport, HasTheChosenSectionsInTheirOrder) {
    const Outcome outcome = replayKvl("four-port", {"report", "--section", "vlan,common"});
    EXPECT_THAT(outcome.output, StartsWith("DNS suffixes: example.com, lab.example.com\n\nVLAN bond0.200 "));
    EXPECT_THAT(outcome.output, AllOf(Not(HasSubstr("Port ")), Not(HasSubstr("Team "))));
}

TEST(ReplayedReport, ThatCantBePrintedIsNone) {
    const Outcome outcome = runOutside(quoted({KVL_PROGRAM, "replay", "one-port", "--", "report"}) + " >/dev/full");
    EXPECT_EQ(3, outcome.status);
    EXPECT_EQ(
        "kvl: the report could not be written to standard output: see whether it can be written and there is room for "
        "it\n",
        outcome.errors);
}

TEST(KeptRoot, IsADirectoryOfItsOwn) {
    const ScratchDirectory scratch;
    scratch.write("mine/file", "mine");
    const Outcome outcome = runKvl({"replay", "--root", scratch / "mine", "one-port", "--", "report"});
    EXPECT_EQ(2, outcome.status);
    EXPECT_EQ("", outcome.output);
    EXPECT_EQ("kvl: --root " + scratch / "mine" +
                  ": the directory holds other files than a recorded server's: name an empty one, or one that isn't "
                  "there\n",
              outcome.errors);
    EXPECT_EQ((std::map<std::string, std::string>{{"file", "mine"}}), kvl::test::readTree(scratch / "mine"));
}

TEST(KeptRoot, MayBeEmptyOrOneOfAnEarlierReplay) {
    const ScratchDirectory scratch;
    fs::create_directory(scratch / "empty");
    for (int replay = 0; replay < 2; ++replay) {
        EXPECT_EQ(0, runKvl({"replay", "--root", scratch / "empty", "one-port", "--", "report"}).status);
    }
}

TEST(ReplayedReport, RunsNoCommandForSkippedGroups) {
    const ScratchDirectory scratch;
    const std::string root = scratch / "root";
    const Outcome outcome = runKvl(
        {"replay", "one-port", "--root", root, "--", "report", "--skip", "offload,pause,ring,coalesce,vendor-items"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_THAT(outcome.output, AllOf(HasSubstr("  MTU "), Not(HasSubstr("  Offload"))));
    const std::string log = readFile(root + "/.machine/log");
    EXPECT_THAT(log, HasSubstr("/usr/sbin/ethtool -i eth0\n"));
    for (const char* option : {"-k", "-a", "-g", "-c"}) {
        EXPECT_THAT(log, Not(HasSubstr(std::string("/usr/sbin/ethtool ") + option)));
    }
}

TEST_F(ChangedServer, HasTheVendorItemsOfTheModule) {
    scratch.write("one-port/files/opt/tarvenn/kvl/tmp/LAN_COMMON/acme/eth02", "02:00:00:00:00:99\n");
    EXPECT_THAT(replay({"report", "--module", "acme"}).output, HasSubstr("  Physical MAC      02:00:00:00:00:99\n"));
    EXPECT_THAT(replay().output, Not(HasSubstr("Physical MAC")));
}

TEST(ReplayedReport, GoesToAFileWithOneLineOnWhatItHolds) {
    const ScratchDirectory scratch;
    const std::string root = scratch / "root";
    const Outcome text = runKvl({"replay", "four-port", "--root", root, "--", "report", "-o", "/tmp/report.txt"});
    EXPECT_EQ(0, text.status);
    EXPECT_EQ("/tmp/report.txt: 4 ports, 2 teams, 2 VLANs (vendors 8086, 14e4)\n", text.output);
    EXPECT_EQ(expected("four_port_report.txt"), readFile(root + "/tmp/report.txt"));

    const Outcome xml = runKvl({"replay", "four-port", "--root", root, "--", "report", "-o", "/tmp/report.xml",
                                "--format", "xml", "--vendor", "8086", "--section", "physical"});
    EXPECT_EQ(0, xml.status);
    EXPECT_EQ("/tmp/report.xml: 2 ports (vendor 8086)\n", xml.output);
    EXPECT_EQ(0, runOutside("xmllint --noout " + root + "/tmp/report.xml").status);
    EXPECT_TRUE(fs::is_empty(root + kResultDirectory));
}

TEST_F(ChangedServer, ReportsTheRestAndNamesWhatFailed) {
    end("usr/sbin/ethtool/-c eth0", "1");
    end("sbin/route/(none)", "2");
    const Outcome outcome = replay();
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ(
        "kvl: eth0: coalesce settings: /usr/sbin/ethtool -c eth0 failed\n"
        "kvl: IPv4 default routes: /sbin/route failed\n",
        outcome.errors);
    EXPECT_THAT(outcome.output, AllOf(HasSubstr("Port eth0"), HasSubstr("  Coalesce          -\n")));
}

TEST_F(ChangedServer, NamesACommandThatASignalEnded) {
    end("usr/sbin/ethtool/-g eth0", "signal 9");
    const Outcome outcome = replay();
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("kvl: eth0: ring sizes: /usr/sbin/ethtool -g eth0 was ended by signal 9\n", outcome.errors);
}

TEST_F(ChangedServer, LeavesTheFileAloneWhereNothingCouldBeCollected) {
    const std::string root = scratch / "root";
    const auto report = [&] {
        return runKvl({"replay", recording, "--root", root, "--", "report", "-o", "/tmp/report.txt"});
    };
    EXPECT_EQ(0, report().status);
    const std::string before = readFile(root + "/tmp/report.txt");
    std::ofstream(root + "/.machine/commands/sbin/ifconfig/-a.status") << "1";
    EXPECT_EQ(3, report().status);
    EXPECT_EQ(before, readFile(root + "/tmp/report.txt"));
}

TEST_F(ChangedServer, IsRefusedWithoutInterfaces) {
    print("sbin/ifconfig/-a",
          "lo        Link encap:Local Loopback  \n          inet addr:127.0.0.1  Mask:255.0.0.0\n\n");
    const Outcome outcome = replay();
    EXPECT_EQ(3, outcome.status);
    EXPECT_EQ("kvl: nothing could be collected: /sbin/ifconfig -a told no interface\n", outcome.errors);
}

TEST_F(ChangedServer, TellsInOneSentenceWhoseOutputHasNotTheExpectedForm) {
    print("usr/sbin/ethtool/-i eth0", "driver\n");
    const std::string root = scratch / "root";
    const Outcome outcome = runKvl({"replay", recording, "--root", root, "--", "report"});
    EXPECT_EQ(3, outcome.status);
    EXPECT_EQ("", outcome.output);
    EXPECT_EQ("kvl: no report: the output of /usr/sbin/ethtool -i eth0 does not have the expected form\n",
              outcome.errors);
    EXPECT_TRUE(fs::is_empty(root + kResultDirectory)) << "its result file is removed";
}

TEST_F(ChangedServer, IsToldOfTheNewerFormOfIfconfig) {
    print("sbin/ifconfig/-a", "eth0: flags=4163<UP>  mtu 1500\n        inet 10.0.0.1  netmask 255.0.0.0\n\n");
    const Outcome outcome = replay({"report", "--translate", "never"});
    EXPECT_EQ(3, outcome.status);
    EXPECT_THAT(outcome.errors, HasSubstr("'--translate auto' reads the form of newer systems too"));
}

TEST(ReplayedReport, ShowsTheTraceOnRequest) {
    const Outcome outcome = replayKvl("one-port", {"report", "-v"});
    EXPECT_EQ(expected("one_port_report.txt"), outcome.output);
    EXPECT_THAT(outcome.errors,
                StartsWith("boundary  [ENTER] CNetworkParameter::CNetworkParameter(std::string)\n"
                           "boundary  [ENTER] int CNetworkParameter::ExecCommand(const char*, ...)\n"
                           "flow      int CNetworkParameter::ExecCommand(const char*, ...) [/bin/uname -r > "));
}

TEST(ReplayedReport, ShowsProgressOnATerminal) {
    const std::string shown = runOnTerminal({"replay", "four-port", "--", "report", "--section", "common"});
    EXPECT_THAT(shown, HasSubstr("\r/sbin/ifconfig -a\r"));
    EXPECT_THAT(shown, HasSubstr("\reth1 (6 of 11): /usr/sbin/ethtool -c eth1"));
    EXPECT_THAT(shown, HasSubstr(" \rDNS suffixes: ")) << "the line is gone before the report comes";
}

TEST(ReplayedReport, ShowsNoProgressWhenQuiet) {
    EXPECT_EQ("DNS suffixes: example.com\r\n",
              runOnTerminal({"replay", "one-port", "--", "report", "--section", "common", "--quiet"}));
}

TEST_F(ChangedServer, IsNotAskedWhereOthersCanUseTheResultDirectory) {
    const std::string root = scratch / "root";
    const std::vector<std::string> report = {"replay", recording, "--root", root, "--", "report"};
    EXPECT_EQ(0, runKvl(report).status);
    fs::permissions(root + kResultDirectory, fs::perms::all);
    const Outcome outcome = runKvl(report);
    EXPECT_EQ(3, outcome.status);
    EXPECT_EQ("", outcome.output);
    EXPECT_EQ("kvl: the result directory " + kResultDirectory + " is open to other users: 'chmod 700 " +
                  kResultDirectory + "'\n",
              outcome.errors);
}

TEST(ReplayedReport, GivesUpWhenAnotherCollectionGoesOn) {
    auto options = rootWithKvl(std::string(KVL_MACHINES_FOLDER) + "/one-port");
    options.binds.push_back({"/usr/bin/flock"});
    const Outcome outcome = runInside(options, kvl::test::lockingInside() + KVL_PROGRAM + " report --wait 0");
    EXPECT_EQ(3, outcome.status);
    EXPECT_EQ(
        "kvl: another kvl, or a command that one has left behind, still works on this machine: try again when it has "
        "ended, or wait longer with --wait SECONDS\n",
        outcome.errors);
}

TEST(ReplayedReport, RunsOneCollectionAtATime) {
    const std::string program = KVL_PROGRAM;
    const Outcome outcome = runInside(
        rootWithKvl(std::string(KVL_MACHINES_FOLDER) + "/one-port"),
        "cd /tmp; " + program + " report >1 2>errors1 & first=$!; " + program + " report >2 2>errors2; second=$?; " +
            "wait $first; echo $? $second; cat 1 2; cat errors1 errors2 | grep -v 'another kvl works'");
    EXPECT_EQ("0 0\n" + expected("one_port_report.txt") + expected("one_port_report.txt"), outcome.output)
        << outcome.errors;
}

TEST(ReplayedReport, IsForAnOrdinaryUserToo) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "all tests run as an ordinary user here";
    }
    const std::string asNobody = "setpriv --reuid 65534 --regid 65534 --clear-groups ";
    if (runOutside(asNobody + "test -x " + KVL_PROGRAM + " -a -r " + KVL_MACHINES_FOLDER).status != 0) {
        GTEST_SKIP() << "the build folder is closed to other users";
    }
    const Outcome outcome = runOutside(asNobody + KVL_PROGRAM + " replay four-port -- report");
    if (outcome.errors.find("could not make the private root") != std::string::npos) {
        GTEST_SKIP() << "ordinary users can't make private roots here";
    }
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ(expected("four_port_report.txt"), outcome.output);
}

}  // namespace
