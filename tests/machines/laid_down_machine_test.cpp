#include "machines/laid_down_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

#include "machines/private_root.h"

namespace kvl::test {
namespace {

using machines::Ending;
using machines::LaidDownMachine;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

struct Answer {
    std::string output;
    int status;
};

Answer ask(const std::string& commandLine) {
    FILE* pipe = popen(commandLine.c_str(), "r");
    std::string output;
    std::array<char, 256> part{};
    for (std::size_t count = 0; (count = fread(part.data(), 1, part.size(), pipe)) > 0;) {
        output.append(part.data(), count);
    }
    const int status = pclose(pipe);
    return {output, WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status)};
}

std::string readFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

// Every path in the root but procfs, devices, libraries and this executable, with type, mode and text or target.
std::set<std::string> wholeRoot() {
    std::set<std::string> paths;
    const std::set<std::string> skipped = {"/.proc", "/dev", "/usr/lib", "/usr/lib64"};
    fs::recursive_directory_iterator entry("/", fs::directory_options::skip_permission_denied);
    for (; entry != fs::recursive_directory_iterator(); ++entry) {
        const std::string path = entry->path().string();
        if (skipped.count(path) > 0) {
            entry.disable_recursion_pending();
            continue;
        }
        struct stat status {};
        lstat(path.c_str(), &status);
        const std::string content = S_ISLNK(status.st_mode) ? fs::read_symlink(path).string()
                                    : S_ISREG(status.st_mode) && status.st_size < 1 << 14 ? readFile(path)
                                                                                          : "";
        paths.insert(path + " " + std::to_string(status.st_mode) + " " + content);
    }
    return paths;
}

class LaidDown : public testing::Test {
protected:
    LaidDown() { machine_.reset(); }

    LaidDownMachine machine_;
};

TEST_F(LaidDown, CommandPrintsAndEndsAsTold) {
    machine_.command("/sbin/ifconfig -a", std::string("a\0b\xff", 4));
    machine_.command("/usr/sbin/ethtool -c eth0", "Coalesce\n", {82});
    machine_.command("/sbin/route", "", Ending::bySignal(9));
    machine_.command("/bin/cat /etc/resolv.conf", "not the file\n");
    EXPECT_EQ(ask("/sbin/ifconfig -a").output, std::string("a\0b\xff", 4));
    EXPECT_EQ(ask("ethtool -c eth0").output, "Coalesce\n");
    EXPECT_EQ(ask("ethtool -c eth0").status, 82);
    EXPECT_EQ(ask("exec /sbin/route").status, 128 + 9);
    EXPECT_EQ(ask("/bin/cat /etc/resolv.conf").output, "not the file\n");
}

TEST_F(LaidDown, CommandReplacesWhatWasLaidDownForTheSameLine) {
    machine_.command("/bin/uname -r", "1\n", {3});
    machine_.command("/bin/uname -r", "2\n");
    EXPECT_EQ(ask("uname -r").output, "2\n");
    EXPECT_EQ(ask("uname -r").status, 0);
}

TEST_F(LaidDown, AnyCommandAnswersWhateverHasNoEntryOfItsOwn) {
    machine_.anyCommand("/sbin/lspci", "any\n", {4});
    machine_.command("/sbin/lspci -m", "list\n");
    EXPECT_EQ(ask("lspci -mns 02:00.0").output, "any\n");
    EXPECT_EQ(ask("lspci").status, 4);
    EXPECT_EQ(ask("lspci -m").output, "list\n");
}

TEST_F(LaidDown, CommandOfAnotherDirectoryIsMadeWithIt) {
    machine_.command("/usr/sbin/manager/tool Version", "1.2\n");
    EXPECT_EQ(ask("/usr/sbin/manager/tool Version").output, "1.2\n");
}

TEST_F(LaidDown, CommandNeedsAnAbsolutePath) {
    EXPECT_THROW(machine_.command("ifconfig -a", ""), std::invalid_argument);
    EXPECT_THROW(machine_.command("", ""), std::invalid_argument);
}

TEST_F(LaidDown, ProgramDoesWhatItsTextSays) {
    machine_.program("/bin/uname", "#!/bin/sh\necho \"$# $1\" >>/etc/calls\nexit 6\n");
    EXPECT_EQ(ask("uname -r").status, 6);
    EXPECT_EQ(readFile("/etc/calls"), "1 -r\n");
}

TEST_F(LaidDown, ProgramAndCommandTakeEachOthersPlace) {
    machine_.command("/bin/uname -r", "stand-in\n");
    machine_.program("/bin/uname", "#!/bin/sh\necho program\n");
    EXPECT_EQ(ask("uname -r").output, "program\n");
    EXPECT_THAT(readFile("/.machine/stand-in"), HasSubstr("Stands in"));
    machine_.command("/bin/uname -r", "stand-in\n");
    EXPECT_EQ(ask("uname -r").output, "stand-in\n");
}

TEST_F(LaidDown, DroppedCommandIsAMissingProgram) {
    machine_.command("/sbin/route", "table\n");
    machine_.dropCommand("/sbin/route");
    machine_.dropCommand("/bin/cat");
    machine_.dropCommand("/bin/never-there");
    EXPECT_EQ(ask("/sbin/route 2>/dev/null").status, 127);
    EXPECT_EQ(ask("/bin/cat /etc/passwd 2>/dev/null").status, 127);
    EXPECT_THAT(machine_.commandsRun(), IsEmpty());
}

TEST_F(LaidDown, FileIsWrittenWithTheDirectoriesAboveIt) {
    machine_.file("/etc/sysconfig/network-scripts/ifcfg-eth0", "ONBOOT=yes\n");
    machine_.file("/proc/net/vlan/config", "one\n");
    machine_.file("/proc/net/vlan/config", "two\n");
    machine_.file("/proc/cpuinfo", "processor : 0\n");
    machine_.directory("/proc/net/bonding");
    EXPECT_EQ(ask("cat /etc/sysconfig/network-scripts/ifcfg-eth0 /proc/net/vlan/config /proc/cpuinfo").output,
              "ONBOOT=yes\ntwo\nprocessor : 0\n");
    EXPECT_EQ(ask("ls /proc/net").output, "bonding\nvlan\n");
}

TEST_F(LaidDown, ListsTheCommandsThatRanAndThoseThatWereMissing) {
    EXPECT_THAT(machine_.commandsRun(), IsEmpty());
    machine_.command("/sbin/ifconfig -a", "");
    ask("ifconfig -a");
    ask("ifconfig eth0 2>/dev/null");
    EXPECT_THAT(machine_.commandsRun(), ElementsAre("/sbin/ifconfig -a", "/sbin/ifconfig eth0"));
    EXPECT_THAT(machine_.commandsMissing(), ElementsAre("/sbin/ifconfig eth0"));
    machine_.forgetCommands();
    EXPECT_THAT(machine_.commandsRun(), IsEmpty());
    EXPECT_THAT(machine_.commandsMissing(), IsEmpty());
}

TEST_F(LaidDown, LoadLaysARecordingDown) {
    machine_.file("/tmp/server/commands/bin/ls/%proc", "recorded\n");
    machine_.file("/tmp/server/files/etc/resolv.conf", "nameserver 10.0.0.1\n");
    machine_.load("/tmp/server");
    EXPECT_EQ(ask("/bin/ls /proc").output, "recorded\n");
    EXPECT_EQ(ask("/bin/cat /etc/resolv.conf").output, "nameserver 10.0.0.1\n");
    EXPECT_EQ(ask("/sbin/ifconfig -a 2>/dev/null").status, 127);
    EXPECT_THAT(machine_.commandsMissing(), ElementsAre("/sbin/ifconfig -a"));
}

TEST_F(LaidDown, ResetMakesTheRootWhatItWasWhenItWasNew) {
    const std::set<std::string> fresh = wholeRoot();
    machine_.command("/bin/ls /etc", "x");
    machine_.command("/usr/sbin/manager/tool", "x");
    machine_.program("/bin/grep", "#!/bin/sh\n");
    machine_.dropCommand("/bin/cat");
    machine_.file("/etc/passwd", "changed\n");
    machine_.file("/proc/net/bonding/bond0", "x");
    machine_.file("/proc/meminfo", "x");
    machine_.file("/opt/tarvenn/kvl/provider/tmp/uname", "x");
    machine_.file("/boot/grub/grub.conf", "x");
    machine_.file("/tmp/deep/er/file", "x");
    machine_.file("/.machine/stand-in", "changed\n");
    ask("/bin/uname -r 2>/dev/null; ln -s /etc /srv; chmod 0 /tmp/deep/er; chmod 777 /opt/tarvenn/kvl/provider/tmp; "
        "rm -r /opt/tarvenn /proc/net");
    EXPECT_NE(wholeRoot(), fresh);
    machine_.reset();
    EXPECT_EQ(wholeRoot(), fresh);
}

TEST_F(LaidDown, ResetLeavesTheBindsAlone) {
    const std::string executable = fs::read_symlink("/proc/self/exe").string();
    machine_.reset();
    EXPECT_TRUE(fs::exists(executable));
}

TEST_F(LaidDown, ResetForgetsTheCommands) {
    machine_.command("/sbin/ifconfig -a", "");
    ask("ifconfig -a");
    machine_.reset();
    EXPECT_THAT(machine_.commandsRun(), IsEmpty());
    EXPECT_EQ(ask("ifconfig -a 2>/dev/null").status, 127);
}

TEST_F(LaidDown, OwnProcessAndItsForksAreInProc) {
    EXPECT_TRUE(fs::exists("/proc/" + std::to_string(getpid()) + "/maps"));
    const pid_t child = fork();
    if (child == 0) {
        _exit(access(("/proc/" + std::to_string(getpid()) + "/maps").c_str(), F_OK) == 0 ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST_F(LaidDown, IsInsideAPrivateRoot) {
    EXPECT_TRUE(machines::insidePrivateRoot());
}

}  // namespace
}  // namespace kvl::test
