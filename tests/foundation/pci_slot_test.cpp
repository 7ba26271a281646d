#include "foundation/CCommon_Information.h"
#include "tests/support/private_machine_test.h"

namespace kvl::test {
namespace {

class GetPCIInfo : public PrivateMachineTest {
protected:
    /// @return the three numbers and the result, as in "11 0 1 true"
    static std::string numbersOf(const std::string& deviceId) {
        int bus = 77;
        int device = 77;
        int function = 77;
        const bool found = CCommon_Information::GetPCIInfo(deviceId, &bus, &device, &function, kModule);
        return std::to_string(bus) + " " + std::to_string(device) + " " + std::to_string(function) +
               (found ? " true" : " false");
    }
};

class GetPCISlotNo : public PrivateMachineTest {
protected:
    static int numberOf(const std::string& deviceId) { return CCommon_Information::GetPCISlotNo(deviceId, kModule); }
};

const std::string kFailed = "-1 -1 -1 false";

TEST_F(GetPCIInfo, ReadsThreeHexadecimalNumbers) {
    EXPECT_EQ(numbersOf("0b:00.1-foo"), "11 0 1 true");
    EXPECT_EQ(numbersOf("FF:1f.7-"), "255 31 7 true");
    EXPECT_EQ(numbersOf("0000:03.0-10df"), "0 3 0 true");
}

TEST_F(GetPCIInfo, NeedsNothingBehindTheFunction) {
    EXPECT_EQ(numbersOf("0b:00.1"), "11 0 1 true");
}

TEST_F(GetPCIInfo, CutsTheFunctionAtTheFirstDash) {
    EXPECT_EQ(numbersOf("1:2.3-4-5:6.7"), "1 2 3 true");
}

TEST_F(GetPCIInfo, FailsForAMissingPart) {
    for (const char* deviceId : {"", "0b", "0b:", ":00.1", "0b:.1", "0b:00", "0b:00.", "0b:00.-foo", "00.1-foo", "-"}) {
        EXPECT_EQ(numbersOf(deviceId), kFailed) << deviceId;
    }
}

TEST_F(GetPCIInfo, TakesAPartWithoutADigitForZero) {
    EXPECT_EQ(numbersOf("xy:zz.q-foo"), "0 0 0 true");
    EXPECT_EQ(numbersOf("0bx:1y.2z"), "11 1 2 true");
}

TEST_F(GetPCIInfo, TakesNumbersThatDoNotFitAnIntAsTheirLowBits) {
    EXPECT_EQ(numbersOf("ffffffff:100000002.3"), "-1 2 3 true");
}

TEST_F(GetPCIInfo, TracesWhatIsLeftOfTheDeviceId) {
    numbersOf("0b:00.1-foo-bar");
    EXPECT_EQ(TestHost::trace(),
              (Lines{"4 CCommon_Information::GetPCIInfo [START]",
                     "1 CCommon_Information::GetPCIInfo DeviceID=foo-bar, PCINo=11, DevNo=0, FuncNo=1",
                     "4 CCommon_Information::GetPCIInfo [END]"}));
}

TEST_F(GetPCIInfo, TracesAnEmptyTextWhereNothingIsLeft) {
    numbersOf("0b:02.1");
    EXPECT_EQ(TestHost::trace(), (Lines{"4 CCommon_Information::GetPCIInfo [START]",
                                        "1 CCommon_Information::GetPCIInfo DeviceID=, PCINo=11, DevNo=2, FuncNo=1",
                                        "4 CCommon_Information::GetPCIInfo [END]"}));
}

TEST_F(GetPCIInfo, TracesTheBoundariesAloneOnFailure) {
    const Lines boundaries = {"4 CCommon_Information::GetPCIInfo [START]", "4 CCommon_Information::GetPCIInfo [END]"};
    for (const char* deviceId : {"", ":", "0b:", "0b:00."}) {
        TestHost::forget();
        numbersOf(deviceId);
        EXPECT_EQ(TestHost::trace(), boundaries) << deviceId;
    }
}

TEST_F(GetPCISlotNo, ReadsTheHexadecimalNumberInFront) {
    EXPECT_EQ(numberOf("0b:00.1"), 11);
    EXPECT_EQ(numberOf("0:x"), 0);
    EXPECT_EQ(numberOf("1F:00.1-foo:bar"), 31);
    EXPECT_EQ(numberOf("7fffffff:0"), 2147483647);
    EXPECT_EQ(numberOf("10000000b:1"), 11);  // the low 32 bits
}

TEST_F(GetPCISlotNo, NeedsSomethingBehindTheColon) {
    for (const char* deviceId : {"", "0b", "0b:", ":", ":00.1"}) {
        EXPECT_EQ(numberOf(deviceId), -1) << deviceId;
    }
}

TEST_F(GetPCISlotNo, NeedsADigit) {
    for (const char* deviceId : {"xy:1", " :1", "-:1", "g0b:1"}) {
        EXPECT_EQ(numberOf(deviceId), -1) << deviceId;
    }
}

TEST_F(GetPCISlotNo, IgnoresWhatStandsBehindTheDigits) {
    EXPECT_EQ(numberOf("0bxy:1"), 11);
}

TEST_F(GetPCISlotNo, RefusesANumberThatIsNegativeAsAnInt) {
    for (const char* deviceId : {"80000000:1", "ffffffff:1", "-5:1", "ffffffffffffffffff:1"}) {
        EXPECT_EQ(numberOf(deviceId), -1) << deviceId;
    }
}

TEST_F(GetPCISlotNo, TracesTheBoundaries) {
    const Lines boundaries = {"4 CCommon_Information::GetPCISlotNo [START]",
                              "4 CCommon_Information::GetPCISlotNo [END]"};
    for (const char* deviceId : {"0b:00.1", "0b:", ""}) {
        TestHost::forget();
        numberOf(deviceId);
        EXPECT_EQ(TestHost::trace(), boundaries) << deviceId;
    }
}

}  // namespace
}  // namespace kvl::test
