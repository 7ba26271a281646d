#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdio>
#include <filesystem>

#include "tests/adapter/adapter_test.h"
#include "tests/adapter/literal_trace.h"
#include "tests/foundation/descriptor_in_file.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

/// A test of operations on boot files, with the error of an earlier one.
class BootFiles : public AdapterTest {
protected:
    void SetUp() override {
        AdapterTest::SetUp();
        CEmulexCommon::SetLastError(kEarlierError);
    }

    void TearDown() override {
        EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
        EXPECT_EQ(libc().sleeps, 0);
        EXPECT_THAT(TestHost::operatorMessages(), testing::IsEmpty());
        EXPECT_THAT(namesIn(kWorkRoot + "/temp"), testing::ElementsAre("CNA", "FC"));
        AdapterTest::TearDown();
    }

    static constexpr unsigned long kEarlierError = 14;
};

// ---- DepmodExecute ----

struct Driver {
    std::string path;
    std::string search;
    std::string lines;  ///< What the operation adds.
};

const Driver kDrivers[] = {
    {"/etc/depmod.d/elxbe2net.conf", "override be2net",
     "\noverride be2net * weak-updates/updates/be2net\noverride be2net * weak-updates/be2net\n"},
    {"/etc/depmod.d/elxlpfc.conf", "override lpfc",
     "\noverride lpfc * weak-updates/updates/elx-lpfc\noverride lpfc * weak-updates/elx-lpfc\n"},
    {"/etc/depmod.d/elxbe2iscsi.conf", "override be2iscsi",
     "\noverride be2iscsi * weak-updates/updates/be2iscsi\noverride be2iscsi * weak-updates/be2iscsi\n"},
};

/// Has each write to a regular file fail as long as this object lives, as on a full disk. Files can be opened and made.
class FullDisk {
public:
    FullDisk() {
        std::fflush(nullptr);
        EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &former_), 0);
        setLimit({0, former_.rlim_max});
    }
    ~FullDisk() {
        setLimit(former_);
        std::signal(SIGXFSZ, formerHandler_);
    }

    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    static void setLimit(const rlimit& limit) { EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0); }

    rlimit former_{};
    void (*formerHandler_)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

class Depmod : public BootFiles {
protected:
    void SetUp() override {
        BootFiles::SetUp();
        machine.directory("/etc/depmod.d");
        machine.command("/sbin/depmod -a", "");
    }

    bool execute(bool be2net, bool lpfc, bool be2iscsi) {
        const DescriptorInFile errors(STDERR_FILENO, "/tmp/errors");
        return CEmulexCommon::DepmodExecute(be2net, lpfc, be2iscsi, module);
    }

    /// For the driver at one place of the table alone.
    bool execute(std::size_t place) { return execute(place == 0, place == 1, place == 2); }

    bool executeAll() { return execute(true, true, true); }

    void answer(int status) {
        libc().system = [this, status](const char* command) {
            EXPECT_EQ(TestHost::trace().back(), "1 Execute depmod command by _tsystem method [depmod -a]");
            commands.emplace_back(command);
            return status;
        };
    }

    /// Has a driver's file be one that can't be appended to.
    void block(const Driver& driver) { machine.directory(driver.path); }

    Lines commands;
};

TEST_F(Depmod, DoesNothingWithoutADriver) {
    fs::remove(fs::path("/etc/depmod.d"));
    answer(0);
    EXPECT_TRUE(execute(false, false, false));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::DepmodExecute() [START]
        4 CEmulexCommon::DepmodExecute() [END]
    )"));
    EXPECT_THAT(commands, testing::IsEmpty());
    EXPECT_FALSE(fs::exists("/etc/depmod.d"));
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(Depmod, AddsTheLinesOfEachCombinationOfDriversAndRunsOnce) {
    for (unsigned int combination = 1; combination < 8; ++combination) {
        SCOPED_TRACE(combination);
        const auto isWanted = [combination](std::size_t place) { return (combination >> place & 1U) != 0; };
        forget();
        EXPECT_TRUE(execute(isWanted(0), isWanted(1), isWanted(2)));
        EXPECT_EQ(TestHost::trace(), traceOf(R"(
            4 CEmulexCommon::DepmodExecute() [START]
            1 Execute depmod command by _tsystem method [depmod -a]
            1 depmod -a ok.
            4 CEmulexCommon::DepmodExecute() [END]
        )"));
        EXPECT_EQ(machine.commandsRun(), (Lines{"/sbin/depmod -a"}));
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlierError);
        for (std::size_t place = 0; place < 3; ++place) {
            EXPECT_EQ(contentOf(kDrivers[place].path), isWanted(place) ? kDrivers[place].lines : "(absent)");
            fs::remove(kDrivers[place].path);
        }
        EXPECT_THAT(namesIn("/etc/depmod.d"), testing::IsEmpty());
    }
}

TEST_F(Depmod, RunsOneCommandThroughTheShell) {
    answer(0);
    EXPECT_TRUE(executeAll());
    EXPECT_EQ(commands, (Lines{"depmod -a"}));
}

TEST_F(Depmod, RunsBehindAllFiles) {
    machine.program("/sbin/depmod",
                    "#!/bin/sh\ncat /etc/depmod.d/elxbe2net.conf /etc/depmod.d/elxlpfc.conf "
                    "/etc/depmod.d/elxbe2iscsi.conf > /tmp/seen\n");
    EXPECT_TRUE(executeAll());
    EXPECT_EQ(contentOf("/tmp/seen"), kDrivers[0].lines + kDrivers[1].lines + kDrivers[2].lines);
}

TEST_F(Depmod, LeavesTheOutputToTheHost) {
    machine.program("/sbin/depmod", "#!/bin/sh\necho \"out $*\"\necho err >&2\n");
    {
        const DescriptorInFile output(STDOUT_FILENO, "/tmp/output");
        EXPECT_TRUE(executeAll());
    }
    EXPECT_EQ(contentOf("/tmp/output"), "out -a\n");
    EXPECT_EQ(contentOf("/tmp/errors"), "err\n");
    EXPECT_FALSE(fs::exists(kWorkRoot + "/temp/temp_depmod.txt"));
}

TEST_F(Depmod, NeedsNoWorkingTree) {
    fs::remove_all(kWorkRoot);
    EXPECT_TRUE(executeAll());
    EXPECT_FALSE(fs::exists(kWorkRoot));
    EXPECT_TRUE(CEmulexCommon::CreateLocalDirectory());
}

TEST_F(Depmod, AppendsToAFileWithoutTheLines) {
    for (std::size_t place = 0; place < 3; ++place) {
        const Driver& driver = kDrivers[place];
        for (const std::string text : {"", "\n", "# comment\n", "search updates\nno line feed", "override\r\n",
                                       "override  be2net\noverride\tlpfc\n", "OVERRIDE BE2ISCSI\n"}) {
            machine.file(driver.path, text);
            forget();
            EXPECT_TRUE(execute(place));
            EXPECT_EQ(contentOf(driver.path), text + driver.lines);
            EXPECT_EQ(TestHost::trace(), traceOf(R"(
                4 CEmulexCommon::DepmodExecute() [START]
                1 Execute depmod command by _tsystem method [depmod -a]
                1 depmod -a ok.
                4 CEmulexCommon::DepmodExecute() [END]
            )"));
        }
    }
}

TEST_F(Depmod, LooksForEachDriversOwnLineAlone) {
    const std::string others = "override be2net\noverride lpfc\noverride be2iscsi\n";
    for (std::size_t place = 0; place < 3; ++place) {
        const Driver& driver = kDrivers[place];
        std::string text = others;
        text.erase(text.find(driver.search), driver.search.size());
        machine.file(driver.path, text);
        EXPECT_TRUE(execute(place));
        EXPECT_EQ(contentOf(driver.path), text + driver.lines);
    }
}

TEST_F(Depmod, LeavesAFileAloneThatHoldsTheTextAnywhereAndRuns) {
    for (std::size_t place = 0; place < 3; ++place) {
        const Driver& driver = kDrivers[place];
        for (const std::string& text : {driver.search, driver.search + "\n", "# " + driver.search + " * extra\n",
                                        "first\n\nx" + driver.search + "x", driver.search + "-old * extra\r\n",
                                        std::string(10000, 'x') + driver.search + "\n", driver.lines}) {
            machine.file(driver.path, text);
            chmod(driver.path.c_str(), 0444);
            forget();
            EXPECT_TRUE(execute(place));
            EXPECT_EQ(contentOf(driver.path), text);
            EXPECT_EQ(TestHost::trace(), traceOf(R"(
                4 CEmulexCommon::DepmodExecute() [START]
                1 Execute depmod command by _tsystem method [depmod -a]
                1 depmod -a ok.
                4 CEmulexCommon::DepmodExecute() [END]
            )"));
            EXPECT_EQ(machine.commandsRun(), (Lines{"/sbin/depmod -a"}));
            EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlierError);
            fs::remove(driver.path);
        }
    }
}

TEST_F(Depmod, DoesNotFindATextThatALineFeedTakesApart) {
    machine.file(kDrivers[1].path, "override\nlpfc\n");
    EXPECT_TRUE(execute(1));
    EXPECT_EQ(contentOf(kDrivers[1].path), "override\nlpfc\n" + kDrivers[1].lines);
}

TEST_F(Depmod, AddsTheLinesOnceAndRunsEachTime) {
    EXPECT_TRUE(executeAll());
    EXPECT_TRUE(executeAll());
    for (const Driver& driver : kDrivers) {
        EXPECT_EQ(contentOf(driver.path), driver.lines);
    }
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::DepmodExecute() [START]
        1 Execute depmod command by _tsystem method [depmod -a]
        1 depmod -a ok.
        4 CEmulexCommon::DepmodExecute() [END]
        4 CEmulexCommon::DepmodExecute() [START]
        1 Execute depmod command by _tsystem method [depmod -a]
        1 depmod -a ok.
        4 CEmulexCommon::DepmodExecute() [END]
    )"));
    EXPECT_EQ(machine.commandsRun(), (Lines{"/sbin/depmod -a", "/sbin/depmod -a"}));
}

TEST_F(Depmod, AppendsToAFileThatCannotBeRead) {
    machine.file(kDrivers[0].path, kDrivers[0].lines);
    chmod(kDrivers[0].path.c_str(), 0200);
    EXPECT_TRUE(execute(0));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::DepmodExecute() [START]
        1 Execute depmod command by _tsystem method [depmod -a]
        1 depmod -a ok.
        4 CEmulexCommon::DepmodExecute() [END]
    )"));
    EXPECT_EQ(takeError(), kEarlierError);
    chmod(kDrivers[0].path.c_str(), 0600);
    EXPECT_EQ(contentOf(kDrivers[0].path), kDrivers[0].lines + kDrivers[0].lines);
}

TEST_F(Depmod, FailsForAFileThatCannotBeWritten) {
    for (const Driver& driver : kDrivers) {
        machine.file(driver.path, "# comment\n");
        chmod(driver.path.c_str(), 0444);
    }
    EXPECT_FALSE(executeAll());
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::DepmodExecute() [START]
        2 Failed to open file(/etc/depmod.d/elxbe2net.conf).
        2 Failed to open file(/etc/depmod.d/elxlpfc.conf).
        2 Failed to open file(/etc/depmod.d/elxbe2iscsi.conf).
        1 Execute depmod command by _tsystem method [depmod -a]
        1 depmod -a ok.
        4 CEmulexCommon::DepmodExecute() [END]
    )"));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(machine.commandsRun(), (Lines{"/sbin/depmod -a"}));
    for (const Driver& driver : kDrivers) {
        EXPECT_EQ(contentOf(driver.path), "# comment\n");
    }
}

TEST_F(Depmod, TakesAWriteThatFailsForDoneWhereTheFileCanBeOpened) {
    machine.file(kDrivers[1].path, "# comment\n");
    answer(0);
    {
        const FullDisk fullDisk;
        EXPECT_TRUE(executeAll());
    }
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::DepmodExecute() [START]
        1 Execute depmod command by _tsystem method [depmod -a]
        1 depmod -a ok.
        4 CEmulexCommon::DepmodExecute() [END]
    )"));
    EXPECT_EQ(commands, (Lines{"depmod -a"}));
    EXPECT_EQ(takeError(), kEarlierError);
    EXPECT_EQ(contentOf(kDrivers[0].path), "");
    EXPECT_EQ(contentOf(kDrivers[1].path), "# comment\n");
    EXPECT_EQ(contentOf(kDrivers[2].path), "");
}

TEST_F(Depmod, FailsWithoutTheDirectory) {
    fs::remove(fs::path("/etc/depmod.d"));
    EXPECT_FALSE(execute(1));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::DepmodExecute() [START]
        2 Failed to open file(/etc/depmod.d/elxlpfc.conf).
        1 Execute depmod command by _tsystem method [depmod -a]
        1 depmod -a ok.
        4 CEmulexCommon::DepmodExecute() [END]
    )"));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(machine.commandsRun(), (Lines{"/sbin/depmod -a"}));
    EXPECT_FALSE(fs::exists("/etc/depmod.d"));
}

TEST_F(Depmod, TreatsTheOtherDriversAndRunsBehindAFileThatFails) {
    for (std::size_t failing = 0; failing < 3; ++failing) {
        SCOPED_TRACE(failing);
        block(kDrivers[failing]);
        forget();
        EXPECT_FALSE(executeAll());
        EXPECT_EQ(TestHost::trace(), traceOf({{"path", kDrivers[failing].path}}, R"(
            4 CEmulexCommon::DepmodExecute() [START]
            2 Failed to open file({path}).
            1 Execute depmod command by _tsystem method [depmod -a]
            1 depmod -a ok.
            4 CEmulexCommon::DepmodExecute() [END]
        )"));
        EXPECT_EQ(takeError(), 17U);
        EXPECT_EQ(machine.commandsRun(), (Lines{"/sbin/depmod -a"}));
        for (std::size_t place = 0; place < 3; ++place) {
            if (place != failing) {
                EXPECT_EQ(contentOf(kDrivers[place].path), kDrivers[place].lines);
            }
            fs::remove(kDrivers[place].path);
        }
    }
}

TEST_F(Depmod, FailsWithTheRawResultOfTheShellAndNoCode) {
    for (const int status : {256, 255 * 256, SIGKILL, SIGSEGV | 128, -1}) {
        answer(status);
        forget();
        EXPECT_FALSE(executeAll()) << status;
        EXPECT_EQ(TestHost::trace(), traceOf({{"status", std::to_string(status)}}, R"(
            4 CEmulexCommon::DepmodExecute() [START]
            1 Execute depmod command by _tsystem method [depmod -a]
            2 depmod -a error.({status})
            4 CEmulexCommon::DepmodExecute() [END]
        )"));
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlierError);
    }
}

TEST_F(Depmod, FailsWhereDepmodFails) {
    machine.command("/sbin/depmod -a", "", {1});
    EXPECT_FALSE(executeAll());
    EXPECT_EQ(takeTrace(), traceOf(R"(
        4 CEmulexCommon::DepmodExecute() [START]
        1 Execute depmod command by _tsystem method [depmod -a]
        2 depmod -a error.(256)
        4 CEmulexCommon::DepmodExecute() [END]
    )"));
    for (const Driver& driver : kDrivers) {
        EXPECT_EQ(contentOf(driver.path), driver.lines);
    }
    machine.dropCommand("/sbin/depmod");
    EXPECT_FALSE(executeAll());
    EXPECT_EQ(takeTrace(), traceOf(R"(
        4 CEmulexCommon::DepmodExecute() [START]
        1 Execute depmod command by _tsystem method [depmod -a]
        2 depmod -a error.(32512)
        4 CEmulexCommon::DepmodExecute() [END]
    )"));
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(Depmod, FailsWhereASignalEndsTheShell) {
    // The shell may have made itself the program, or wait for it and report the signal by its status.
    machine.command("/sbin/depmod -a", "", kvl::machines::Ending::bySignal(SIGKILL));
    EXPECT_FALSE(execute(0));
    const std::string failed = R"(
        4 CEmulexCommon::DepmodExecute() [START]
        1 Execute depmod command by _tsystem method [depmod -a]
        2 depmod -a error.({status})
        4 CEmulexCommon::DepmodExecute() [END]
    )";
    EXPECT_THAT(takeTrace(),
                testing::AnyOf(traceOf({{"status", "9"}}, failed), traceOf({{"status", "35072"}}, failed)));
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(Depmod, KeepsTheCodeOfAFileWhereDepmodFailsToo) {
    block(kDrivers[2]);
    answer(256);
    EXPECT_FALSE(execute(true, false, true));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::DepmodExecute() [START]
        2 Failed to open file(/etc/depmod.d/elxbe2iscsi.conf).
        1 Execute depmod command by _tsystem method [depmod -a]
        2 depmod -a error.(256)
        4 CEmulexCommon::DepmodExecute() [END]
    )"));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(contentOf(kDrivers[0].path), kDrivers[0].lines);
    EXPECT_EQ(commands, (Lines{"depmod -a"}));
}

TEST_F(Depmod, TracesUnderTheGivenModuleName) {
    useModule("fc");
    block(kDrivers[0]);
    EXPECT_FALSE(executeAll());
    EXPECT_EQ(TestHost::modules(), (Lines{"fc"}));
}

// ---- DracutExcute ----

const std::string kImage = "/boot/initramfs-" + std::string(kKernelRelease) + ".img";
const std::string kFormerImage = kImage + ".org";
const std::string kRelease = "Red Hat Enterprise Linux Server release 6.3 (Santiago)\n";

const std::string kReadRelease = "cat /etc/redhat-release";
const std::string kMove = "mv -f  /boot/initramfs-`uname -r`.img  /boot/initramfs-`uname -r`.img.org";
const std::string kBuild = "dracut /boot/initramfs-`uname -r`.img";

const std::string kNotRebuilt = R"(
    4 CEmulexCommon::DracutExcute() [START]
    4 CEmulexCommon::DracutExcute() [END]
)";

const std::string kNoRelease = R"(
    4 CEmulexCommon::DracutExcute() [START]
    1 cat /etc/redhat-releas command error.
    4 CEmulexCommon::DracutExcute() [END]
)";

/// A server of release 6 with the image of the running kernel. Its shell writes down what it is to run.
class Dracut : public BootFiles {
protected:
    void SetUp() override {
        BootFiles::SetUp();
        machine.file("/etc/redhat-release", kRelease);
        machine.file(kImage, "the first image\n");
        machine.command("/bin/uname -r", std::string(kKernelRelease) + "\n");
        machine.program("/sbin/dracut", "#!/bin/sh\n[ $# -eq 1 ] && echo 'a new image' > \"$1\"\n");
        layShell("");
        libc().system = [](const char* command) {
            ADD_FAILURE() << command;
            return 0;
        };
    }

    /// @param before  what the shell does before it runs the command $2
    void layShell(const std::string& before) {
        machine.program("/sbin/sh",
                        "#!/bin/sh\nprintf '%s\\n' \"$2\" >> /tmp/commands\n" + before + "\nexec /bin/sh \"$@\"\n");
    }

    bool execute() {
        const DescriptorInFile errors(STDERR_FILENO, "/tmp/errors");
        return CEmulexCommon::DracutExcute(module);
    }

    /// Returns the commands that shells were asked to run, and forgets them.
    static Lines takeCommands() {
        Lines lines;
        std::string rest = contentOf("/tmp/commands");
        if (rest == "(absent)") {
            return lines;
        }
        for (auto end = rest.find('\n'); end != std::string::npos; end = rest.find('\n')) {
            lines.push_back(rest.substr(0, end));
            rest.erase(0, end + 1);
        }
        fs::remove("/tmp/commands");
        return lines;
    }

    void expectNothingDone(const std::string& trace) {
        EXPECT_TRUE(execute());
        EXPECT_EQ(takeTrace(), traceOf(trace));
        EXPECT_EQ(takeCommands(), (Lines{kReadRelease}));
        EXPECT_EQ(namesIn("/boot"), (Lines{fs::path(kImage).filename()}));
        EXPECT_EQ(contentOf(kImage), "the first image\n");
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlierError);
    }
};

TEST_F(Dracut, MovesTheImageAndBuildsItAnew) {
    EXPECT_TRUE(execute());
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::DracutExcute() [START]
        4 CEmulexCommon::DracutExcute() [END]
    )"));
    EXPECT_EQ(takeCommands(), (Lines{"cat /etc/redhat-release",
                                     "mv -f  /boot/initramfs-`uname -r`.img  /boot/initramfs-`uname -r`.img.org",
                                     "dracut /boot/initramfs-`uname -r`.img"}));
    EXPECT_EQ(contentOf(kImage), "a new image\n");
    EXPECT_EQ(contentOf(kFormerImage), "the first image\n");
    EXPECT_EQ(namesIn("/boot").size(), 2U);
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(Dracut, KeepsTheNewestFormerImageAlone) {
    EXPECT_TRUE(execute());
    EXPECT_TRUE(execute());
    EXPECT_EQ(contentOf(kImage), "a new image\n");
    EXPECT_EQ(contentOf(kFormerImage), "a new image\n");
    EXPECT_EQ(namesIn("/boot").size(), 2U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::DracutExcute() [START]
        4 CEmulexCommon::DracutExcute() [END]
        4 CEmulexCommon::DracutExcute() [START]
        4 CEmulexCommon::DracutExcute() [END]
    )"));
}

TEST_F(Dracut, RunsTheCommandsWithTheDescriptorsAndInTheDirectoryOfTheCaller) {
    machine.program("/sbin/dracut", "#!/bin/sh\npwd -P\necho err >&2\n");
    machine.directory("/tmp/callers place");
    const fs::path before = fs::current_path();
    fs::current_path("/tmp/callers place");
    {
        const DescriptorInFile output(STDOUT_FILENO, "/tmp/output");
        EXPECT_TRUE(execute());
    }
    fs::current_path(before);
    EXPECT_EQ(contentOf("/tmp/output"), "/tmp/callers place\n");
    EXPECT_EQ(contentOf("/tmp/errors"), "err\n");
}

TEST_F(Dracut, NeedsNoWorkingTree) {
    fs::remove_all(kWorkRoot);
    EXPECT_TRUE(execute());
    EXPECT_FALSE(fs::exists(kWorkRoot));
    EXPECT_TRUE(CEmulexCommon::CreateLocalDirectory());
}

TEST_F(Dracut, GoesByTheTextRelease6Anywhere) {
    for (const std::string line : {"release 6", "release 6.10", "Linux release 60 (Future)",
                                   "CentOS release 6.3 (Final)", "prerelease 6", "\trelease 6\r"}) {
        machine.file("/etc/redhat-release", line + "\nmore\n");
        EXPECT_TRUE(execute()) << line;
        EXPECT_EQ(takeTrace(), traceOf(R"(
            4 CEmulexCommon::DracutExcute() [START]
            4 CEmulexCommon::DracutExcute() [END]
        )"));
        EXPECT_EQ(takeCommands(), (Lines{kReadRelease, kMove, kBuild})) << line;
    }
}

TEST_F(Dracut, DoesNothingOnAnotherRelease) {
    for (const std::string line :
         {"Red Hat Enterprise Linux Server release 5.8 (Tikanga)", "Red Hat Enterprise Linux release 8.6 (Ootpa)",
          "release 16", "release  6", "Release 6", "6.3", " "}) {
        machine.file("/etc/redhat-release", line + "\n");
        expectNothingDone(kNotRebuilt);
    }
}

TEST_F(Dracut, GoesByTheFirstLineAlone) {
    machine.file("/etc/redhat-release", "Linux\nrelease 6.3\n");
    expectNothingDone(kNotRebuilt);
    machine.file("/etc/redhat-release", "\nrelease 6.3\n");
    expectNothingDone(kNoRelease);
}

TEST_F(Dracut, GoesByTheFirst255CharactersOfTheLine) {
    machine.file("/etc/redhat-release", std::string(255 - 8, 'x') + "release 6\n");
    expectNothingDone(kNotRebuilt);
    machine.file("/etc/redhat-release", std::string(10000, 'x') + "release 6\n");
    expectNothingDone(kNotRebuilt);
    machine.file("/etc/redhat-release", std::string(255 - 9, 'x') + "release 6\n");
    EXPECT_TRUE(execute());
    EXPECT_EQ(takeCommands(), (Lines{kReadRelease, kMove, kBuild}));
}

TEST_F(Dracut, TracesAnEmptyOrUnreadableReleaseAndDoesNothing) {
    machine.file("/etc/redhat-release", "");
    expectNothingDone(kNoRelease);
    fs::remove("/etc/redhat-release");
    expectNothingDone(kNoRelease);
    machine.directory("/etc/redhat-release");
    expectNothingDone(kNoRelease);
}

TEST_F(Dracut, TracesAFailingQuestionForTheReleaseAndDoesNothing) {
    machine.program("/bin/cat", "#!/bin/sh\necho 'release 6.3'\nexit 1\n");
    expectNothingDone(kNoRelease);
    machine.dropCommand("/bin/cat");
    expectNothingDone(kNoRelease);
    layShell("kill -9 $$");
    expectNothingDone(kNoRelease);
}

TEST_F(Dracut, FailsWhereTheImageCannotBeMoved) {
    fs::remove(kImage);
    EXPECT_FALSE(execute());
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::DracutExcute() [START]
        1 mv -f command error.(0,1)
        4 CEmulexCommon::DracutExcute() [END]
    )"));
    EXPECT_EQ(takeCommands(), (Lines{kReadRelease, kMove}));
    EXPECT_THAT(namesIn("/boot"), testing::IsEmpty());
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(Dracut, FailsWithTheExitCodeOfTheMove) {
    for (const int code : {2, 127, 255}) {
        machine.program("/bin/mv", "#!/bin/sh\nexit " + std::to_string(code) + "\n");
        EXPECT_FALSE(execute());
        EXPECT_EQ(takeTrace(), traceOf({{"code", std::to_string(code)}}, R"(
            4 CEmulexCommon::DracutExcute() [START]
            1 mv -f command error.(0,{code})
            4 CEmulexCommon::DracutExcute() [END]
        )"));
        EXPECT_EQ(takeCommands(), (Lines{kReadRelease, kMove}));
    }
    EXPECT_EQ(contentOf(kImage), "the first image\n");
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(Dracut, FailsWhereASignalEndsTheMove) {
    layShell("case $2 in mv*) kill -9 $$ ;; esac");
    EXPECT_FALSE(execute());
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::DracutExcute() [START]
        1 mv -f command error.(1,255)
        4 CEmulexCommon::DracutExcute() [END]
    )"));
    EXPECT_EQ(takeCommands(), (Lines{kReadRelease, kMove}));
    EXPECT_EQ(contentOf(kImage), "the first image\n");
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(Dracut, LeavesTheKernelWithoutItsImageWhereTheBuildFails) {
    for (const int code : {1, 127, 255}) {
        machine.file(kImage, "the first image\n");
        machine.program("/sbin/dracut", "#!/bin/sh\nexit " + std::to_string(code) + "\n");
        EXPECT_FALSE(execute());
        EXPECT_EQ(takeTrace(), traceOf({{"code", std::to_string(code)}}, R"(
            4 CEmulexCommon::DracutExcute() [START]
            1 dracut command error.(0,{code})
            4 CEmulexCommon::DracutExcute() [END]
        )"));
        EXPECT_EQ(takeCommands(), (Lines{kReadRelease, kMove, kBuild}));
        EXPECT_EQ(namesIn("/boot"), (Lines{fs::path(kFormerImage).filename()}));
        EXPECT_EQ(contentOf(kFormerImage), "the first image\n");
    }
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(Dracut, FailsWithoutTheProgram) {
    machine.dropCommand("/sbin/dracut");
    EXPECT_FALSE(execute());
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::DracutExcute() [START]
        1 dracut command error.(0,127)
        4 CEmulexCommon::DracutExcute() [END]
    )"));
    EXPECT_EQ(contentOf(kFormerImage), "the first image\n");
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(Dracut, FailsWhereASignalEndsTheBuild) {
    layShell("case $2 in dracut*) kill -9 $$ ;; esac");
    EXPECT_FALSE(execute());
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::DracutExcute() [START]
        1 dracut command error.(1,255)
        4 CEmulexCommon::DracutExcute() [END]
    )"));
    EXPECT_EQ(takeCommands(), (Lines{kReadRelease, kMove, kBuild}));
    EXPECT_EQ(namesIn("/boot"), (Lines{fs::path(kFormerImage).filename()}));
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(Dracut, TracesUnderTheGivenModuleName) {
    useModule("fc");
    fs::remove(kImage);
    EXPECT_FALSE(execute());
    fs::remove("/etc/redhat-release");
    EXPECT_TRUE(execute());
    EXPECT_EQ(TestHost::modules(), (Lines{"fc"}));
}

}  // namespace
}  // namespace kvl::test
