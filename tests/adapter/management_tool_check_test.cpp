#include <sys/stat.h>

#include <filesystem>

#include "tests/adapter/adapter_test.h"
#include "tests/foundation/descriptor_in_file.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

const std::string kAnswer = kWorkRoot + "/temp/rpm_grep_result.txt";

struct Setting {
    std::string key;
    std::string line;
};

/// A configuration file, with the lines that a silent install leaves.
struct SettingsFile {
    std::string path;
    std::string name;
    std::vector<Setting> settings;
    std::string failure;

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

const SettingsFile kDiscovery = {"/etc/emulexDiscConfig",
                                 "emulexDiscConfig",
                                 {{"ClientRemoteOperation", "ClientRemoteOperation:disabled"},
                                  {"ClientOperationMode", "ClientOperationMode:enabled"},
                                  {"ClientReadOnlyOperation", "ClientReadOnlyOperation:disabled"},
                                  {"TcpSocketPortNumber", "TcpSocketPortNumber:23333"}},
                                 "1 0 < iDiskKeyWordCount ) || ( iRet != true )"};

const SettingsFile kManagement = {"/etc/emulexRMConfig",
                                  "emulexRMConfig",
                                  {{"ServerRemoteOperation", "ServerRemoteOperation:enabled"},
                                   {"ManagementHost", "ManagementHost:false"},
                                   {"SecureManagement", "SecureManagement:disabled"},
                                   {"MngmtHostIpAddress", "MngmtHostIpAddress:0"},
                                   {"ExclusiveHostMgmnt", "ExclusiveHostMgmnt:false"}},
                                  "1 ( 0 < iRmKeyWordCount ) || ( iRet != true )"};

const SettingsFile* const kFiles[] = {&kDiscovery, &kManagement};

// ---- What the check traces ----

Lines startTrace(const std::string& kind = "kind") {
    const std::string signature = "static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)";
    return {"1 CEmulexCommon::OCMInstallCheck() [START]", "4 [ENTER] " + signature,
            "1 " + signature + " ARG Check ModuleKind=" + kind, "4 [LEAVE] " + signature,
            "4 ARG Check ModuleKind=" + kind};
}

const Lines kEndTrace = {"1 CEmulexCommon::OCMInstallCheck() [END]"};

Lines lineTrace(const SettingsFile& file, const std::string& line) {
    return {"1 " + file.name + ":[" + line + "]"};
}

/// A line whose blanks are deleted, one after the other.
Lines blanksTrace(const SettingsFile& file, const Lines& shortened) {
    Lines lines;
    for (const std::string& line : shortened) {
        lines.push_back("1 " + file.name + " space delete:[" + line + "]");
    }
    return lines;
}

std::string tracedSubject(const std::string& key, const std::string& line) {
    return key == "ClientRemoteOperation" ? key : line;
}

Lines rightTrace(const std::string& key, const std::string& line) {
    return {"1 find[" + key + "] in [" + line + "]", "1 silent [" + tracedSubject(key, line) + "]"};
}

Lines wrongTrace(const std::string& key, const std::string& line) {
    const std::string blanks = key == "ClientRemoteOperation" ? "  " : " ";
    return {"1 find[" + key + "] in [" + line + "]", "1 not silent" + blanks + "[" + tracedSubject(key, line) + "]"};
}

/// The right lines of a file from one place up to another.
Lines rightLinesTrace(const SettingsFile& file, std::size_t first, std::size_t last) {
    Lines lines;
    for (std::size_t place = first; place < last; ++place) {
        const Setting& setting = file.settings[place];
        lines = lines + lineTrace(file, setting.line) + rightTrace(setting.key, setting.line);
    }
    return lines;
}

Lines rightFileTrace(const SettingsFile& file) {
    return rightLinesTrace(file, 0, file.settings.size());
}

/// What is traced before a file is opened.
Lines traceUpTo(const SettingsFile& file) {
    return &file == &kManagement ? startTrace() + rightFileTrace(kDiscovery) : startTrace();
}

Lines failedFileTrace(const SettingsFile& file, const Lines& scan) {
    return traceUpTo(file) + scan + Lines{file.failure} + kEndTrace;
}

/// What is traced behind a file whose lines are traced so.
Lines passedFileTrace(const SettingsFile& file, const Lines& scan) {
    return traceUpTo(file) + scan + (&file == &kDiscovery ? rightFileTrace(kManagement) : Lines{}) + kEndTrace;
}

const Lines kSilentTrace = startTrace() + rightFileTrace(kDiscovery) + rightFileTrace(kManagement);

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

    /// What the shell's commands print is not for the eyes of who runs the tests.
    bool check(const std::string& kind = "kind") {
        const DescriptorInFile output(STDOUT_FILENO, "/tmp/output");
        const DescriptorInFile errors(STDERR_FILENO, "/tmp/errors");
        return CEmulexCommon::OCMInstallCheck("unused", kind, module);
    }

    /// A new trace and no answer yet, with this in one file and the right lines in the other.
    void lay(const SettingsFile& file, const std::string& text) {
        fs::remove(kAnswer);
        laySettings();
        machine.file(file.path, text);
        forget();
    }

    /// The shell's command ends so, with this in the file of its answer.
    void answer(const std::string& text, int status = 0) {
        libc().system = [this, text, status](const char* command) {
            EXPECT_EQ(TestHost::trace(), kSilentTrace);
            commands.emplace_back(command);
            machine.file(kAnswer, text);
            return status;
        };
    }

    void expectFailureInFile(const SettingsFile& file, const Lines& scan) {
        EXPECT_FALSE(check());
        EXPECT_EQ(TestHost::trace(), failedFileTrace(file, scan));
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlierError);
        EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
        EXPECT_FALSE(fs::exists(kAnswer));
    }

    void expectPass(const SettingsFile& file, const Lines& scan) {
        EXPECT_TRUE(check());
        EXPECT_EQ(TestHost::trace(), passedFileTrace(file, scan));
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlierError);
    }

    static constexpr unsigned long kEarlierError = 14;
    Lines commands;
};

// ---- The whole check ----

TEST_F(ManagementToolCheck, PassesASilentInstall) {
    EXPECT_TRUE(check("util"));
    const std::string signature = "static bool CEmulexCommon::OCMInstallCheck(std::string, std::string, std::string)";
    EXPECT_EQ(TestHost::trace(), (Lines{"1 CEmulexCommon::OCMInstallCheck() [START]",
                                        "4 [ENTER] " + signature,
                                        "1 " + signature + " ARG Check ModuleKind=util",
                                        "4 [LEAVE] " + signature,
                                        "4 ARG Check ModuleKind=util",
                                        "1 emulexDiscConfig:[ClientRemoteOperation:disabled]",
                                        "1 find[ClientRemoteOperation] in [ClientRemoteOperation:disabled]",
                                        "1 silent [ClientRemoteOperation]",
                                        "1 emulexDiscConfig:[ClientOperationMode:enabled]",
                                        "1 find[ClientOperationMode] in [ClientOperationMode:enabled]",
                                        "1 silent [ClientOperationMode:enabled]",
                                        "1 emulexDiscConfig:[ClientReadOnlyOperation:disabled]",
                                        "1 find[ClientReadOnlyOperation] in [ClientReadOnlyOperation:disabled]",
                                        "1 silent [ClientReadOnlyOperation:disabled]",
                                        "1 emulexDiscConfig:[TcpSocketPortNumber:23333]",
                                        "1 find[TcpSocketPortNumber] in [TcpSocketPortNumber:23333]",
                                        "1 silent [TcpSocketPortNumber:23333]",
                                        "1 emulexRMConfig:[ServerRemoteOperation:enabled]",
                                        "1 find[ServerRemoteOperation] in [ServerRemoteOperation:enabled]",
                                        "1 silent [ServerRemoteOperation:enabled]",
                                        "1 emulexRMConfig:[ManagementHost:false]",
                                        "1 find[ManagementHost] in [ManagementHost:false]",
                                        "1 silent [ManagementHost:false]",
                                        "1 emulexRMConfig:[SecureManagement:disabled]",
                                        "1 find[SecureManagement] in [SecureManagement:disabled]",
                                        "1 silent [SecureManagement:disabled]",
                                        "1 emulexRMConfig:[MngmtHostIpAddress:0]",
                                        "1 find[MngmtHostIpAddress] in [MngmtHostIpAddress:0]",
                                        "1 silent [MngmtHostIpAddress:0]",
                                        "1 emulexRMConfig:[ExclusiveHostMgmnt:false]",
                                        "1 find[ExclusiveHostMgmnt] in [ExclusiveHostMgmnt:false]",
                                        "1 silent [ExclusiveHostMgmnt:false]",
                                        "1 CEmulexCommon::OCMInstallCheck() [END]"}));
    EXPECT_EQ(takeError(), kEarlierError);
    EXPECT_EQ(machine.commandsRun(), (Lines{"/bin/rpm -qa"}));
}

TEST_F(ManagementToolCheck, LeavesNothingBehindButTheAnswerOfThePackageManager) {
    EXPECT_TRUE(check());
    EXPECT_EQ(namesIn(kWorkRoot + "/temp"), (Lines{"CNA", "FC", "rpm_grep_result.txt"}));
    EXPECT_EQ(contentOf(kAnswer), "1\n");
    EXPECT_EQ(contentOf(kDiscovery.path), kDiscovery.text());
    EXPECT_EQ(contentOf(kManagement.path), kManagement.text());
}

TEST_F(ManagementToolCheck, CanBeRepeated) {
    EXPECT_TRUE(check());
    const Lines first = takeTrace();
    EXPECT_TRUE(check());
    EXPECT_EQ(TestHost::trace(), first);
    EXPECT_EQ(contentOf(kAnswer), "1\n");
}

TEST_F(ManagementToolCheck, TracesTheModuleKindAndDoesNotJudgeByIt) {
    for (const std::string kind : {"util", "UTIL", "", "driver", "%s %n %d"}) {
        forget();
        EXPECT_TRUE(check(kind)) << kind;
        EXPECT_EQ(TestHost::trace(),
                  startTrace(kind) + rightFileTrace(kDiscovery) + rightFileTrace(kManagement) + kEndTrace);
    }
}

TEST_F(ManagementToolCheck, DoesNotUseTheFirstArgument) {
    for (const std::string unused : {"", "util", "/etc/other"}) {
        forget();
        EXPECT_TRUE(CEmulexCommon::OCMInstallCheck(unused, "kind", module));
        EXPECT_EQ(TestHost::trace(), kSilentTrace + kEndTrace);
    }
}

TEST_F(ManagementToolCheck, IsTheSameForEveryModuleName) {
    for (const char* name : {"fc", "another"}) {
        useModule(name);
        forget();
        EXPECT_TRUE(check());
        EXPECT_EQ(TestHost::trace(), kSilentTrace + kEndTrace);
        EXPECT_EQ(TestHost::modules(), (Lines{name}));
    }
}

// ---- Files ----

TEST_F(ManagementToolCheck, FailsWithACodeForAFileThatCannotBeOpened) {
    for (const SettingsFile* file : kFiles) {
        for (const bool isThere : {false, true}) {
            lay(*file, file->text());
            if (isThere) {
                chmod(file->path.c_str(), 0);
            } else {
                fs::remove(file->path);
            }
            EXPECT_FALSE(check());
            EXPECT_EQ(TestHost::trace(),
                      traceUpTo(*file) + Lines{"2 Failed to open file(" + file->path + ")."} + kEndTrace);
            EXPECT_EQ(takeError(), 17U);
            EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
            fs::remove(file->path);
        }
    }
    EXPECT_FALSE(fs::exists(kAnswer));
}

TEST_F(ManagementToolCheck, DoesNotOpenTheSecondFileBehindAWrongFirstOne) {
    fs::remove(kManagement.path);
    machine.file(kDiscovery.path, "ClientOperationMode:disabled\n");
    expectFailureInFile(kDiscovery, lineTrace(kDiscovery, "ClientOperationMode:disabled") +
                                        wrongTrace("ClientOperationMode", "ClientOperationMode:disabled"));
}

TEST_F(ManagementToolCheck, FailsForAnEmptyFileWithoutACode) {
    for (const SettingsFile* file : kFiles) {
        lay(*file, "");
        expectFailureInFile(*file, {});
    }
}

TEST_F(ManagementToolCheck, TakesADirectoryForAnEmptyFile) {
    for (const SettingsFile* file : kFiles) {
        laySettings();
        forget();
        fs::remove(file->path);
        machine.directory(file->path);
        expectFailureInFile(*file, {});
        fs::remove(file->path);
    }
}

TEST_F(ManagementToolCheck, ReadsALastLineWithoutALineFeed) {
    for (const SettingsFile* file : kFiles) {
        std::string text = file->text();
        text.pop_back();
        lay(*file, text);
        expectPass(*file, rightFileTrace(*file));
    }
}

// ---- Settings ----

TEST_F(ManagementToolCheck, FailsForEachSettingThatIsMissing) {
    for (const SettingsFile* file : kFiles) {
        for (std::size_t place = 0; place < file->settings.size(); ++place) {
            SCOPED_TRACE(file->settings[place].key);
            lay(*file, file->textWithout(place));
            expectFailureInFile(
                *file, rightLinesTrace(*file, 0, place) + rightLinesTrace(*file, place + 1, file->settings.size()));
        }
    }
}

TEST_F(ManagementToolCheck, FailsAtOnceForEachSettingWithAnotherValue) {
    for (const SettingsFile* file : kFiles) {
        for (std::size_t place = 0; place < file->settings.size(); ++place) {
            const std::string& key = file->settings[place].key;
            SCOPED_TRACE(key);
            lay(*file, file->textWith(place, key + ":other\n"));
            expectFailureInFile(*file, rightLinesTrace(*file, 0, place) + lineTrace(*file, key + ":other") +
                                           wrongTrace(key, key + ":other"));
        }
    }
}

TEST_F(ManagementToolCheck, TracesAWrongRemoteOperationByItsKeyAndWithTwoBlanks) {
    lay(kDiscovery, "ClientRemoteOperation:enabled\n");
    expectFailureInFile(kDiscovery, {"1 emulexDiscConfig:[ClientRemoteOperation:enabled]",
                                     "1 find[ClientRemoteOperation] in [ClientRemoteOperation:enabled]",
                                     "1 not silent  [ClientRemoteOperation]"});
    lay(kDiscovery, "TcpSocketPortNumber:1\n");
    expectFailureInFile(
        kDiscovery, {"1 emulexDiscConfig:[TcpSocketPortNumber:1]",
                     "1 find[TcpSocketPortNumber] in [TcpSocketPortNumber:1]", "1 not silent [TcpSocketPortNumber:1]"});
}

TEST_F(ManagementToolCheck, ComparesTheWholeLine) {
    const std::string key = "TcpSocketPortNumber";
    for (const std::string& line :
         {key, key + ":", key + ":2333", key + ":233330", key + ":23333:", key + "s:23333", "x" + key + ":23333",
          key + "=23333", key + ":23333\r", key + ":\t23333", "\t" + key + ":23333", key + ":23333\t",
          "#" + key + ":23333", ";" + key + ":23333", key + ":23333#", key + ":%s%n"}) {
        SCOPED_TRACE(line);
        lay(kDiscovery, line + "\n");
        expectFailureInFile(kDiscovery, lineTrace(kDiscovery, line) + wrongTrace(key, line));
    }
}

TEST_F(ManagementToolCheck, ComparesBehindAZeroByteToo) {
    const std::string line = "TcpSocketPortNumber:23333";
    lay(kDiscovery, line + std::string(1, '\0') + "\n");
    expectFailureInFile(kDiscovery, lineTrace(kDiscovery, line) + wrongTrace("TcpSocketPortNumber", line));
}

TEST_F(ManagementToolCheck, FailsForALineThatEndsInACarriageReturn) {
    for (const SettingsFile* file : kFiles) {
        for (std::size_t place = 0; place < file->settings.size(); ++place) {
            const Setting& setting = file->settings[place];
            lay(*file, file->textWith(place, setting.line + "\r\n"));
            expectFailureInFile(*file, rightLinesTrace(*file, 0, place) + lineTrace(*file, setting.line + "\r") +
                                           wrongTrace(setting.key, setting.line + "\r"));
        }
    }
}

TEST_F(ManagementToolCheck, TakesACommentedLineForAWrongValue) {
    lay(kDiscovery, "# ClientRemoteOperation:disabled\n" + kDiscovery.text());
    expectFailureInFile(kDiscovery, {"1 emulexDiscConfig:[# ClientRemoteOperation:disabled]",
                                     "1 emulexDiscConfig space delete:[#ClientRemoteOperation:disabled]",
                                     "1 find[ClientRemoteOperation] in [#ClientRemoteOperation:disabled]",
                                     "1 not silent  [ClientRemoteOperation]"});
}

TEST_F(ManagementToolCheck, LooksForTheKeysCaseSensitively) {
    lay(kDiscovery, kDiscovery.textWith(3, "tcpsocketportnumber:23333\n"));
    expectFailureInFile(kDiscovery,
                        rightLinesTrace(kDiscovery, 0, 3) + lineTrace(kDiscovery, "tcpsocketportnumber:23333"));
    lay(kManagement, "ManagementHost:False\n");
    expectFailureInFile(kManagement, lineTrace(kManagement, "ManagementHost:False") +
                                         wrongTrace("ManagementHost", "ManagementHost:False"));
}

TEST_F(ManagementToolCheck, TakesTheSettingsInAnyOrder) {
    for (const SettingsFile* file : kFiles) {
        std::string text;
        Lines scan;
        for (auto setting = file->settings.rbegin(); setting != file->settings.rend(); ++setting) {
            text += setting->line + "\n";
            scan = scan + lineTrace(*file, setting->line) + rightTrace(setting->key, setting->line);
        }
        lay(*file, text);
        expectPass(*file, scan);
    }
}

TEST_F(ManagementToolCheck, PassesOverOtherLines) {
    const Lines others = {"", "# a comment", "100%s", "Client", "\r", "\t", "Key:value"};
    for (const SettingsFile* file : kFiles) {
        std::string text;
        Lines scan;
        for (const std::string& line : others) {
            text += line + "\n";
            scan = scan + lineTrace(*file, line);
            if (line == "# a comment") {
                scan = scan + blanksTrace(*file, {"#a comment", "#acomment"});
            }
        }
        lay(*file, text + file->text());
        expectPass(*file, scan + rightFileTrace(*file));
    }
}

TEST_F(ManagementToolCheck, LooksForEachFilesOwnKeysAlone) {
    lay(kDiscovery, "ServerRemoteOperation:disabled\nManagementHost:true\n" + kDiscovery.text());
    expectPass(kDiscovery, lineTrace(kDiscovery, "ServerRemoteOperation:disabled") +
                               lineTrace(kDiscovery, "ManagementHost:true") + rightFileTrace(kDiscovery));
    lay(kManagement, "ClientRemoteOperation:enabled\nTcpSocketPortNumber:1\n" + kManagement.text());
    expectPass(kManagement, lineTrace(kManagement, "ClientRemoteOperation:enabled") +
                                lineTrace(kManagement, "TcpSocketPortNumber:1") + rightFileTrace(kManagement));
}

TEST_F(ManagementToolCheck, CountsALineThatOccursTwiceForOneThatIsMissing) {
    for (const SettingsFile* file : kFiles) {
        const std::size_t last = file->settings.size() - 1;
        lay(*file, file->settings[0].line + "\n" + file->textWithout(last));
        expectPass(*file, rightLinesTrace(*file, 0, 1) + rightLinesTrace(*file, 0, last));
    }
}

TEST_F(ManagementToolCheck, CountsOneLineForAll) {
    lay(kDiscovery, kDiscovery.settings[2].line + "\n" + kDiscovery.settings[2].line + "\n" +
                        kDiscovery.settings[2].line + "\n" + kDiscovery.settings[2].line + "\n");
    const Lines once = rightLinesTrace(kDiscovery, 2, 3);
    expectPass(kDiscovery, once + once + once + once);
}

TEST_F(ManagementToolCheck, DoesNotReadBehindTheLastLineThatWasOutstanding) {
    for (const SettingsFile* file : kFiles) {
        lay(*file, file->text() + file->settings[0].key + ":other\nmore\n");
        expectPass(*file, rightFileTrace(*file));
    }
}

TEST_F(ManagementToolCheck, FailsForALineThatOccursTwiceWithAnotherValueTheSecondTime) {
    lay(kManagement, kManagement.settings[1].line + "\n" + "ManagementHost:true\n" + kManagement.text());
    expectFailureInFile(kManagement, rightLinesTrace(kManagement, 1, 2) +
                                         lineTrace(kManagement, "ManagementHost:true") +
                                         wrongTrace("ManagementHost", "ManagementHost:true"));
}

TEST_F(ManagementToolCheck, TakesTheFirstKeyOfTheTableInALineThatHoldsTwo) {
    for (const SettingsFile* file : kFiles) {
        for (std::size_t second = 1; second < file->settings.size(); ++second) {
            for (std::size_t first = 0; first < second; ++first) {
                const std::string line = file->settings[second].line + file->settings[first].line;
                lay(*file, line + "\n" + file->text());
                expectFailureInFile(*file, lineTrace(*file, line) + wrongTrace(file->settings[first].key, line));
            }
        }
    }
}

// ---- Blanks ----

TEST_F(ManagementToolCheck, DeletesBlanksFromTheLeftBeforeItCompares) {
    lay(kDiscovery, kDiscovery.textWith(3, "  TcpSocketPortNumber : 23333 \n"));
    expectPass(kDiscovery, rightLinesTrace(kDiscovery, 0, 3) +
                               Lines{"1 emulexDiscConfig:[  TcpSocketPortNumber : 23333 ]",
                                     "1 emulexDiscConfig space delete:[ TcpSocketPortNumber : 23333 ]",
                                     "1 emulexDiscConfig space delete:[TcpSocketPortNumber : 23333 ]",
                                     "1 emulexDiscConfig space delete:[TcpSocketPortNumber: 23333 ]",
                                     "1 emulexDiscConfig space delete:[TcpSocketPortNumber:23333 ]",
                                     "1 emulexDiscConfig space delete:[TcpSocketPortNumber:23333]",
                                     "1 find[TcpSocketPortNumber] in [TcpSocketPortNumber:23333]",
                                     "1 silent [TcpSocketPortNumber:23333]"});
}

TEST_F(ManagementToolCheck, TracesDeletedBlanksUnderEachFilesName) {
    lay(kManagement, kManagement.textWith(3, "MngmtHostIpAddress: 0\n"));
    expectPass(
        kManagement,
        rightLinesTrace(kManagement, 0, 3) +
            Lines{"1 emulexRMConfig:[MngmtHostIpAddress: 0]", "1 emulexRMConfig space delete:[MngmtHostIpAddress:0]",
                  "1 find[MngmtHostIpAddress] in [MngmtHostIpAddress:0]", "1 silent [MngmtHostIpAddress:0]"} +
            rightLinesTrace(kManagement, 4, 5));
}

TEST_F(ManagementToolCheck, FindsAKeyThatBlanksTakeApart) {
    lay(kDiscovery, kDiscovery.textWith(0, "Client Remote Operation:disabled\n"));
    expectPass(kDiscovery,
               lineTrace(kDiscovery, "Client Remote Operation:disabled") +
                   blanksTrace(kDiscovery, {"ClientRemote Operation:disabled", "ClientRemoteOperation:disabled"}) +
                   rightTrace("ClientRemoteOperation", "ClientRemoteOperation:disabled") +
                   rightLinesTrace(kDiscovery, 1, 4));
}

TEST_F(ManagementToolCheck, EmptiesALineOfBlanks) {
    lay(kDiscovery, "   \n" + kDiscovery.text());
    expectPass(kDiscovery,
               lineTrace(kDiscovery, "   ") + blanksTrace(kDiscovery, {"  ", " ", ""}) + rightFileTrace(kDiscovery));
}

TEST_F(ManagementToolCheck, LeavesTabsAlone) {
    lay(kDiscovery, "TcpSocketPortNumber: \t23333\n");
    expectFailureInFile(kDiscovery, lineTrace(kDiscovery, "TcpSocketPortNumber: \t23333") +
                                        blanksTrace(kDiscovery, {"TcpSocketPortNumber:\t23333"}) +
                                        wrongTrace("TcpSocketPortNumber", "TcpSocketPortNumber:\t23333"));
}

// ---- Long lines ----

TEST_F(ManagementToolCheck, ReadsALineOf10000CharactersWhole) {
    const std::string comment = std::string(10000, '#');
    lay(kDiscovery, comment + "\n" + kDiscovery.text());
    expectPass(kDiscovery, lineTrace(kDiscovery, comment) + rightFileTrace(kDiscovery));

    const std::string line = std::string(10000, 'x') + "TcpSocketPortNumber:23333";
    lay(kDiscovery, line + "\n");
    expectFailureInFile(kDiscovery, lineTrace(kDiscovery, line) + wrongTrace("TcpSocketPortNumber", line));
}

// ---- The package ----

TEST_F(ManagementToolCheck, AsksThePackageManagerThroughTheShell) {
    answer("1\n");
    EXPECT_TRUE(check());
    EXPECT_EQ(commands, (Lines{"rpm -qa | grep elxocmjvm-..........rpm;echo $? > "
                               "/opt/tarvenn/kvl/tmp/EMULEX/temp/rpm_grep_result.txt"}));
    EXPECT_EQ(TestHost::trace(), kSilentTrace + kEndTrace);
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(ManagementToolCheck, FailsWhereThePackageIsInstalled) {
    machine.command("/bin/rpm -qa", "kernel\nelxocmjvm-10.2.26.1.rpm\nzlib\n");
    EXPECT_FALSE(check());
    EXPECT_EQ(TestHost::trace(), kSilentTrace + Lines{"1 I found elxocmjvm-xxxx.xxxx.rpm. "} + kEndTrace);
    EXPECT_EQ(takeError(), kEarlierError);
    EXPECT_EQ(contentOf(kAnswer), "0\n");
    EXPECT_EQ(machine.commandsRun(), (Lines{"/bin/rpm -qa"}));
}

TEST_F(ManagementToolCheck, FindsThePackageByTenCharactersOfAVersionAndAnEnding) {
    const struct {
        std::string package;
        bool isFound;
    } rows[] = {
        {"elxocmjvm-1234567890rpm", true},       {"elxocmjvm-10.2.26.1.rpm", true},
        {"elxocmjvm-          rpm", true},       {"an-elxocmjvm-10.2.26.1.rpm-more", true},
        {"elxocmjvm-10.2.261.1.rpm", false},     {"elxocmjvm-10.2.6.1.rpm", false},
        {"elxocmjvm-10.2.26.1-1.x86_64", false}, {"elxocmjvm-10.2.26.1", false},
        {"elxocmgui-10.2.26.1.rpm", false},      {"ELXOCMJVM-10.2.26.1.rpm", false},
        {"elxocmjvm-10.2.26.1.\nrpm", false},    {"", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.package);
        machine.command("/bin/rpm -qa", row.package + "\n");
        forget();
        EXPECT_EQ(check(), !row.isFound);
        EXPECT_EQ(contentOf(kAnswer), row.isFound ? "0\n" : "1\n");
    }
}

TEST_F(ManagementToolCheck, PassesWhereThePackageManagerFails) {
    machine.command("/bin/rpm -qa", "", {1});
    EXPECT_TRUE(check());
    EXPECT_EQ(contentOf(kAnswer), "1\n");
    machine.dropCommand("/bin/rpm");
    forget();
    EXPECT_TRUE(check());
    EXPECT_EQ(contentOf(kAnswer), "1\n");
    EXPECT_EQ(TestHost::trace(), kSilentTrace + kEndTrace);
}

TEST_F(ManagementToolCheck, FailsForThePackageOfAPackageManagerThatFails) {
    machine.command("/bin/rpm -qa", "elxocmjvm-10.2.26.1.rpm\n", {1});
    EXPECT_FALSE(check());
    EXPECT_EQ(contentOf(kAnswer), "0\n");
}

TEST_F(ManagementToolCheck, PassesWhereGrepFails) {
    machine.program("/bin/grep", "#!/bin/sh\ncat > /dev/null\nexit 2\n");
    EXPECT_TRUE(check());
    EXPECT_EQ(contentOf(kAnswer), "2\n");
    machine.dropCommand("/bin/grep");
    machine.command("/bin/rpm -qa", "");
    forget();
    EXPECT_TRUE(check());
    EXPECT_EQ(contentOf(kAnswer), "127\n");
    EXPECT_EQ(TestHost::trace(), kSilentTrace + kEndTrace);
}

TEST_F(ManagementToolCheck, TakesTheFirstLineOfTheAnswerForFoundIfItIsZeroAlone) {
    for (const std::string text : {"0", "0\n", "0\n1\n"}) {
        answer(text);
        forget();
        EXPECT_FALSE(check()) << text;
        EXPECT_EQ(TestHost::trace(), kSilentTrace + Lines{"1 I found elxocmjvm-xxxx.xxxx.rpm. "} + kEndTrace);
    }
    for (const std::string text : {"", "\n", "\n0\n", "1\n0\n", "00\n", " 0\n", "0 \n", "0\r\n", "zero\n"}) {
        answer(text);
        forget();
        EXPECT_TRUE(check()) << text;
        EXPECT_EQ(TestHost::trace(), kSilentTrace + kEndTrace);
    }
}

TEST_F(ManagementToolCheck, TakesNoEarlierAnswer) {
    machine.file(kAnswer, "0\n");
    EXPECT_TRUE(check());
    EXPECT_EQ(contentOf(kAnswer), "1\n");
}

TEST_F(ManagementToolCheck, FailsWithTheRawResultWhereTheShellFails) {
    for (const int status : {256, 512, 32512, 9, 139, -1}) {
        answer("1\n", status);
        forget();
        EXPECT_FALSE(check()) << status;
        EXPECT_EQ(TestHost::trace(),
                  kSilentTrace + Lines{"2 _tsystem error (rpm grep). (" + std::to_string(status) + ")"} + kEndTrace);
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlierError);
    }
}

TEST_F(ManagementToolCheck, FailsWhereTheShellCannotWriteTheAnswer) {
    const Lines trace = kSilentTrace + Lines{"2 _tsystem error (rpm grep). (512)"} + kEndTrace;
    machine.directory(kAnswer);
    EXPECT_FALSE(check());
    EXPECT_EQ(takeTrace(), trace);
    fs::remove(kAnswer);

    chmod((kWorkRoot + "/temp").c_str(), 0555);
    EXPECT_FALSE(check());
    EXPECT_EQ(takeTrace(), trace);
    EXPECT_FALSE(fs::exists(kAnswer));
    chmod((kWorkRoot + "/temp").c_str(), 0755);

    fs::remove_all(kWorkRoot + "/temp");
    EXPECT_FALSE(check());
    EXPECT_EQ(takeTrace(), trace);
    EXPECT_FALSE(fs::exists(kWorkRoot + "/temp"));
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(ManagementToolCheck, FailsWithoutACodeWhereTheAnswerCannotBeOpened) {
    const Lines trace = kSilentTrace + Lines{"2 Failed to open file(" + kAnswer + ")."} + kEndTrace;
    libc().system = [](const char*) { return 0; };
    EXPECT_FALSE(check());
    EXPECT_EQ(takeTrace(), trace);
    machine.file(kAnswer, "1\n");
    chmod(kAnswer.c_str(), 0);
    EXPECT_FALSE(check());
    EXPECT_EQ(takeTrace(), trace);
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(ManagementToolCheck, TakesADirectoryForAnEmptyAnswer) {
    machine.directory(kAnswer);
    libc().system = [](const char*) { return 0; };
    EXPECT_TRUE(check());
    EXPECT_EQ(TestHost::trace(), kSilentTrace + kEndTrace);
}

}  // namespace
}  // namespace kvl::test
