#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "provider/commands/performed_update.h"
#include "provider/library/adapter_kinds.h"
#include "tests/provider/adapter_server.h"
#include "tests/provider/command_arguments.h"

namespace {

using kvl::provider::Arguments;
using kvl::provider::isPlainPath;
using kvl::test::kAccepted;
using kvl::test::refusal;
using kvl::test::runKvl;
using kvl::test::runOnServer;
using kvl::test::Word;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kPathForm =
    ": a directory's whole path holds letters, digits and '/._+-' alone, since the commands of an update go through a "
    "shell; ";
constexpr const char* kDeviceForm = "a device is bus:device.function in hexadecimal";

class DirectoryWord : public testing::TestWithParam<Word> {};

TEST_P(DirectoryWord, IsCheckedWhereverOneIsTaken) {
    const auto& [text, answer] = GetParam();
    EXPECT_THAT(refusal({"update", "tool", "--module=" + text}), HasSubstr(answer));
    EXPECT_THAT(refusal({"update", "firmware", "0b:00.0", "--unique-name", "OCe11102", "--module=" + text}),
                HasSubstr(answer));
    EXPECT_THAT(
        refusal({"update", "firmware", "0b:00.0", "--unique-name", "OCe11102", "--module", "/m", "--scratch=" + text}),
        HasSubstr(answer));
}

INSTANTIATE_TEST_SUITE_P(Words, DirectoryWord,
                         testing::Values(Word{"/var/tmp/Module-1.2_3+4", kAccepted}, Word{"/", kAccepted},
                                         Word{"/a/../b/", kAccepted}, Word{"/a b", kPathForm}, Word{"/a'b", kPathForm},
                                         Word{"/a\"b", kPathForm}, Word{"/a;id", kPathForm}, Word{"/a$(id)", kPathForm},
                                         Word{"/a`id`", kPathForm}, Word{"/a|id", kPathForm}, Word{"/a&id", kPathForm},
                                         Word{"/a>b", kPathForm}, Word{"/a<b", kPathForm}, Word{"/a*", kPathForm},
                                         Word{"/a?", kPathForm}, Word{"/a[b]", kPathForm}, Word{"/a{b,c}", kPathForm},
                                         Word{"/a(b)", kPathForm}, Word{"/a!b", kPathForm}, Word{"/a#b", kPathForm},
                                         Word{"/~", kPathForm}, Word{"/a\\b", kPathForm}, Word{"/a%s", kPathForm},
                                         Word{"/a=b", kPathForm}, Word{"/a:b", kPathForm}, Word{"/a\tb", kPathForm},
                                         Word{"/a\nb", kPathForm}, Word{"/\xc3\xa9", kPathForm}));

class UniqueName : public testing::TestWithParam<Word> {};

TEST_P(UniqueName, IsOneOfTheFamilies) {
    const auto& [text, answer] = GetParam();
    EXPECT_THAT(refusal({"update", "firmware", "0b:00.0", "--module", "/m", "--unique-name", text}), HasSubstr(answer));
}

constexpr const char* kNoFamily = "' is none of OCe11102, OCl14104, fcelx_16g, fcelx_8g1p, fcelx_8g2p...";

INSTANTIATE_TEST_SUITE_P(
    Words, UniqueName,
    testing::Values(Word{"OCe11102", kAccepted}, Word{"OCl14104", kAccepted}, Word{"fcelx_16g", kAccepted},
                    Word{"fcelx_8g1p", kAccepted}, Word{"fcelx_8g2p", kAccepted}, Word{"fcelx_8g2p_any", kAccepted},
                    Word{"oce11102", kNoFamily}, Word{"OCe11102x", kNoFamily}, Word{"fcelx_8g1p_any", kNoFamily},
                    Word{"fcelx_8g2", kNoFamily}, Word{"fcelx_8g2p;id", kNoFamily}, Word{"fcelx_8g2p $(id)", kNoFamily},
                    Word{"fcelx_8g2p'", kNoFamily}, Word{"fcelx_8g2p\n", kNoFamily}, Word{"", kNoFamily}));

struct Row {
    Arguments arguments;
    const char* answer;
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << kvl::test::quoted(row.arguments);
}

class UpdateCommandLine : public testing::TestWithParam<Row> {};

TEST_P(UpdateCommandLine, IsCheckedWhenItIsRead) {
    EXPECT_THAT(refusal(GetParam().arguments), HasSubstr(GetParam().answer));
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, UpdateCommandLine,
    testing::Values(
        Row{{"update"}, "('kvl update --help' tells the usage)"},
        Row{{"update", "driver"}, "('kvl update --help' tells the usage)"},
        Row{{"update", "firmware"}, "is required: a device is bus:device.function"},
        Row{{"update", "firmware", "--module", "/m", "--unique-name", "OCe11102"}, "DEVICE is required"},
        Row{{"update", "firmware", "0b:00.0", "--unique-name", "OCe11102"}, "--module is required"},
        Row{{"update", "firmware", "0b:00.0", "--module", "/m"}, "--unique-name is required"},
        Row{{"update", "firmware", "0b:00.0", "--module", "", "--unique-name", "OCe11102"}, kPathForm},
        Row{{"update", "firmware", "0b:00.0;id", "--module", "/m", "--unique-name", "OCe11102"}, kDeviceForm},
        Row{{"update", "firmware", "0b:00.0-$(id)", "--module", "/m", "--unique-name", "OCe11102"}, kDeviceForm},
        Row{{"update", "firmware", "", "--module", "/m", "--unique-name", "OCe11102"}, kDeviceForm},
        Row{{"update", "firmware", "zz:00.0", "--module", "/m", "--unique-name", "OCe11102"}, kDeviceForm},
        Row{{"update", "firmware", "0b:00.0", "--module", "/m", "--unique-name", "OCe11102", "--family", "FC"},
            "--family: 'FC' is none of cna|fc"},
        Row{{"update", "firmware", "0b:00.0", "--module", "/m", "--unique-name", "OCe11102", "--family", "fc",
             "--scratch", "/s", "--dry-run", "--yes", "--wait", "5", "-v"},
            kAccepted},
        Row{{"update", "firmware", "0b:00.0", "--module", "/m", "--unique-name", "OCe11102", "--again"},
            "not expected: --again"},
        Row{{"update", "tool"}, "--module is required"},
        Row{{"update", "tool", "0b:00.0", "--module", "/m"}, "0b:00.0"},
        Row{{"update", "tool", "--module", "/m", "-v", "--quiet"}, "excludes"},
        Row{{"update", "tool", "--module", "/m", "--scratch", "/s"}, "not expected"},
        Row{{"update", "tool", "--module", "/m", "--wait", "-1"}, "--wait: Value -1 not in range"},
        Row{{"update", "tool", "--module", "/m", "--again", "--dry-run", "--yes", "--quiet", "--family", "fc"},
            kAccepted},
        Row{{"replay", "adapters-mixed", "--", "update", "tool", "--module", "/a b"}, kPathForm}));

TEST(PlainPath, IsTakenByAShellAsItIs) {
    EXPECT_TRUE(isPlainPath("/az/AZ/09._+-"));
    for (const char* path : {"a b", "a'", "a\"", "a;", "a&", "a|", "a$", "a`", "a(", "a*", "a?", "a[", "a<", "a\\",
                             "a~", "a#", "a!", "a\n", "a\xff"}) {
        EXPECT_FALSE(isPlainPath(path)) << path;
    }
}

TEST(WrongUsage, OfAnUpdateEndsWithTwoBeforeAnyShellSeesAWord) {
    const auto outcome = runOnServer(
        "run kvl update firmware 02:00.0 --module '/modules/a;touch /tmp/done' --unique-name OCe11102 --yes\n"
        "run kvl update firmware 02:00.0 --module /modules/OCe11102 --unique-name OCe11102 --scratch '$(touch "
        "/tmp/done)' --yes 2>/dev/null\n"
        "run kvl update firmware '02:00.0;touch /tmp/done' --module /modules/OCe11102 --unique-name OCe11102 --yes "
        "2>/dev/null\n"
        "run kvl update firmware 02:00.0 --module /modules/OCe11102 --unique-name 'fcelx_8g2p;touch /tmp/done' --yes "
        "2>/dev/null\n"
        "run kvl update tool --module '/modules/`touch /tmp/done`' --yes 2>/dev/null\n"
        "cat /.machine/log; ls /tmp/done $tree");
    EXPECT_EQ("ended with 2\nended with 2\nended with 2\nended with 2\nended with 2\n", outcome.output);
    EXPECT_EQ(
        "kvl: --module: a directory's whole path holds letters, digits and '/._+-' alone, since the commands of an "
        "update go through a shell; '/modules/a;touch /tmp/done' doesn't ('kvl update firmware --help' tells the "
        "usage)\n"
        "cat: can't open '/.machine/log': No such file or directory\n"
        "ls: /tmp/done: No such file or directory\n"
        "ls: /opt/tarvenn/kvl/tmp/EMULEX: No such file or directory\n",
        outcome.errors);
}

TEST(WrongUsage, IsARelativePathBelowADirectoryThatAShellTakesApart) {
    const auto outcome = runOnServer("mkdir '/tmp/a b'; cd '/tmp/a b'; run kvl update tool --module m --yes");
    EXPECT_EQ("ended with 2\n", outcome.output);
    EXPECT_THAT(outcome.errors, HasSubstr("'/tmp/a b/m' doesn't"));
}

TEST(WrongUsage, IsAnUpdateThatNobodyCanBeAskedAbout) {
    const auto outcome = runOnServer(
        "run kvl update firmware 02:00.0 --module /modules/OCe11102 --unique-name OCe11102 </dev/null\n"
        "run kvl update tool --module /modules/tool </dev/null; ls $tree 2>/dev/null");
    EXPECT_EQ("ended with 2\nended with 2\n", outcome.output);
    const std::string once =
        "kvl: there is no terminal to ask on: look at the plan with --dry-run, and give --yes to do it\n";
    EXPECT_EQ(once + once, outcome.errors);
}

TEST(WrongUsage, IsToAskForADocumentAndForAQuestion) {
    const auto outcome = runOnServer(
        "run kvl update firmware 02:00.0 --module /modules/OCe11102 --unique-name OCe11102 --format json\n"
        "run kvl update tool --module /modules/tool --format json; ls $tree 2>/dev/null");
    EXPECT_EQ("ended with 2\nended with 2\n", outcome.output);
    const std::string once =
        "kvl: nothing is asked with --format json: give --dry-run to see the plan, or --yes to do it\n";
    EXPECT_EQ(once + once, outcome.errors);
}

TEST(UpdateHelp, TellsExitCodesAndExamplesOfEachCommand) {
    for (const Arguments& command : std::vector<Arguments>{{"update"}, {"update", "firmware"}, {"update", "tool"}}) {
        Arguments arguments = command;
        arguments.emplace_back("--help");
        const auto outcome = runKvl(arguments);
        EXPECT_EQ(0, outcome.status);
        EXPECT_THAT(outcome.output, HasSubstr(kvl::provider::kUpdateExitHelp));
        EXPECT_THAT(outcome.output, HasSubstr("Examples:\n  kvl update "));
    }
    EXPECT_THAT(runKvl({"update", "--help"}).output, StartsWith("Update an adapter's firmware, or the management"));
}

}  // namespace
