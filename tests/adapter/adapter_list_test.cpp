#include <cerrno>
#include <filesystem>

#include "tests/adapter/adapter_test.h"

namespace kvl::test {
namespace {

class AdapterList : public AdapterTest {
protected:
    std::list<Record> list() {
        std::list<Record> records = {{{"earlier", "earlier"}}};
        EXPECT_TRUE(CEmulexCommon::GetHBAInfoList(&records, module));
        return records;
    }

    /// @return the "Serial No." of the port; "(none)" if there is none
    std::string find(const std::string& deviceId) {
        Record record = {{"earlier", "earlier"}};
        const bool isFound = CEmulexCommon::GetHBAInfo(deviceId, &record, module);
        EXPECT_EQ(isFound, !record.empty());
        return isFound ? record["Serial No."] : "(none)";
    }

    static Port at(const std::string& bus, const std::string& function, const std::string& serial) {
        Port port;
        port.bus = bus;
        port.function = function;
        port.serial = serial;
        return port;
    }
};

using HbaInfoList = AdapterList;
using HbaInfo = AdapterList;

// ---- GetHBAInfoList ----

TEST_F(HbaInfoList, HasOneRecordForEachBlock) {
    Port first;
    Port second = at("6", "1", "VM2");
    second.address = "10:00:00:00:c9:aa:bb:dd";
    second.number = "1";
    second.type = "FCoE";
    layList({first, second});
    EXPECT_EQ(list(), (std::list<Record>{first.record(), second.record()}));
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(
        TestHost::trace(),
        (Lines{"1 CEmulexCommon::GetHBAInfoList() [START]", keyTrace(kListFile, "Port WWN|Permanent MAC"),
               keyTrace(kListFile, "Port Number"), keyTrace(kListFile, "PCI Bus Number"),
               keyTrace(kListFile, "PCI Function"), keyTrace(kListFile, "Port Type"), keyTrace(kListFile, "Serial No."),
               keyTrace(kListFile, "Port WWN|Permanent MAC"), keyTrace(kListFile, "Port Number"),
               keyTrace(kListFile, "PCI Bus Number"), keyTrace(kListFile, "PCI Function"),
               keyTrace(kListFile, "Port Type"), keyTrace(kListFile, "Serial No."),
               keyTrace(kListFile, "Port WWN|Permanent MAC"), "1 CEmulexCommon::GetHBAInfoList() [END]"}));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(HbaInfoList, ReadsTheListOfTheWorkingTree) {
    machine.file("/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt", Port().block());
    EXPECT_EQ(list(), (std::list<Record>{Port().record()}));
}

TEST_F(HbaInfoList, KnowsAPortByItsMacAddress) {
    Port port;
    port.addressKey = "Permanent MAC";
    port.address = "00-00-c9-aa-bb-cc";
    port.type = "NIC";
    layList({port, Port()});
    EXPECT_EQ(list(), (std::list<Record>{port.record(), Port().record()}));
}

TEST_F(HbaInfoList, FailsWithoutAResult) {
    layList({Port()});
    EXPECT_FALSE(CEmulexCommon::GetHBAInfoList(nullptr, module));
    EXPECT_EQ(takeError(), 1U);
    EXPECT_EQ(TestHost::trace(),
              (Lines{"1 CEmulexCommon::GetHBAInfoList() [START]", "1 CEmulexCommon::GetHBAInfoList() [END]"}));
}

TEST_F(HbaInfoList, FailsWithoutTheFile) {
    std::list<Record> records = {{{"earlier", "earlier"}}};
    EXPECT_FALSE(CEmulexCommon::GetHBAInfoList(&records, module));
    EXPECT_THAT(records, testing::IsEmpty());
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(TestHost::trace(), missingListTrace());
}

TEST_F(HbaInfoList, FailsWithoutAPort) {
    for (const char* text : {"", "\n\n", "Port Number: 1\nPort Type: FC\n", "Port WWN\n", "Port WWN:  \n"}) {
        machine.file(kListFile, text);
        std::list<Record> records = {{{"earlier", "earlier"}}};
        EXPECT_FALSE(CEmulexCommon::GetHBAInfoList(&records, module));
        EXPECT_THAT(records, testing::IsEmpty());
        EXPECT_EQ(takeError(), 15U);
        EXPECT_EQ(takeTrace(), listTrace(0));
    }
}

TEST_F(HbaInfoList, KeepsTheRecordsMadeBeforeTheFileWentAway) {
    layList({Port(), Port()});
    int reads = 0;
    TestHost::onTrace([&](const std::string& line) {
        if (line == keyTrace(kListFile, "Port Number") && ++reads == 2) {
            std::filesystem::remove(kListFile);
        }
    });
    std::list<Record> records;
    EXPECT_FALSE(CEmulexCommon::GetHBAInfoList(&records, module));
    EXPECT_EQ(records, (std::list<Record>{Port().record()}));
    EXPECT_EQ(takeError(), 17U);
    const Lines lines = TestHost::trace();
    EXPECT_EQ((Lines(lines.end() - 4, lines.end())),
              (Lines{keyTrace(kListFile, "Port Number"), openErrorTrace(kListFile),
                     "1 CEmulexCommon::GetKeyValueFromFile_() [END]", "1 CEmulexCommon::GetHBAInfoList() [END]"}));
}

TEST_F(HbaInfoList, EndsARecordAtTheFirstKeyThatTheFileLacksAndGoesOnWithTheNextPort) {
    machine.file(kListFile, "Port WWN: a\nPort Type: FC\nPort WWN: b\nSerial No.: x\n");
    EXPECT_EQ(list(), (std::list<Record>{{{"Port WWN", "a"}}, {{"Port WWN", "b"}}}));
    EXPECT_EQ(TestHost::trace(),
              (Lines{"1 CEmulexCommon::GetHBAInfoList() [START]", keyTrace(kListFile, "Port WWN|Permanent MAC"),
                     keyTrace(kListFile, "Port Number"), keyTrace(kListFile, "Port WWN|Permanent MAC"),
                     keyTrace(kListFile, "Port Number"), keyTrace(kListFile, "Port WWN|Permanent MAC"),
                     "1 CEmulexCommon::GetHBAInfoList() [END]"}));
}

TEST_F(HbaInfoList, ShiftsTheValuesOfAllLaterPortsWhereABlockLacksAKey) {
    std::string text = Port().block() + at("6", "1", "VM2").block() + at("7", "2", "VM3").block();
    text.erase(text.find("Port Type      : FC\n"), 20);
    text.replace(text.find("Port Type      : FC\n"), 20, "Port Type      : second\n");
    text.replace(text.find("Port Type      : FC\n"), 20, "Port Type      : third\n");
    machine.file(kListFile, text);
    const std::list<Record> records = list();
    ASSERT_EQ(records.size(), 3U);
    auto record = records.begin();
    EXPECT_EQ(record->at("Port Type"), "second");
    EXPECT_EQ(record->at("Serial No."), "VM1");
    ++record;
    EXPECT_EQ(record->at("Port Type"), "third");
    EXPECT_EQ(record->at("Serial No."), "VM2");
    ++record;
    EXPECT_EQ(
        *record,
        (Record{{"Port WWN", Port().address}, {"Port Number", "0"}, {"PCI Bus Number", "7"}, {"PCI Function", "2"}}));
}

TEST_F(HbaInfoList, TakesTheAddressesInTheOrderOfTheirLinesWhicheverKeyTheyHave) {
    machine.file(kListFile, "Permanent MAC: a\nPort WWN: b\n");
    EXPECT_EQ(list(), (std::list<Record>{{{"Permanent MAC", "a"}}, {{"Port WWN", "b"}}}));
}

TEST_F(HbaInfoList, ReadsABlockWithCarriageReturns) {
    std::string text = Port().block();
    for (auto end = text.find('\n'); end != std::string::npos; end = text.find('\n', end + 2)) {
        text.insert(end, "\r");
    }
    machine.file(kListFile, text);
    EXPECT_EQ(list(), (std::list<Record>{Port().record()}));
}

// ---- GetHBAInfo ----

TEST_F(HbaInfo, IsTheRecordAtTheLocation) {
    layList({at("5", "0", "VM1"), at("5", "1", "VM2")});
    Record record;
    EXPECT_TRUE(CEmulexCommon::GetHBAInfo("05:00.1-VEN", &record, module));
    EXPECT_EQ(record, at("5", "1", "VM2").record());
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(TestHost::trace(), adapterTrace(2, locationTrace("VEN", "PCINo=5, DevNo=0, FuncNo=1")));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(HbaInfo, IsTheFirstOfTwoRecordsAtOneLocation) {
    layList({at("5", "0", "VM1"), at("5", "0", "VM2")});
    EXPECT_EQ(find("5:0.0"), "VM1");
}

TEST_F(HbaInfo, CountsTwoFunctionsADevice) {
    layList({at("5", "0", "VM0"), at("5", "1", "VM1"), at("5", "2", "VM2"), at("5", "3", "VM3"), at("5", "7", "VM7")});
    EXPECT_EQ(find("5:0.0"), "VM0");
    EXPECT_EQ(find("5:0.1"), "VM1");
    EXPECT_EQ(find("5:1.0"), "VM2");
    EXPECT_EQ(find("5:1.1"), "VM3");
    EXPECT_EQ(find("5:3.1"), "VM7");
    EXPECT_EQ(find("5:0.7"), "VM7");
}

TEST_F(HbaInfo, CountsEightFunctionsADeviceOnceTheBusShowsOneAboveSeven) {
    layList({at("5", "2", "VM2"), at("5", "8", "VM8"), at("5", "9", "VM9"), at("5", "17", "VM17")});
    EXPECT_EQ(find("5:1.0"), "VM8");
    EXPECT_EQ(find("5:1.1"), "VM9");
    EXPECT_EQ(find("5:2.1"), "VM17");
    EXPECT_EQ(find("5:0.2"), "VM2");
    EXPECT_EQ(find("5:1.2"), "(none)");
    EXPECT_EQ(takeError(), 14U);
}

TEST_F(HbaInfo, StopsReadingAtTheFunctionAboveSeven) {
    layList({at("5", "8", "VM8"), at("5", "0", "VM0")});
    EXPECT_EQ(find("5:1.0"), "VM8");
    EXPECT_EQ(TestHost::trace(), (Lines{"1 CEmulexCommon::GetHBAInfo() [START]"} + listTrace(2) +
                                  locationTrace("", "PCINo=5, DevNo=1, FuncNo=0") +
                                  Lines{"1 [PCI Bus Number] is finded", "1 CEmulexCommon::GetHBAInfo() [END]"}));
}

TEST_F(HbaInfo, LooksAtTheFunctionsOfItsOwnBusOnly) {
    layList({at("6", "9", "VM9"), at("5", "2", "VM2")});
    EXPECT_EQ(find("5:1.0"), "VM2");
}

TEST_F(HbaInfo, ReadsOneDigitOfTheBusForTheCountAndAllOfItForTheMatch) {
    // Bus 12 reads as 1, so its function above 7 doesn't count for bus 12 but for bus 1.
    layList({at("12", "9", "VM9"), at("12", "2", "VM2"), at("1", "2", "VM1"), at("1", "8", "VM8")});
    EXPECT_EQ(find("c:1.0"), "VM2");
    EXPECT_EQ(find("1:1.0"), "VM8");
    layList({at("12", "9", "VM9"), at("1", "8", "VM8")});
    EXPECT_EQ(find("1:1.0"), "VM8");
    layList({at("12", "9", "VM9"), at("1", "2", "VM2")});
    EXPECT_EQ(find("1:1.0"), "(none)");
}

TEST_F(HbaInfo, TakesALocationInHexadecimal) {
    layList({at("31", "0", "VM1")});
    EXPECT_EQ(find("1f:00.0"), "VM1");
}

TEST_F(HbaInfo, ComparesTextsSoLeadingZerosDiffer) {
    layList({at("05", "0", "VM1"), at("5", "01", "VM2")});
    EXPECT_EQ(find("05:00.0"), "(none)");
    EXPECT_EQ(find("05:00.1"), "(none)");
}

TEST_F(HbaInfo, LooksAtTheFunctionOnTheNextLineOnly) {
    machine.file(kListFile,
                 "Port WWN       : a\nPort Number    : 0\nPCI Bus Number : 5\nOther          : x\n"
                 "PCI Function   : 8\nPort Type      : FC\nSerial No.     : VM1\n");
    EXPECT_EQ(find("5:1.0"), "(none)");
    EXPECT_EQ(find("5:4.0"), "VM1");
}

TEST_F(HbaInfo, IsThereForALineOfJustSeventeenCharactersWhoseNumberIsZero) {
    // The line feed is the seventeenth character; nothing follows it, which reads as 0.
    machine.file(kListFile,
                 "Port WWN       : a\nPort Number    : 0\nPCI Bus Number:0\nPCI Function   :0\nPort Type      : FC\n"
                 "Serial No.     : VM1\n");
    EXPECT_EQ(find("0:0.0"), "VM1");
}

TEST_F(HbaInfo, RaisesForABusLineOfUnderSeventeenCharacters) {
    layList({at("5", "0", "VM1")});
    std::string text = contentOf(kListFile);
    text.replace(text.find("PCI Bus Number : 5\n"), 19, "PCI Bus Number:\n");
    machine.file(kListFile, text);
    EXPECT_EQ(outOfRangeOf([&] { find("5:0.0"); }), "basic_string::substr");
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(TestHost::trace().back(), "1 [PCI Bus Number] is finded");
}

TEST_F(HbaInfo, RaisesForAShortBusLineOfAnotherPortToo) {
    const std::string shortBlock = "PCI Bus Number:\n";
    machine.file(kListFile, at("5", "0", "VM1").block() + shortBlock);
    EXPECT_EQ(outOfRangeOf([&] { find("5:0.0"); }), "basic_string::substr");
    machine.file(kListFile, at("5", "8", "VM8").block() + shortBlock);
    EXPECT_EQ(find("5:1.0"), "VM8");  // the reading stops at the function above seven
    EXPECT_EQ(outOfRangeOf([&] { find("6:1.0"); }), "basic_string::substr");
}

TEST_F(HbaInfo, TakesThePiecesOfALongLineForLines) {
    const auto textWith = [](const std::string& lines) {
        return "Port WWN       : a\n" + lines + "Port Type      : FC\nSerial No.     : VM8\n";
    };
    // The key begins with the 256th character, or is split before its last letters.
    const std::string number = "Port Number    : 0";
    const std::string location = "PCI Bus Number : 5\nPCI Function   : 8\n";
    machine.file(kListFile, textWith(number + std::string(255 - number.size(), ' ') + location));
    EXPECT_EQ(find("5:1.0"), "VM8");
    EXPECT_EQ(find("5:4.0"), "(none)");
    machine.file(kListFile, textWith(number + std::string(245 - number.size(), ' ') + location));
    EXPECT_EQ(find("5:1.0"), "(none)");
    // The next line after the bus is the rest of its own.
    machine.file(kListFile,
                 textWith("Port Number    : 0\nPCI Bus Number : 5" + std::string(300, ' ') + "\nPCI Function   : 8\n"));
    EXPECT_EQ(find("5:1.0"), "(none)");
    EXPECT_EQ(find("5:4.0"), "VM8");
}

TEST_F(HbaInfo, RaisesForAFunctionLineOfUnderSeventeenCharacters) {
    layList({at("5", "0", "VM1")});
    std::string text = contentOf(kListFile);
    text.replace(text.find("PCI Function   : 0\n"), 19, "PCI Function: 0\n");
    machine.file(kListFile, text);
    EXPECT_EQ(outOfRangeOf([&] { find("5:0.0"); }), "basic_string::substr");
    EXPECT_EQ(find("6:0.0"), "(none)");  // the function of another bus isn't looked at
}

TEST_F(HbaInfo, KeepsTheBusLineWhereTheFileEndsBehindIt) {
    machine.file(
        kListFile,
        "Port WWN       : a\nPort Number    : 0\nPCI Function   : 0\nPort Type      : FC\nSerial No.     : VM1\n"
        "PCI Bus Number : 5");
    EXPECT_EQ(find("5:0.0"), "VM1");
    // With both keys in it, that line is its own next line: 58 at its column 17 is above 7.
    const std::string text =
        "Port WWN       : a\nPort Number    : 0\nPCI Bus Number : 5\nPort Type      : FC\nPCI Function   : 8\n"
        "Serial No.     : VM1\n";
    machine.file(kListFile, text);
    EXPECT_EQ(find("5:4.0"), "VM1");
    machine.file(kListFile, text + "PCI Bus Number : 58 PCI Function : 8");
    EXPECT_EQ(find("5:1.0"), "VM1");
    EXPECT_EQ(find("5:4.0"), "(none)");
}

TEST_F(HbaInfo, FailsWithoutAResult) {
    layList({Port()});
    EXPECT_FALSE(CEmulexCommon::GetHBAInfo("5:0.0", nullptr, module));
    EXPECT_EQ(takeError(), 1U);
    EXPECT_EQ(TestHost::trace(),
              (Lines{"1 CEmulexCommon::GetHBAInfo() [START]", "1 CEmulexCommon::GetHBAInfo() [END]"}));
}

TEST_F(HbaInfo, FailsAsTheListDoes) {
    EXPECT_EQ(find(""), "(none)");
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(takeTrace(), (Lines{"1 CEmulexCommon::GetHBAInfo() [START]"} + missingListTrace() +
                            Lines{"1 CEmulexCommon::GetHBAInfo() [END]"}));
    machine.file(kListFile, "");
    EXPECT_EQ(find("5:0.0"), "(none)");
    EXPECT_EQ(takeError(), 15U);
    EXPECT_EQ(takeTrace(), (Lines{"1 CEmulexCommon::GetHBAInfo() [START]"} + listTrace(0) +
                            Lines{"1 CEmulexCommon::GetHBAInfo() [END]"}));
}

TEST_F(HbaInfo, FailsForAWrongLocationOnceTheListIsRead) {
    layList({Port()});
    for (const char* location : {"", "05", "05:", "05:00"}) {
        EXPECT_EQ(find(location), "(none)") << location;
        EXPECT_EQ(takeError(), 13U);
        EXPECT_EQ(takeTrace(),
                  (Lines{"1 CEmulexCommon::GetHBAInfo() [START]"} + listTrace(1) +
                   Lines{"4 CCommon_Information::GetPCIInfo [START]", "4 CCommon_Information::GetPCIInfo [END]",
                         "1 CEmulexCommon::GetHBAInfo() [END]"}));
    }
}

TEST_F(HbaInfo, FailsForALocationWithoutAPort) {
    layList({at("5", "0", "VM1")});
    EXPECT_EQ(find("6:0.0"), "(none)");
    EXPECT_EQ(takeError(), 14U);
    EXPECT_EQ(takeTrace(), adapterTrace(1, locationTrace("", "PCINo=6, DevNo=0, FuncNo=0")));
    EXPECT_EQ(find("5:0.1"), "(none)");
    EXPECT_EQ(takeError(), 14U);
}

TEST_F(HbaInfo, FailsForALocationThatNoFunctionNumberHolds) {
    layList({at("5", "9", "VM9")});
    EXPECT_EQ(find("5:7fffffff.7fffffff"), "(none)");
    EXPECT_EQ(takeError(), 14U);
    EXPECT_EQ(find("5:ffffffffffffffffffff.0"), "(none)");
    EXPECT_EQ(takeError(), 14U);
}

TEST_F(HbaInfo, FailsIfTheFileGoesAwayBehindTheList) {
    layList({Port()});
    TestHost::onTrace([](const std::string& line) {
        if (line == "4 CCommon_Information::GetPCIInfo [END]") {
            std::filesystem::remove(kListFile);
        }
    });
    EXPECT_EQ(find("5:0.0"), "(none)");
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(TestHost::trace(),
              (Lines{"1 CEmulexCommon::GetHBAInfo() [START]"} + listTrace(1) +
               locationTrace("", "PCINo=5, DevNo=0, FuncNo=0") +
               Lines{"2 File Open Error. file(/opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt) errcode(2)",
                     "4 CEmulexCommon::GetHBAInfo() [END]"}));
}

}  // namespace
}  // namespace kvl::test
