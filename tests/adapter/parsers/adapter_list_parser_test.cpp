#include "adapter/adapter_list_parser.h"

#include "tests/adapter/parsers/report_text.h"
#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

// ---- The records ----

class AdapterListTable : public ParserTable {};

std::string shown(const std::list<AdapterRecord>& records) {
    std::string text;
    for (const AdapterRecord& record : records) {
        for (const auto& [key, value] : record) {
            text += key + "=" + value + ";";
        }
        text += "\n";
    }
    return text;
}

TEST_P(AdapterListTable, GivesTheRecords) {
    const auto lookup = [](const std::string& keys, unsigned int port, KeyValue& result) {
        ReportText report(GetParam().input);
        result = findKeyValue(report.lines(), keys, ":", port);
        return true;
    };
    std::list<AdapterRecord> records;
    EXPECT_TRUE(parseAdapterList(lookup, records));
    EXPECT_EQ(shown(records), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, AdapterListTable,
    testing::Values(
        ParserCase{"OfEachPort",
                   "Manageable HBA List\n\nPort WWN       : 10:00\nNode WWN       : 20:00\nPort Number    : 0\n"
                   "PCI Bus Number : 6\nPCI Function   : 1\nPort Type      : FC\nModel          : X\n"
                   "Serial No.     : VM1\n\nPermanent MAC  : 00-90\nPort Number    : 1\nPCI Bus Number : 2\n"
                   "PCI Function   : 0\nPort Type      : NIC\nSerial No.     : VM2\n",
                   "PCI Bus Number=6;PCI Function=1;Port Number=0;Port Type=FC;Port WWN=10:00;Serial No.=VM1;\n"
                   "PCI Bus Number=2;PCI Function=0;Permanent MAC=00-90;Port Number=1;Port Type=NIC;Serial No.=VM2;\n"},
        ParserCase{"UpToTheFirstKeyThatTheListLacks",
                   "Port WWN : 1\nPort Number : 0\nPCI Function : 1\nPort Type : FC\nPort WWN : 2\n",
                   "Port Number=0;Port WWN=1;\nPort WWN=2;\n"},
        ParserCase{"WithTheNextPortsValueWhereAPortLacksOne",
                   "Port WWN : 1\nPort Number : 0\nPCI Bus Number : 6\nPort WWN : 2\nPort Number : 1\n"
                   "PCI Bus Number : 7\nPCI Function : 9\n",
                   "PCI Bus Number=6;PCI Function=9;Port Number=0;Port WWN=1;\nPCI Bus Number=7;Port Number=1;Port "
                   "WWN=2;\n"},
        ParserCase{"NoneWithoutAPort", "Port Number : 0\nPort Type : FC\n", ""}, ParserCase{"NoneOfNothing", "", ""}),
    ruleOf);

TEST(AdapterListLookup, IsAskedForTheKeysInOrderUpToAFailureAndKeepsTheRecordsBeforeIt) {
    std::string asked;
    const auto lookup = [&asked](const std::string& keys, unsigned int port, KeyValue& result) {
        asked += keys + " of " + std::to_string(port) + "\n";
        result = {keys, "v"};
        return port == 0 || keys != "PCI Bus Number";
    };
    std::list<AdapterRecord> records = {{{"earlier", "e"}}};
    EXPECT_FALSE(parseAdapterList(lookup, records));
    EXPECT_EQ(asked,
              "Port WWN|Permanent MAC of 0\nPort Number of 0\nPCI Bus Number of 0\nPCI Function of 0\nPort Type of 0\n"
              "Serial No. of 0\nPort WWN|Permanent MAC of 1\nPort Number of 1\nPCI Bus Number of 1\n");
    EXPECT_EQ(shown(records),
              "earlier=e;\nPCI Bus Number=v;PCI Function=v;Port Number=v;Port Type=v;Port WWN|Permanent MAC=v;Serial "
              "No.=v;\n");
}

// ---- The functions of a device ----

class FunctionsTable : public ParserTable {};

/// The count for bus 6, with "+" in front for each bus line.
TEST_P(FunctionsTable, CountsThem) {
    EXPECT_EQ(outcomeOf([](std::string& text) {
                  ReportText report(GetParam().input);
                  text += std::to_string(functionsPerDevice(report.lines(), 6, [&text] { text += "+"; }));
              }),
              GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, FunctionsTable,
    testing::Values(
        ParserCase{"AsTwo", "PCI Bus Number : 6\nPCI Function   : 7\n", "+2"},
        ParserCase{"AsEightOnceTheBusShowsOneAboveSeven",
                   "PCI Bus Number : 6\nPCI Function   : 1\nPCI Bus Number : 6\nPCI Function   : 8\n", "++8"},
        ParserCase{"AsEightForTwoDigits", "PCI Bus Number : 6\nPCI Function   : 12\n", "+8"},
        ParserCase{"ByTheirOwnBusAlone", "PCI Bus Number : 5\nPCI Function   : 8\n", "+2"},
        ParserCase{"ByTheFirstDigitOfABus", "PCI Bus Number : 61\nPCI Function   : 8\n", "+8"},
        ParserCase{"ByTheNextLineAlone", "PCI Bus Number : 6\nPort Type      : FC\nPCI Function   : 8\n", "+2"},
        ParserCase{"NoFurtherThanTheFunctionAboveSeven", "PCI Bus Number : 6\nPCI Function   : 8\nPCI Bus Number : 6\n",
                   "+8"},
        ParserCase{"AsTwoWithoutALineAfterTheBus", "PCI Bus Number : 6", "+2"},
        ParserCase{"ByTheBusLineWhereNoOtherFollows", "PCI Bus Number : 6 PCI Function", "+2"},
        ParserCase{"UpToABusLineOfUnderSeventeenCharacters", "PCI Bus Number\nPCI Bus Number : 6\n",
                   "+!basic_string::substr"},
        ParserCase{"WithZeroForALineOfSeventeenCharacters", "PCI Bus Number :\r\nPCI Function   : 8\n", "+2"},
        ParserCase{"UpToAFunctionLineOfUnderSeventeenCharacters", "PCI Bus Number : 6\nPCI Function\n",
                   "+!basic_string::substr"},
        ParserCase{"AsTwoWithoutABus", "PCI Function   : 8\n", "2"}),
    ruleOf);

// ---- The port at a location ----

AdapterRecord at(const std::string& bus, const std::string& function, const std::string& name) {
    return {{"PCI Bus Number", bus}, {"PCI Function", function}, {"Serial No.", name}};
}

TEST(FindAdapter, ComparesBusAndFunctionAsTheToolCountsThem) {
    const std::list<AdapterRecord> records = {
        at("6", "1", "a"), at("6", "3", "b"),  at("6", "11", "c"), at("7", "3", "d"),
        at("6", "3", "e"), at("06", "5", "f"), at("16", "5", "g"), {}};
    struct Case {
        PciLocation location;
        int functions;
        const char* expected;
    };
    const Case table[] = {
        {{6, 0, 1}, 2, "a"},      {{6, 1, 1}, 2, "b"},      {{6, 1, 3}, 8, "c"},  {{7, 1, 1}, 2, "d"},
        {{6, 2, 1}, 2, "(none)"}, {{8, 0, 1}, 2, "(none)"}, {{16, 2, 1}, 2, "g"},
    };
    for (const Case& row : table) {
        const AdapterRecord* found = findAdapter(records, row.location, row.functions);
        EXPECT_EQ(found != nullptr ? valueOf(*found, "Serial No.") : "(none)", row.expected)
            << row.location.bus << ":" << row.location.device << "." << row.location.function;
    }
}

TEST(FindAdapter, CountsDevicesAboveTheRangeOfAnInt) {
    EXPECT_NE(findAdapter({at("6", "17179869176", "a")}, {6, 2147483647, 0}, 8), nullptr);
}

}  // namespace
}  // namespace kvl::test
