#include "adapter/error_codes.h"

#include <filesystem>
#include <functional>
#include <set>

#include "tests/adapter/adapter_test.h"

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

/// How an operation of the inventory comes to a code. The codes without a way are those of the update operations.
struct Way {
    unsigned long code;
    std::function<void()> go;
};

class EachError : public AdapterTest {
protected:
    /// Has the tool answer for the port of the list, whose dump says `dump`.
    void layTool(const std::string& directoryLine, const std::string& dump) {
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
};

TEST_F(EachError, IsReachedByTheInventoryOrBelongsToTheUpdate) {
    const std::string address = "Port WWPN/MAC: " + Port().address + "\n";
    const std::string directory = "Dump Directory = " + kDumps + "\n";
    const std::list<Way> ways = {
        {1, [&] { CEmulexCommon::GetHBAInfoList(nullptr, module); }},
        {5, [&] { layTool("Dump Directory =\n", address), askVersion(); }},
        {6, [&] { layTool(directory, "another port\n"), askVersion(); }},
        {7,
         [&] {
             layTool(directory, address);
             std::filesystem::remove_all(kWorkRoot + "/cache");
             askVersion();
         }},
        {8, [&] { layTool(directory, address), askVersion(EMULEX_MODULE_COMPARE_ONLY); }},
        {9, [&] { layTool(directory, address), askVersion(); }},
        {11, [&] { CEmulexCommon::NecessaryComponentCheck(module); }},
        {13, [&] { layList({Port()}), find(""); }},
        {14, [&] { layList({Port()}), find("6:0.0"); }},
        {15, [&] { layList({}), find("5:0.0"); }},
        {17, [&] { find("5:0.0"); }},
        {18, [&] { makeTreeAround("cache"); }},
        {19, [&] { makeTreeAround("temp"); }},
        {30, [&] { compare("1.2.3", "1.2.3.4"); }},
        {38, [&] { compare("1.2.3.5", "1.2.3.4"); }},
    };
    const std::set<unsigned long> updateCodes = {16, 26, 27, 28, 29, 33, 36, 37};

    std::set<unsigned long> known = updateCodes;
    for (const Way& way : ways) {
        SCOPED_TRACE(way.code);
        machine.reset();
        EXPECT_TRUE(CEmulexCommon::CreateLocalDirectory());
        CEmulexCommon::SetLastError(0);
        way.go();
        EXPECT_EQ(takeError(), way.code);
        EXPECT_TRUE(known.insert(way.code).second) << "listed twice";
    }
    std::set<unsigned long> table;
    for (const AdapterErrorRow& row : kAdapterErrors) {
        table.insert(row.number);
    }
    EXPECT_EQ(known, table);
}

}  // namespace
}  // namespace kvl::test
