#include <sys/stat.h>

#include <cerrno>

#include "tests/adapter/adapter_test.h"

// The report files of the tool, spoilt in every way.

namespace kvl::test {
namespace {

class BadReport : public AdapterTest {
protected:
    std::list<Record> list() {
        std::list<Record> records;
        const bool isRead = CEmulexCommon::GetHBAInfoList(&records, module);
        EXPECT_EQ(isRead, !records.empty());
        return records;
    }

    /// @return what the search for a port came to: true, false, or the text of an out-of-range exception
    std::string find(const std::string& deviceId) {
        Record record;
        bool isFound = false;
        const std::string exception =
            outOfRangeOf([&] { isFound = CEmulexCommon::GetHBAInfo(deviceId, &record, module); });
        return exception != "(none)" ? exception : isFound ? "true" : "false";
    }

    static Port portAt(const std::string& function) {
        Port port;
        port.function = function;
        return port;
    }
};

TEST_F(BadReport, CutAnywhereEndsTheListEarlierAndRaisesForAShortLineOnly) {
    const std::string text = portAt("0").block() + portAt("1").block();
    for (std::string::size_type length = 0; length <= text.size(); ++length) {
        const std::string content = text.substr(0, length);
        SCOPED_TRACE(content);
        machine.file(kListFile, content);
        const std::list<Record> records = list();
        EXPECT_LE(records.size(), 2U);
        const std::string last = content.substr(content.rfind('\n') + 1);
        const bool isBusLine = last.compare(0, 14, "PCI Bus Number") == 0;
        const bool isFunctionLine = last.compare(0, 12, "PCI Function") == 0;
        const bool isShort = (isBusLine || isFunctionLine) && last.size() < 17;
        const std::string found = find("5:0.0");
        if (records.empty()) {
            EXPECT_EQ(found, "false");
        } else if (isShort) {
            EXPECT_EQ(found, "basic_string::substr");
        } else {
            EXPECT_EQ(found, records.front().count("PCI Function") == 1 ? "true" : "false");
        }
        takeTrace();
    }
}

TEST_F(BadReport, OfCarriageReturnsIsReadAsOneWithout) {
    std::string text = portAt("0").block() + portAt("8").block();
    for (auto end = text.find('\n'); end != std::string::npos; end = text.find('\n', end + 2)) {
        text.insert(end, "\r");
    }
    machine.file(kListFile, text);
    EXPECT_EQ(list(), (std::list<Record>{portAt("0").record(), portAt("8").record()}));
    EXPECT_EQ(find("5:1.0"), "true");
    EXPECT_EQ(find("5:0.0"), "true");
    EXPECT_EQ(find("5:0.1"), "false");
}

TEST_F(BadReport, OfLongLinesIsReadInPieces) {
    Port port;
    port.serial = std::string(300, 's');
    layList({port, Port()});
    std::list<Record> records = list();
    ASSERT_EQ(records.size(), 2U);
    // The key, 15 characters, a colon and a blank stand before the value in the first 255 characters.
    EXPECT_EQ(records.front()["Serial No."], std::string(255 - 17, 's'));
    EXPECT_EQ(records.back()["Serial No."], "VM1");
}

TEST_F(BadReport, TakesAKeyInTheRestOfALongLineForALineOfItsOwn) {
    machine.file(kListFile, "Port WWN: a" + std::string(244, ' ') + "Port WWN: b\n");
    EXPECT_EQ(list(), (std::list<Record>{{{"Port WWN", "a"}}, {{"Port WWN", "b"}}}));
}

TEST_F(BadReport, GivesAPortWithoutASeparatorTheAddressOfTheNext) {
    Port second = portAt("1");
    second.address = "b";
    std::string text = portAt("0").block() + second.block();
    text.erase(text.find(':'), 1);
    text.replace(text.find(Port().address), Port().address.size(), "no separator");
    machine.file(kListFile, text);
    std::list<Record> records = list();
    ASSERT_EQ(records.size(), 2U);
    // The line without a value is passed by for the first port and counted for the second.
    EXPECT_EQ(records.front()["Port WWN"], "b");
    EXPECT_EQ(records.back()["Port WWN"], "b");
    EXPECT_EQ(records.front()["PCI Function"], "0");
}

TEST_F(BadReport, OfAnyBytesGivesNoPort) {
    std::string zeros;
    for (int count = 0; count < 4096; ++count) {
        zeros += std::string("\0\xff\xfe", 3) + (count % 7 == 0 ? "\n" : "");
    }
    for (const std::string& content : {std::string(), std::string("\n"), std::string("x"), std::string(1 << 20, 'x'),
                                       std::string(1 << 20, '\n'), std::string(1 << 20, '\xff'), zeros}) {
        machine.file(kListFile, content);
        EXPECT_THAT(list(), testing::IsEmpty());
        EXPECT_EQ(takeError(), 15U);
        EXPECT_EQ(find("5:0.0"), "false");
    }
}

TEST_F(BadReport, ThatIsADirectoryIsAnEmptyOne) {
    machine.directory(kListFile);
    EXPECT_THAT(list(), testing::IsEmpty());
    EXPECT_EQ(takeError(), 15U);
}

TEST_F(BadReport, ThatIsUnreadableIsTracedWithTheErrorNumber) {
    layList({Port()});
    chmod(kListFile.c_str(), 0);
    EXPECT_THAT(list(), testing::IsEmpty());
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(TestHost::trace(), missingListTrace(EACCES));
}

TEST_F(BadReport, OfManyPortsIsReadToTheLast) {
    constexpr int kPorts = 200;
    std::list<Port> ports;
    std::list<Record> records;
    for (int number = 0; number < kPorts; ++number) {
        Port port = portAt(std::to_string(number));
        port.number = std::to_string(number);
        ports.push_back(port);
        records.push_back(port.record());
    }
    layList(ports);
    EXPECT_EQ(list(), records);
    takeTrace();
    EXPECT_EQ(find("5:18.2"), "true");  // eight functions a device: 8 * 0x18 + 2 is 194
}

// A whole list of ten thousand ports takes sixty thousand passes over the file, each of them as long as the port's
// number; here the last port alone is read, as the list would read it.
TEST_F(BadReport, OfTenThousandPortsHasItsLastRecord) {
    constexpr unsigned int kPorts = 10000;
    std::string text;
    for (unsigned int number = 0; number < kPorts; ++number) {
        Port port;
        port.number = std::to_string(number);
        port.serial = "VM" + std::to_string(number);
        text += port.block();
    }
    machine.file(kListFile, text);
    const auto read = [this](const char* keys, unsigned int count) {
        std::pair<std::string, std::string> result;
        EXPECT_TRUE(CEmulexCommon::GetKeyValueFromFile_(kListFile, keys, ":", result, module, count));
        return result;
    };
    EXPECT_EQ(read("Port WWN|Permanent MAC", kPorts - 1).second, Port().address);
    EXPECT_EQ(read("Port Number", kPorts - 1).second, "9999");
    EXPECT_EQ(read("Serial No.", kPorts - 1).second, "VM9999");
    EXPECT_EQ(read("Serial No.", kPorts).first, "");
}

}  // namespace
}  // namespace kvl::test
