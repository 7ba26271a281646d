#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <type_traits>

#include "tests/support/collector_test.h"

namespace kvl::test {
namespace {

const std::string kConstructor = "CNetworkParameter::CNetworkParameter(std::string)";

using Constructor = PrivateMachineTest;
using ExecCommand = CollectorTest;
using GetResultFileName = CollectorTest;
using GetCommandName = CollectorTest;
using RemoveResultFile = CollectorTest;
using Cutters = CollectorTest;

// ---- Constructor ----

TEST_F(Constructor, AsksForTheKernelReleaseAndRemovesTheResultFile) {
    machine.command("/bin/uname -r", "2.6.32-358.el6.x86_64\nsecond line\n");
    CNetworkParameter collector(kModule);
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kConstructor)} + ran("/bin/uname -r") +
                                  Lines{leave(kConstructor, " 2.6.32-358.el6.x86_64")}));
    EXPECT_EQ(machine.commandsRun(), (Lines{"/bin/uname -r"}));
    EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
}

TEST_F(Constructor, ClosesTheResultFileBeforeItRemovesIt) {
    machine.command("/bin/uname -r", "2.6.32\n");
    CNetworkParameter collector(kModule);
    EXPECT_THAT(libc().deletedWhileOpen, testing::IsEmpty());
}

TEST_F(Constructor, LeavesTheKernelReleaseEmptyIfTheCommandFails) {
    machine.command("/bin/uname -r", "text\n", {1});
    CNetworkParameter collector(kModule);
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kConstructor)} + failed("/bin/uname -r") + Lines{leave(kConstructor, " ")}));
    EXPECT_FALSE(collector.isError());
}

TEST_F(Constructor, LeavesTheKernelReleaseEmptyIfTheResultFileCannotBeOpened) {
    machine.command("/bin/uname -r", "2.6.32\n");
    libc().system = [this](const char*) {
        machine.file(resultFile("uname"), "2.6.32\n");
        chmod(resultFile("uname").c_str(), 0);
        return 0;
    };
    CNetworkParameter collector(kModule);
    EXPECT_EQ(TestHost::trace().back(), leave(kConstructor, " "));
}

TEST_F(Constructor, WaitsForAKernelReleaseThatDoesNotCome) {
    machine.command("/bin/uname -r", "");
    CNetworkParameter collector(kModule);
    EXPECT_EQ(TestHost::trace(),
              (Lines{enter(kConstructor)} + printedNothing("/bin/uname -r") + Lines{leave(kConstructor, " ")}));
    EXPECT_EQ(libc().sleeps, 10);
    EXPECT_EQ(contentOf(resultFile("uname")), "");
}

TEST_F(Constructor, TakesAKernelReleaseWithoutALineFeedUpToAZeroByte) {
    machine.command("/bin/uname -r", std::string("2.6.32\0tail", 11));
    CNetworkParameter collector(kModule);
    EXPECT_EQ(TestHost::trace().back(), leave(kConstructor, " 2.6.32"));
}

TEST_F(Constructor, EnablesAllFiveEthtoolGroupsAndNoOther) {
    CNetworkParameter collector(kModule);
    for (int option = 0; option <= 4; ++option) {
        EXPECT_NE(collector.GetEthtoolOptionConf(option), 0);
    }
    EXPECT_EQ(collector.GetEthtoolOptionConf(-1), 0);
    EXPECT_EQ(collector.GetEthtoolOptionConf(5), 0);
}

TEST_F(Constructor, DestructorTracesAndRunsNothing) {
    auto collector = std::make_unique<CNetworkParameter>(kModule);
    forget();
    collector.reset();
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    EXPECT_TRUE(std::has_virtual_destructor_v<CNetworkParameter>);
}

TEST_F(Constructor, IsNeverInError) {
    CNetworkParameter collector(kModule);
    collector.GetNetworkConfigurations();
    EXPECT_FALSE(collector.isError());
}

// ---- ExecCommand ----

TEST_F(ExecCommand, SendsStandardOutputToTheResultFileAndThrowsStandardErrorAway) {
    machine.program("/sbin/tool", "#!/bin/sh\necho out\necho err >&2\n");
    EXPECT_EQ(collector->ExecCommand("/sbin/tool %s %d", "-x", 3), 0);
    EXPECT_EQ(TestHost::trace(), ran("/sbin/tool -x 3"));
    EXPECT_EQ(contentOf(resultFile("tool")), "out\n");
    EXPECT_EQ(libc().sleeps, 0);
}

TEST_F(ExecCommand, RunsExactlyTheLineThatItTraces) {
    Lines lines;
    libc().system = [&](const char* line) {
        lines.emplace_back(line);
        machine.file(resultFile("tool"), "out");
        return 0;
    };
    EXPECT_EQ(collector->ExecCommand("/sbin/tool -a"), 0);
    EXPECT_EQ(lines, (Lines{"/sbin/tool -a > /opt/tarvenn/kvl/provider/tmp/tool 2> /dev/null"}));
}

TEST_F(ExecCommand, FailsForAnExitStatusAndRemovesTheResultFile) {
    machine.command("/sbin/tool", "out\n", {1});
    EXPECT_EQ(collector->ExecCommand("/sbin/tool"), -1);
    EXPECT_EQ(TestHost::trace(), failed("/sbin/tool"));
    EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
    EXPECT_EQ(libc().sleeps, 0);
}

TEST_F(ExecCommand, TracesTheErrorNumberOfThatMoment) {
    libc().system = [](const char*) {
        errno = ENOMEM;
        return 1 << 8;
    };
    EXPECT_EQ(collector->ExecCommand("/sbin/tool"), -1);
    EXPECT_EQ(TestHost::exactTrace().back(),
              "2 int CNetworkParameter::ExecCommand(const char*, ...) [/sbin/tool > "
              "/opt/tarvenn/kvl/provider/tmp/tool 2> /dev/null] command failed! (12)");
}

TEST_F(ExecCommand, FailsForANegativeResultOfSystem) {
    libc().system = [](const char*) { return -1; };
    EXPECT_EQ(collector->ExecCommand("/sbin/tool"), -1);
    EXPECT_EQ(TestHost::trace(), failed("/sbin/tool"));
}

TEST_F(ExecCommand, FailsForAMissingProgram) {
    EXPECT_EQ(collector->ExecCommand("/sbin/absent -a"), -1);
    EXPECT_EQ(TestHost::trace(), failed("/sbin/absent -a"));
    EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
}

TEST_F(ExecCommand, WaitsTenSecondsForACommandThatPrintsNothing) {
    machine.command("/sbin/tool", "");
    EXPECT_EQ(collector->ExecCommand("/sbin/tool"), -1);
    EXPECT_EQ(TestHost::trace(), printedNothing("/sbin/tool"));
    EXPECT_EQ(libc().sleeps, 10);
    EXPECT_EQ(contentOf(resultFile("tool")), "");
}

TEST_F(ExecCommand, WaitsTenSecondsForAResultFileThatIsNotThere) {
    libc().system = [](const char*) { return 0; };
    EXPECT_EQ(collector->ExecCommand("/sbin/tool"), -1);
    EXPECT_EQ(TestHost::trace(), printedNothing("/sbin/tool"));
    EXPECT_EQ(libc().sleeps, 10);
}

TEST_F(ExecCommand, FailsThoughOutputShowsUpAfterTheFirstLook) {
    machine.command("/sbin/tool", "");
    for (const int late : {1, 3, 10}) {
        forget();
        libc().onSleep = [&](int number) {
            if (number == late) {
                std::ofstream(resultFile("tool")) << "late\n";
            }
        };
        EXPECT_EQ(collector->ExecCommand("/sbin/tool"), -1);
        EXPECT_EQ(TestHost::trace(), printedNothing("/sbin/tool"));
        EXPECT_EQ(libc().sleeps, late);
        EXPECT_EQ(contentOf(resultFile("tool")), "late\n");
    }
}

TEST_F(ExecCommand, TakesACommandThatASignalEndedAsASuccess) {
    libc().system = [this](const char*) {
        machine.file(resultFile("tool"), "out");
        return SIGKILL;
    };
    EXPECT_EQ(collector->ExecCommand("/sbin/tool"), SIGKILL);
    EXPECT_EQ(TestHost::trace().back(), leave("int CNetworkParameter::ExecCommand(const char*, ...)", ", rc=9"));
    EXPECT_EQ(contentOf(resultFile("tool")), "out");
}

TEST_F(ExecCommand, WaitsAlsoForAKilledCommandWithoutOutput) {
    libc().system = [](const char*) { return SIGTERM; };
    EXPECT_EQ(collector->ExecCommand("/sbin/tool"), -1);
    EXPECT_EQ(libc().sleeps, 10);
}

TEST_F(ExecCommand, NamesTheResultFileOfAPipelineAfterItsFirstCommand) {
    machine.command("/sbin/lspci -m", "00:1f.0 a\n03:00.0 b\n");
    EXPECT_EQ(collector->ExecCommand("/sbin/lspci -m | grep %s", "03:00.0"), 0);
    EXPECT_EQ(TestHost::trace(), ran("/sbin/lspci -m | grep 03:00.0"));
    EXPECT_EQ(contentOf(resultFile("lspci")), "03:00.0 b\n");
}

TEST_F(ExecCommand, RunsACommandLineOf255Characters) {
    machine.program("/sbin/tool", "#!/bin/sh\necho $#\n");
    const std::string argument(255 - std::string("/sbin/tool ").size(), 'x');
    EXPECT_EQ(collector->ExecCommand("/sbin/tool %s", argument.c_str()), 0);
    EXPECT_EQ(contentOf(resultFile("tool")), "1\n");
}

TEST_F(ExecCommand, OverwritesTheResultFileOfACommandOfTheSameName) {
    machine.file(resultFile("tool"), "a long result that another command left\n");
    machine.command("/sbin/tool", "new\n");
    EXPECT_EQ(collector->ExecCommand("/sbin/tool"), 0);
    EXPECT_EQ(contentOf(resultFile("tool")), "new\n");
}

TEST_F(ExecCommand, DoesNotRunALongerCommandLine) {
    machine.command("/sbin/earlier", "kept\n");
    EXPECT_EQ(collector->ExecCommand("/sbin/earlier"), 0);
    forget();
    bool called = false;
    libc().system = [&](const char*) {
        called = true;
        return 0;
    };
    const std::string line = "/sbin/tool " + std::string(256 - std::string("/sbin/tool ").size(), 'x');
    EXPECT_EQ(collector->ExecCommand("%s", line.c_str()), -1);
    EXPECT_FALSE(called);
    const std::string signature = "int CNetworkParameter::ExecCommand(const char*, ...)";
    EXPECT_EQ(TestHost::exactTrace(),
              (Lines{enter(signature), error(signature, "[" + line + "] command failed! (7)")}));
    EXPECT_EQ(contentOf(resultFile("earlier")), "kept\n");
    EXPECT_EQ(collector->RemoveResultFile(), 0);
    EXPECT_EQ(contentOf(resultFile("earlier")), "(absent)");
    EXPECT_EQ(libc().sleeps, 0);
}

// ---- GetResultFileName, GetCommandName, RemoveResultFile, isFileExist ----

TEST_F(GetResultFileName, NamesTheFileAfterTheCommandAlone) {
    const struct {
        const char* line;
        std::string command;
        std::string file;
    } rows[] = {
        {"/bin/cat /etc/resolv.conf", "/bin/cat", "cat"},
        {"/usr/sbin/ethtool -i eth0", "/usr/sbin/ethtool", "ethtool"},
        {"/sbin/route", "/sbin/route", "route"},
        {"ethtool -i a/b", "ethtool", "ethtool"},
        {"", "", ""},
        {" leading", "", ""},
    };
    for (const auto& row : rows) {
        std::string command;
        std::string file;
        collector->GetResultFileName(row.line, command, file);
        EXPECT_EQ(command, row.command);
        EXPECT_EQ(file, "/opt/tarvenn/kvl/provider/tmp/" + row.file);
    }
}

TEST_F(GetCommandName, CutsByTheFirstSlash) {
    const struct {
        const char* line;
        std::string name;
    } rows[] = {
        {"/bin/uname -r", "bin/uname -"},
        {"uname -r", "uname -r"},  // no slash: all of it
        {"/bin/uname", "bin/uname"},
        {"a/b c", "b c"},
        {"ls -l /etc/hosts", "etc/hosts"},  // the length wraps around
        {"ls /etc/hosts", ""},              // by one less, and it is 0
        {"/a b", "a b"},
    };
    for (const auto& row : rows) {
        std::string name = "earlier";
        collector->GetCommandName(row.line, name);
        EXPECT_EQ(name, row.name) << row.line;
    }
}

TEST_F(RemoveResultFile, GivesWhatUnlinkReturned) {
    machine.command("/sbin/tool", "out");
    collector->ExecCommand("/sbin/tool");
    EXPECT_EQ(collector->RemoveResultFile(), 0);
    EXPECT_EQ(collector->RemoveResultFile(), -1);
}

TEST_F(CollectorTest, IsFileExistAsksStat) {
    machine.directory("/tmp/directory");
    EXPECT_TRUE(collector->isFileExist("/tmp/directory"));
    EXPECT_TRUE(collector->isFileExist("/dev/null"));
    EXPECT_EQ(symlink("/dev/null", "/tmp/link") + symlink("/tmp/absent", "/tmp/dangling"), 0);
    EXPECT_TRUE(collector->isFileExist("/tmp/link"));
    EXPECT_FALSE(collector->isFileExist("/tmp/dangling"));
    EXPECT_FALSE(collector->isFileExist("/tmp/absent"));
}

// ---- Cutters ----

TEST_F(Cutters, GetColonSeparatedValueCutsBehindTheFirstColonAndBlanks) {
    EXPECT_EQ(collector->GetColonSeparatedValue("addr:10.0.0.1"), "10.0.0.1");
    EXPECT_EQ(collector->GetColonSeparatedValue("key:   a b:c "), "a b:c ");
    EXPECT_EQ(collector->GetColonSeparatedValue("key:\tvalue"), "\tvalue");
    EXPECT_EQ(collector->GetColonSeparatedValue("key:"), "");
    EXPECT_EQ(collector->GetColonSeparatedValue("key:   "), "");
    EXPECT_EQ(collector->GetColonSeparatedValue(":"), "");
}

TEST_F(Cutters, GetColonSeparatedValueRaisesWithoutAColon) {
    for (const char* text : {"", "key", "key value"}) {
        EXPECT_EQ(outOfRangeOf([&] { collector->GetColonSeparatedValue(text); }), "basic_string::substr") << text;
    }
}

TEST_F(Cutters, GetColonSeparatedValueWithAStartPassesOverEarlierColons) {
    EXPECT_EQ(collector->GetColonSeparatedValue("RX: off  TX: on", 4), "on");
    EXPECT_EQ(collector->GetColonSeparatedValue("RX: off  TX: on", 2), "off  TX: on");
    EXPECT_EQ(outOfRangeOf([&] { collector->GetColonSeparatedValue("RX: off", 3); }), "basic_string::substr");
}

TEST_F(Cutters, GetStrGivesTheFieldBehindTheIndexthSeparator) {
    const struct {
        char separator;
        int index;
        std::string text;
        std::string field;
    } rows[] = {
        {'"', 3, "03:00.0 \"0200\" \"8086\" -r01 \"15\"", "8086"},
        {'"', 3, "03:00.0 \"0200\"", ""},
        {'"', 5, "03:00.0 \"0200\" \"8086\" -r01 \"15\"", "15"},
        {',', 0, "a,b", ""},      // starts at position 1, where a separator stands
        {',', 0, "abc,d", "bc"},  // the first character never belongs to the field
        {',', -1, "abc,d", "bc"},
        {',', 1, "a,b,c", "b"},
        {',', 2, "a,b,c", "c"},
        {',', 3, "a,b,c", ""},
        {',', 1, ",a,b", "b"},  // the first character is no separator
        {',', 1, "a,", ""},
        {',', 1, "", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(collector->GetStr(row.separator, row.index, row.text), row.field) << row.index << " " << row.text;
    }
    EXPECT_EQ(outOfRangeOf([&] { collector->GetStr(',', 0, ""); }), "basic_string::substr");
}

TEST_F(Cutters, GetNextStrTakesWordsOffTheText) {
    std::string text = "  a  b";
    EXPECT_EQ(collector->GetNextStr(text), "a");
    EXPECT_EQ(text, "b");
    EXPECT_EQ(collector->GetNextStr(text), "b");
    EXPECT_EQ(text, "");
    EXPECT_EQ(collector->GetNextStr(text), "");
}

TEST_F(Cutters, GetNextStrSeparatesByBlanksAlone) {
    std::string text = "a\tb c  ";
    EXPECT_EQ(collector->GetNextStr(text), "a\tb");
    EXPECT_EQ(collector->GetNextStr(text), "c");
    EXPECT_EQ(text, "");
    text = "   ";
    EXPECT_EQ(collector->GetNextStr(text), "");
    EXPECT_EQ(text, "");
}

TEST_F(Cutters, ToStrGivesDecimalText) {
    EXPECT_EQ(collector->toStr(0), "0");
    EXPECT_EQ(collector->toStr(-1), "-1");
    EXPECT_EQ(collector->toStr(1234567), "1234567");
}

}  // namespace
}  // namespace kvl::test
