#include <sys/stat.h>

#include <filesystem>

#include "tests/adapter/update_test.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

constexpr unsigned long kEarlierError = 38;
const std::string kArchives = std::string(KVL_BUILD_DIRECTORY) + "/machines/archives";
const std::string kFcResult = kWorkRoot + "/temp/FC/firm/temp_hbacmd_Download.txt";
const std::string kCnaResult = kWorkRoot + "/temp/CNA/firm/temp_hbacmd_Download.txt";

const Lines kDownloaded = {"Downloading firmware", "Download Complete.", "End of download."};
/// What the message files of the good modules hold.
const MessageFile kMessages = {{"Download Complete"}, {"End of download"}};

/// How one family is updated.
struct Family {
    std::string uniqueName;
    std::string module;
    std::string firmware;
    std::string bootCode;
    std::string addressKey;
    bool updatesEveryFunction;
};

const std::vector<Family> kFamilies = {
    {"OCe11102", "OCe11102", "firmware.ufi", "", "Permanent MAC", false},
    {"OCl14104", "OCl14104", "firmware.ufi", "", "Permanent MAC", false},
    {"fcelx_16g", "fcelx_16g", "firmware.grp", "", "Port WWN", false},
    {"fcelx_8g1p", "fcelx_8g1p", "firmware.all", "boot.prg", "Port WWN", true},
    {"fcelx_8g2p_", "fcelx_8g2p", "firmware.all", "boot.prg", "Port WWN", true},
    {"fcelx_8g2p", "fcelx_8g2p", "firmware.all", "boot.prg", "Port WWN", true},
    {"fcelx_8g2pxyz", "fcelx_8g2p", "firmware.all", "boot.prg", "Port WWN", true},
};
const Family& kMacFamily = kFamilies[0];
const Family& kWwnFamily = kFamilies[2];
const Family& kBootCodeFamily = kFamilies[3];

/// Names that are no family's, some of them nearly.
const Lines kOtherNames = {"",          "OCe11102_",  "oce11102",   "OCe1110", "fcelx_16g_", "fcelx_8g1p_",
                           "fcelx_8g2", "FCELX_8G2P", " fcelx_8g2p"};

/// Updates of a module behind an earlier error that a good call leaves. The tool writes everything at once; the
/// directories of the result file are there, as the caller makes them.
class FwUpdate : public UpdateTest {
protected:
    void SetUp() override {
        UpdateTest::SetUp();
        begin(kMacFamily);
    }

    /// Starts again with the good module and the port of a family.
    void begin(const Family& newFamily, const std::string& variant = "", int newFunction = 0) {
        machine.reset();
        forget();
        machine.directory(kWorkRoot + "/temp/CNA/firm");
        machine.directory(kWorkRoot + "/temp/FC/firm");
        CEmulexCommon::SetLastError(kEarlierError);
        family = newFamily;
        function = newFunction;
        deviceId = "05:00." + std::to_string(function);
        moduleDir = kModules + "/" + family.module + variant;
        files = {"module.zip"};
        layPort(family.addressKey);
        layTool(tool, {printing(kDownloaded)});
    }

    void layPort(const std::string& addressKey) {
        Port port;
        port.addressKey = addressKey;
        port.address = address;
        port.function = std::to_string(function);
        layList({port});
    }

    bool update(bool unusedFlag = false) {
        const bool isUpdated = quietly([&] {
            return CEmulexCommon::FwUpdate(deviceId, moduleDir, folder, tool, &files, unusedFlag, module,
                                           family.uniqueName);
        });
        EXPECT_THAT(TestHost::operatorMessages(), testing::IsEmpty());
        return isUpdated;
    }

    static unsigned long lastError() { return CEmulexCommon::GetLastError(); }

    std::string command(const std::string& file) const {
        return "\"" + tool + "\" Download " + address + " \"" + folder + "/" + file + "\"";
    }

    /// A call of the tool in the folder, as `calls` has it.
    std::string call(const std::string& file) const { return callIn(folder, file); }
    std::string callIn(const std::string& directory, const std::string& file) const {
        return directory + " [Download][" + address + "][" + folder + "/" + file + "]";
    }

    Lines location() const { return locationTrace("", "PCINo=5, DevNo=0, FuncNo=" + std::to_string(function)); }

    Lines wholeTrace(const Lines& lines) const {
        return Lines{"4 CEmulexCommon::FwUpdate() [START]"} + location() +
               Lines{"1 Func Number is [" + std::to_string(function) + "]"} + lines +
               Lines{"4 CEmulexCommon::FwUpdate() [END]"};
    }

    Lines unpackTrace() const {
        return deleteFolderTrace() + moduleUnzipTrace(moduleDir + "/" + files.front(), folder);
    }

    /// An update whose files are all found and whose adapter is known.
    /// @param sent  what is traced behind that
    Lines sentTrace(const Lines& sent) const {
        return wholeTrace(unpackTrace() + adapterTrace(1, location()) +
                          Lines{"1 bios update file name(" + family.bootCode + ")."} + sent);
    }

    std::string executeTrace() const { return "1 Execute bios update(" + command(family.bootCode) + ")."; }
    std::string bootCodeFailedTrace() const { return "2 Failed to bios update(" + command(family.bootCode) + ")."; }

    /// A file that is sent and judged; a failure if there is a file.
    static Lines judgedTrace(const Lines& judgement, const std::string& failedCommand = "") {
        return updaterTrace(3, resultCheckTrace(judgement) +
                                   (failedCommand.empty() ? Lines{} : Lines{updateFailedTrace(failedCommand)}));
    }

    /// A good update whose every file is judged alike.
    Lines goodTrace(const Lines& judgement) const {
        const Lines bootCode = family.bootCode.empty() ? Lines{} : Lines{executeTrace()} + judgedTrace(judgement);
        return sentTrace(bootCode + judgedTrace(judgement) + deleteFolderTrace());
    }
    Lines goodTrace() const {
        return goodTrace(kMessages.trace() + endLookTrace(kDownloaded, true) +
                         successLookTrace({kDownloaded[0], kDownloaded[1]}, true));
    }

    std::string resultFile() const { return module == "cna" ? kCnaResult : kFcResult; }

    /// An update whose first file fails.
    Lines firstFailedTrace(const Lines& judgement) const {
        return family.bootCode.empty()
                   ? sentTrace(judgedTrace(judgement, command(family.firmware)) + Lines{notOpenedTrace(resultFile())})
                   : sentTrace(Lines{executeTrace()} + judgedTrace(judgement, command(family.bootCode)) +
                               Lines{bootCodeFailedTrace()});
    }

    /// The calls of a good update.
    Lines goodCalls() const {
        return family.bootCode.empty() ? Lines{call(family.firmware)}
                                       : Lines{call(family.bootCode), call(family.firmware)};
    }

    Family family;
    int function = 0;
    std::string deviceId;
    std::string moduleDir;
    std::string folder = "/tmp/unpacked";
    std::string tool = kTool;
    std::string address = "10:00:00:00:c9:aa:bb:cc";
    std::list<std::string> files;
};

// ---- What is updated ----

using FwUpdateFamily = FwUpdate;

TEST_F(FwUpdateFamily, HasItsFilesSentToFunctionZero) {
    for (const Family& row : kFamilies) {
        SCOPED_TRACE(row.uniqueName);
        begin(row);
        EXPECT_TRUE(update());
        EXPECT_EQ(lastError(), kEarlierError);
        EXPECT_EQ(TestHost::trace(), goodTrace());
        EXPECT_EQ(calls(), goodCalls());
        EXPECT_EQ(TestHost::sleeps(), Sleeps(goodCalls().size(), 30000));
        EXPECT_FALSE(fs::exists(folder));
        EXPECT_EQ(contentOf(kCnaResult), textOf(kDownloaded));
    }
}

TEST_F(FwUpdateFamily, HasItsFilesSentToOtherFunctionsOnlyIfEachIsUpdated) {
    for (const Family& row : kFamilies) {
        for (const int number : {1, 7}) {
            SCOPED_TRACE(row.uniqueName + " " + std::to_string(number));
            begin(row, "", number);
            machine.file(folder + "/earlier.ufi", "");
            EXPECT_TRUE(update());
            EXPECT_EQ(lastError(), kEarlierError);
            if (row.updatesEveryFunction) {
                EXPECT_EQ(TestHost::trace(), goodTrace());
                EXPECT_EQ(calls(), goodCalls());
                EXPECT_FALSE(fs::exists(folder));
            } else {
                EXPECT_EQ(TestHost::trace(), wholeTrace({"1 Func Number is not 0.FwUpdate is skipped"}));
                EXPECT_THAT(calls(), testing::IsEmpty());
                EXPECT_EQ(namesIn(folder), (Lines{"earlier.ufi"}));
                EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
                EXPECT_EQ(contentOf(kCnaResult), "(absent)");
            }
        }
    }
}

TEST_F(FwUpdateFamily, IsNotLookedForOnOtherFunctions) {
    for (const std::string& name : kOtherNames) {
        SCOPED_TRACE(name);
        begin(kMacFamily, "", 1);
        family.uniqueName = name;
        EXPECT_TRUE(update());
        EXPECT_EQ(lastError(), kEarlierError);
        EXPECT_EQ(TestHost::trace(), wholeTrace({"1 Func Number is not 0.FwUpdate is skipped"}));
        EXPECT_FALSE(fs::exists(folder));
    }
}

TEST_F(FwUpdateFamily, ThatIsUnknownIsReportedTwiceWithTwoEndLines) {
    for (const std::string& name : kOtherNames) {
        SCOPED_TRACE(name);
        begin(kMacFamily);
        family.uniqueName = name;
        unsigned long firstError = 0;
        TestHost::onTrace([&](const std::string& line) {
            if (line == "2 No such unique name.") {
                firstError = lastError();
            }
        });
        EXPECT_FALSE(update());
        EXPECT_EQ(firstError, 29U);
        EXPECT_EQ(lastError(), 29U);
        EXPECT_EQ(TestHost::trace(),
                  wholeTrace(unpackTrace() + Lines{"2 No such unique name.", "4 CEmulexCommon::FwUpdate() [END]",
                                                   "2 Failed to find update module.There is not firmware file."}));
        EXPECT_THAT(calls(), testing::IsEmpty());
        EXPECT_EQ(namesIn(folder), (Lines{"firmware.ufi", "message.txt"}));
    }
}

TEST_F(FwUpdateFamily, OfWhichASkippedFunctionNeedsNothingElse) {
    begin(kMacFamily, "", 1);
    folder = "";
    moduleDir = "/tmp/absent";
    files.clear();
    fs::remove(kListFile);
    EXPECT_TRUE(update());
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), wholeTrace({"1 Func Number is not 0.FwUpdate is skipped"}));
}

// ---- Arguments ----

using FwUpdateArgument = FwUpdate;

TEST_F(FwUpdateArgument, ThatIsNoLocationFailsFirst) {
    folder = "";
    for (const char* location : {"", "05", "05:", "05:00"}) {
        SCOPED_TRACE(location);
        forget();
        deviceId = location;
        EXPECT_FALSE(update());
        EXPECT_EQ(takeError(), 13U);
        EXPECT_EQ(TestHost::trace(),
                  (Lines{"4 CEmulexCommon::FwUpdate() [START]", "4 CCommon_Information::GetPCIInfo [START]",
                         "4 CCommon_Information::GetPCIInfo [END]", "2 PCI Information is invalid",
                         "4 CEmulexCommon::FwUpdate() [END]"}));
    }
}

TEST_F(FwUpdateArgument, WithoutANameDoesNotMatter) {
    for (const bool flag : {false, true}) {
        begin(kBootCodeFamily);
        EXPECT_TRUE(update(flag));
        EXPECT_EQ(TestHost::trace(), goodTrace());
    }
}

TEST_F(FwUpdateArgument, ThatNamesTheModuleSelectsTheDirectoryOfTheResultFile) {
    for (const std::string name : {"cna", "CNA", "fc", "cnax", ""}) {
        SCOPED_TRACE(name);
        begin(kMacFamily);
        useModule(name);
        EXPECT_TRUE(update());
        EXPECT_EQ(contentOf(kCnaResult), name == "cna" ? textOf(kDownloaded) : "(absent)");
        EXPECT_EQ(contentOf(kFcResult), name == "cna" ? "(absent)" : textOf(kDownloaded));
        EXPECT_EQ(TestHost::trace(), goodTrace());
        EXPECT_EQ(TestHost::modules(), (Lines{name}));
    }
}

TEST_F(FwUpdateArgument, ThatIsAPathIsQuotedForTheShell) {
    begin(kBootCodeFamily);
    folder = "/tmp/un packed; echo";
    tool = "/usr/sbin/oc manager's/hbacmd";
    layTool(tool, {printing(kDownloaded)});
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), goodTrace());
    EXPECT_EQ(calls(), goodCalls());
}

TEST_F(FwUpdateArgument, ThatIsAnAddressIsNotQuoted) {
    address = "10:00 extra $((1+1))";
    layPort(family.addressKey);
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), goodTrace());
    EXPECT_EQ(calls(), (Lines{folder + " [Download][10:00][extra][2][" + folder + "/firmware.ufi]"}));
}

TEST_F(FwUpdateArgument, ThatIsTheFolderMayBeThatOfTheResultFile) {
    folder = kWorkRoot + "/temp/CNA/firm";
    for (int time = 0; time < 2; ++time) {
        forget();
        layTool(tool, {printing(kDownloaded)});
        EXPECT_TRUE(update());
        EXPECT_EQ(TestHost::trace(), goodTrace());
        EXPECT_EQ(calls(), goodCalls());
        EXPECT_FALSE(fs::exists(folder));
    }
}

TEST_F(FwUpdateArgument, ThatListsTheFilesNamesTheArchiveByItsFirstZip) {
    machine.file("/tmp/module/damaged.zip", "");
    fs::copy_file(moduleDir + "/module.zip", "/tmp/module/good.zip.1");
    moduleDir = "/tmp/module";
    files = {"readme.txt", "good.zip.1", "damaged.zip"};
    EXPECT_TRUE(update());
    EXPECT_EQ(files, (std::list<std::string>{"readme.txt", "good.zip.1", "damaged.zip"}));
    files = {"good.zip.1"};
    EXPECT_EQ(TestHost::trace(), goodTrace());
}

// ---- The folder and the archive ----

using FwUpdateFolder = FwUpdate;

TEST_F(FwUpdateFolder, LosesWhatAnEarlierUpdateLeft) {
    machine.file(folder + "/earlier.ufi", "");
    machine.file(folder + "/inner/deep/earlier.prg", "");
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), wholeTrace(deleteFolderTrace(deleteFolderTrace(deleteFolderTrace())) +
                                            moduleUnzipTrace(moduleDir + "/module.zip", folder) +
                                            adapterTrace(1, location()) + Lines{"1 bios update file name()."} +
                                            goodUpdaterTrace(kMessages, kDownloaded, 1) + deleteFolderTrace()));
    EXPECT_FALSE(fs::exists(folder));
}

TEST_F(FwUpdateFolder, IsMadeWithTheDirectoriesAboveIt) {
    folder = "/tmp/new/and/deep";
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), goodTrace());
    EXPECT_THAT(namesIn("/tmp/new/and"), testing::IsEmpty());
    EXPECT_TRUE(fs::exists("/tmp/new/and"));
}

TEST_F(FwUpdateFolder, WithoutANameFailsTheUpdate) {
    folder = "";
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 28U);
    EXPECT_EQ(TestHost::trace(), wholeTrace(deleteFolderTrace({"2 CUnzip_Utility::DeleteFolder Invalid input path"})));
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(FwUpdateFolder, ThatCannotBeDeletedFailsTheUpdate) {
    machine.directory(folder);
    fs::create_symlink("nowhere", folder + "/dangling");
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 28U);
    EXPECT_EQ(TestHost::trace(), wholeTrace(deleteFolderTrace()));
    EXPECT_EQ(namesIn(folder), (Lines{"dangling"}));
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(FwUpdateFolder, ThatCannotBeMadeFailsTheUpdate) {
    machine.file("/tmp/file", "text");
    folder = "/tmp/file/unpacked";
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 19U);
    EXPECT_EQ(TestHost::trace(), wholeTrace(deleteFolderTrace() + Lines{"2 Failed to get create unzip folder"}));
    EXPECT_EQ(contentOf("/tmp/file"), "text");
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(FwUpdateFolder, StaysEmptyWithoutAnArchive) {
    for (const Family& row : kFamilies) {
        for (const std::list<std::string>& list :
             {std::list<std::string>{}, std::list<std::string>{"readme.txt", "module.ZIP"}}) {
            begin(row, "-no-archive");
            files = list;
            EXPECT_FALSE(update());
            EXPECT_EQ(lastError(), 26U);
            EXPECT_EQ(TestHost::trace(), wholeTrace(deleteFolderTrace() + kNoArchiveTrace));
            EXPECT_TRUE(fs::is_directory(folder));
            EXPECT_THAT(namesIn(folder), testing::IsEmpty());
            EXPECT_THAT(calls(), testing::IsEmpty());
        }
    }
}

TEST_F(FwUpdateFolder, StaysBehindAnArchiveThatCannotBeUnpacked) {
    const std::vector<std::pair<std::string, int>> rows = {
        {"-damaged-archive", 9}, {"-empty-archive", 1}, {"-no-archive", 9}};
    for (const Family& row : kFamilies) {
        for (const auto& [variant, status] : rows) {
            SCOPED_TRACE(row.uniqueName + variant);
            begin(row, variant);
            EXPECT_FALSE(update());
            EXPECT_EQ(lastError(), 26U);
            EXPECT_EQ(TestHost::trace(),
                      wholeTrace(deleteFolderTrace() +
                                 moduleUnzipTrace(moduleDir + "/module.zip", folder, {unzipFailedTrace(status)})));
            EXPECT_TRUE(fs::is_directory(folder));
            EXPECT_THAT(calls(), testing::IsEmpty());
        }
    }
}

TEST_F(FwUpdateFolder, ThatCannotBeDeletedAtTheEndFailsAnUpdateThatWasDone) {
    moduleDir = kArchives;
    files = {"firmware_with_link.zip"};
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 28U);
    const MessageFile messages = {{"Download Complete"}, {}};
    EXPECT_EQ(TestHost::trace(),
              sentTrace(judgedTrace(messages.trace() + successLookTrace({kDownloaded[0], kDownloaded[1]}, true)) +
                        deleteFolderTrace() + Lines{"2 Failed to get delete update module folder(/tmp/unpacked)"}));
    EXPECT_EQ(calls(), goodCalls());
    EXPECT_EQ(namesIn(folder), (Lines{"dangling"}));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

// ---- The files of the module ----

using FwUpdateFiles = FwUpdate;

TEST_F(FwUpdateFiles, AreOneOfEachKindBeforeTheAdapterIsLookedFor) {
    struct Row {
        std::string variant;
        bool isForBootCode;
        std::string failure;
    };
    const std::vector<Row> rows = {
        {"-no-firmware", false, "There is not firmware file."},
        {"-two-firmware", false, "There is some firmware file."},
        {"-no-boot-code", true, "There is not bios file."},
        {"-two-boot-code", true, "There is some bios file."},
    };
    for (const Family& family_ : kFamilies) {
        for (const Row& row : rows) {
            if (row.isForBootCode && family_.bootCode.empty()) {
                continue;
            }
            SCOPED_TRACE(family_.uniqueName + row.variant);
            begin(family_, row.variant);
            fs::remove(kListFile);
            EXPECT_FALSE(update());
            EXPECT_EQ(lastError(), 29U);
            EXPECT_EQ(TestHost::trace(),
                      wholeTrace(unpackTrace() + Lines{"2 Failed to find update module." + row.failure}));
            EXPECT_THAT(calls(), testing::IsEmpty());
            EXPECT_EQ(contentOf(kCnaResult), "(absent)");
            EXPECT_THAT(namesIn(folder), testing::Contains("message.txt"));
        }
    }
}

TEST_F(FwUpdateFiles, AreThoseOfTheOwnFamily) {
    const std::vector<std::pair<Family, std::string>> rows = {
        {kMacFamily, "There is not firmware file."},
        {kWwnFamily, "There is not firmware file."},
        {kBootCodeFamily, "There is not bios file."},
    };
    for (const auto& [row, failure] : rows) {
        for (const Family& other : kFamilies) {
            if (other.firmware == row.firmware) {
                continue;
            }
            SCOPED_TRACE(row.uniqueName + " with " + other.module);
            begin(row);
            moduleDir = kModules + "/" + other.module;
            EXPECT_FALSE(update());
            EXPECT_EQ(lastError(), 29U);
            EXPECT_EQ(TestHost::trace(),
                      wholeTrace(unpackTrace() + Lines{"2 Failed to find update module." + failure}));
            EXPECT_THAT(calls(), testing::IsEmpty());
        }
    }
}

TEST_F(FwUpdateFiles, StayBehindAFailureUntilTheNextUpdate) {
    begin(kMacFamily, "-two-firmware");
    EXPECT_FALSE(update());
    EXPECT_EQ(namesIn(folder), (Lines{"firmware-2.ufi", "firmware.ufi", "message.txt"}));
    forget();
    moduleDir = kModules + "/OCe11102";
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), goodTrace());
    EXPECT_FALSE(fs::exists(folder));
}

// ---- The adapter ----

using FwUpdateAdapter = FwUpdate;

TEST_F(FwUpdateAdapter, IsMissedWithoutTheList) {
    for (const Family& row : kFamilies) {
        begin(row);
        fs::remove(kListFile);
        EXPECT_FALSE(update());
        EXPECT_EQ(lastError(), 15U);
        EXPECT_EQ(TestHost::trace(),
                  wholeTrace(unpackTrace() + Lines{"1 CEmulexCommon::GetHBAInfo() [START]"} + missingListTrace() +
                             Lines{"1 CEmulexCommon::GetHBAInfo() [END]", "2 HBA information could not be obtained."}));
        EXPECT_THAT(calls(), testing::IsEmpty());
        EXPECT_TRUE(fs::exists(folder + "/" + row.firmware));
    }
}

TEST_F(FwUpdateAdapter, IsMissedAtAnotherLocation) {
    Port port;
    port.bus = "6";
    layList({port});
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 15U);
    EXPECT_EQ(TestHost::trace(), wholeTrace(unpackTrace() + adapterTrace(1, location()) +
                                            Lines{"2 HBA information could not be obtained."}));
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(FwUpdateAdapter, NeedsTheAddressOfItsFamily) {
    for (const Family& row : kFamilies) {
        SCOPED_TRACE(row.uniqueName);
        const bool isKnownByMac = row.addressKey == "Permanent MAC";
        begin(row);
        layPort(isKnownByMac ? "Port WWN" : "Permanent MAC");
        EXPECT_FALSE(update());
        EXPECT_EQ(lastError(), 27U);
        EXPECT_EQ(TestHost::trace(),
                  wholeTrace(unpackTrace() + adapterTrace(1, location()) +
                             Lines{isKnownByMac ? "2 Failed to get MAC Address" : "2 Failed to get WWPN"}));
        EXPECT_THAT(calls(), testing::IsEmpty());
        EXPECT_TRUE(fs::exists(folder + "/" + row.firmware));
    }
}

TEST_F(FwUpdateAdapter, IsTheOneAtTheLocation) {
    Port other;
    other.addressKey = "Permanent MAC";
    other.address = "other";
    other.function = "1";
    Port own = other;
    own.address = address;
    own.function = "0";
    layList({other, own});
    EXPECT_TRUE(update());
    EXPECT_EQ(calls(), goodCalls());
}

TEST_F(FwUpdateAdapter, RaisesForAListWithAShortLine) {
    std::string list = contentOf(kListFile);
    list.replace(list.find("PCI Bus Number : 5\n"), 19, "PCI Bus Number:\n");
    machine.file(kListFile, list);
    EXPECT_EQ(outOfRangeOf([this] { update(); }), "basic_string::substr");
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace().back(), "1 [PCI Bus Number] is finded");
    EXPECT_THAT(calls(), testing::IsEmpty());
    EXPECT_EQ(namesIn(folder), (Lines{"firmware.ufi", "message.txt"}));
}

// ---- Boot code and firmware with a message file ----

using FwUpdateDownload = FwUpdate;

TEST_F(FwUpdateDownload, OfTheBootCodeComesFirstAndTheFirmwareTruncatesItsResult) {
    begin(kBootCodeFamily);
    layTool(tool, {printing(Lines{"Downloading boot code"} + kDownloaded), printing(kDownloaded)});
    EXPECT_TRUE(update());
    EXPECT_EQ(
        TestHost::trace(),
        sentTrace(Lines{executeTrace()} + goodUpdaterTrace(kMessages, Lines{"Downloading boot code"} + kDownloaded, 2) +
                  goodUpdaterTrace(kMessages, kDownloaded, 1) + deleteFolderTrace()));
    EXPECT_EQ(calls(), (Lines{call("boot.prg"), call("firmware.all")}));
    EXPECT_EQ(contentOf(kCnaResult), textOf(kDownloaded));
}

TEST_F(FwUpdateDownload, IsJudgedByTheMessageFileOfTheModule) {
    struct Row {
        std::string variant;
        Lines read;    ///< What reading the message file traces.
        Lines judged;  ///< What is traced of the output.
        bool isGood;
        std::size_t looks;
    };
    const auto look = [](std::size_t times, bool isFound) {
        Lines lines;
        for (std::size_t time = 0; time < times; ++time) {
            lines = lines + endLookTrace(kDownloaded, isFound);
        }
        return lines;
    };
    const auto unread = [](const std::string& line) { return Lines{"1 log_mes_ifs. buf=[" + line + "]"}; };
    const Lines found = successLookTrace({kDownloaded[0], kDownloaded[1]}, true);
    const Lines notFound = successLookTrace(kDownloaded, false);
    const std::string success = "Download Complete";
    const std::string end = "End of download";
    const auto successRead = MessageFile::successTrace;
    const auto endRead = MessageFile::endTrace;
    const std::vector<Row> rows = {
        {"", kMessages.trace(), look(1, true) + found, true, 1},
        {"-crlf-message",
         {"1 log_mes_ifs. buf=[SuccessMessage=Download Complete\r]", "1 successMessage[0]=[Download Complete]",
          "1 log_mes_ifs. buf=[EndMessage=End of download\r]", "1 endMessage[0]=[End of download]"},
         look(1, true) + found,
         true,
         1},
        {"-only-success-text", successRead({success}) + Lines{"1 no endMessage"}, found, true, 0},
        {"-six-success-texts",
         successRead({"A1", "B2", "C3", "D4", success}) + unread("SuccessMessage=F6") + endRead({end}),
         look(1, true) + found, true, 1},
        {"-six-end-texts", successRead({success}) + endRead({"A1", "B2", "C3", "D4", end}) + unread("EndMessage=F6"),
         look(1, true) + found, true, 1},
        {"-sixth-success-text",
         successRead({"A1", "B2", "C3", "D4", "E5"}) + unread("SuccessMessage=" + success) + endRead({end}),
         look(1, true) + notFound, false, 1},
        {"-sixth-end-text",
         successRead({success}) + endRead({"A1", "B2", "C3", "D4", "E5"}) + unread("EndMessage=" + end),
         look(5, false) + Lines{"2 No such end message."}, false, 5},
        {"-only-end-text", endRead({end}), {"2 no successMessage"}, false, 0},
        {"-other-texts", successRead({"Update finished"}) + endRead({end}), look(1, true) + notFound, false, 1},
    };
    for (const Family& family_ : kFamilies) {
        for (const Row& row : rows) {
            SCOPED_TRACE(family_.uniqueName + row.variant);
            begin(family_, row.variant);
            EXPECT_EQ(update(), row.isGood);
            EXPECT_EQ(lastError(), row.isGood ? kEarlierError : 17U);
            EXPECT_EQ(TestHost::trace(),
                      row.isGood ? goodTrace(row.read + row.judged) : firstFailedTrace(row.read + row.judged));
            EXPECT_EQ(calls(), row.isGood ? goodCalls() : Lines{goodCalls().front()});
            EXPECT_EQ(TestHost::sleeps(), Sleeps(row.isGood ? row.looks * goodCalls().size() : row.looks, 30000));
            EXPECT_EQ(fs::exists(folder), !row.isGood);
        }
    }
}

TEST_F(FwUpdateDownload, IsWaitedForUpToTheFifthLook) {
    for (const std::size_t last : {std::size_t{2}, std::size_t{5}}) {
        SCOPED_TRACE(last);
        begin(kMacFamily);
        layTool(tool, {printing({kDownloaded[0]})});
        atSleep(last, [this] { machine.file(kCnaResult, textOf(kDownloaded)); });
        EXPECT_TRUE(update());
        Lines judgement = kMessages.trace();
        for (std::size_t look = 1; look < last; ++look) {
            judgement = judgement + endLookTrace({kDownloaded[0]}, false);
        }
        EXPECT_EQ(TestHost::trace(), goodTrace(judgement + endLookTrace(kDownloaded, true) +
                                               successLookTrace({kDownloaded[0], kDownloaded[1]}, true)));
        EXPECT_EQ(TestHost::sleeps(), Sleeps(last, 30000));
    }
}

TEST_F(FwUpdateDownload, IsJudgedWhateverTheExitCode) {
    begin(kBootCodeFamily);
    layTool(tool, {printing(kDownloaded) + "\nexit 1", printing(kDownloaded) + "\nexit 255"});
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), goodTrace());

    begin(kBootCodeFamily);
    layTool(tool, {printing({"End of download"}) + "\nexit 0"});
    EXPECT_FALSE(update());
    EXPECT_EQ(TestHost::trace(), firstFailedTrace(kMessages.trace() + endLookTrace({"End of download"}, true) +
                                                  successLookTrace({"End of download"}, false)));
}

TEST_F(FwUpdateDownload, OfTheFirmwareThatFailsLeavesTheNewBootCode) {
    begin(kBootCodeFamily);
    layTool(tool, {printing(kDownloaded), printing({"End of download"})});
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), sentTrace(Lines{executeTrace()} + goodUpdaterTrace(kMessages, kDownloaded, 1) +
                                           judgedTrace(kMessages.trace() + endLookTrace({"End of download"}, true) +
                                                           successLookTrace({"End of download"}, false),
                                                       command("firmware.all")) +
                                           Lines{notOpenedTrace(kCnaResult)}));
    EXPECT_EQ(calls(), goodCalls());
    EXPECT_EQ(namesIn(folder), (Lines{"boot.prg", "firmware.all", "message.txt"}));
    EXPECT_EQ(contentOf(kCnaResult), "End of download\n");
}

TEST_F(FwUpdateDownload, FailsWhereTheToolCannotBeStarted) {
    for (const Family& row : {kMacFamily, kBootCodeFamily}) {
        SCOPED_TRACE(row.uniqueName);
        begin(row);
        TestHost::onTrace([](const std::string& line) {
            if (line.find("1 bios update file name(") == 0) {
                libc().failingForks = 1;
            }
        });
        EXPECT_FALSE(update());
        EXPECT_EQ(lastError(), 17U);
        const bool hasBootCode = !row.bootCode.empty();
        EXPECT_EQ(TestHost::trace(),
                  hasBootCode ? sentTrace(Lines{executeTrace()} + updaterTrace(3, {notRunTrace(command("boot.prg"))}) +
                                          Lines{bootCodeFailedTrace()})
                              : sentTrace(updaterTrace(3, {notRunTrace(command("firmware.ufi"))}) +
                                          Lines{notOpenedTrace(kCnaResult)}));
        EXPECT_THAT(calls(), testing::IsEmpty());
        EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
    }
}

TEST_F(FwUpdateDownload, FailsWhereASignalEndsTheShell) {
    address = "10:00; kill -9 $$;";
    layPort(family.addressKey);
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(),
              sentTrace(updaterTrace(3, {notRunTrace(command("firmware.ufi"))}) + Lines{notOpenedTrace(kCnaResult)}));
    EXPECT_EQ(contentOf(kCnaResult), textOf(kDownloaded));
}

TEST_F(FwUpdateDownload, FailsWithoutTheTool) {
    machine.dropCommand(tool);
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), firstFailedTrace(kMessages.trace() + Lines{"2 No such end message."}));
    EXPECT_EQ(contentOf(kCnaResult), "");
    EXPECT_EQ(TestHost::sleeps(), Sleeps(5, 30000));
}

TEST_F(FwUpdateDownload, FailsWithoutTheDirectoryOfTheResultFile) {
    for (const Family& row : kFamilies) {
        SCOPED_TRACE(row.uniqueName);
        begin(row);
        fs::remove(kWorkRoot + "/temp/CNA/firm");
        EXPECT_FALSE(update());
        EXPECT_EQ(lastError(), 17U);
        EXPECT_EQ(TestHost::trace(), firstFailedTrace(kMessages.trace() + Lines{"2 File Open Error"}));
        EXPECT_THAT(calls(), testing::IsEmpty());
        EXPECT_EQ(TestHost::sleeps(), Sleeps(1, 30000));
        EXPECT_FALSE(fs::exists(kWorkRoot + "/temp/CNA/firm"));
    }
}

TEST_F(FwUpdateDownload, OfBootCodeFailsWithoutAMessageFileOnceTheToolHasRun) {
    for (const Family& row : kFamilies) {
        if (row.bootCode.empty()) {
            continue;
        }
        SCOPED_TRACE(row.uniqueName);
        begin(row, "-without-message");
        EXPECT_FALSE(update());
        EXPECT_EQ(lastError(), 17U);
        EXPECT_EQ(TestHost::trace(), firstFailedTrace({"2 File open error /tmp/unpacked/message.txt"}));
        EXPECT_EQ(calls(), (Lines{call("boot.prg")}));
        EXPECT_EQ(contentOf(kCnaResult), textOf(kDownloaded));
        EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
    }
}

TEST_F(FwUpdateDownload, FailsWhereTheMessageFileIsADirectory) {
    moduleDir = kArchives;
    files = {"firmware_with_directory.zip"};
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), firstFailedTrace({"2 no successMessage"}));
    EXPECT_EQ(calls(), goodCalls());
    EXPECT_EQ(namesIn(folder), (Lines{"firmware.ufi", "message.txt"}));
}

TEST_F(FwUpdate, NamesTheResultFileOfItsClassWhereItFails) {
    useModule("fc");
    begin(kWwnFamily);
    layTool(tool, {"echo Failed"});
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), firstFailedTrace(kMessages.trace() + 5 * endLookTrace({"Failed"}, false) +
                                                  Lines{"2 No such end message."}));

    begin(kWwnFamily, "-without-message");
    fs::remove_all(kWorkRoot + "/temp/FC/firm");
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), sentTrace({notOpenedTrace(kFcResult)}));
}

TEST_F(FwUpdate, LooksForTheMessageFileOnceMoreBehindTheBootCode) {
    begin(kBootCodeFamily);
    TestHost::onTrace([this](const std::string& line) {
        if (line == "1 Update Result Check OK") {
            fs::remove(folder + "/message.txt");
        }
    });
    EXPECT_TRUE(update());
    EXPECT_EQ(calls(), (Lines{call("boot.prg"), callIn(fs::current_path().string(), "firmware.all")}));
    EXPECT_EQ(TestHost::trace(), sentTrace(Lines{executeTrace()} +
                                           judgedTrace(kMessages.trace() + endLookTrace(kDownloaded, true) +
                                                       successLookTrace({kDownloaded[0], kDownloaded[1]}, true)) +
                                           deleteFolderTrace()));
}

// ---- Firmware without a message file ----

class FwUpdateDirect : public FwUpdate {
protected:
    void SetUp() override {
        FwUpdate::SetUp();
        beginDirect();
    }

    void beginDirect(const Family& newFamily = kMacFamily) { begin(newFamily, "-without-message"); }

    /// So many calls of the tool, in the directory of the caller.
    Lines directCalls(std::size_t number) const {
        return Lines(number, callIn(fs::current_path().string(), family.firmware));
    }

    Lines notCompleteTrace(int result) const {
        return sentTrace(
            {"2 Failed to execute command:" + command(family.firmware) + " ,return:" + std::to_string(result)});
    }

    /// Has so many forks fail, the first of them that of the first run.
    static void failRuns(int number) {
        TestHost::onTrace([number](const std::string& line) {
            if (line == "1 bios update file name().") {
                libc().failingForks = number;
            }
        });
    }
};

TEST_F(FwUpdateDirect, IsDoneAtTheFirstToTheFourthRunWhateverTheExitCodes) {
    for (const Family& row : {kFamilies[0], kFamilies[1], kFamilies[2]}) {
        for (std::size_t good = 1; good <= 4; ++good) {
            SCOPED_TRACE(row.uniqueName + " " + std::to_string(good));
            beginDirect(row);
            layTool(tool, Lines(good - 1, "echo Downloading; exit 0") + Lines{printing(kDownloaded) + "\nexit 3"});
            EXPECT_TRUE(update());
            EXPECT_EQ(lastError(), kEarlierError);
            EXPECT_EQ(TestHost::trace(), sentTrace(deleteFolderTrace()));
            EXPECT_EQ(calls(), directCalls(good));
            EXPECT_EQ(TestHost::sleeps(), Sleeps(good - 1, 1000));
            EXPECT_EQ(contentOf(kCnaResult), textOf(kDownloaded));
            EXPECT_FALSE(fs::exists(folder));
        }
    }
}

TEST_F(FwUpdateDirect, IsGivenUpBehindTheFourthRun) {
    for (const char* script : {"true", "echo 'download complete'; echo Download; echo Complete", "echo Failed; exit 9",
                               "printf 'Download  Complete'"}) {
        SCOPED_TRACE(script);
        beginDirect();
        layTool(tool, {script});
        EXPECT_FALSE(update());
        EXPECT_EQ(lastError(), 16U);
        EXPECT_EQ(TestHost::trace(), notCompleteTrace(0));
        EXPECT_EQ(calls(), directCalls(4));
        EXPECT_EQ(TestHost::sleeps(), Sleeps(3, 1000));
        EXPECT_EQ(namesIn(folder), (Lines{"firmware.ufi"}));
    }
}

TEST_F(FwUpdateDirect, IsDoneWithTheTextAnywhereInALine) {
    for (const char* script : {"echo 'The Download Completed'", "echo; echo 'Download Complete'; echo failed",
                               "printf 'Download Complete'", "printf 'Download Complete\\r\\n'"}) {
        SCOPED_TRACE(script);
        beginDirect();
        layTool(tool, {script});
        EXPECT_TRUE(update());
        EXPECT_EQ(calls(), directCalls(1));
        EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
    }
}

TEST_F(FwUpdateDirect, LooksAtTheOutputOfEachRunAlone) {
    layTool(tool, {"printf 'Download '", "echo Complete"});
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 16U);
    EXPECT_EQ(contentOf(kCnaResult), "Complete\n");
}

TEST_F(FwUpdateDirect, TellsTheResultOfTheLastRun) {
    // What an earlier update left is looked at where the tool could not be started.
    machine.file(kCnaResult, "Downloading\n");
    layTool(tool, {"true"});
    failRuns(4);
    EXPECT_FALSE(update());
    EXPECT_EQ(takeError(), 16U);
    EXPECT_EQ(TestHost::trace(), notCompleteTrace(1));
    EXPECT_THAT(calls(), testing::IsEmpty());
    EXPECT_EQ(contentOf(kCnaResult), "Downloading\n");

    forget();
    failRuns(3);
    EXPECT_FALSE(update());
    EXPECT_EQ(takeError(), 16U);
    EXPECT_EQ(TestHost::trace(), notCompleteTrace(0));
    EXPECT_EQ(calls(), directCalls(1));
}

TEST_F(FwUpdateDirect, IsNotJudgedByTheResultOfTheRun) {
    machine.file(kCnaResult, "Download Complete\n");
    failRuns(1);
    EXPECT_TRUE(update());
    EXPECT_THAT(calls(), testing::IsEmpty());

    beginDirect();
    address = "10:00; kill -9 $$;";
    layPort(family.addressKey);
    EXPECT_TRUE(update());
    EXPECT_EQ(TestHost::trace(), sentTrace(deleteFolderTrace()));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(FwUpdateDirect, FailsWithoutTheDirectoryOfTheResultFile) {
    for (const Family& row : {kFamilies[0], kFamilies[1], kFamilies[2]}) {
        beginDirect(row);
        fs::remove(kWorkRoot + "/temp/CNA/firm");
        EXPECT_FALSE(update());
        EXPECT_EQ(lastError(), 17U);
        EXPECT_EQ(TestHost::trace(), sentTrace({notOpenedTrace(kCnaResult)}));
        EXPECT_THAT(calls(), testing::IsEmpty());
        EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
        EXPECT_EQ(namesIn(folder), (Lines{row.firmware}));
    }
}

TEST_F(FwUpdateDirect, FailsWithoutAnotherRunWhereTheResultFileCannotBeRead) {
    machine.file(kCnaResult, "");
    chmod(kCnaResult.c_str(), 0200);
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), sentTrace({notOpenedTrace(kCnaResult)}));
    EXPECT_EQ(calls(), directCalls(1));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(FwUpdateDirect, FailsWhereTheResultFileCannotBeOpenedAtALaterRun) {
    layTool(tool, {"true"});
    atSleep(2, [] { fs::remove_all(kWorkRoot + "/temp/CNA/firm"); });
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), sentTrace({notOpenedTrace(kCnaResult)}));
    EXPECT_EQ(calls(), directCalls(2));
    EXPECT_EQ(TestHost::sleeps(), Sleeps(2, 1000));
}

TEST_F(FwUpdateDirect, GivesUpADirectoryInPlaceOfTheResultFile) {
    machine.directory(kCnaResult);
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 16U);
    EXPECT_EQ(TestHost::trace(), notCompleteTrace(0));
    EXPECT_THAT(calls(), testing::IsEmpty());
    EXPECT_EQ(TestHost::sleeps(), Sleeps(3, 1000));
}

TEST_F(FwUpdateDirect, ReadsOutputOfAnyLength) {
    for (const char* filler :
         {"head -c 10485760 /dev/zero | tr '\\0' x", "head -c 100000 /dev/zero | tr '\\0' '\\n'"}) {
        SCOPED_TRACE(filler);
        beginDirect();
        layTool(tool, {std::string(filler) + "; printf 'Download Complete'"});
        EXPECT_TRUE(update());
        EXPECT_EQ(calls(), directCalls(1));
    }
}

TEST_F(FwUpdateDirect, FailsWhereTheFolderCannotBeDeletedAtTheEnd) {
    layTool(tool, {"ln -s nowhere " + folder + "/dangling; echo Download Complete"});
    EXPECT_FALSE(update());
    EXPECT_EQ(lastError(), 28U);
    EXPECT_EQ(TestHost::trace(),
              sentTrace(deleteFolderTrace() + Lines{"2 Failed to get delete update module folder(/tmp/unpacked)"}));
    EXPECT_EQ(namesIn(folder), (Lines{"dangling"}));
}

}  // namespace
}  // namespace kvl::test
