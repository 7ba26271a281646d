#include <sys/stat.h>

#include <filesystem>

#include "tests/adapter/adapter_test.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

const std::string kDevice = "05:00.0-VEN_10DF";
const std::string kAddress = Port().address;
const std::string kDump = kDumps + "/adapter_1.txt";
const std::string kCnaCache = kWorkRoot + "/cache/CNA/CacheDump_05:00.0-VEN_10DF.txt";
const std::string kFcCache = kWorkRoot + "/cache/FC/CacheDump_05:00.0-VEN_10DF.txt";

constexpr int kDumpTime = 1000;

const std::string kVersionLines =
    "FW Version       : 4.2.1.0 (boot 1)\nFirmware Version : 2.72A2 (U3D2.72A2)\nDriver Version   : 8.3 (x)\n"
    "OneCommand Manager : 6.1.2\nBoot Bios Version: 5.03a4\n";

class OperatingVersion : public AdapterTest {
protected:
    void SetUp() override {
        AdapterTest::SetUp();
        machine.anyCommand(kTool, "", {});
    }

    /// Lays down a port in the list, the tool's answers for it, and a dump of it.
    void layPort(const Port& port = Port()) {
        layList({port});
        machine.command(kTool + " dump " + port.address, "");
        machine.command(kTool + " GetDumpDirectory " + port.address, "Dump Directory = " + kDumps + "\n");
        layDump(port.address);
    }

    void layDump(const std::string& address, const std::string& lines = kVersionLines) {
        const std::string key = module == "cna" ? "Port WWPN/MAC: " : "Port WWN: ";
        machine.file(kDump, key + address + "\n" + lines);
        setModified(kDump, kDumpTime);
    }

    /// @return the version; "(none)" on failure, where an earlier content must stay
    std::string version(EMULEX_MODULE_KIND kind = EMULEX_MODULE_FIRMWARE, bool forceRefresh = false,
                        const std::string& device = kDevice) {
        std::string text = "earlier";
        if (CEmulexCommon::GetOperatingVersion(device, kind, &text, forceRefresh, module)) {
            return text;
        }
        EXPECT_EQ(text, "earlier");
        return "(none)";
    }

    static std::string startTrace(int kind) {
        return "4 CEmulexCommon::GetOperatingVersion(" + kDevice + " / " + std::to_string(kind) + ") [START]";
    }

    static std::string versionTrace(int kind, const std::string& text) {
        return "4 CEmulexCommon::GetOperatingVersion(0) [END](Module: " + std::to_string(kind) + " Version:" + text +
               ")";
    }

    static Lines portTrace() {
        return kToolFoundTrace + adapterTrace(1, locationTrace("VEN_10DF", "PCINo=5, DevNo=0, FuncNo=0"));
    }

    static std::string directoryCommand(const std::string& address = kAddress) {
        return kTool + " GetDumpDirectory " + address + " > " + kDirectoryFile;
    }

    /// A dump that is made and whose directory is reported.
    static Lines dumpTrace(const std::string& address = kAddress) {
        return execTrace(kTool + " dump " + address) + execTrace(directoryCommand(address)) +
               Lines{keyTrace(kDirectoryFile, "Dump Directory", "=")};
    }

    static Lines newestTrace() {
        return latestStartTrace(kDumps, "*.txt") + Lines{latestListingTrace()} +
               listedTrace(kDump, kDumpTime, "Thu Jan  1 00:16:40 1970") + Lines{latestEndTrace(kDump)};
    }

    static Lines toolRuns(const Lines& tails) {
        Lines commands;
        for (const std::string& tail : tails) {
            commands.push_back(kTool + " " + tail);
        }
        return commands;
    }
};

const std::string kFailedTrace = "4 CEmulexCommon::GetOperatingVersion(1) [END]";

// ---- Arguments ----

TEST_F(OperatingVersion, FailsWithoutAResultWhateverTheKind) {
    for (const int kind : {0, 3}) {
        EXPECT_FALSE(
            CEmulexCommon::GetOperatingVersion(kDevice, static_cast<EMULEX_MODULE_KIND>(kind), nullptr, true, module));
        EXPECT_EQ(takeError(), 1U);
        EXPECT_EQ(takeTrace(), (Lines{startTrace(kind), kFailedTrace}));
    }
}

TEST_F(OperatingVersion, IsEmptyForAModuleWithoutOneAndNothingIsTouched) {
    machine.dropCommand(kTool);
    EXPECT_EQ(version(EMULEX_MODULE_UNVERSIONED, true), "");
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(TestHost::trace(), (Lines{startTrace(3), "4 CEmulexCommon::GetOperatingVersion(0) [END]"}));
}

// ---- The cache ----

TEST_F(OperatingVersion, IsAnsweredFromTheCacheWithoutTheTool) {
    machine.dropCommand(kTool);
    machine.file(kCnaCache, kVersionLines);
    EXPECT_EQ(version(), "4.2.1.0 (boot 1)");
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(TestHost::trace(),
              (Lines{startTrace(0), keyTrace(kCnaCache, "FW Version"), versionTrace(0, "4.2.1.0 (boot 1)")}));
    EXPECT_EQ(kCnaCache, "/opt/tarvenn/kvl/tmp/EMULEX/cache/CNA/CacheDump_05:00.0-VEN_10DF.txt");
}

TEST_F(OperatingVersion, HasItsKeyInTheDump) {
    allowedModules = {"cna", "fc", "test-module"};
    machine.file(kCnaCache, kVersionLines);
    machine.file(kFcCache, kVersionLines);
    const struct {
        EMULEX_MODULE_KIND kind;
        std::string cna;
        std::string other;
    } rows[] = {
        {EMULEX_MODULE_FIRMWARE, "4.2.1.0 (boot 1)", "2.72A2 (U3D2.72A2)"},
        {EMULEX_MODULE_DRIVER, "8.3 (x)", "8.3 (x)"},
        {EMULEX_MODULE_OCM, "6.1.2", "6.1.2"},
        {EMULEX_MODULE_BOOT_BIOS, "5.03a4", "5.03a4"},
    };
    for (const auto& row : rows) {
        module = "cna";
        EXPECT_EQ(version(row.kind), row.cna);
        module = "test-module";
        EXPECT_EQ(version(row.kind), row.other);
        module = "fc";
        EXPECT_EQ(version(row.kind), row.kind == EMULEX_MODULE_FIRMWARE ? "2.72A2" : row.other);
    }
}

TEST_F(OperatingVersion, OfFcFirmwareLosesTheTextInParentheses) {
    useModule("fc");
    const struct {
        std::string value;
        std::string version;
    } rows[] = {{"2.72A2 (U3D2.72A2)", "2.72A2"},
                {"2.72A2(x)(y)", "2.72A2"},
                {"2.72A2  x   (", "2.72A2  x"},
                {"2.72A2", "2.72A2"},
                {"(x) 2.72A2", ""},
                {"2.72A2)", "2.72A2)"},
                {"2.72A2\t(x)", "2.72A2\t"}};
    for (const auto& row : rows) {
        machine.file(kFcCache, "Firmware Version: " + row.value + "\n");
        EXPECT_EQ(version(), row.version);
        EXPECT_EQ(takeTrace(), (Lines{startTrace(0), keyTrace(kFcCache, "Firmware Version"),
                                      "1 tmp = [" + row.version + "]", versionTrace(0, row.version)}));
        EXPECT_EQ(takeError(), 0U);
    }
}

TEST_F(OperatingVersion, IsCachedUnderTheDeviceWithUnderscoresForSlashes) {
    machine.file(kWorkRoot + "/cache/CNA/CacheDump_05:00.0-a_b_.txt", "Driver Version: 1\n");
    EXPECT_EQ(version(EMULEX_MODULE_DRIVER, false, "05:00.0-a/b/"), "1");
}

TEST_F(OperatingVersion, FailsForAValueThatTheCacheLacks) {
    for (const char* content : {"", "Driver Version: 1\n", "FW Version:\n", "FW Version:   \r\n", "FW Version\n"}) {
        machine.file(kCnaCache, content);
        EXPECT_EQ(version(), "(none)");
        EXPECT_EQ(takeError(), 9U);
        EXPECT_EQ(takeTrace(), (Lines{startTrace(0), keyTrace(kCnaCache, "FW Version"), kFailedTrace}));
    }
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(OperatingVersion, FailsForACacheFileThatCannotBeOpened) {
    machine.file(kCnaCache, kVersionLines);
    chmod(kCnaCache.c_str(), 0);
    EXPECT_EQ(version(), "(none)");
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(takeTrace(), (Lines{startTrace(0), keyTrace(kCnaCache, "FW Version"), openErrorTrace(kCnaCache, EACCES),
                                  "1 CEmulexCommon::GetKeyValueFromFile_() [END]", kFailedTrace}));
}

TEST_F(OperatingVersion, FailsForAnUnknownKindThoughTheCacheIsThere) {
    machine.file(kCnaCache, kVersionLines);
    for (const int kind : {5, 6, -1}) {
        EXPECT_EQ(version(static_cast<EMULEX_MODULE_KIND>(kind)), "(none)");
        EXPECT_EQ(takeError(), 8U);
        EXPECT_EQ(takeTrace(), (Lines{startTrace(kind), kFailedTrace}));
    }
}

TEST_F(OperatingVersion, IsNotReadFromTheFirmwareKeyOfTheOtherFamily) {
    machine.file(kCnaCache, "Firmware Version: 1\n");
    EXPECT_EQ(version(EMULEX_MODULE_FIRMWARE), "(none)");
    EXPECT_EQ(takeError(), 9U);
    EXPECT_EQ(takeTrace(), (Lines{startTrace(0), keyTrace(kCnaCache, "FW Version"), kFailedTrace}));
    useModule("fc");
    machine.file(kFcCache, "FW Version: 1\n");
    EXPECT_EQ(version(EMULEX_MODULE_FIRMWARE), "(none)");
    EXPECT_EQ(takeError(), 9U);
    EXPECT_EQ(TestHost::trace(), (Lines{startTrace(0), keyTrace(kFcCache, "Firmware Version"), kFailedTrace}));
    allowedModules = {"cna", "fc"};
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(OperatingVersion, LeavesTheErrorStateAloneOnSuccess) {
    layPort();
    for (const bool isForced : {false, true}) {
        machine.file(kCnaCache, kVersionLines);
        CEmulexCommon::SetLastError(17);
        EXPECT_EQ(version(EMULEX_MODULE_DRIVER, isForced), "8.3 (x)");
        EXPECT_EQ(takeError(), 17U);
        EXPECT_EQ(machine.commandsRun().empty(), !isForced);
    }
    CEmulexCommon::SetLastError(17);
    EXPECT_EQ(version(EMULEX_MODULE_UNVERSIONED), "");
    EXPECT_EQ(takeError(), 17U);
}

// ---- Refreshing the cache ----

TEST_F(OperatingVersion, IsReadFromANewDumpWithoutACacheFile) {
    layPort();
    EXPECT_EQ(version(), "4.2.1.0 (boot 1)");
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(TestHost::trace(), (Lines{startTrace(0)} + portTrace() + dumpTrace() + newestTrace() +
                                  checkTrace(kDump, "Port WWPN/MAC: " + kAddress, "is finded") +
                                  Lines{keyTrace(kCnaCache, "FW Version"), versionTrace(0, "4.2.1.0 (boot 1)")}));
    EXPECT_EQ(machine.commandsRun(), toolRuns({"dump " + kAddress, "GetDumpDirectory " + kAddress}));
    EXPECT_EQ(contentOf(kCnaCache), contentOf(kDump));
    EXPECT_EQ(contentOf(kDirectoryFile), "Dump Directory = " + kDumps + "\n");
    EXPECT_EQ(namesIn(kWorkRoot + "/temp"), (Lines{"CNA", "DumpDirectory.txt", "FC", "Listhbas.txt"}));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(OperatingVersion, OfTheFcFamilyIsCachedInItsOwnDirectory) {
    useModule("fc");
    layPort();
    EXPECT_EQ(version(), "2.72A2");
    EXPECT_EQ(contentOf(kFcCache), contentOf(kDump));
    EXPECT_EQ(contentOf(kCnaCache), "(absent)");
    EXPECT_THAT(TestHost::trace(), testing::IsSupersetOf(checkTrace(kDump, "Port WWN: " + kAddress, "is finded")));
}

TEST_F(OperatingVersion, OfOneDumpServesAllKinds) {
    layPort();
    version();
    machine.forgetCommands();
    EXPECT_EQ(version(EMULEX_MODULE_DRIVER), "8.3 (x)");
    EXPECT_EQ(version(EMULEX_MODULE_OCM), "6.1.2");
    EXPECT_EQ(version(EMULEX_MODULE_BOOT_BIOS), "5.03a4");
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(OperatingVersion, IsReadAnewIfForcedAndTheCacheIsReplaced) {
    layPort();
    machine.file(kCnaCache, "Driver Version: old\n");
    EXPECT_EQ(version(EMULEX_MODULE_DRIVER, false), "old");
    EXPECT_EQ(version(EMULEX_MODULE_DRIVER, true), "8.3 (x)");
    EXPECT_EQ(contentOf(kCnaCache), contentOf(kDump));
    EXPECT_EQ(machine.commandsRun(), toolRuns({"dump " + kAddress, "GetDumpDirectory " + kAddress}));
}

TEST_F(OperatingVersion, CreatesAMissingCacheFileAlsoIfForced) {
    layPort();
    EXPECT_EQ(version(EMULEX_MODULE_DRIVER, true), "8.3 (x)");
    EXPECT_EQ(contentOf(kCnaCache), contentOf(kDump));
}

TEST_F(OperatingVersion, OfAnUnknownKindFailsOnlyOnceTheCacheIsFilled) {
    layPort();
    EXPECT_EQ(version(EMULEX_MODULE_COMPARE_ONLY), "(none)");
    EXPECT_EQ(takeError(), 8U);
    EXPECT_EQ(contentOf(kCnaCache), contentOf(kDump));
    EXPECT_EQ(TestHost::trace().back(), kFailedTrace);
}

TEST_F(OperatingVersion, OfAnUnknownKindReplacesTheCacheIfForced) {
    layPort();
    for (const int kind : {5, 6, -1}) {
        SCOPED_TRACE(kind);
        machine.file(kCnaCache, "old");
        EXPECT_EQ(version(static_cast<EMULEX_MODULE_KIND>(kind), true), "(none)");
        EXPECT_EQ(takeError(), 8U);
        EXPECT_EQ(machine.commandsRun(), toolRuns({"dump " + kAddress, "GetDumpDirectory " + kAddress}));
        EXPECT_EQ(contentOf(kCnaCache), contentOf(kDump));
        machine.forgetCommands();
    }
}

TEST_F(OperatingVersion, AsksByTheAddressThatTheTypeOfThePortCallsFor) {
    const struct {
        std::string type;
        std::string key;
        bool isKnown;
    } rows[] = {{"FC", "Port WWN", true},         {"FCoE", "Port WWN", true},       {"NIC", "Permanent MAC", true},
                {"iSCSI", "Permanent MAC", true}, {"other", "Permanent MAC", true}, {"fc", "Permanent MAC", true},
                {"FC", "Permanent MAC", false},   {"NIC", "Port WWN", false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type + " " + row.key);
        Port port;
        port.type = row.type;
        port.addressKey = row.key;
        port.address = "00-11";
        layPort(port);
        machine.command(kTool + " dump", "");
        machine.command(kTool + " GetDumpDirectory", "Dump Directory = " + kDumps + "\n");
        version(EMULEX_MODULE_DRIVER, true);
        const std::string tail = row.isKnown ? " 00-11" : "";  // an address that the record lacks is empty
        EXPECT_EQ(machine.commandsRun(), toolRuns({"dump" + tail, "GetDumpDirectory" + tail}));
        machine.forgetCommands();
    }
}

TEST_F(OperatingVersion, IsReadFromTheNewestDump) {
    layPort();
    machine.file(kDumps + "/adapter_0.txt", "Port WWPN/MAC: " + kAddress + "\nDriver Version: old\n");
    setModified(kDumps + "/adapter_0.txt", kDumpTime - 1);
    EXPECT_EQ(version(EMULEX_MODULE_DRIVER), "8.3 (x)");
}

TEST_F(OperatingVersion, TakesADumpThatIsNoNewOneIfItNamesThePort) {
    layPort();
    machine.command(kTool + " dump " + kAddress, "");
    EXPECT_EQ(version(EMULEX_MODULE_DRIVER), "8.3 (x)");
}

TEST_F(OperatingVersion, KeepsBlanksInTheDumpDirectoryButFindsNoFileThere) {
    layPort();
    machine.command(kTool + " GetDumpDirectory " + kAddress, "Dump Directory =  /var/my dumps \r\n");
    EXPECT_EQ(version(), "(none)");
    EXPECT_THAT(TestHost::trace(), testing::IsSupersetOf(latestStartTrace("/var/my dumps", "*.txt")));
}

// ---- Failures of a refresh ----

TEST_F(OperatingVersion, FailsWithoutTheTool) {
    layPort();
    machine.dropCommand(kTool);
    EXPECT_EQ(version(), "(none)");
    EXPECT_EQ(takeError(), 11U);
    EXPECT_EQ(TestHost::trace(), (Lines{startTrace(0)} + kToolFoundTrace + Lines{kFailedTrace}));
}

TEST_F(OperatingVersion, FailsAsTheAdapterListDoes) {
    EXPECT_EQ(version(), "(none)");
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(takeTrace(), (Lines{startTrace(0)} + kToolFoundTrace + Lines{"1 CEmulexCommon::GetHBAInfo() [START]"} +
                            missingListTrace() + Lines{"1 CEmulexCommon::GetHBAInfo() [END]", kFailedTrace}));
    machine.file(kListFile, "");
    EXPECT_EQ(version(), "(none)");
    EXPECT_EQ(takeError(), 15U);
    layPort();
    EXPECT_EQ(version(EMULEX_MODULE_FIRMWARE, false, "rubbish"), "(none)");
    EXPECT_EQ(takeError(), 13U);
    EXPECT_EQ(version(EMULEX_MODULE_FIRMWARE, false, "06:00.0"), "(none)");
    EXPECT_EQ(takeError(), 14U);
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(OperatingVersion, FailsWithoutACodeIfTheDumpFails) {
    layPort();
    machine.command(kTool + " dump " + kAddress, "", {1});
    EXPECT_EQ(version(), "(none)");
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(TestHost::trace(), (Lines{startTrace(0)} + portTrace() + failedExecTrace(kTool + " dump " + kAddress) +
                                  Lines{kFailedTrace}));
    EXPECT_EQ(machine.commandsRun(), toolRuns({"dump " + kAddress}));
    EXPECT_EQ(contentOf(kCnaCache), "(absent)");
}

TEST_F(OperatingVersion, LeavesAnEarlierCodeAloneIfTheToolFails) {
    layPort();
    machine.command(kTool + " GetDumpDirectory " + kAddress, "", {1});
    CEmulexCommon::SetLastError(14);
    EXPECT_EQ(version(), "(none)");
    EXPECT_EQ(CEmulexCommon::GetLastError(), 14U);
    machine.command(kTool + " dump " + kAddress, "", {1});
    EXPECT_EQ(version(), "(none)");
    EXPECT_EQ(CEmulexCommon::GetLastError(), 14U);
    EXPECT_EQ(machine.commandsRun(),
              toolRuns({"dump " + kAddress, "GetDumpDirectory " + kAddress, "dump " + kAddress}));
}

TEST_F(OperatingVersion, RaisesForAListWithAShortBusLine) {
    layPort();
    std::string text = contentOf(kListFile);
    text.replace(text.find("PCI Bus Number : 5\n"), 19, "PCI Bus Number:\n");
    machine.file(kListFile, text);
    std::string result = "earlier";
    EXPECT_EQ(outOfRangeOf(
                  [&] { CEmulexCommon::GetOperatingVersion(kDevice, EMULEX_MODULE_FIRMWARE, &result, true, module); }),
              "basic_string::substr");
    EXPECT_EQ(result, "earlier");
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(TestHost::trace().back(), "1 [PCI Bus Number] is finded");
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(OperatingVersion, FailsWithoutACodeIfASignalEndsTheDump) {
    layPort();
    libc().system = [](const char*) { return 9; };
    EXPECT_EQ(version(), "(none)");
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(TestHost::trace(),
              (Lines{startTrace(0)} + portTrace() + execTrace(kTool + " dump " + kAddress, 9) + Lines{kFailedTrace}));
}

TEST_F(OperatingVersion, FailsWithoutACodeIfTheToolDoesNotTellTheDirectory) {
    layPort();
    machine.command(kTool + " GetDumpDirectory " + kAddress, "", {2});
    EXPECT_EQ(version(), "(none)");
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(takeTrace(), (Lines{startTrace(0)} + portTrace() + execTrace(kTool + " dump " + kAddress) +
                            failedExecTrace(directoryCommand()) + Lines{kFailedTrace}));
    machine.command(kTool + " GetDumpDirectory " + kAddress, "");
    EXPECT_EQ(version(), "(none)");
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(libc().sleeps, 10);
    EXPECT_EQ(takeTrace(), (Lines{startTrace(0)} + portTrace() + execTrace(kTool + " dump " + kAddress) +
                            execTrace(directoryCommand(), -1) + Lines{kFailedTrace}));
}

TEST_F(OperatingVersion, FailsForADirectoryLineThatCannotBeRead) {
    layPort();
    TestHost::onTrace([](const std::string& line) {
        if (line == "4 [LEAVE] " + kExecSignature + ", rc=0" && fs::exists(kDirectoryFile)) {
            fs::remove(kDirectoryFile);
        }
    });
    EXPECT_EQ(version(), "(none)");
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(takeTrace(),
              (Lines{startTrace(0)} + portTrace() + dumpTrace() +
               Lines{openErrorTrace(kDirectoryFile), "1 CEmulexCommon::GetKeyValueFromFile_() [END]", kFailedTrace}));
}

TEST_F(OperatingVersion, FailsForADirectoryLineWithoutAValueOrWithoutTheKey) {
    layPort();
    for (const char* output : {"Dump Directory =\n", "Dump Directory =   \r\n", "Dump Directory: /var/dumps\n",
                               "Directory = /var/dumps\n", "\n"}) {
        machine.command(kTool + " GetDumpDirectory " + kAddress, output);
        EXPECT_EQ(version(), "(none)");
        EXPECT_EQ(takeError(), 5U);
        EXPECT_EQ(takeTrace(), (Lines{startTrace(0)} + portTrace() + dumpTrace() + Lines{kFailedTrace}));
    }
}

TEST_F(OperatingVersion, FailsIfTheDumpCannotBeCopied) {
    layPort();
    machine.directory(kCnaCache);
    EXPECT_EQ(version(EMULEX_MODULE_FIRMWARE, true), "(none)");
    EXPECT_EQ(takeError(), 7U);
    EXPECT_EQ(TestHost::trace(), (Lines{startTrace(0)} + portTrace() + dumpTrace() + newestTrace() +
                                  checkTrace(kDump, "Port WWPN/MAC: " + kAddress, "is finded") + Lines{kFailedTrace}));
}

TEST_F(OperatingVersion, FailsWithoutACacheDirectory) {
    layPort();
    fs::remove_all(kWorkRoot + "/cache");
    EXPECT_EQ(version(), "(none)");
    EXPECT_EQ(takeError(), 7U);
}

// ---- Retries ----

TEST_F(OperatingVersion, FailsAfterThreeDumpsOfAnotherPort) {
    layPort();
    layDump("another");
    const std::string newList = Port().block() + Port().block();
    machine.command(kTool + " listhbas", newList);
    EXPECT_EQ(version(), "(none)");
    EXPECT_EQ(takeError(), 6U);
    const Lines attempt = dumpTrace() + newestTrace() +
                          checkTrace(kDump, "Port WWPN/MAC: " + kAddress, "is not finded") +
                          execTrace(kTool + " listhbas > " + kListFile) + Lines{"2 Retry(No such Dump File)"};
    EXPECT_EQ(TestHost::trace(),
              (Lines{startTrace(0)} + portTrace() + attempt + attempt + attempt + Lines{kFailedTrace}));
    const Lines runs = toolRuns({"dump " + kAddress, "GetDumpDirectory " + kAddress, "listhbas"});
    EXPECT_EQ(machine.commandsRun(), runs + runs + runs);
    EXPECT_EQ(TestHost::sleeps(), (std::vector<unsigned long>{1000, 1000, 1000}));
    EXPECT_EQ(contentOf(kListFile), newList);
    EXPECT_EQ(contentOf(kCnaCache), "(absent)");
}

TEST_F(OperatingVersion, PausesBeforeTheListIsRefreshed) {
    layPort();
    layDump("another");
    machine.command(kTool + " listhbas", "x\n");
    Lines lastRuns;
    TestHost::onSleep([&] { lastRuns.push_back(machine.commandsRun().back()); });
    EXPECT_EQ(version(), "(none)");
    EXPECT_EQ(lastRuns, Lines(3, kTool + " GetDumpDirectory " + kAddress));
    EXPECT_EQ(machine.commandsRun().back(), kTool + " listhbas");
}

TEST_F(OperatingVersion, SucceedsWithADumpOfTheThirdTry) {
    layPort();
    layDump("another");
    machine.command(kTool + " listhbas", "changed\n");
    int pauses = 0;
    TestHost::onSleep([&] {
        if (++pauses == 2) {
            layDump(kAddress);
        }
    });
    EXPECT_EQ(version(), "4.2.1.0 (boot 1)");
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(TestHost::sleeps(), (std::vector<unsigned long>{1000, 1000}));
    const Lines runs = toolRuns({"dump " + kAddress, "GetDumpDirectory " + kAddress});
    const Lines refresh = toolRuns({"listhbas"});
    EXPECT_EQ(machine.commandsRun(), runs + refresh + runs + refresh + runs);
    EXPECT_EQ(contentOf(kListFile), "changed\n");  // rewritten, but not read again
}

TEST_F(OperatingVersion, GoesOnIfTheListCannotBeRefreshed) {
    layPort();
    layDump("another");
    machine.command(kTool + " listhbas", "", {1});
    TestHost::onSleep([&] { layDump(kAddress); });
    EXPECT_EQ(version(), "4.2.1.0 (boot 1)");
    EXPECT_EQ(TestHost::trace(),
              (Lines{startTrace(0)} + portTrace() + dumpTrace() + newestTrace() +
               checkTrace(kDump, "Port WWPN/MAC: " + kAddress, "is not finded") +
               failedExecTrace(kTool + " listhbas > " + kListFile) +
               Lines{"2 Failed to execute command (\"/usr/sbin/ocmanager/hbacmd listhbas > "
                     "\"/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt\")",
                     "2 Retry(No such Dump File)"} +
               dumpTrace() + newestTrace() + checkTrace(kDump, "Port WWPN/MAC: " + kAddress, "is finded") +
               Lines{keyTrace(kCnaCache, "FW Version"), versionTrace(0, "4.2.1.0 (boot 1)")}));
}

TEST_F(OperatingVersion, FailsIfALaterTryFails) {
    layPort();
    layDump("another");
    machine.command(kTool + " listhbas", "x\n");
    TestHost::onSleep([&] { machine.command(kTool + " dump " + kAddress, "", {1}); });
    EXPECT_EQ(version(), "(none)");
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(machine.commandsRun(),
              toolRuns({"dump " + kAddress, "GetDumpDirectory " + kAddress, "listhbas", "dump " + kAddress}));
}

TEST_F(OperatingVersion, TakesAnEmptyDumpDirectoryForADumpThatIsMissing) {
    layPort();
    fs::remove(kDump);
    machine.command(kTool + " listhbas", "x\n");
    EXPECT_EQ(version(), "(none)");
    EXPECT_EQ(takeError(), 6U);
    const Lines attempt = dumpTrace() + latestStartTrace(kDumps, "*.txt") +
                          Lines{latestEndTrace(""), "4 CEmulexCommon::CheckDumpFileKeyWord_() [START]",
                                "1 CheckDumpFileKeyWord_(,Port WWPN/MAC: " + kAddress + ")", openErrorTrace(""),
                                "4 CEmulexCommon::CheckDumpFileKeyWord_() [END]"} +
                          execTrace(kTool + " listhbas > " + kListFile) + Lines{"2 Retry(No such Dump File)"};
    EXPECT_EQ(TestHost::trace(),
              (Lines{startTrace(0)} + portTrace() + attempt + attempt + attempt + Lines{kFailedTrace}));
}

// ---- DelOperatingVersion_ ----

class UpdateMarker : public AdapterTest {
protected:
    bool clearUp() { return CEmulexCommon::DelOperatingVersion_("/var/update", module); }

    static constexpr const char* kMarker = "/var/update/UpdateProceeding.txt";
};

TEST_F(UpdateMarker, IsNotMissedButACodeIsSet) {
    EXPECT_TRUE(clearUp());
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(TestHost::trace(),
              (Lines{"4 CEmulexCommon::DelOperatingVersion_() [Start]",
                     "4 CEmulexCommon::DelOperatingVersion_() [END](/var/update/UpdateProceeding.txt)"}));
}

TEST_F(UpdateMarker, IsDeletedAndTheCachedDumpsSurvive) {
    machine.file(kMarker, "");
    machine.file(kCnaCache, "text");
    machine.file(kFcCache, "text");
    EXPECT_TRUE(clearUp());
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(contentOf(kMarker), "(absent)");
    EXPECT_EQ(contentOf(kCnaCache), "text");
    EXPECT_EQ(contentOf(kFcCache), "text");
    EXPECT_EQ(TestHost::trace(), (Lines{"4 CEmulexCommon::DelOperatingVersion_() [Start]",
                                        "4 CEmulexCommon::DelOperatingVersion_() [END]"}));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdateMarker, LeavesAFileThatTheSearchFindsToo) {
    machine.file(kMarker, "");
    const std::string found = kWorkRoot + "/cache/CNA/cache_dump_1.txt";
    machine.file(found, "text");
    EXPECT_TRUE(clearUp());
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(contentOf(found), "text");
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdateMarker, SearchesTheCacheOfItsFamilyAndGoesOnIfAFileCannotBeDeleted) {
    allowedModules = {"cna", "fc", "test-module"};
    for (const std::string name : {"cna", "fc", "test-module"}) {
        SCOPED_TRACE(name);
        module = name;
        const std::string directory = kWorkRoot + (name == "cna" ? "/cache/CNA" : "/cache/FC");
        machine.file(kMarker, "");
        Lines failures;
        for (const char* file : {"cache_dump_1.txt", "cache_dump_2.txt", "other_dump_3.txt"}) {
            machine.file(directory + "/" + file, "text");
            // A directory at the quoted path, seen from the working directory /, can't be deleted as a file.
            const std::string quoted = "\"" + directory + "/" + file + "\"";
            machine.directory("/" + quoted);
            failures.push_back("16 Failed to delete File [" + quoted + "]");
        }
        failures.pop_back();
        EXPECT_TRUE(clearUp());
        EXPECT_EQ(takeError(), 0U);
        EXPECT_EQ(TestHost::trace(), (Lines{"4 CEmulexCommon::DelOperatingVersion_() [Start]"} + failures +
                                      Lines{"4 CEmulexCommon::DelOperatingVersion_() [END]"}));
        EXPECT_EQ(contentOf(kMarker), "(absent)");
        TestHost::forget();
        fs::remove_all("/\"");
        fs::remove_all(directory);
    }
}

TEST_F(UpdateMarker, IsDeletedBehindTheCachedDumps) {
    machine.file(kMarker, "text");
    const std::string found = kWorkRoot + "/cache/CNA/cache_dump_1.txt";
    machine.file(found, "text");
    machine.directory("/\"" + found + "\"");  // can't be deleted as a file, so there are pauses
    Lines markers;
    TestHost::onSleep([&] { markers.push_back(contentOf(kMarker)); });
    EXPECT_TRUE(clearUp());
    EXPECT_EQ(markers, Lines(5, "text"));
    EXPECT_EQ(contentOf(kMarker), "(absent)");
    EXPECT_EQ(TestHost::deletions().back(), kMarker);
}

TEST_F(UpdateMarker, FailsIfItCannotBeDeleted) {
    machine.directory(kMarker);
    EXPECT_FALSE(clearUp());
    EXPECT_EQ(takeError(), 1U);
    EXPECT_EQ(TestHost::trace(), (Lines{"4 CEmulexCommon::DelOperatingVersion_() [Start]",
                                        "16 Failed to delete File [/var/update/UpdateProceeding.txt]",
                                        "4 CEmulexCommon::DelOperatingVersion_() [END]"}));
    EXPECT_EQ(TestHost::sleeps(), (std::vector<unsigned long>{1000, 6000, 11000, 16000, 21000}));
}

}  // namespace
}  // namespace kvl::test
