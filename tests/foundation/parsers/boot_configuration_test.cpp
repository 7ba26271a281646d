#include "foundation/boot_configuration.h"

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

class BootConfigurationTable : public ParserTable {};

/// A line for each event, then the default title and the RAM disk, as far as they are found.
std::string walked(std::istream& text) {
    std::string shown;
    BootConfigurationEvents events;
    events.defaultNumber = [&shown](int number) { shown += "default " + std::to_string(number) + "\n"; };
    events.noDefaultNumber = [&shown] { shown += "no number\n"; };
    events.found = [&shown](const char* word, const std::string& line) {
        shown += std::string(word) + " in [" + line + "]\n";
    };
    BootConfiguration configuration(text, events);
    std::string title;
    if (!configuration.findDefaultTitle(title)) {
        return shown + "no title";
    }
    shown += "title [" + title + "]\n";
    std::string ramDisk;
    return shown + (configuration.findRamDisk(ramDisk) ? "RAM disk [" + ramDisk + "]" : "no RAM disk");
}

TEST_P(BootConfigurationTable, IsWalked) {
    std::istringstream text(GetParam().input);
    EXPECT_EQ(walked(text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, BootConfigurationTable,
    testing::Values(
        ParserCase{"ToTheRamDiskOfTheDefaultEntry",
                   "# comment\ndefault=1\ntimeout=5\ntitle old\n\tinitrd /old.img\ntitle new\n\tkernel /k ro\n"
                   "\tinitrd /new.img\n",
                   "default 1\ntitle in [title old]\ntitle in [title new]\ntitle [title new]\n"
                   "initrd in [\tinitrd /new.img]\nRAM disk [new.img]"},
        ParserCase{"ToTheFirstEntryForTheNumberZero", "default=0\ntitle one\ninitrd /one.img",
                   "default 0\ntitle in [title one]\ntitle [title one]\ninitrd in [initrd /one.img]\n"
                   "RAM disk [one.img]"},
        ParserCase{"WithoutATitleAboveTheDefaultLine", "title above\ndefault=0\ntitle below\n",
                   "default 0\ntitle in [title below]\ntitle [title below]\nno RAM disk"},
        ParserCase{"WithoutATitleInAComment", "default=0\n#title one\ntitle two\n",
                   "default 0\ntitle in [title two]\ntitle [title two]\nno RAM disk"},
        ParserCase{"WithoutADefaultLineInAComment", "#default=0\ntitle one\n", "no title"},
        ParserCase{"OverAWordAfterALetterOrADigit",
                   "default=0\nsubtitle\n1 title\n- title\nxinitrd /a\n9initrd /b\n initrd /c\n",
                   "default 0\ntitle in [subtitle]\ntitle in [1 title]\ntitle in [- title]\ntitle [- title]\n"
                   "initrd in [xinitrd /a]\ninitrd in [9initrd /b]\ninitrd in [ initrd /c]\nRAM disk [c]"},
        ParserCase{"OverEmptyLines", "\n\ndefault=0\n\ntitle one\n\ninitrd /a\n",
                   "default 0\ntitle in [title one]\ntitle [title one]\ninitrd in [initrd /a]\nRAM disk [a]"},
        ParserCase{"ToACommentedRamDisk", "default=0\ntitle one\n#initrd /a\ninitrd /b\n",
                   "default 0\ntitle in [title one]\ntitle [title one]\ninitrd in [#initrd /a]\nRAM disk [a]"},
        ParserCase{"ToTheRamDiskOfALaterEntry", "default=0\ntitle one\ntitle two\ninitrd /b\n",
                   "default 0\ntitle in [title one]\ntitle [title one]\ninitrd in [initrd /b]\nRAM disk [b]"},
        ParserCase{"ToANameThatEndsAtABlank", "default=0\ntitle one\ninitrd /a.img quiet\n",
                   "default 0\ntitle in [title one]\ntitle [title one]\ninitrd in [initrd /a.img quiet]\n"
                   "RAM disk [a.img]"},
        ParserCase{"ToAnEmptyNameWhereNoneFollows", "default=0\ntitle one\ninitrd /\n",
                   "default 0\ntitle in [title one]\ntitle [title one]\ninitrd in [initrd /]\nRAM disk []"},
        ParserCase{"ByTheNumberAfterTheFirstEqualsSign", "x=1 default=0\ntitle one\ntitle two\n",
                   "default 1\ntitle in [title one]\ntitle in [title two]\ntitle [title two]\nno RAM disk"},
        ParserCase{"ByTheFirstDefaultLine", "default=0\ndefault=1\ntitle one\n",
                   "default 0\ntitle in [title one]\ntitle [title one]\nno RAM disk"},
        ParserCase{"NoFurtherThanADefaultWithoutANumber", "default=saved\ntitle one\n",
                   "default 0\nno number\nno title"},
        ParserCase{"OnAfterADefaultOfMinusOne", "default=-1\ndefault=0\ntitle one\n",
                   "default -1\ndefault 0\ntitle in [title one]\ntitle [title one]\nno RAM disk"},
        ParserCase{"ToTheEndForAnotherNegativeNumber", "default=-2\ndefault=0\ntitle one\n",
                   "default -2\ntitle in [title one]\nno title"},
        ParserCase{"ToTheEndForANumberThatNoTitleHas", "default=2\ntitle one\ntitle two\n",
                   "default 2\ntitle in [title one]\ntitle in [title two]\nno title"},
        ParserCase{"InLinesOfAnyLength",
                   "default=0\ntitle " + std::string(600, 'x') + "\ninitrd /" + std::string(600, 'y') + "\n",
                   "default 0\ntitle in [title " + std::string(600, 'x') + "]\ntitle [title " + std::string(600, 'x') +
                       "]\ninitrd in [initrd /" + std::string(600, 'y') + "]\nRAM disk [" + std::string(600, 'y') +
                       "]"},
        ParserCase{"InAnEmptyFile", "", "no title"}),
    ruleOf);

TEST(BootConfigurationFile, HasNoTitleWhereNothingCanBeRead) {
    for (const char* path : {kAbsentFile, kDirectory}) {
        std::ifstream file(path);
        EXPECT_EQ(walked(file), "no title");
    }
}

}  // namespace
}  // namespace kvl::test
