#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "tests/provider/command_arguments.h"
#include "tests/provider/kvl_program.h"

namespace {

using kvl::provider::Arguments;
using kvl::test::kAccepted;
using kvl::test::refusal;
using kvl::test::runKvl;
using kvl::test::Word;
using testing::AllOf;
using testing::HasSubstr;

constexpr const char* kDeviceForm = "a device is bus:device.function in hexadecimal, such as 0b:00.1";
constexpr const char* kVersionForm = "a version begins with a letter or a digit";
constexpr const char* kDriverForm = "a driver is the name of a kernel module";

class Device : public testing::TestWithParam<Word> {};

TEST_P(Device, IsCheckedByEveryCommandThatTakesOne) {
    const Word& word = GetParam();
    EXPECT_THAT(refusal({"slot", word.text}), HasSubstr(word.answer));
    EXPECT_THAT(refusal({"adapter-info", word.text}), HasSubstr(word.answer));
    EXPECT_THAT(refusal({"version", word.text, "--kind", "driver"}), HasSubstr(word.answer));
}

INSTANTIATE_TEST_SUITE_P(
    Words, Device,
    testing::Values(Word{"0b:00.1", kAccepted}, Word{"B:0.1", kAccepted}, Word{"0b:00.1-", kAccepted},
                    Word{"0b:00.1-10df/f100_A.b-c", kAccepted}, Word{"15:1f.0f", kAccepted},
                    Word{"0b:00.1-" + std::string(64, 'x'), kAccepted},
                    Word{"0b:00.1-" + std::string(65, 'x'), "and '-', at most 64; '0b:00.1-xxx"}, Word{"", kDeviceForm},
                    Word{"0b", kDeviceForm}, Word{"0b:00", kDeviceForm}, Word{"0b:00.", kDeviceForm},
                    Word{":00.1", kDeviceForm}, Word{"0b:.1", kDeviceForm}, Word{"0g:00.1", kDeviceForm},
                    Word{"00b:00.1", kDeviceForm}, Word{"0000:0b:00.1", kDeviceForm}, Word{"0b.00.1", kDeviceForm},
                    Word{"0b:00.1x", kDeviceForm}, Word{"+b:00.1", kDeviceForm}, Word{"0x:00.1", kDeviceForm},
                    Word{" 0b:00.1", kDeviceForm}, Word{"0b:00.1 ", kDeviceForm}, Word{"0b:00.1\n", kDeviceForm},
                    Word{"0b:00.1-\n", kDeviceForm}, Word{"0b:00.1-a b", kDeviceForm}, Word{"0b:00.1-'", kDeviceForm},
                    Word{"0b:00.1-\"", kDeviceForm}, Word{"0b:00.1;id", kDeviceForm}, Word{"0b:00.1-;id", kDeviceForm},
                    Word{"0b:00.1-$(id)", kDeviceForm}, Word{"0b:00.1-`id`", kDeviceForm},
                    Word{"0b:00.1-|id", kDeviceForm}, Word{"0b:00.1-&", kDeviceForm}, Word{"0b:00.1->x", kDeviceForm},
                    Word{"0b:00.1-<x", kDeviceForm}, Word{"0b:00.1-*", kDeviceForm}, Word{"0b:00.1-?", kDeviceForm},
                    Word{"0b:00.1-~", kDeviceForm}, Word{"0b:00.1-\\", kDeviceForm}, Word{"0b:00.1-%s", kDeviceForm},
                    Word{"0b:00.1-\xc3\xa9", kDeviceForm}));

class Version : public testing::TestWithParam<Word> {};

TEST_P(Version, IsCheckedByEveryCommandThatTakesOne) {
    const Word& word = GetParam();
    const Arguments ofDriver = {"--kind", "driver", "--family", "cna"};
    Arguments first = {"compare", word.text, "1.2.3.4"};
    Arguments second = {"compare", "1.2.3.4", word.text};
    first.insert(first.end(), ofDriver.begin(), ofDriver.end());
    second.insert(second.end(), ofDriver.begin(), ofDriver.end());
    EXPECT_THAT(refusal(first), HasSubstr(word.answer));
    EXPECT_THAT(refusal(second), HasSubstr(word.answer));
    EXPECT_THAT(refusal({"driver-check", "lpfc", word.text}), HasSubstr(word.answer));
}

INSTANTIATE_TEST_SUITE_P(
    Words, Version,
    testing::Values(Word{"4.6.281.21", kAccepted}, Word{"2.72a2", kAccepted}, Word{"8.3.5.68-5p", kAccepted},
                    Word{"1.0_rc+2~3", kAccepted}, Word{std::string(64, '1'), kAccepted},
                    Word{std::string(65, '1'), kVersionForm}, Word{"", kVersionForm}, Word{".1", kVersionForm},
                    Word{"1 2", kVersionForm}, Word{"1'", kVersionForm}, Word{"1\"", kVersionForm},
                    Word{"1;id", kVersionForm}, Word{"$HOME", kVersionForm}, Word{"1`id`", kVersionForm},
                    Word{"1|id", kVersionForm}, Word{"1(2)", kVersionForm}, Word{"1\t", kVersionForm}));

class Driver : public testing::TestWithParam<Word> {};

TEST_P(Driver, IsTheNameOfAModule) {
    EXPECT_THAT(refusal({"driver-check", GetParam().text, "1.2.3.4"}), HasSubstr(GetParam().answer));
}

INSTANTIATE_TEST_SUITE_P(Words, Driver,
                         testing::Values(Word{"lpfc", kAccepted}, Word{"be2-net_2", kAccepted},
                                         Word{std::string(64, 'x'), kAccepted}, Word{std::string(65, 'x'), kDriverForm},
                                         Word{"", kDriverForm}, Word{"lpfc be2net", kDriverForm},
                                         Word{"lpfc;id", kDriverForm}, Word{"'lpfc'", kDriverForm},
                                         Word{"$(id)", kDriverForm}, Word{"../lpfc", kDriverForm},
                                         Word{"lpfc.ko", kDriverForm}, Word{"lpfc\n", kDriverForm}));

struct Row {
    Arguments arguments;
    const char* answer;
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << kvl::test::quoted(row.arguments);
}

class AdapterCommandLine : public testing::TestWithParam<Row> {};

TEST_P(AdapterCommandLine, IsCheckedWhenItIsRead) {
    EXPECT_THAT(refusal(GetParam().arguments), HasSubstr(GetParam().answer));
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, AdapterCommandLine,
    testing::Values(
        Row{{"adapters"}, kAccepted},
        Row{{"adapters", "--family", "fc", "--versions", "--refresh", "--format", "json", "--wait", "0", "-v"},
            kAccepted},
        Row{{"adapters", "--refresh"}, kAccepted},
        Row{{"adapters", "--family", "FC"}, "--family: 'FC' is none of cna|fc ('kvl adapters --help'"},
        Row{{"adapters", "--family", "fc;id"}, "--family: 'fc;id' is none of cna|fc"},
        Row{{"adapters", "--family", ""}, "--family: '' is none of cna|fc"},
        Row{{"adapters", "--format", "xml"}, "--format: 'xml' is none of text|json"},
        Row{{"adapters", "02:00.0"}, "not expected: 02:00.0"}, Row{{"adapters", "-v", "--quiet"}, "excludes"},
        Row{{"adapters", "--wait", "-1"}, "--wait: Value -1 not in range"},
        Row{{"adapter-info"}, "DEVICE is required: a device is bus:device.function"},
        Row{{"slot", "-x"}, "DEVICE is required: a device is bus:device.function"},
        Row{{"slot", "--help", "-x"}, kAccepted}, Row{{"slot", "--help"}, kAccepted},
        Row{{"adapter-info", "0b:00.1", "0b:00.2"}, "not expected: 0b:00.2"},
        Row{{"version", "0b:00.1"}, "--kind is required"}, Row{{"version", "--kind", "driver"}, "DEVICE is required"},
        Row{{"version", "0b:00.1", "--kind", "bios"}, "--kind: 'bios' is none of firmware|driver|boot|tool"},
        Row{{"version", "0b:00.1", "--kind", ""}, "--kind: '' is none of"},
        Row{{"version", "0b:00.1", "--kind", "driver;id"}, "--kind: 'driver;id' is none of"},
        Row{{"version", "0b:00.1", "--kind", "0"}, "--kind: '0' is none of"},
        Row{{"version", "0b:00.1", "--kind", "tool", "--family", "cna", "--refresh"}, kAccepted},
        Row{{"version", "0b:00.1", "--kind", "boot"}, kAccepted},
        Row{{"compare", "1.2.3.4", "--kind", "driver", "--family", "cna"}, "NEW is required"},
        Row{{"compare", "1.2.3.4", "1.2.3.4", "--family", "cna"}, "--kind is required"},
        Row{{"compare", "1.2.3.4", "1.2.3.4", "--kind", "driver"}, "--family is required"},
        Row{{"compare", "1.2.3.4", "1.2.3.4", "--kind", "driver", "--family", "cna"}, kAccepted},
        Row{{"compare", "1.2.3.4", "1.2.3.4", "--kind", "boot", "--family", "cna"},
            "--kind: 'boot' is none of firmware|driver|tool"},
        Row{{"compare", "-1.2.3.4", "1.2.3.4", "--kind", "driver", "--family", "cna"}, kVersionForm},
        Row{{"driver-check", "lpfc"}, "VERSION is required: a version begins with"},
        Row{{"driver-check"}, "DRIVER is required: a driver is the name"},
        Row{{"supported", "--family", "iscsi"}, "--family: 'iscsi' is none of cna|fc"},
        Row{{"supported", "--format", "json"}, kAccepted}, Row{{"boot-image"}, kAccepted},
        Row{{"boot-image", "x"}, "not expected: x"}, Row{{"components"}, kAccepted},
        Row{{"components", "--family", "cna"}, "not expected"},
        Row{{"replay", "adapters-mixed", "--", "slot", "x"}, kDeviceForm}));

TEST(WrongUsage, OfAnAdapterCommandEndsWithTwo) {
    const auto outcome = runKvl({"version", "0b:00.1;touch x", "--kind", "driver"});
    EXPECT_EQ(2, outcome.status);
    EXPECT_EQ("", outcome.output);
    EXPECT_EQ("kvl: " + std::string(kDeviceForm) +
                  ", and may go on with '-' and letters, digits, '.', '_', '/' and '-', at most 64; '0b:00.1;touch x' "
                  "isn't ('kvl version --help' tells the usage)\n",
              outcome.errors);
}

struct HelpCase {
    const char* command;
    const char* exitCodes;
};

TEST(AdapterHelp, TellsExitCodesAndExamplesOfEachCommand) {
    for (const HelpCase& row :
         {HelpCase{"adapters",
                   "Exit codes:\n"
                   "  0   the adapters are listed\n"
                   "  1   the same, but something could not be had (named on standard error)\n"
                   "  2   wrong usage\n"
                   "  3   there is no list; the reason stands on standard error\n"},
          HelpCase{"adapter-info",
                   "Exit codes:\n"
                   "  0   the port is described\n"
                   "  1   the same, but something could not be had (named on standard error)\n"
                   "  2   wrong usage\n"
                   "  3   there is no description; the reason stands on standard error\n"},
          HelpCase{"version",
                   "Exit codes:\n"
                   "  0   the version is told\n"
                   "  2   wrong usage\n"
                   "  3   there is none; the reason stands on standard error\n"},
          HelpCase{"compare",
                   "Exit codes:\n"
                   "  0   NEW is equal to OLD\n"
                   "  2   wrong usage\n"
                   "  3   the answer could not be written\n"
                   "  10  NEW is older\n"
                   "  11  NEW is newer\n"
                   "  12  one of them is not a version of this kind (named on standard error)\n"},
          HelpCase{"supported",
                   "Exit codes:\n"
                   "  0   the catalogue is listed\n"
                   "  1   the same, but one family's is missing or can't be right (named on standard error)\n"
                   "  2   wrong usage\n"
                   "  3   there is none that could be listed; the reason stands on standard error\n"},
          HelpCase{"slot",
                   "Exit codes:\n"
                   "  0   the slot is told\n"
                   "  2   wrong usage\n"
                   "  3   the answer could not be written\n"},
          HelpCase{"driver-check",
                   "Exit codes:\n"
                   "  0   the installed driver has this version\n"
                   "  2   wrong usage\n"
                   "  3   the check could not begin; the reason stands on standard error\n"
                   "  13  it has another version, or nothing could be found out\n"
                   "  14  it has another version, and the default boot entry has another RAM disk than that of\n"
                   "      the running kernel, or names it with a directory in front\n"},
          HelpCase{"boot-image",
                   "Exit codes:\n"
                   "  0   the default boot entry has the running kernel's RAM disk\n"
                   "  2   wrong usage\n"
                   "  3   that could not be told; the reason stands on standard error\n"
                   "  15  it has another, or names it with a directory in front\n"},
          HelpCase{"components",
                   "Exit codes:\n"
                   "  0   nothing is missing\n"
                   "  2   wrong usage\n"
                   "  3   the answer could not be written\n"
                   "  16  something is, or can't be run (named on standard error)\n"}}) {
        const auto outcome = runKvl({row.command, "--help"});
        EXPECT_EQ(0, outcome.status);
        EXPECT_THAT(outcome.output, HasSubstr(row.exitCodes));
        EXPECT_THAT(outcome.output, HasSubstr("Examples:\n  kvl " + std::string(row.command)));
    }
}

TEST(AdapterHelp, OffersToCompareOnlyKindsThatCanBe) {
    EXPECT_THAT(runKvl({"compare", "--help"}).output, HasSubstr("--kind firmware|driver|tool "));
    EXPECT_THAT(runKvl({"version", "--help"}).output, HasSubstr("--kind firmware|driver|boot|tool "));
}

TEST(AdapterHelp, MarksTheWordsThatMustBeGiven) {
    EXPECT_THAT(runKvl({"slot", "--help"}).output, AllOf(HasSubstr("slot [OPTIONS] DEVICE\n"), HasSubstr("REQUIRED")));
}

}  // namespace
