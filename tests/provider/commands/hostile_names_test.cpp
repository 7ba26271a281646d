#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/provider/kvl_program.h"

namespace {

namespace fs = std::filesystem;
using kvl::test::copyRecording;
using kvl::test::Outcome;
using kvl::test::readFile;
using kvl::test::runKvl;
using kvl::test::runOutside;
using kvl::test::ScratchDirectory;
using testing::HasSubstr;
using testing::Not;

std::string replaced(std::string text, const std::string& old, const std::string& next) {
    for (auto found = text.find(old); found != std::string::npos; found = text.find(old, found + next.size())) {
        text.replace(found, old.size(), next);
    }
    return text;
}

/// The server with one port, whose port has another name.
class HostileName : public testing::TestWithParam<std::string> {
protected:
    HostileName() {
        const std::string commands = recording + "/commands/";
        rewrite(commands + "sbin/ifconfig/-a");
        rewrite(commands + "sbin/route/(none)");
        const std::string ethtool = commands + "usr/sbin/ethtool/";
        for (const char* option : {"-i", "-k", "-a", "-g", "-c"}) {
            fs::rename(ethtool + option + " eth0", ethtool + option + " " + GetParam());
        }
        const std::string files = recording + "/files/etc/sysconfig/network-scripts/ifcfg-";
        const std::string settings = readFile(files + "eth0");
        fs::remove(files + "eth0");
        scratch.write((files + GetParam()).substr(scratch.path().size() + 1),
                      replaced(settings, "DEVICE=\"eth0\"\n", ""));
    }

    void rewrite(const std::string& file) const {
        scratch.write(file.substr(scratch.path().size() + 1), replaced(readFile(file), "eth0", GetParam()));
    }

    Outcome report(const std::vector<std::string>& more = {}) const {
        std::vector<std::string> words = {"replay", recording, "--root", root, "--", "report"};
        words.insert(words.end(), more.begin(), more.end());
        return runKvl(words);
    }

    const ScratchDirectory scratch;
    const std::string recording = copyRecording("one-port", scratch);
    const std::string root = scratch / "root";
};

TEST_P(HostileName, IsReportedAndNeverRunByAShell) {
    const Outcome outcome = report();
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("", outcome.errors);
    const std::string shown = replaced(GetParam(), "\x1b", " ");
    EXPECT_EQ(replaced(runKvl({"replay", "one-port", "--", "report"}).output, "Port eth0", "Port " + shown),
              outcome.output);
    const std::string log = readFile(root + "/.machine/log");
    for (const char* option : {"-i", "-k", "-a", "-g", "-c"}) {
        EXPECT_THAT(log, HasSubstr(std::string("/usr/sbin/ethtool ") + option + " " + GetParam() + "\n"));
    }
    EXPECT_FALSE(fs::exists(root + "/g")) << "a shell has read the name";
}

TEST_P(HostileName, StandsInAWellFormedDocument) {
    const Outcome outcome = report({"--format", "xml", "-o", "/tmp/report.xml"});
    EXPECT_EQ(0, outcome.status);
    const Outcome name =
        runOutside("xmllint --xpath 'string(//physical_port/@interface_name)' " + root + "/tmp/report.xml");
    EXPECT_EQ(replaced(GetParam(), "\x1b", " ") + "\n", name.output);
}

TEST_P(HostileName, IsCleanedInMessages) {
    scratch.write("one-port/commands/usr/sbin/ethtool/-c " + GetParam() + ".status", "1");
    const Outcome outcome = report();
    EXPECT_EQ(1, outcome.status);
    const std::string shown = replaced(GetParam(), "\x1b", " ");
    EXPECT_EQ("kvl: " + shown + ": coalesce settings: /usr/sbin/ethtool -c " + shown + " failed\n", outcome.errors);
    EXPECT_THAT(report({"-v"}).errors, Not(HasSubstr("\x1b")));
}

INSTANTIATE_TEST_SUITE_P(OfThePort, HostileName,
                         testing::Values("eth;id>g", "eth$(id>g)", "eth`id>g`", "eth|id>g", "eth&id>g&", "eth<g",
                                         "eth'\"g", "eth\x1b[31m", "eth*", "eth\\g"));

TEST(HostileBusInfo, IsNotHandedOnAndTheMissingPortIsNamed) {
    for (const std::string busInfo : {"0000:;id>g", "0000:`id>g`", "0000:$(id)"}) {
        const ScratchDirectory scratch;
        const std::string recording = copyRecording("one-port", scratch);
        const std::string root = scratch / "root";
        const std::string answer = "one-port/commands/usr/sbin/ethtool/-i eth0";
        scratch.write(answer, replaced(readFile(scratch / answer), "0000:01:00.0", busInfo));
        const Outcome outcome = runKvl({"replay", recording, "--root", root, "--", "report"});
        EXPECT_EQ(1, outcome.status);
        EXPECT_EQ(
            "kvl: eth0: not in the report: its bus information '" + busInfo + "' is not the address of a PCI device\n",
            outcome.errors);
        EXPECT_THAT(readFile(root + "/.machine/log"), Not(HasSubstr("lspci")));
        EXPECT_FALSE(fs::exists(root + "/g"));
    }
}

}  // namespace
