#include "adapter/error_codes.h"

#include <filesystem>
#include <functional>
#include <set>

#include "tests/adapter/update_test.h"

namespace kvl::test {
namespace {

// ---- The table of codes ----

TEST(AdapterErrors, AreTheseAndNoOthers) {
    std::set<unsigned long> numbers;
    for (const AdapterErrorRow& row : kAdapterErrors) {
        numbers.insert(row.number);
    }
    EXPECT_THAT(numbers, testing::ElementsAre(1, 5, 6, 7, 8, 9, 11, 13, 14, 15, 16, 17, 18, 19, 26, 27, 28, 29, 30, 33,
                                              36, 37, 38));
}

TEST(AdapterErrors, HaveEachANumberANameAndAMeaningOfTheirOwn) {
    std::set<std::string> names;
    std::set<std::string> meanings;
    unsigned long last = 0;
    for (const AdapterErrorRow& row : kAdapterErrors) {
        EXPECT_GT(row.number, last) << "the numbers rise";
        last = row.number;
        EXPECT_THAT(row.name, testing::MatchesRegex("[a-z-]+"));
        EXPECT_THAT(row.meaning, testing::MatchesRegex("[A-Zh].*[a-z]"));
        names.insert(row.name);
        meanings.insert(row.meaning);
    }
    EXPECT_EQ(names.size(), kAdapterErrors.size());
    EXPECT_EQ(meanings.size(), kAdapterErrors.size());
}

TEST(AdapterErrors, AreFoundByTheirNumber) {
    EXPECT_STREQ(findAdapterError(1)->name, "invalid-argument");
    EXPECT_STREQ(findAdapterError(14)->meaning, "No adapter in the list has this PCI location");
    EXPECT_STREQ(findAdapterError(38)->name, "versions-differ");
    for (const unsigned long none : {0UL, 2UL, 10UL, 39UL, 4294967297UL}) {
        EXPECT_EQ(findAdapterError(none), nullptr) << none;
    }
}

// ---- How each code is reached ----

/// How an operation comes to a code.
struct Way {
    unsigned long code;
    const char* operation;
    std::function<void()> go;
};

class EachError : public UpdateTest {
protected:
    /// Has the tool answer for the port of the list, whose dump says `dump`.
    void layDump(const std::string& directoryLine, const std::string& dump) {
        layList({Port()});
        machine.anyCommand(kTool, "");
        machine.command(kTool + " GetDumpDirectory " + Port().address, directoryLine);
        machine.file(kDumps + "/dump.txt", dump);
    }

    void askVersion(EMULEX_MODULE_KIND kind = EMULEX_MODULE_FIRMWARE) {
        std::string version;
        EXPECT_FALSE(CEmulexCommon::GetOperatingVersion("5:0.0", kind, &version, true, module));
    }

    void find(const std::string& deviceId) {
        Record record;
        EXPECT_FALSE(CEmulexCommon::GetHBAInfo(deviceId, &record, module));
    }

    void makeTreeAround(const std::string& obstacle) {
        std::filesystem::remove_all(kWorkRoot);
        machine.file(kWorkRoot + "/" + obstacle, "");
        EXPECT_FALSE(CEmulexCommon::CreateLocalDirectory());
    }

    void compare(const std::string& version1, const std::string& version2) {
        CEmulexCommon::CheckVendorVersion(version1, version2, EMULEX_MODULE_DRIVER, module);
    }

    /// Updates the firmware of the port of the list, with a tool that prints nothing.
    void updateFirmware(const std::string& moduleName, const std::string& folder = "/tmp/unpacked",
                        const std::string& deviceId = "5:0.0") {
        machine.program(kTool, "#!/bin/sh\n");
        machine.directory(kWorkRoot + "/temp/CNA/firm");
        std::list<std::string> files = {"module.zip"};
        EXPECT_FALSE(quietly([&] {
            return CEmulexCommon::FwUpdate(deviceId, kModules + "/" + moduleName, folder, kTool, &files, false, module,
                                           "fcelx_16g");
        }));
    }

    void runUpdater(const std::string& command) {
        unsigned long exitCode = 0;
        EXPECT_FALSE(CEmulexCommon::EmulexUpdate(command, "/tmp/result", "", &exitCode, "", "", 1, module));
    }

    void checkResult(const std::string& output) {
        machine.file("/tmp/message.txt", "SuccessMessage=Done\nEndMessage=Ended\n");
        machine.file("/tmp/result", output);
        EXPECT_FALSE(CEmulexCommon::CheckUpdateResult_("/tmp/result", "/tmp/message.txt", module));
    }
};

TEST_F(EachError, IsReachedByAnOperation) {
    const std::string address = "Port WWPN/MAC: " + Port().address + "\n";
    const std::string directory = "Dump Directory = " + kDumps + "\n";
    const std::string noText = "fcelx_16g-without-message";
    Port macPort;
    macPort.addressKey = "Permanent MAC";
    const std::list<Way> ways = {
        {1, "GetHBAInfoList", [&] { CEmulexCommon::GetHBAInfoList(nullptr, module); }},
        {5, "GetOperatingVersion", [&] { layDump("Dump Directory =\n", address), askVersion(); }},
        {6, "GetOperatingVersion", [&] { layDump(directory, "another port\n"), askVersion(); }},
        {7, "GetOperatingVersion",
         [&] {
             layDump(directory, address);
             std::filesystem::remove_all(kWorkRoot + "/cache");
             askVersion();
         }},
        {8, "GetOperatingVersion", [&] { layDump(directory, address), askVersion(EMULEX_MODULE_COMPARE_ONLY); }},
        {9, "GetOperatingVersion", [&] { layDump(directory, address), askVersion(); }},
        {11, "NecessaryComponentCheck", [&] { CEmulexCommon::NecessaryComponentCheck(module); }},
        {13, "GetHBAInfo", [&] { layList({Port()}), find(""); }},
        {13, "FwUpdate", [&] { updateFirmware(noText, "/tmp/unpacked", ""); }},
        {14, "GetHBAInfo", [&] { layList({Port()}), find("6:0.0"); }},
        {15, "GetHBAInfo", [&] { layList({}), find("5:0.0"); }},
        {15, "FwUpdate", [&] { layList({Port()}), updateFirmware(noText, "/tmp/unpacked", "6:0.0"); }},
        {16, "FwUpdate", [&] { layList({Port()}), updateFirmware(noText); }},
        {17, "GetHBAInfo", [&] { find("5:0.0"); }},
        {17, "FwUpdate", [&] { layList({Port()}), updateFirmware("fcelx_16g"); }},
        {17, "EmulexUpdate", [&] { runUpdater(""); }},
        {17, "UpdateProceedingFileCreate_",
         [&] { EXPECT_FALSE(CEmulexCommon::UpdateProceedingFileCreate_("/tmp/absent", module)); }},
        {18, "CreateLocalDirectory", [&] { makeTreeAround("cache"); }},
        {19, "CreateLocalDirectory", [&] { makeTreeAround("temp"); }},
        {19, "FwUpdate", [&] { machine.file("/tmp/file", ""), updateFirmware(noText, "/tmp/file/unpacked"); }},
        {26, "FwUpdate", [&] { updateFirmware("fcelx_16g-damaged-archive"); }},
        {27, "FwUpdate", [&] { layList({macPort}), updateFirmware(noText); }},
        {28, "FwUpdate", [&] { updateFirmware(noText, ""); }},
        {29, "FwUpdate", [&] { updateFirmware("fcelx_16g-two-firmware"); }},
        {30, "CheckVendorVersion", [&] { compare("1.2.3", "1.2.3.4"); }},
        {33, "EmulexUpdate", [&] { runUpdater("exit 1"); }},
        {36, "CheckUpdateResult_", [&] { checkResult("Done\n"); }},
        {37, "CheckUpdateResult_", [&] { checkResult("Ended\n"); }},
        {38, "CheckVendorVersion", [&] { compare("1.2.3.5", "1.2.3.4"); }},
    };

    std::set<unsigned long> reached;
    std::set<std::string> listed;
    for (const Way& way : ways) {
        const std::string name = std::to_string(way.code) + " " + way.operation;
        SCOPED_TRACE(name);
        machine.reset();
        EXPECT_TRUE(CEmulexCommon::CreateLocalDirectory());
        CEmulexCommon::SetLastError(0);
        way.go();
        EXPECT_EQ(takeError(), way.code);
        EXPECT_TRUE(listed.insert(name).second) << "listed twice";
        reached.insert(way.code);
    }
    std::set<unsigned long> table;
    for (const AdapterErrorRow& row : kAdapterErrors) {
        table.insert(row.number);
    }
    EXPECT_EQ(reached, table);
}

}  // namespace
}  // namespace kvl::test
