#include "tests/adapter/adapter_test.h"
#include "tests/adapter/profile_reads.h"

namespace kvl::test {
namespace {

using Texts = std::list<std::string>;

const std::string kCnaFile = kInstallPath + "/CnaVCFac.ini";
const std::string kFcFile = kInstallPath + "/FcVCFac.ini";

struct Entry {
    std::string vendor;
    std::string device;
};

class DeviceCatalogue : public AdapterTest {
protected:
    void SetUp() override {
        AdapterTest::SetUp();
        profile() = ProfileReads();
    }

    void TearDown() override {
        EXPECT_EQ(CEmulexCommon::GetLastError(), 0U) << "no catalogue sets a code";
        AdapterTest::TearDown();
    }

    void lay(const std::string& path, const std::list<Entry>& entries, const std::string& number = "") {
        std::string text =
            "[SuportDevice]\nSuportDeviceNum=" + (number.empty() ? std::to_string(entries.size()) : number) + "\n";
        int count = 0;
        for (const Entry& entry : entries) {
            ++count;
            text += "Vendor" + std::to_string(count) + "=" + entry.vendor + "\nDevice" + std::to_string(count) + "=" +
                    entry.device + "\n";
        }
        machine.file(path, text);
    }

    /// @return the four lists one after another, with "|" between
    std::string deviceIds(const std::string& file) {
        Texts lists[4];
        EXPECT_TRUE(CEmulexCommon::GetDeviceIdList(file, &lists[0], &lists[1], &lists[2], &lists[3], module));
        return joined(lists);
    }

    std::string hardwareIds(const std::string& file) {
        Texts lists[4];
        EXPECT_TRUE(CEmulexCommon::GetVenDevIdList(file, &lists[0], &lists[1], &lists[2], &lists[3], module));
        return joined(lists);
    }

    Texts vendors() {
        Texts list;
        EXPECT_TRUE(CEmulexCommon::GetVenderIdList(&list, module));
        return list;
    }

    static std::string joined(const Texts (&lists)[4]) {
        std::string text;
        for (const Texts& list : lists) {
            for (const std::string& entry : list) {
                text += entry + ",";
            }
            text += "|";
        }
        return text;
    }
};

using DeviceIdList = DeviceCatalogue;
using VenDevIdList = DeviceCatalogue;
using VenderIdList = DeviceCatalogue;
using ConvertDevid = DeviceCatalogue;

const Lines kDeviceTrace = {"4 CEmulexCommon::GetDeviceIdList() [START]", "4 CEmulexCommon::GetDeviceIdList() [END]"};
const Lines kHardwareTrace = {"4 CEmulexCommon::GetVenDevIdList() [START]", "4 CEmulexCommon::GetVenDevIdList() [END]"};

// ---- GetDeviceIdList ----

TEST_F(DeviceIdList, SortsCnaDevicesByTheLastDigitAndDropsThePrefix) {
    lay(kCnaFile, {{"VEN_19A2", "DEV_0700"},
                   {"VEN_19A2", "DEV_0702"},
                   {"VEN_19A2", "DEV_0704"},
                   {"VEN_10DF", "DEV_0710"},
                   {"VEN_10DF", "DEV_0701"},
                   {"VEN_10DF", "DEV_071A"}});
    EXPECT_EQ(deviceIds("CnaVCFac.ini"), "0700,0710,|0702,|0704,||");
    EXPECT_EQ(TestHost::trace(), kDeviceTrace);
}

TEST_F(DeviceIdList, DoesNotLookAtTheVendorOfACnaDevice) {
    lay(kCnaFile, {{"VEN_8086", "DEV_0700"}, {"", "DEV_0702"}});
    EXPECT_EQ(deviceIds("CnaVCFac.ini"), "0700,|0702,|||");
    EXPECT_EQ(profile().reads, (Lines{kCnaFile + " [SuportDevice] Device1", kCnaFile + " [SuportDevice] Device2"}));
    EXPECT_EQ(profile().defaultText, "");
    EXPECT_EQ(profile().size, 256U);
}

TEST_F(DeviceIdList, SkipsACnaDeviceOfAnotherLength) {
    lay(kCnaFile, {{"", "DEV_07000"}, {"", "DEV_070"}, {"", "DEV_0720 "}, {"", "0"}, {"", ""}, {"", "DEV_0700"}});
    EXPECT_EQ(deviceIds("CnaVCFac.ini"), "0720,0700,||||");  // the INI reader trims the blank
}

TEST_F(DeviceIdList, ListsFcDevicesOfTheOneVendorWithTheirPrefix) {
    lay(kFcFile, {{"VEN_10DF", "DEV_F100"},
                  {"VEN_19A2", "DEV_F200"},
                  {"VEN_10df", "DEV_F300"},
                  {"VEN_10DF", "x"},
                  {"10DF", "DEV_F400"},
                  {"", "DEV_F500"},
                  {"abcd10DF", "DEV_F600"},
                  {"VEN_10DF", ""}});
    EXPECT_EQ(deviceIds("FcVCFac.ini"), "|||DEV_F100,x,DEV_F600,,|");
    EXPECT_EQ(TestHost::trace(), kDeviceTrace);
}

TEST_F(DeviceIdList, ReadsAnFcDeviceOnlyBehindAFittingVendor) {
    lay(kFcFile, {{"VEN_19A2", "a"}, {"VEN_10DF", "b"}});
    deviceIds("FcVCFac.ini");
    EXPECT_EQ(profile().reads, (Lines{kFcFile + " [SuportDevice] Vendor1", kFcFile + " [SuportDevice] Vendor2",
                                      kFcFile + " [SuportDevice] Device2"}));
}

TEST_F(DeviceIdList, AppendsToTheLists) {
    lay(kCnaFile, {{"", "DEV_0700"}});
    Texts list0 = {"earlier"};
    Texts others = {"other"};
    EXPECT_TRUE(CEmulexCommon::GetDeviceIdList("CnaVCFac.ini", &list0, &others, &others, &others, module));
    EXPECT_EQ(list0, (Texts{"earlier", "0700"}));
    EXPECT_EQ(others, (Texts{"other"}));
}

TEST_F(DeviceIdList, TouchesNoListThatTheCatalogueHasNoPlaceFor) {
    lay(kCnaFile, {{"", "DEV_0700"}, {"", "DEV_0702"}, {"", "DEV_0704"}});
    lay(kFcFile, {{"VEN_10DF", "DEV_F100"}});
    Texts list0, list2, list4, fcList;
    EXPECT_TRUE(CEmulexCommon::GetDeviceIdList("CnaVCFac.ini", &list0, &list2, &list4, nullptr, module));
    EXPECT_TRUE(CEmulexCommon::GetDeviceIdList("FcVCFac.ini", nullptr, nullptr, nullptr, &fcList, module));
    EXPECT_EQ(fcList, (Texts{"DEV_F100"}));
}

TEST_F(DeviceIdList, ReadsTheFileOfTheInstallDirectoryWhateverDirectoryIsNamed) {
    lay(kFcFile, {{"VEN_10DF", "installed"}});
    lay("/tmp/FcVCFac.ini", {{"VEN_10DF", "named"}});
    EXPECT_EQ(deviceIds("/tmp/FcVCFac.ini"), "|||installed,|");
    EXPECT_EQ(deviceIds("C:\\x\\FcVCFac.ini.bak"), "|||installed,|");
}

TEST_F(DeviceIdList, TakesTheCnaCatalogueIfBothNamesStandInTheArgument) {
    lay(kCnaFile, {{"", "DEV_0700"}});
    lay(kFcFile, {{"VEN_10DF", "DEV_F100"}});
    EXPECT_EQ(deviceIds("FcVCFac.ini CnaVCFac.ini"), "0700,||||");
}

TEST_F(DeviceIdList, IsEmptyForAnyOtherName) {
    lay(kCnaFile, {{"", "DEV_0700"}});
    for (const char* name : {"", "cnavcfac.ini", "CnaVCFac", "other.ini"}) {
        EXPECT_EQ(deviceIds(name), "||||") << name;
        EXPECT_EQ(takeTrace(), kDeviceTrace);
    }
    EXPECT_THAT(profile().reads, testing::IsEmpty());
}

// ---- GetVenDevIdList ----

TEST_F(VenDevIdList, ListsCnaDevicesOfBothVendorsWhoseNumberEndsInZero) {
    lay(kCnaFile, {{"VEN_19A2", "DEV_0700"},
                   {"VEN_10DF", "DEV_0710"},
                   {"VEN_8086", "DEV_0720"},
                   {"VEN_19a2", "DEV_0730"},
                   {"VEN_19A2", "DEV_0702"},
                   {"VEN_19A2", "DEV_0704"},
                   {"VEN_19A2", "DEV_07000"}});
    EXPECT_EQ(hardwareIds("CnaVCFac.ini"), "PCI\\VEN_19A2&DEV_0700,PCI\\VEN_10DF&DEV_0710,||||");
    EXPECT_EQ(TestHost::trace(), kHardwareTrace);
}

TEST_F(VenDevIdList, ListsAllFcDevicesOfTheOneVendor) {
    lay(kFcFile, {{"VEN_10DF", "DEV_F100"}, {"VEN_10DF", "DEV_F103"}, {"VEN_19A2", "DEV_F200"}, {"VEN_10DF", ""}});
    EXPECT_EQ(hardwareIds("FcVCFac.ini"), "|||PCI\\VEN_10DF&DEV_F100,PCI\\VEN_10DF&DEV_F103,PCI\\VEN_10DF&,|");
    EXPECT_EQ(TestHost::trace(), kHardwareTrace);
}

TEST_F(VenDevIdList, TakesNoVendorInLowerCaseOrWithoutItsPrefix) {
    const std::list<Entry> entries = {{"VEN_10df", "DEV_0700"}, {"10DF", "DEV_0710"}, {"VEN_10DF", "DEV_0720"}};
    lay(kCnaFile, entries);
    lay(kFcFile, entries);
    EXPECT_EQ(hardwareIds("CnaVCFac.ini"), "PCI\\VEN_10DF&DEV_0720,||||");
    EXPECT_EQ(hardwareIds("FcVCFac.ini"), "|||PCI\\VEN_10DF&DEV_0720,|");
}

TEST_F(VenDevIdList, HasFcDevicesOfAnyNumber) {
    lay(kFcFile, {{"VEN_10DF", "DEV_0702"}, {"abcd10DF", "DEV_0704"}, {"VEN_10DF", "DEV_07001"}, {"VEN_10DF", "x"}});
    EXPECT_EQ(hardwareIds("FcVCFac.ini"),
              "|||PCI\\VEN_10DF&DEV_0702,PCI\\abcd10DF&DEV_0704,PCI\\VEN_10DF&DEV_07001,PCI\\VEN_10DF&x,|");
}

TEST_F(VenDevIdList, ReadsADeviceOnlyBehindAFittingVendor) {
    lay(kCnaFile, {{"VEN_8086", "a"}, {"VEN_10DF", "b"}});
    hardwareIds("CnaVCFac.ini");
    EXPECT_EQ(profile().reads, (Lines{kCnaFile + " [SuportDevice] Vendor1", kCnaFile + " [SuportDevice] Vendor2",
                                      kCnaFile + " [SuportDevice] Device2"}));
}

TEST_F(VenDevIdList, NeverTouchesTheListsForTwoAndFour) {
    lay(kCnaFile, {{"VEN_19A2", "DEV_0700"}, {"VEN_19A2", "DEV_0702"}});
    lay(kFcFile, {{"VEN_10DF", "DEV_F100"}});
    Texts list0 = {"earlier"};
    Texts fcList = {"earlier"};
    EXPECT_TRUE(CEmulexCommon::GetVenDevIdList("CnaVCFac.ini", &list0, nullptr, nullptr, nullptr, module));
    EXPECT_TRUE(CEmulexCommon::GetVenDevIdList("FcVCFac.ini", nullptr, nullptr, nullptr, &fcList, module));
    EXPECT_EQ(list0, (Texts{"earlier", "PCI\\VEN_19A2&DEV_0700"}));
    EXPECT_EQ(fcList, (Texts{"earlier", "PCI\\VEN_10DF&DEV_F100"}));
}

TEST_F(VenDevIdList, ChoosesTheCatalogueAsTheListOfNumbersDoes) {
    lay(kCnaFile, {{"VEN_19A2", "DEV_0700"}});
    lay(kFcFile, {{"VEN_10DF", "DEV_F100"}});
    EXPECT_EQ(hardwareIds("FcVCFac.ini/CnaVCFac.ini"), "PCI\\VEN_19A2&DEV_0700,||||");
    EXPECT_EQ(hardwareIds("/elsewhere/FcVCFac.ini"), "|||PCI\\VEN_10DF&DEV_F100,|");
    EXPECT_EQ(hardwareIds("other.ini"), "||||");
}

// ---- GetVenderIdList ----

TEST_F(VenderIdList, HoldsTheNumbersOfTheCnaCatalogueEachAsOftenAsItStandsThere) {
    lay(kCnaFile, {{"VEN_19A2", ""}, {"VEN_10DF", ""}, {"VEN_8086", ""}, {"VEN_19A2", ""}, {"19A2", ""}, {"", ""}});
    lay(kFcFile, {{"VEN_10DF", ""}, {"VEN_10DF", ""}});
    EXPECT_EQ(vendors(), (Texts{"19A2", "10DF", "19A2"}));
}

TEST_F(VenderIdList, TakesNoVendorInLowerCaseOrWithoutItsPrefix) {
    lay(kCnaFile, {{"VEN_10df", ""}, {"VEN_19a2", ""}, {"10DF", ""}, {"VEN_10DF", ""}});
    EXPECT_EQ(vendors(), (Texts{"10DF"}));
}

TEST_F(VenderIdList, ReadsTheVendorsOnly) {
    lay(kCnaFile, {{"VEN_10DF", "DEV_0700"}, {"VEN_19A2", "DEV_0702"}});
    vendors();
    EXPECT_EQ(profile().reads, (Lines{kCnaFile + " [SuportDevice] Vendor1", kCnaFile + " [SuportDevice] Vendor2"}));
}

TEST_F(VenderIdList, TracesItsStartAsTheModuleCnaAndItsEndAsTheCaller) {
    module = "fc";
    allowedModules = {"cna", "fc"};
    Texts list = {"earlier"};
    EXPECT_TRUE(CEmulexCommon::GetVenderIdList(&list, module));
    EXPECT_EQ(list, (Texts{"earlier"}));
    EXPECT_EQ(TestHost::moduleTrace(),
              (Lines{"cna 4 CEmulexCommon::GetVenderIdList() [START]", "fc 4 CEmulexCommon::GetVenderIdList() [END]"}));
}

// ---- Bad catalogues ----

TEST_F(DeviceCatalogue, IsEmptyWithoutAFileOrItsSectionOrItsNumber) {
    const auto expectNothing = [this] {
        EXPECT_EQ(deviceIds("CnaVCFac.ini"), "||||");
        EXPECT_EQ(deviceIds("FcVCFac.ini"), "||||");
        EXPECT_EQ(hardwareIds("CnaVCFac.ini"), "||||");
        EXPECT_EQ(hardwareIds("FcVCFac.ini"), "||||");
        EXPECT_EQ(vendors(), Texts());
        EXPECT_THAT(profile().reads, testing::IsEmpty());
    };
    expectNothing();
    const std::string entries = "Vendor1=VEN_10DF\nDevice1=DEV_0700\n";
    for (const std::string& content :
         {std::string(), entries, "[SuportDevice]\n" + entries, "[SuportDevice]\nSuportDeviceNum=0\n" + entries,
          "[SuportDevice]\nSuportDeviceNum=-1\n" + entries, "[SuportDevice]\nSuportDeviceNum=-2147483648\n" + entries,
          "[SuportDevice]\nSuportDeviceNum=x\n" + entries, "[SupportDevice]\nSuportDeviceNum=1\n" + entries}) {
        SCOPED_TRACE(content);
        machine.file(kCnaFile, content);
        machine.file(kFcFile, content);
        expectNothing();
    }
}

TEST_F(DeviceCatalogue, ReadsAMissingKeyAsAnEmptyField) {
    lay(kCnaFile, {{"VEN_10DF", "DEV_0700"}}, "3");
    lay(kFcFile, {{"VEN_10DF", "DEV_F100"}}, "3");
    EXPECT_EQ(deviceIds("CnaVCFac.ini"), "0700,||||");
    EXPECT_EQ(deviceIds("FcVCFac.ini"), "|||DEV_F100,|");
    EXPECT_EQ(hardwareIds("CnaVCFac.ini"), "PCI\\VEN_10DF&DEV_0700,||||");
    EXPECT_EQ(hardwareIds("FcVCFac.ini"), "|||PCI\\VEN_10DF&DEV_F100,|");
    EXPECT_EQ(vendors(), (Texts{"10DF"}));
}

TEST_F(DeviceCatalogue, LeavesEntriesBehindTheNumberOut) {
    lay(kCnaFile, {{"VEN_10DF", "DEV_0700"}, {"VEN_10DF", "DEV_0710"}}, "1");
    EXPECT_EQ(deviceIds("CnaVCFac.ini"), "0700,||||");
    EXPECT_EQ(hardwareIds("CnaVCFac.ini"), "PCI\\VEN_10DF&DEV_0700,||||");
}

TEST_F(DeviceCatalogue, SkipsFieldsThatAreShorterThanTheirPrefix) {
    lay(kCnaFile, {{"VEN", "DEV"}, {"V", "D"}, {"VEN_", "DEV_"}});
    lay(kFcFile, {{"VEN", "DEV"}, {"V", "D"}, {"VEN_", "DEV_"}});
    EXPECT_EQ(deviceIds("CnaVCFac.ini") + deviceIds("FcVCFac.ini"), "||||||||");
    EXPECT_EQ(hardwareIds("CnaVCFac.ini") + hardwareIds("FcVCFac.ini"), "||||||||");
    EXPECT_EQ(vendors(), Texts());
}

TEST_F(DeviceCatalogue, CutsAFieldAt255Characters) {
    lay(kFcFile, {{"VEN_10DF", std::string(300, 'x')}});
    EXPECT_EQ(deviceIds("FcVCFac.ini"), "|||" + std::string(255, 'x') + ",|");
}

TEST_F(DeviceCatalogue, ReadsAFileWithCarriageReturnsAndALastLineWithoutALineFeed) {
    machine.file(kFcFile, "[SuportDevice]\r\nSuportDeviceNum=1\r\nVendor1=VEN_10DF\r\nDevice1=DEV_F100");
    EXPECT_EQ(deviceIds("FcVCFac.ini"), "|||DEV_F100,|");
}

// The walk over a billion entries takes as many reads as the file says and nothing else: no memory grows with it. A
// test waits for the first ten thousand only.
TEST_F(DeviceCatalogue, WalksAsManyEntriesAsTheNumberSays) {
    for (const char* number : {"1000000000", "2147483647", "99999999999"}) {
        lay(kCnaFile, {{"VEN_10DF", "DEV_0700"}}, number);
        lay(kFcFile, {{"VEN_10DF", "DEV_F100"}}, number);
        Texts lists[5];
        const auto bounded = [](auto call) {
            profile() = ProfileReads();
            profile().limit = 10000;
            EXPECT_THROW(call(), EnoughReads);
            return profile().lastKey;
        };
        const auto devices = [&](const char* file) {
            return bounded(
                [&] { CEmulexCommon::GetDeviceIdList(file, &lists[0], &lists[1], &lists[2], &lists[3], module); });
        };
        const auto hardware = [&](const char* file) {
            return bounded(
                [&] { CEmulexCommon::GetVenDevIdList(file, &lists[0], &lists[1], &lists[2], &lists[3], module); });
        };
        EXPECT_EQ(devices("CnaVCFac.ini"), "Device10001");
        EXPECT_EQ(devices("FcVCFac.ini"), "Vendor10000");
        EXPECT_EQ(hardware("CnaVCFac.ini"), "Vendor10000");
        EXPECT_EQ(hardware("FcVCFac.ini"), "Vendor10000");
        EXPECT_EQ(bounded([&] { CEmulexCommon::GetVenderIdList(&lists[4], module); }), "Vendor10001");
        EXPECT_EQ(lists[0], (Texts{"0700", "PCI\\VEN_10DF&DEV_0700"}));
        EXPECT_EQ(lists[3], (Texts{"DEV_F100", "PCI\\VEN_10DF&DEV_F100"}));
        EXPECT_EQ(lists[4], (Texts{"10DF"}));
    }
}

// ---- CONVERT_DEVID ----

TEST_F(ConvertDevid, TurnsEachSlashIntoAnUnderscore) {
    EXPECT_EQ(CONVERT_DEVID("05:00.0-a/b//c/"), "05:00.0-a_b__c_");
    EXPECT_EQ(CONVERT_DEVID("05:00.0-a_b"), "05:00.0-a_b");
    EXPECT_EQ(CONVERT_DEVID(""), "");
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

}  // namespace
}  // namespace kvl::test
