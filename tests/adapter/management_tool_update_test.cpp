#include <dirent.h>
#include <dlfcn.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <utility>

#include "tests/adapter/update_test.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

const std::string kTemp = kWorkRoot + "/temp";
const std::string kScratch = kTemp + "/tmp";
const std::string kDirectory = kScratch + "/x64";
const std::string kUninstall = kDirectory + "/uninstall.sh";
const std::string kInstall = kDirectory + "/install.sh";
const std::string kUninstallOutput = kTemp + "/temp_ocm_uninstall.txt";
const std::string kInstallOutput = kTemp + "/temp_ocm_install.txt";
const std::string kModuleFiles = "/tmp/module";
const Sleeps kAllPauses = {1000, 6000, 11000, 16000, 21000};

/// No directory holds a name twice, so the listings are made to show this one so.
std::string& nameListedTwice() {
    static std::string name;
    return name;
}

// ---- What the update traces ----

Lines ocmTrace(const Lines& between) {
    return Lines{"4 CEmulexCommon::OCMUpdate() [START]"} + between + Lines{"4 CEmulexCommon::OCMUpdate() [END]"};
}

const Lines kSkippedTrace = ocmTrace({"1 OCM update is previously-reported.OCM Update is skipped"});

const Lines kArchitectureTrace = {"4 CCommon_Information::GetArchitectureInfo [START]",
                                  "4 CCommon_Information::GetArchitectureInfo [END]"};

const std::string kNoUninstall = "2 Failed to find update module.There is not uninstall.sh file.";
const std::string kNoInstall = "2 Failed to find update module.There is not ufi file.";
const std::string kSeveral = "2 Failed to find update module.There is some ufi file.";

std::string chmodCommand(const std::string& directory = kDirectory) {
    return "chmod 777 " + directory + "/*";
}

/// The steps up to the search for the uninstall script, in an empty scratch directory.
Lines unpackedTrace(const std::string& archive = "/tmp/modules/tool.zip", const std::string& directory = kDirectory) {
    return deleteFolderTrace() + moduleUnzipTrace(archive, kScratch) + kArchitectureTrace +
           Lines{"1 Search uninstall.sh in [" + directory + "]"};
}

/// The steps up to the uninstall script's run.
Lines readyTrace(const std::string& archive = "/tmp/modules/tool.zip", const std::string& directory = kDirectory) {
    return unpackedTrace(archive, directory) + Lines{"1 Search uninstall.sh end", "1 filename = [uninstall.sh]",
                                                     "1 Execute command [" + chmodCommand(directory) + "]"};
}

// The module that most tests have: its scripts print one line each, and nothing is waited for.
const MessageFile kMessages = {{"removed", "installed"}, {}};
const Lines kUninstallLines = {"the tool is removed"};
const Lines kInstallLines = {"the tool is installed"};

/// A script's run that ends well.
/// @param output  up to the line with the success text
Lines passedTrace(const Lines& output, const MessageFile& messages = kMessages) {
    return updaterTrace(3, resultCheckTrace(messages.trace() + successLookTrace(output, true)));
}

/// A script's run that ends badly, with the lines of its check.
Lines failedTrace(const std::string& command, const std::string& output, const Lines& check) {
    return updaterTrace(3, resultCheckTrace(check) + Lines{updateFailedTrace(command)}) + Lines{notOpenedTrace(output)};
}

Lines wrongOutputTrace(const std::string& command, const std::string& file, const Lines& output) {
    return failedTrace(command, file, kMessages.trace() + successLookTrace(output, false));
}

const Lines kUpdatedTrace = ocmTrace(readyTrace() + passedTrace(kUninstallLines) + passedTrace(kInstallLines));

/// A 64-bit machine and a module with scripts for it. `unzip` puts the files of /tmp/module where it is told to.
class ManagementToolUpdate : public UpdateTest {
protected:
    void SetUp() override {
        UpdateTest::SetUp();
        machine.command("/bin/uname -m", "x86_64\n");
        machine.program("/bin/chmod", logging("exec /bin/busybox chmod \"$@\""));
        machine.program("/bin/unzip", logging("exec cp -r /tmp/module/. \"$4\""));
        laySources("x64");
        CEmulexCommon::SetLastError(kEarlierError);
    }

    void TearDown() override {
        nameListedTwice().clear();
        EXPECT_EQ(libc().sleeps, 0);
        EXPECT_THAT(machine.commandsMissing(), testing::IsEmpty());
        EXPECT_FALSE(fs::exists(kTemp + "/ocm_update_result.txt"));
        UpdateTest::TearDown();
    }

    /// A program that notes its call.
    static std::string logging(const std::string& script) {
        return "#!/bin/sh\nprintf '%s\\n' \"$0${*:+ $*}\" >>/.machine/log\n" + script + "\n";
    }

    /// One of the module's scripts, which prints these lines. It can't be run as it is packed.
    void layScript(const std::string& path, const Lines& lines, const std::string& more = "") {
        machine.file(kModuleFiles + "/" + path, logging(printing(lines) + "\n" + more));
    }

    void layMessages(const MessageFile& messages) { machine.file(kModuleFiles + "/x64/message.txt", messages.text()); }

    /// The files for one kind of machine.
    void laySources(const std::string& directory) {
        layScript(directory + "/uninstall.sh", kUninstallLines);
        layScript(directory + "/install.sh", kInstallLines);
        machine.file(kModuleFiles + "/" + directory + "/message.txt", kMessages.text());
    }

    bool update() { return update("/tmp/modules", {"readme.txt", "tool.zip", "other.zip"}); }

    bool update(const std::string& moduleDir, std::list<std::string> files) {
        return quietly([&] { return CEmulexCommon::OCMUpdate("unused", moduleDir, &files, false, module); });
    }

    /// An update from a module of the build.
    bool updateFromArchive(const std::string& name) {
        machine.dropCommand("/bin/unzip");
        return update(kModules + "/" + name, {"module.zip"});
    }

    /// What runs up to the scripts.
    static Lines unpackCommands() { return {"/bin/unzip -o /tmp/modules/tool.zip -d " + kScratch, "/bin/uname -m"}; }

    /// The call that makes a directory's files runnable, which are named in order.
    static std::string chmodCall(const Lines& names, const std::string& directory = kDirectory) {
        std::string call = "/bin/chmod 777";
        for (const std::string& name : names) {
            call += " " + directory + "/" + name;
        }
        return call;
    }

    static Lines readyCommands(const Lines& names = {"install.sh", "message.txt", "uninstall.sh"}) {
        return unpackCommands() + Lines{chmodCall(names)};
    }

    static Lines updateCommands() { return readyCommands() + Lines{kUninstall, kInstall + " -q"}; }

    /// What runs for a module of the build. Its scripts note no call.
    static Lines moduleCommands(const Lines& names, const std::string& directory = kDirectory) {
        return {"/bin/uname -m", chmodCall(names, directory)};
    }

    /// A failure that the debug trace alone tells of.
    void expectFailure(unsigned long code, const Lines& between) {
        EXPECT_FALSE(update());
        EXPECT_EQ(TestHost::trace(), ocmTrace(between));
        EXPECT_EQ(CEmulexCommon::GetLastError(), code);
        EXPECT_THAT(TestHost::operatorMessages(), testing::IsEmpty());
    }

    /// A failure that the operator is told of, under three module names.
    void expectReportedFailure(unsigned long code, const std::string& codeText, const Lines& between,
                               const std::function<bool()>& call) {
        const std::pair<std::string, std::string> rows[] = {
            {"cna", "MSGID_EMULEX_0004_F"}, {"fc", "MSGID_EMULEX_FC_0004_F"}, {"CNA", "MSGID_EMULEX_FC_0004_F"}};
        for (const auto& [name, message] : rows) {
            SCOPED_TRACE(name);
            useModule(name);
            forget();
            EXPECT_FALSE(call());
            EXPECT_EQ(TestHost::trace(), ocmTrace(between));
            EXPECT_EQ(TestHost::operatorMessages(), (Lines{name + " " + message + " ocm " + codeText}));
            EXPECT_EQ(takeError(), code);
        }
        EXPECT_FALSE(fs::exists(kUninstallOutput));
        EXPECT_FALSE(fs::exists(kInstallOutput));
    }

    /// What is left in the directory of the work files, but for the directories of the families.
    static Lines filesLeft() {
        Lines names;
        for (const std::string& name : namesIn(kTemp)) {
            if (name != "CNA" && name != "FC") {
                names.push_back(name);
            }
        }
        return names;
    }

    static constexpr unsigned long kEarlierError = 14;
};

// ---- The whole update ----

TEST_F(ManagementToolUpdate, UnpacksTheModuleAndRunsItsTwoScripts) {
    EXPECT_TRUE(update());
    const Lines messages = {"1 log_mes_ifs. buf=[SuccessMessage=removed]", "1 successMessage[0]=[removed]",
                            "1 log_mes_ifs. buf=[SuccessMessage=installed]", "1 successMessage[1]=[installed]",
                            "1 no endMessage"};
    const std::string x64 = "/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64";
    EXPECT_EQ(
        TestHost::trace(),
        (Lines{"4 CEmulexCommon::OCMUpdate() [START]", "4 CUnzip_Utility::DeleteFolder [START]",
               "4 CUnzip_Utility::DeleteFolder [END]", "4 CUnzip_Utility::UpdateModuleUnzip [START]",
               "4 CUnzip_Utility::Unzip [START]",
               "1 CUnzip_Utility::Unzip ARG Check tsZipPath=/tmp/modules/tool.zip "
               "tsOutPath=/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp",
               "4 CUnzip_Utility::Unzip [END]", "4 CUnzip_Utility::UpdateModuleUnzip [END]",
               "4 CCommon_Information::GetArchitectureInfo [START]", "4 CCommon_Information::GetArchitectureInfo [END]",
               "1 Search uninstall.sh in [" + x64 + "]", "1 Search uninstall.sh end", "1 filename = [uninstall.sh]",
               "1 Execute command [chmod 777 " + x64 + "/*]", "4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]",
               "4 CEmulexCommon::CheckUpdateResult_() [START]"} +
         messages +
         Lines{"1 Result file check success msg [the tool is removed]", "1 Find SuccessMsg[] in [the tool is removed]",
               "1 Update Result Check OK", "4 CEmulexCommon::CheckUpdateResult_() [END]",
               "4 CEmulexCommon::EmulexUpdate() [END]", "4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]",
               "4 CEmulexCommon::CheckUpdateResult_() [START]"} +
         messages +
         Lines{"1 Result file check success msg [the tool is installed]",
               "1 Find SuccessMsg[] in [the tool is installed]", "1 Update Result Check OK",
               "4 CEmulexCommon::CheckUpdateResult_() [END]", "4 CEmulexCommon::EmulexUpdate() [END]",
               "4 CEmulexCommon::OCMUpdate() [END]"}));
    EXPECT_EQ(machine.commandsRun(),
              (Lines{"/bin/unzip -o /tmp/modules/tool.zip -d /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp", "/bin/uname -m",
                     "/bin/chmod 777 " + x64 + "/install.sh " + x64 + "/message.txt " + x64 + "/uninstall.sh",
                     x64 + "/uninstall.sh", x64 + "/install.sh -q"}));
    EXPECT_THAT(TestHost::operatorMessages(), testing::IsEmpty());
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(ManagementToolUpdate, LeavesTheOutputsAndTheUnpackedModule) {
    EXPECT_TRUE(update());
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_install.txt", "temp_ocm_uninstall.txt", "tmp"}));
    EXPECT_EQ(contentOf("/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_uninstall.txt"), "the tool is removed\n");
    EXPECT_EQ(contentOf("/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_install.txt"), "the tool is installed\n");
    EXPECT_EQ(namesIn(kScratch), (Lines{"x64"}));
    EXPECT_EQ(namesIn(kDirectory), (Lines{"install.sh", "message.txt", "uninstall.sh"}));
    for (const std::string& name : namesIn(kDirectory)) {
        EXPECT_EQ(fs::status(kDirectory + "/" + name).permissions(), fs::perms::all) << name;
    }
}

TEST_F(ManagementToolUpdate, IsTheSameForEveryModuleName) {
    for (const char* name : {"cna", "fc", "another"}) {
        useModule(name);
        forget();
        fs::remove_all(kTemp);
        EXPECT_TRUE(update());
        EXPECT_EQ(TestHost::trace(), kUpdatedTrace);
        EXPECT_EQ(TestHost::modules(), (Lines{name}));
    }
}

TEST_F(ManagementToolUpdate, DoesNotUseTwoArguments) {
    for (const bool unused : {false, true}) {
        fs::remove_all(kTemp);
        forget();
        std::list<std::string> files = {"tool.zip"};
        EXPECT_TRUE(quietly([&] {
            return CEmulexCommon::OCMUpdate(unused ? "" : "/tmp/other", "/tmp/modules", &files, unused, module);
        }));
        EXPECT_EQ(TestHost::trace(), kUpdatedTrace);
        EXPECT_EQ(machine.commandsRun(), updateCommands());
    }
}

TEST_F(ManagementToolUpdate, LeavesTheListOfFilesAlone) {
    std::list<std::string> files = {"readme.txt", "tool.zip", "other.zip"};
    EXPECT_TRUE(quietly([&] { return CEmulexCommon::OCMUpdate("", "/tmp/modules", &files, false, module); }));
    EXPECT_EQ(files, (std::list<std::string>{"readme.txt", "tool.zip", "other.zip"}));
}

TEST_F(ManagementToolUpdate, MakesTheWorkingTreeWhereItIsMissing) {
    fs::remove_all(kInstallPath + "/tmp");
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), kUpdatedTrace);
    EXPECT_EQ(contentOf(kInstallOutput), "the tool is installed\n");
}

TEST_F(ManagementToolUpdate, RunsTheScriptsInTheDirectoryOfTheCallerAndWithoutStandardError) {
    layScript("x64/uninstall.sh", {}, "pwd -P\necho lost >&2\necho removed");
    layScript("x64/install.sh", {}, "pwd -P\necho lost >&2\necho installed");
    machine.directory("/tmp/callers place");
    const fs::path before = fs::current_path();
    fs::current_path("/tmp/callers place");
    EXPECT_TRUE(update());
    fs::current_path(before);
    EXPECT_EQ(contentOf(kUninstallOutput), "/tmp/callers place\nremoved\n");
    EXPECT_EQ(contentOf(kInstallOutput), "/tmp/callers place\ninstalled\n");
    EXPECT_EQ(contentOf("/tmp/errors"), "");
}

TEST_F(ManagementToolUpdate, DeletesNoReport) {
    machine.file(kTemp + "/report.txt", "text");
    machine.file("/tmp/callers place/report.txt", "text");
    const fs::path before = fs::current_path();
    fs::current_path("/tmp/callers place");
    EXPECT_TRUE(update());
    fs::current_path(before);
    EXPECT_EQ(contentOf(kTemp + "/report.txt"), "text");
    EXPECT_EQ(contentOf("/tmp/callers place/report.txt"), "text");
}

TEST_F(ManagementToolUpdate, HasTheScriptsRunAsTheyAreCalledByTheShell) {
    machine.program("/sbin/sh", "#!/bin/sh\nprintf '%s\\n' \"$2\" >>/tmp/commands\nexec /bin/sh \"$@\"\n");
    EXPECT_TRUE(update());
    EXPECT_EQ(contentOf("/tmp/commands"), "unzip -o \"/tmp/modules/tool.zip\" -d \"" + kScratch + "\"\nuname -m\n" +
                                              kUninstall + "\n" + kInstall + " -q\n");
}

// ---- An update that has been done ----

TEST_F(ManagementToolUpdate, IsSkippedAfterASuccess) {
    EXPECT_TRUE(update());
    forget();
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), kSkippedTrace);
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    EXPECT_EQ(contentOf(kInstallOutput), "the tool is installed\n");
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(ManagementToolUpdate, IsSkippedForTheOtherFamilyToo) {
    EXPECT_TRUE(update());
    useModule("fc");
    forget();
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), kSkippedTrace);
    EXPECT_EQ(TestHost::modules(), (Lines{"fc"}));
}

TEST_F(ManagementToolUpdate, IsSkippedAfterAFailedInstallation) {
    layScript("x64/install.sh", {"no space"});
    EXPECT_FALSE(update());
    EXPECT_EQ(takeError(), 17U);
    layScript("x64/install.sh", kInstallLines);
    forget();
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), kSkippedTrace);
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    EXPECT_EQ(takeError(), 0U);
}

TEST_F(ManagementToolUpdate, IsNotSkippedAfterAFailedRemoval) {
    layScript("x64/uninstall.sh", {"in use"});
    EXPECT_FALSE(update());
    layScript("x64/uninstall.sh", kUninstallLines);
    forget();
    EXPECT_TRUE(update());
    EXPECT_EQ(machine.commandsRun(), updateCommands());
    EXPECT_EQ(contentOf(kUninstallOutput), "the tool is removed\n");
}

TEST_F(ManagementToolUpdate, IsSkippedForWhateverStandsAtTheInstallOutput) {
    const std::function<void()> rows[] = {
        [this] { machine.file(kInstallOutput, ""); },
        [this] {
            machine.file(kInstallOutput, "text");
            chmod(kInstallOutput.c_str(), 0);
        },
        [this] { machine.directory(kInstallOutput); },
        [] { fs::create_symlink("/etc/passwd", kInstallOutput); },
    };
    for (const auto& lay : rows) {
        lay();
        forget();
        EXPECT_TRUE(update());
        EXPECT_EQ(TestHost::trace(), kSkippedTrace);
        EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_install.txt"}));
        fs::remove(kInstallOutput);
    }
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(ManagementToolUpdate, IsNotSkippedForALinkToNowhere) {
    fs::create_symlink("/tmp/nowhere", kInstallOutput);
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), kUpdatedTrace);
}

TEST_F(ManagementToolUpdate, LooksAtNoFileOfTheModuleWhereItIsSkipped) {
    machine.file(kInstallOutput, "");
    EXPECT_TRUE(CEmulexCommon::OCMUpdate("", "/tmp/absent", nullptr, false, module));
    EXPECT_EQ(TestHost::trace(), kSkippedTrace);
}

TEST_F(ManagementToolUpdate, IsDoneAgainWhereTheInstallOutputIsTakenAway) {
    EXPECT_TRUE(update());
    fs::remove(kInstallOutput);
    machine.file(kScratch + "/left.txt", "text");
    forget();
    EXPECT_TRUE(update());
    EXPECT_EQ(machine.commandsRun(), updateCommands());
    EXPECT_EQ(namesIn(kScratch), (Lines{"x64"}));
    EXPECT_EQ(TestHost::trace(),
              ocmTrace(deleteFolderTrace(deleteFolderTrace()) + moduleUnzipTrace("/tmp/modules/tool.zip", kScratch) +
                       kArchitectureTrace +
                       Lines{"1 Search uninstall.sh in [" + kDirectory + "]", "1 Search uninstall.sh end",
                             "1 filename = [uninstall.sh]", "1 Execute command [" + chmodCommand() + "]"} +
                       passedTrace(kUninstallLines) + passedTrace(kInstallLines)));
}

// ---- The scratch directory ----

TEST_F(ManagementToolUpdate, FailsForAScratchDirectoryThatCannotBeDeleted) {
    machine.file(kScratch, "a file in the way");
    expectReportedFailure(28, "1c", deleteFolderTrace(), [this] { return update(); });
    EXPECT_EQ(contentOf(kScratch), "a file in the way");
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(ManagementToolUpdate, WaitsForAFileOfTheScratchDirectoryAndFails) {
    machine.file(kScratch + "/busy", "text");
    chmod(kScratch.c_str(), 0555);
    EXPECT_FALSE(update());
    EXPECT_EQ(TestHost::trace(), ocmTrace(deleteFolderTrace()));
    EXPECT_EQ(TestHost::operatorMessages(), (Lines{"cna MSGID_EMULEX_0004_F ocm 1c"}));
    EXPECT_EQ(TestHost::sleeps(), kAllPauses);
    EXPECT_EQ(takeError(), 28U);
    chmod(kScratch.c_str(), 0755);
    EXPECT_EQ(namesIn(kScratch), (Lines{"busy"}));
}

TEST_F(ManagementToolUpdate, FailsForAScratchDirectoryThatCannotBeMade) {
    fs::remove_all(kTemp);
    machine.file(kTemp, "a file in the way");
    expectReportedFailure(19, "13", deleteFolderTrace() + Lines{"2 Failed to get create unzip folder"},
                          [this] { return update(); });
    EXPECT_EQ(contentOf(kTemp), "a file in the way");
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(ManagementToolUpdate, TellsTheOperatorBeforeItTraces) {
    fs::remove_all(kTemp);
    machine.file(kTemp, "a file in the way");
    std::size_t messagesBefore = 0;
    TestHost::onTrace([&](const std::string& line) {
        if (line == "2 Failed to get create unzip folder") {
            messagesBefore = TestHost::operatorMessages().size();
        }
    });
    EXPECT_FALSE(update());
    EXPECT_EQ(messagesBefore, 1U);
}

// ---- The archive ----

TEST_F(ManagementToolUpdate, FailsForAModuleWithoutAnArchive) {
    for (const std::list<std::string>& files :
         {std::list<std::string>{}, {"readme.txt", "tool.ZIP"}, {"tool.tar.gz"}}) {
        fs::remove_all(kScratch);
        expectReportedFailure(26, "1a", deleteFolderTrace() + kNoArchiveTrace,
                              [&] { return update("/tmp/modules", files); });
        EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    }
}

TEST_F(ManagementToolUpdate, FailsForAnArchiveThatCannotBeUnpackedAndLeavesTheScratchDirectory) {
    machine.program("/bin/unzip", logging("echo half >\"$4/half\"\nexit 9"));
    EXPECT_FALSE(update());
    EXPECT_EQ(TestHost::trace(), ocmTrace(deleteFolderTrace() +
                                          moduleUnzipTrace("/tmp/modules/tool.zip", kScratch, {unzipFailedTrace(9)})));
    EXPECT_EQ(TestHost::operatorMessages(), (Lines{"cna MSGID_EMULEX_0004_F ocm 1a"}));
    EXPECT_EQ(takeError(), 26U);
    EXPECT_EQ(machine.commandsRun(), (Lines{"/bin/unzip -o /tmp/modules/tool.zip -d " + kScratch}));
    EXPECT_EQ(namesIn(kScratch), (Lines{"half"}));
    EXPECT_EQ(filesLeft(), (Lines{"tmp"}));
}

TEST_F(ManagementToolUpdate, FailsForSpoiledArchives) {
    const std::pair<std::string, int> rows[] = {
        {"tool-damaged-archive", 9}, {"tool-empty-archive", 1}, {"tool-no-archive", 9}};
    for (const auto& [name, status] : rows) {
        SCOPED_TRACE(name);
        fs::remove_all(kScratch);
        expectReportedFailure(26, "1a",
                              deleteFolderTrace() + moduleUnzipTrace(kModules + "/" + name + "/module.zip", kScratch,
                                                                     {unzipFailedTrace(status)}),
                              [this, name = name] { return updateFromArchive(name); });
        EXPECT_EQ(namesIn(kScratch), Lines{});
    }
}

// ---- The machine's directory ----

TEST_F(ManagementToolUpdate, TakesTheDirectoryOfTheArchitecture) {
    laySources("x86");
    const std::pair<std::string, std::string> rows[] = {
        {"i386", "x86"},        {"i686", "x86"},        {"x86_64", "x64"},    {"i686 x86_64", "x86"},
        {"x86_64 i386", "x86"}, {"x86_64 i686", "x86"}, {"xxi686-pc", "x86"}, {"an x86_64.", "x64"}};
    for (const auto& [architecture, directory] : rows) {
        SCOPED_TRACE(architecture);
        machine.command("/bin/uname -m", architecture + "\n");
        fs::remove_all(kTemp);
        forget();
        EXPECT_TRUE(update());
        const std::string path = kScratch + "/" + directory;
        EXPECT_EQ(TestHost::trace(), ocmTrace(readyTrace("/tmp/modules/tool.zip", path) + passedTrace(kUninstallLines) +
                                              passedTrace(kInstallLines)));
        const Lines commands = {
            "/bin/chmod 777 " + path + "/install.sh " + path + "/message.txt " + path + "/uninstall.sh",
            path + "/uninstall.sh", path + "/install.sh -q"};
        EXPECT_EQ(machine.commandsRun(), unpackCommands() + commands);
    }
}

TEST_F(ManagementToolUpdate, FailsWithoutACodeForAnotherArchitecture) {
    laySources("x86");
    for (const std::string text : {"ppc64", "i586", "x86", "x64", "amd64", "I686", "x86-64", ""}) {
        SCOPED_TRACE(text);
        machine.command("/bin/uname -m", text + "\n");
        fs::remove_all(kScratch);
        forget();
        expectFailure(kEarlierError, deleteFolderTrace() + moduleUnzipTrace("/tmp/modules/tool.zip", kScratch) +
                                         kArchitectureTrace + Lines{"2 Failed to get os architecture."});
        EXPECT_EQ(machine.commandsRun(), unpackCommands());
        EXPECT_EQ(filesLeft(), (Lines{"tmp"}));
        EXPECT_EQ(namesIn(kScratch), (Lines{"x64", "x86"}));
    }
}

TEST_F(ManagementToolUpdate, FailsWithoutACodeForAnArchitectureThatCannotBeAskedFor) {
    machine.command("/bin/uname -m", "x86_64\n", {1});
    expectFailure(kEarlierError, deleteFolderTrace() + moduleUnzipTrace("/tmp/modules/tool.zip", kScratch) +
                                     kArchitectureTrace + Lines{"2 Failed to get os architecture."});
    EXPECT_EQ(machine.commandsRun(), unpackCommands());
    EXPECT_EQ(filesLeft(), (Lines{"tmp"}));
}

// ---- The scripts ----

TEST_F(ManagementToolUpdate, FailsForAModuleWithoutTheDirectory) {
    fs::rename(kModuleFiles + "/x64", kModuleFiles + "/x86");
    expectFailure(29, unpackedTrace() + Lines{kNoUninstall});
    EXPECT_EQ(machine.commandsRun(), unpackCommands());
    EXPECT_EQ(filesLeft(), (Lines{"tmp"}));
    EXPECT_EQ(namesIn(kScratch), (Lines{"x86"}));
}

TEST_F(ManagementToolUpdate, FailsForAModuleWithoutTheUninstallScript) {
    for (const std::string name : {"Uninstall.sh", "uninstall.sh.txt", "uninstall", "an uninstall.sh"}) {
        fs::remove_all(kModuleFiles);
        laySources("x64");
        fs::rename(kModuleFiles + "/x64/uninstall.sh", kModuleFiles + "/x64/" + name);
        fs::remove_all(kScratch);
        forget();
        expectFailure(29, unpackedTrace() + Lines{kNoUninstall});
        EXPECT_EQ(machine.commandsRun(), unpackCommands());
        EXPECT_EQ(filesLeft(), (Lines{"tmp"}));
    }
}

TEST_F(ManagementToolUpdate, FailsForSeveralUninstallScripts) {
    nameListedTwice() = "uninstall.sh";
    expectFailure(29, unpackedTrace() + Lines{kSeveral});
    EXPECT_EQ(machine.commandsRun(), unpackCommands());
    EXPECT_EQ(filesLeft(), (Lines{"tmp"}));
}

TEST_F(ManagementToolUpdate, RemovesTheOldToolBeforeItMissesTheInstallScript) {
    fs::remove(kModuleFiles + "/x64/install.sh");
    expectFailure(29, readyTrace() + passedTrace(kUninstallLines) + Lines{kNoInstall});
    EXPECT_EQ(machine.commandsRun(), readyCommands({"message.txt", "uninstall.sh"}) + Lines{kUninstall});
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolUpdate, RemovesTheOldToolBeforeItFindsSeveralInstallScripts) {
    nameListedTwice() = "install.sh";
    expectFailure(29, readyTrace() + passedTrace(kUninstallLines) + Lines{kSeveral});
    EXPECT_EQ(machine.commandsRun(), readyCommands() + Lines{kUninstall});
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolUpdate, MissesAnInstallScriptThatTheUninstallScriptTakesAway) {
    layScript("x64/uninstall.sh", kUninstallLines, "rm " + kInstall);
    expectFailure(29, readyTrace() + passedTrace(kUninstallLines) + Lines{kNoInstall});
    EXPECT_EQ(machine.commandsRun(), readyCommands() + Lines{kUninstall});
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
    EXPECT_EQ(namesIn(kDirectory), (Lines{"message.txt", "uninstall.sh"}));
}

TEST_F(ManagementToolUpdate, RunsAnInstallScriptThatTheUninstallScriptBrings) {
    fs::rename(kModuleFiles + "/x64/install.sh", "/tmp/install.sh");
    chmod("/tmp/install.sh", 0755);
    layScript("x64/uninstall.sh", kUninstallLines, "mv /tmp/install.sh " + kInstall);
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), kUpdatedTrace);
    EXPECT_EQ(machine.commandsRun(),
              (readyCommands({"message.txt", "uninstall.sh"}) + Lines{kUninstall, kInstall + " -q"}));
    EXPECT_EQ(contentOf(kInstallOutput), "the tool is installed\n");
    EXPECT_EQ(takeError(), kEarlierError);
}

// ---- Making the scripts runnable ----

TEST_F(ManagementToolUpdate, MakesAllFilesRunnableByOneCommand) {
    Lines commands;
    libc().system = [&commands](const char* command) {
        EXPECT_EQ(TestHost::trace().back(), "1 Execute command [" + chmodCommand() + "]");
        commands.emplace_back(command);
        for (const auto& entry : fs::directory_iterator(kDirectory)) {
            fs::permissions(entry.path(), fs::perms::all);
        }
        return 0;
    };
    EXPECT_TRUE(update());
    EXPECT_EQ(commands, (Lines{"chmod 777 /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/*"}));
    EXPECT_EQ(TestHost::trace(), kUpdatedTrace);
}

TEST_F(ManagementToolUpdate, GoesOnWhereThatFailsAndTracesTheRawResult) {
    chmod((kModuleFiles + "/x64/uninstall.sh").c_str(), 0755);
    chmod((kModuleFiles + "/x64/install.sh").c_str(), 0755);
    for (const int status : {256, 127 * 256, SIGKILL, -1}) {
        SCOPED_TRACE(status);
        libc().system = [status](const char*) { return status; };
        fs::remove_all(kTemp);
        forget();
        EXPECT_TRUE(update());
        EXPECT_EQ(TestHost::trace(),
                  ocmTrace(readyTrace() + Lines{"16 [" + chmodCommand() + "] return [" + std::to_string(status) + "]"} +
                           passedTrace(kUninstallLines) + passedTrace(kInstallLines)));
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlierError);
    }
}

TEST_F(ManagementToolUpdate, FailsAtTheUninstallScriptThatCouldNotBeMadeRunnable) {
    machine.program("/bin/chmod", logging("exit 1"));
    expectFailure(17, readyTrace() + Lines{"16 [" + chmodCommand() + "] return [256]"} +
                          wrongOutputTrace(kUninstall, kUninstallOutput, {}));
    EXPECT_EQ(machine.commandsRun(), readyCommands());
    EXPECT_EQ(contentOf(kUninstallOutput), "");
    EXPECT_FALSE(fs::exists(kInstallOutput));
}

TEST_F(ManagementToolUpdate, GoesOnWithoutChmod) {
    machine.dropCommand("/bin/chmod");
    expectFailure(17, readyTrace() + Lines{"16 [" + chmodCommand() + "] return [32512]"} +
                          wrongOutputTrace(kUninstall, kUninstallOutput, {}));
    EXPECT_EQ(machine.commandsRun(), unpackCommands());
    EXPECT_EQ(contentOf(kUninstallOutput), "");
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

// ---- Scripts that fail ----

TEST_F(ManagementToolUpdate, FailsAtTheUninstallScriptAndDoesNotInstall) {
    layScript("x64/uninstall.sh", {"in use", "REMOVED"});
    machine.file(kUninstallOutput, "a longer text: removed\n");
    expectFailure(17, readyTrace() + wrongOutputTrace(kUninstall, kUninstallOutput, {"in use", "REMOVED"}));
    EXPECT_EQ(machine.commandsRun(), readyCommands() + Lines{kUninstall});
    EXPECT_EQ(contentOf(kUninstallOutput), "in use\nREMOVED\n");
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolUpdate, FailsAtTheInstallScriptAndLeavesItsOutput) {
    layScript("x64/install.sh", {"no space"});
    expectFailure(17, readyTrace() + passedTrace(kUninstallLines) +
                          wrongOutputTrace(kInstall + " -q", kInstallOutput, {"no space"}));
    EXPECT_EQ(machine.commandsRun(), updateCommands());
    EXPECT_EQ(contentOf(kInstallOutput), "no space\n");
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_install.txt", "temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolUpdate, JudgesTheScriptsByTheirTextsAndNotByTheirExitCodes) {
    layScript("x64/uninstall.sh", kUninstallLines, "exit 1");
    layScript("x64/install.sh", kInstallLines, "exit 255");
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), kUpdatedTrace);
}

TEST_F(ManagementToolUpdate, JudgesBothScriptsByAllTextsOfTheMessageFile) {
    layScript("x64/uninstall.sh", kInstallLines);
    layScript("x64/install.sh", kUninstallLines);
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), ocmTrace(readyTrace() + passedTrace(kInstallLines) + passedTrace(kUninstallLines)));
}

TEST_F(ManagementToolUpdate, FailsForAScriptThatASignalEnds) {
    for (const bool isInstall : {false, true}) {
        const std::string command = isInstall ? kInstall + " -q" : kUninstall;
        machine.program("/sbin/sh", "#!/bin/sh\n[ \"$2\" = '" + command + "' ] && kill -9 $$\nexec /bin/sh \"$@\"\n");
        fs::remove_all(kTemp);
        forget();
        expectFailure(17, readyTrace() + (isInstall ? passedTrace(kUninstallLines) : Lines{}) +
                              updaterTrace(3, {notRunTrace(command)}) +
                              Lines{notOpenedTrace(isInstall ? kInstallOutput : kUninstallOutput)});
        EXPECT_EQ(machine.commandsRun(), readyCommands() + (isInstall ? Lines{kUninstall} : Lines{}));
        EXPECT_EQ(contentOf(kUninstallOutput), isInstall ? "the tool is removed\n" : "");
        EXPECT_EQ(contentOf(kInstallOutput), isInstall ? "" : "(absent)");
    }
}

TEST_F(ManagementToolUpdate, FailsForAnOutputThatCannotBeWritten) {
    machine.directory(kUninstallOutput);
    expectFailure(17, readyTrace() + wrongOutputTrace(kUninstall, kUninstallOutput, {}));
    EXPECT_EQ(machine.commandsRun(), readyCommands());
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolUpdate, FailsForAnInstallOutputThatCannotBeWrittenAndIsNotSkippedThen) {
    // A link into a directory that is missing: there is no output yet, and none can be made.
    fs::create_symlink("/tmp/absent/output", kInstallOutput);
    expectFailure(17,
                  readyTrace() + passedTrace(kUninstallLines) +
                      failedTrace(kInstall + " -q", kInstallOutput, kMessages.trace() + Lines{"2 File Open Error"}));
    EXPECT_EQ(machine.commandsRun(), readyCommands() + Lines{kUninstall});
    EXPECT_EQ(contentOf(kUninstallOutput), "the tool is removed\n");
    EXPECT_TRUE(fs::is_symlink(kInstallOutput));
    EXPECT_FALSE(fs::exists("/tmp/absent"));
    forget();
    EXPECT_FALSE(update());
    EXPECT_EQ(machine.commandsRun(), readyCommands() + Lines{kUninstall});
}

TEST_F(ManagementToolUpdate, FailsBehindTheUninstallScriptWithoutAMessageFile) {
    fs::remove(kModuleFiles + "/x64/message.txt");
    expectFailure(17, readyTrace() + failedTrace(kUninstall, kUninstallOutput,
                                                 {"2 File open error " + kDirectory + "/message.txt"}));
    EXPECT_EQ(contentOf(kUninstallOutput), "the tool is removed\n");
    EXPECT_EQ(machine.commandsRun(), readyCommands({"install.sh", "uninstall.sh"}) + Lines{kUninstall});
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolUpdate, FailsBehindTheUninstallScriptWithoutASuccessText) {
    const MessageFile messages = {{}, {"ended"}};
    layMessages(messages);
    expectFailure(17, readyTrace() + failedTrace(kUninstall, kUninstallOutput, messages.trace()));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
    EXPECT_EQ(machine.commandsRun(), readyCommands() + Lines{kUninstall});
    EXPECT_EQ(contentOf(kUninstallOutput), "the tool is removed\n");
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolUpdate, WaitsForTheEndOfEachScript) {
    const MessageFile messages = {{"removed", "installed"}, {"ended"}};
    layMessages(messages);
    layScript("x64/uninstall.sh", {"the tool is removed", "ended"});
    layScript("x64/install.sh", {"the tool is installed", "ended"});
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(),
              ocmTrace(readyTrace() + goodUpdaterTrace(messages, {"the tool is removed", "ended"}, 0) +
                       goodUpdaterTrace(messages, {"the tool is installed", "ended"}, 0)));
    EXPECT_EQ(TestHost::sleeps(), (Sleeps{30000, 30000}));
}

TEST_F(ManagementToolUpdate, FailsForAScriptThatNeverTellsOfItsEnd) {
    const MessageFile messages = {{"removed", "installed"}, {"ended"}};
    layMessages(messages);
    layScript("x64/uninstall.sh", {"removed", "ended"});
    Lines looks;
    for (int look = 0; look < 5; ++look) {
        looks = looks + endLookTrace(kInstallLines, false);
    }
    expectFailure(17, readyTrace() + goodUpdaterTrace(messages, {"removed", "ended"}, 0) +
                          failedTrace(kInstall + " -q", kInstallOutput,
                                      messages.trace() + looks + Lines{"2 No such end message."}));
    EXPECT_EQ(TestHost::sleeps(), (Sleeps{30000, 30000, 30000, 30000, 30000, 30000}));
    EXPECT_EQ(machine.commandsRun(), updateCommands());
    EXPECT_EQ(contentOf(kInstallOutput), "the tool is installed\n");
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_install.txt", "temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolUpdate, FailsForAnUninstallScriptThatNeverTellsOfItsEndAndDoesNotInstall) {
    const MessageFile messages = {{"removed", "installed"}, {"ended"}};
    layMessages(messages);
    expectFailure(17, readyTrace() + failedTrace(kUninstall, kUninstallOutput,
                                                 messages.trace() + 5 * endLookTrace(kUninstallLines, false) +
                                                     Lines{"2 No such end message."}));
    EXPECT_EQ(TestHost::sleeps(), (Sleeps{30000, 30000, 30000, 30000, 30000}));
    EXPECT_EQ(machine.commandsRun(), readyCommands() + Lines{kUninstall});
    EXPECT_EQ(contentOf(kUninstallOutput), "the tool is removed\n");
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

// ---- Modules of the build ----

using ManagementToolModule = ManagementToolUpdate;

const MessageFile kToolMessages = {{"Uninstall completed", "Install completed"}, {"Setup has ended"}};
const Lines kToolRemoved = {"Removing the management tool", "Uninstall completed.", "Setup has ended."};
const Lines kToolInstalled = {"Installing the management tool 6.4.3.1", "Install completed.", "Setup has ended."};

Lines toolReadyTrace(const std::string& name, const std::string& directory = kDirectory) {
    return readyTrace(kModules + "/" + name + "/module.zip", directory);
}

TEST_F(ManagementToolModule, ReplacesTheToolByOneThatStandsAsASilentInstallLeavesIt) {
    machine.file(kTool, "the old tool\n");
    machine.anyCommand("/bin/rpm", "");
    EXPECT_TRUE(updateFromArchive("tool"));
    EXPECT_EQ(TestHost::trace(), ocmTrace(toolReadyTrace("tool") + goodUpdaterTrace(kToolMessages, kToolRemoved, 1) +
                                          goodUpdaterTrace(kToolMessages, kToolInstalled, 1)));
    EXPECT_EQ(machine.commandsRun(), moduleCommands({"install.sh", "message.txt", "uninstall.sh", "version"}));
    EXPECT_EQ(TestHost::sleeps(), (Sleeps{30000, 30000}));
    EXPECT_EQ(contentOf(kUninstallOutput), textOf(kToolRemoved));
    EXPECT_EQ(contentOf(kInstallOutput), textOf(kToolInstalled));
    EXPECT_EQ(fs::read_symlink(kTool), "/.machine/hbacmd");
    EXPECT_EQ(namesIn(kScratch), (Lines{"x64", "x86"}));
    EXPECT_TRUE(quietly([this] { return CEmulexCommon::OCMInstallCheck("", "", module); }));
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(ManagementToolModule, HasScriptsFor32BitMachinesToo) {
    machine.command("/bin/uname -m", "i686\n");
    for (const std::string name : {"tool", "tool-without-x64"}) {
        fs::remove_all(kTemp);
        forget();
        EXPECT_TRUE(updateFromArchive(name));
        EXPECT_EQ(TestHost::trace(),
                  ocmTrace(toolReadyTrace(name, kScratch + "/x86") + goodUpdaterTrace(kToolMessages, kToolRemoved, 1) +
                           goodUpdaterTrace(kToolMessages, kToolInstalled, 1)));
        EXPECT_EQ(machine.commandsRun(),
                  moduleCommands({"install.sh", "message.txt", "uninstall.sh", "version"}, kScratch + "/x86"));
    }
}

TEST_F(ManagementToolModule, LeavesTheOldToolWhereItsScriptsAreMissing) {
    machine.file(kTool, "the old tool\n");
    for (const std::string name : {"tool-without-x64", "tool-without-uninstall"}) {
        fs::remove_all(kTemp);
        forget();
        EXPECT_FALSE(updateFromArchive(name));
        EXPECT_EQ(TestHost::trace(),
                  ocmTrace(unpackedTrace(kModules + "/" + name + "/module.zip") + Lines{kNoUninstall}));
        EXPECT_EQ(machine.commandsRun(), (Lines{"/bin/uname -m"}));
        EXPECT_EQ(takeError(), 29U);
        EXPECT_EQ(contentOf(kTool), "the old tool\n");
        EXPECT_EQ(filesLeft(), (Lines{"tmp"}));
    }
}

TEST_F(ManagementToolModule, TakesTheOldToolAwayWhereItsInstallScriptIsMissing) {
    machine.file(kTool, "the old tool\n");
    EXPECT_FALSE(updateFromArchive("tool-without-install"));
    EXPECT_EQ(TestHost::trace(), ocmTrace(toolReadyTrace("tool-without-install") +
                                          goodUpdaterTrace(kToolMessages, kToolRemoved, 1) + Lines{kNoInstall}));
    EXPECT_EQ(machine.commandsRun(), moduleCommands({"message.txt", "uninstall.sh", "version"}));
    EXPECT_EQ(takeError(), 29U);
    EXPECT_FALSE(fs::exists(kTool));
    EXPECT_EQ(contentOf(kUninstallOutput), textOf(kToolRemoved));
    EXPECT_EQ(filesLeft(), (Lines{"temp_ocm_uninstall.txt", "tmp"}));
}

TEST_F(ManagementToolModule, LeavesTheOldToolWhereItsUninstallScriptFails) {
    machine.file(kTool, "the old tool\n");
    EXPECT_FALSE(updateFromArchive("tool-failing-uninstall"));
    const Lines output = {"Removing the management tool", "Uninstall failed: the tool is in use.", "Setup has ended."};
    EXPECT_EQ(TestHost::trace(), ocmTrace(toolReadyTrace("tool-failing-uninstall") +
                                          failedTrace(kUninstall, kUninstallOutput,
                                                      kToolMessages.trace() + endLookTrace(output, true) +
                                                          successLookTrace(output, false))));
    EXPECT_EQ(machine.commandsRun(),
              moduleCommands({"failing.uninstall", "install.sh", "message.txt", "uninstall.sh", "version"}));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(contentOf(kTool), "the old tool\n");
    EXPECT_FALSE(fs::exists(kInstallOutput));
}

TEST_F(ManagementToolModule, LeavesTheMachineWithoutAToolWhereItsInstallScriptFails) {
    machine.file(kTool, "the old tool\n");
    EXPECT_FALSE(updateFromArchive("tool-failing-install"));
    const Lines output = {"Installing the management tool 6.4.3.1", "Install failed: a package is broken.",
                          "Setup has ended."};
    EXPECT_EQ(
        TestHost::trace(),
        ocmTrace(toolReadyTrace("tool-failing-install") + goodUpdaterTrace(kToolMessages, kToolRemoved, 1) +
                 failedTrace(kInstall + " -q", kInstallOutput,
                             kToolMessages.trace() + endLookTrace(output, true) + successLookTrace(output, false))));
    EXPECT_EQ(machine.commandsRun(),
              moduleCommands({"failing.install", "install.sh", "message.txt", "uninstall.sh", "version"}));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_FALSE(fs::exists(kTool));
    forget();
    EXPECT_TRUE(updateFromArchive("tool"));
    EXPECT_EQ(TestHost::trace(), kSkippedTrace);
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
    EXPECT_FALSE(fs::exists(kTool));
}

}  // namespace
}  // namespace kvl::test

/// Lists a directory, with one name twice where a test wants it so.
extern "C" struct dirent* readdir(DIR* directory) {
    static struct dirent* again = nullptr;
    if (again != nullptr) {
        return std::exchange(again, nullptr);
    }
    using Function = struct dirent*(DIR*);
    static Function* const next = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, "readdir"));
    struct dirent* const entry = next(directory);
    if (entry != nullptr && kvl::test::nameListedTwice() == entry->d_name) {
        again = entry;
    }
    return entry;
}
