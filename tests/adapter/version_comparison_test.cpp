#include "tests/adapter/adapter_test.h"

namespace kvl::test {
namespace {

constexpr unsigned long kBadForm = 30;
constexpr unsigned long kDiffer = 38;

class VersionComparison : public AdapterTest {
protected:
    int compare(const std::string& version1, const std::string& version2,
                EMULEX_MODULE_KIND kind = EMULEX_MODULE_DRIVER) {
        return CEmulexCommon::CheckVendorVersion(version1, version2, kind, module);
    }

    int compareFirmware(const std::string& version1, const std::string& version2) {
        return compare(version1, version2, EMULEX_MODULE_FIRMWARE);
    }

    void TearDown() override {
        EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
        AdapterTest::TearDown();
    }
};

class FcFirmwareComparison : public VersionComparison {
protected:
    void SetUp() override {
        VersionComparison::SetUp();
        useModule("fc");
    }
};

Lines comparedTrace(const std::string& version1, const std::string& version2, int result, const Lines& between = {}) {
    return Lines{"4 CEmulexCommon::CheckVendorVersion() [Start]",
                 "1 Version1=[" + version1 + "],Version2=[" + version2 + "]"} +
           between + Lines{"4 Return=[" + std::to_string(result) + "]", "4 CEmulexCommon::CheckVendorVersion() [END]"};
}

Lines badFormTrace(const std::string& version1, const std::string& version2, const Lines& between = {}) {
    return Lines{"4 CEmulexCommon::CheckVendorVersion() [Start]",
                 "1 Version1=[" + version1 + "],Version2=[" + version2 + "]"} +
           between + Lines{"2 Return=[0]", "4 CEmulexCommon::CheckVendorVersion() [END]"};
}

// ---- Which form applies ----

TEST_F(VersionComparison, ComparesFourFieldsForEveryKindButBootCode) {
    allowedModules = {"cna", "fc", "test-module"};
    for (const char* name : {"cna", "fc", "test-module"}) {
        module = name;
        for (const int kind : {1, 2, 3, 5}) {
            EXPECT_EQ(compare("1.2.3.4", "1.2.3.5", static_cast<EMULEX_MODULE_KIND>(kind)), 1) << name << kind;
            EXPECT_EQ(takeError(), kDiffer);
        }
    }
}

TEST_F(VersionComparison, ComparesFourFieldsForFirmwareUnlessTheModuleIsFc) {
    allowedModules = {"cna", "FC", "test-module"};
    for (const char* name : {"cna", "FC", "test-module"}) {
        module = name;
        EXPECT_EQ(compareFirmware("1.2.3.4", "1.2.3.5"), 1) << name;
        EXPECT_EQ(takeError(), kDiffer);
        EXPECT_EQ(compareFirmware("2.72a2", "2.72a3"), 0);
        EXPECT_EQ(takeError(), kBadForm);
    }
}

TEST_F(VersionComparison, NeverComparesBootCodeOrAnUnknownKind) {
    allowedModules = {"cna", "fc"};
    for (const char* name : {"cna", "fc"}) {
        module = name;
        for (const int kind : {4, 6, -1, 99}) {
            EXPECT_EQ(compare("1.2.3.4", "rubbish", static_cast<EMULEX_MODULE_KIND>(kind)), 0);
            EXPECT_EQ(takeError(), 0U);
            EXPECT_EQ(takeTrace(), comparedTrace("1.2.3.4", "rubbish", 0));
        }
    }
    EXPECT_THAT(TestHost::operatorMessages(), testing::IsEmpty());
}

TEST_F(VersionComparison, HasTheseKinds) {
    EXPECT_EQ(EMULEX_MODULE_FIRMWARE, 0);
    EXPECT_EQ(EMULEX_MODULE_DRIVER, 1);
    EXPECT_EQ(EMULEX_MODULE_OCM, 2);
    EXPECT_EQ(EMULEX_MODULE_UNVERSIONED, 3);
    EXPECT_EQ(EMULEX_MODULE_BOOT_BIOS, 4);
    EXPECT_EQ(EMULEX_MODULE_COMPARE_ONLY, 5);
}

// ---- Four fields ----

TEST_F(VersionComparison, LeavesTheErrorStateAloneForEqualVersions) {
    CEmulexCommon::SetLastError(17);
    EXPECT_EQ(compare("1.2.3.4", "1.2.3.4"), 0);
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(TestHost::trace(), comparedTrace("1.2.3.4", "1.2.3.4", 0));
    EXPECT_THAT(TestHost::operatorMessages(), testing::IsEmpty());
}

TEST_F(VersionComparison, TracesTheResultOfADifference) {
    EXPECT_EQ(compare("1.2.3.4", "1.2.3.5"), 1);
    EXPECT_EQ(takeTrace(), comparedTrace("1.2.3.4", "1.2.3.5", 1));
    EXPECT_EQ(compare("1.2.3.5", "1.2.3.4"), -1);
    EXPECT_EQ(takeTrace(), comparedTrace("1.2.3.5", "1.2.3.4", -1));
}

TEST_F(VersionComparison, LetsTheFirstFieldThatDiffersDecide) {
    const struct {
        std::string version1;
        std::string version2;
        int result;
    } rows[] = {
        {"1.0.0.0", "2.0.0.0", 1},  {"1.9.9.9", "2.0.0.0", 1},  {"2.0.0.0", "1.9.9.9", -1}, {"1.1.9.9", "1.2.0.0", 1},
        {"1.1.1.9", "1.1.2.0", 1},  {"1.1.1.1", "1.1.1.2", 1},  {"1.1.1.2", "1.1.1.1", -1}, {"1.2.0.9", "1.1.9.9", -1},
        {"1.1.2.0", "1.1.1.9", -1}, {"1.9.0.0", "1.10.0.0", 1}, {"9.0.0.0", "10.0.0.0", 1}, {"1.1.1.10", "1.1.1.9", -1},
        {"01.2.3.4", "1.2.3.5", 1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(compare(row.version1, row.version2), row.result) << row.version1 << " " << row.version2;
        EXPECT_EQ(takeError(), kDiffer);
    }
}

TEST_F(VersionComparison, ComparesNumbersAndNotTexts) {
    EXPECT_EQ(compare("01.002.3.0004", "1.2.03.4"), 0);
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(compare("1.2.3.4294967296", "1.2.3.1"), -1);
    EXPECT_EQ(takeError(), kDiffer);
}

TEST_F(VersionComparison, AllowsATailBehindTheDigitsOfTheFourthField) {
    EXPECT_EQ(compare("1.2.3.4a", "1.2.3.4"), 0);
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(compare("1.2.3.4 (x-y)", "1.2.3.5rc/7"), 1);
    EXPECT_EQ(takeError(), kDiffer);
    EXPECT_THAT(TestHost::operatorMessages(), testing::IsEmpty());
}

TEST_F(VersionComparison, TakesAnEmptyFieldForZero) {
    EXPECT_EQ(compare("1..3.4", "1.0.3.4"), 0);
    EXPECT_EQ(compare("...", "0.0.0."), 0);
    EXPECT_EQ(takeError(), 0U);
}

TEST_F(VersionComparison, RefusesAVersionOfFourFieldsWithTheWrongForm) {
    for (const std::string version :
         {"", "1", "1.2.3", "1.2.3.4.5", "1.2a.3.4", "a.2.3.4", "1.2.3a.4", "1.2.3.a", "1.2.3.a4", "1.2.3. 4",
          " 1.2.3.4", "1.2.3.4a.5", "1.2 .3.4", "1,2.3.4.5", "-1.2.3.4", "1.2.3.-4", "abc", "1.2.a.", "..a.."}) {
        SCOPED_TRACE(version);
        EXPECT_EQ(compare(version, "1.2.3.4"), 0);
        EXPECT_EQ(takeError(), kBadForm);
        EXPECT_EQ(TestHost::trace(), badFormTrace(version, "1.2.3.4"));
        EXPECT_EQ(TestHost::operatorMessages(), (Lines{"cna MSGID_EMULEX_0020_F 1e"}));
        TestHost::forget();
        EXPECT_EQ(compare("1.2.3.4", version), 0);
        EXPECT_EQ(takeError(), kBadForm);
        EXPECT_EQ(TestHost::operatorMessages(), (Lines{"cna MSGID_EMULEX_0020_F 1e"}));
        EXPECT_EQ(takeTrace(), badFormTrace("1.2.3.4", version));
    }
}

TEST_F(VersionComparison, TellsTheOperatorByTheMessageOfTheFamily) {
    allowedModules = {"cna", "fc", "test-module"};
    for (const char* name : {"cna", "fc", "test-module"}) {
        module = name;
        EXPECT_EQ(compare("1.2.3", "1.2.3.4"), 0);
    }
    EXPECT_EQ(TestHost::operatorMessages(), (Lines{"cna MSGID_EMULEX_0020_F 1e", "fc MSGID_EMULEX_FC_0019_F 1e",
                                                   "test-module MSGID_EMULEX_FC_0019_F 1e"}));
}

TEST_F(VersionComparison, TellsTheOperatorBeforeTheResultIsTraced) {
    const std::string good = "1.2.3.4";
    for (const std::string bad : {"", "1.2.3", "1.2.3.4.5", "1.2a.3.4", "1.2.3.a"}) {
        for (const bool isFirst : {true, false}) {
            SCOPED_TRACE(bad);
            Lines toldBefore;
            int results = 0;
            TestHost::onTrace([&](const std::string& line) {
                if (line == "2 Return=[0]") {
                    toldBefore = TestHost::operatorMessages();
                    ++results;
                }
            });
            EXPECT_EQ(isFirst ? compare(bad, good) : compare(good, bad), 0);
            EXPECT_EQ(results, 1);
            EXPECT_EQ(toldBefore, (Lines{"cna MSGID_EMULEX_0020_F 1e"}));
            TestHost::forget();
        }
    }
}

// ---- Two fields ----

TEST_F(FcFirmwareComparison, TakesTheVersionApart) {
    EXPECT_EQ(compareFirmware("2.72a2", "2.72a3"), 1);
    EXPECT_EQ(takeError(), kDiffer);
    EXPECT_EQ(TestHost::trace(), (comparedTrace("2.72a2", "2.72a3", 1,
                                                {"1 Version1 Seg1 = (2), seg2 =(72), seg3=(a), seg4=(2)",
                                                 "1 Version2 Seg1 = (2), seg2 =(72), seg3=(a), seg4=(3)"})));
}

TEST_F(FcFirmwareComparison, LetsTheFirstSegmentThatDiffersDecide) {
    const struct {
        std::string version1;
        std::string version2;
        int result;
    } rows[] = {
        {"2.72a2", "2.72a2", 0},  {"1.99z9", "2.0a0", 1},   {"2.0a0", "1.99z9", -1}, {"9.1a1", "10.1a1", 1},
        {"2.71z9", "2.72a0", 1},  {"2.72a0", "2.71z9", -1}, {"2.9a1", "2.10a1", 1},  {"2.72a3", "2.72a2", -1},
        {"2.72a9", "2.72a10", 1}, {"2.72a02", "2.72a2", 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(compareFirmware(row.version1, row.version2), row.result) << row.version1 << " " << row.version2;
        EXPECT_EQ(takeError(), row.result == 0 ? 0 : kDiffer);
    }
}

TEST_F(FcFirmwareComparison, GivesTheComparisonOfTheLettersAsItIsAndSetsNoCode) {
    const std::string letters[] = {"a", "b", "A", "ab", "abc", "z", "-", "."};
    for (const std::string& letters1 : letters) {
        for (const std::string& letters2 : letters) {
            if (letters1 == letters2 || letters1 == "." || letters2 == ".") {
                continue;
            }
            SCOPED_TRACE(letters1 + " " + letters2);
            EXPECT_EQ(compareFirmware("2.72" + letters1 + "9", "2.72" + letters2 + "1"), letters2.compare(letters1));
            EXPECT_EQ(takeError(), 0U);
        }
    }
    EXPECT_GT(compareFirmware("2.72a2", "2.72b2"), 0);
    EXPECT_LT(compareFirmware("2.72b2", "2.72a2"), 0);
    EXPECT_EQ(compareFirmware("2.72a9", "2.72abc1"), 2);  // two letters more
}

TEST_F(FcFirmwareComparison, TracesTheComparisonOfTheLettersAsItIs) {
    EXPECT_EQ(compareFirmware("2.72a9", "2.72abc1"), 2);
    EXPECT_EQ(TestHost::trace(), (comparedTrace("2.72a9", "2.72abc1", 2,
                                                {"1 Version1 Seg1 = (2), seg2 =(72), seg3=(a), seg4=(9)",
                                                 "1 Version2 Seg1 = (2), seg2 =(72), seg3=(abc), seg4=(1)"})));
}

TEST_F(FcFirmwareComparison, LeavesAnEarlierCodeAloneForEqualVersionsAndForOtherLetters) {
    CEmulexCommon::SetLastError(17);
    EXPECT_EQ(compareFirmware("2.72a2", "2.72a2"), 0);
    EXPECT_EQ(CEmulexCommon::GetLastError(), 17U);
    EXPECT_GT(compareFirmware("2.72a2", "2.72b2"), 0);
    EXPECT_EQ(CEmulexCommon::GetLastError(), 17U);
    EXPECT_LT(compareFirmware("2.72b2", "2.72a2"), 0);
    EXPECT_EQ(takeError(), 17U);
}

TEST_F(FcFirmwareComparison, TakesAllCharactersBetweenTheNumbersForTheLetters) {
    EXPECT_EQ(compareFirmware("2.72 (a-b)2x9", "2.72 (a-b)2"), 0);
    EXPECT_EQ(TestHost::trace(), (comparedTrace("2.72 (a-b)2x9", "2.72 (a-b)2", 0,
                                                {"1 Version1 Seg1 = (2), seg2 =(72), seg3=( (a-b)), seg4=(2)",
                                                 "1 Version2 Seg1 = (2), seg2 =(72), seg3=( (a-b)), seg4=(2)"})));
}

TEST_F(FcFirmwareComparison, TakesAFirstFieldWithoutANumberForZero) {
    EXPECT_EQ(compareFirmware(".72a2", "x.72a2"), 0);
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(TestHost::trace()[2], "1 Version1 Seg1 = (0), seg2 =(72), seg3=(a), seg4=(2)");
}

TEST_F(FcFirmwareComparison, RefusesAVersionWithTheWrongForm) {
    for (const std::string version : {"", "2", "272a2", "2.", "2.72", "2.72a", "2.72abc", "2.a2", "2.a", "2. 72a2",
                                      "2.72.a2", "2.72a2.", ".2.72a2", "1.2.3.4", "2..72a2"}) {
        SCOPED_TRACE(version);
        EXPECT_EQ(compareFirmware(version, "2.72a2"), 0);
        EXPECT_EQ(takeError(), kBadForm);
        EXPECT_EQ(TestHost::trace(), badFormTrace(version, "2.72a2"));
        EXPECT_EQ(TestHost::operatorMessages(), (Lines{"fc MSGID_EMULEX_FC_0019_F 1e"}));
        TestHost::forget();
    }
}

TEST_F(FcFirmwareComparison, TracesTheFirstVersionIfOnlyTheFormOfTheSecondFieldOfTheOtherIsWrong) {
    EXPECT_EQ(compareFirmware("2.72a2", "2.72"), 0);
    EXPECT_EQ(takeTrace(), (badFormTrace("2.72a2", "2.72", {"1 Version1 Seg1 = (2), seg2 =(72), seg3=(a), seg4=(2)"})));
    EXPECT_EQ(compareFirmware("2.72a2", "2.7.2"), 0);
    EXPECT_EQ(takeTrace(), badFormTrace("2.72a2", "2.7.2"));
    EXPECT_EQ(takeError(), kBadForm);
}

}  // namespace
}  // namespace kvl::test
