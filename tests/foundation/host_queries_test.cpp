#include "foundation/CCommon_Information.h"
#include "tests/support/private_machine_test.h"

namespace kvl::test {
namespace {

const std::string kConfiguration = "/boot/grub/grub.conf";
const std::string kEfiConfiguration = "/boot/efi/EFI/redhat/grub.conf";
const std::string kInitramfs = "initramfs-2.6.32-358.el6.x86_64.img";
const std::string kInitrd = "initrd-2.6.32-358.el6.x86_64.img";

class HostQueries : public PrivateMachineTest {
protected:
    void SetUp() override {
        PrivateMachineTest::SetUp();
        machine.command("/bin/uname -r", std::string(kKernelRelease) + "\n");
    }
};

using CheckBootEnvironment = HostQueries;
using GetKernelVersion = HostQueries;
using GetRPMInfo = HostQueries;
using GetArchitectureInfo = HostQueries;

class CheckRAMDISK : public HostQueries {
protected:
    /// The answer for a configuration file of this content.
    int judge(const std::string& configuration) {
        forget();
        machine.file(kConfiguration, configuration);
        return CCommon_Information::CheckRAMDISK(kModule);
    }

    /// What the operation traces between its boundaries.
    static Lines detailsTraced() {
        Lines lines = TestHost::trace();
        if (lines.size() < 2 || lines.front() != "4 CCommon_Information::CheckRAMDISK [START]" ||
            lines.back() != "4 CCommon_Information::CheckRAMDISK [END]") {
            ADD_FAILURE() << "not within its boundaries: " << testing::PrintToString(lines);
            return lines;
        }
        return Lines(lines.begin() + 1, lines.end() - 1);
    }

    static std::string compared(const std::string& name) {
        return "1 tsInitRamName(" + name + "), tcBufInitrd(" + kInitrd + "), tcBufInitramfs(" + kInitramfs + ")";
    }
};

class DriverFileCheck : public HostQueries {
protected:
    void SetUp() override {
        HostQueries::SetUp();
        machine.command("/sbin/modinfo -F version lpfc", "10.2.1\n");
    }

    static int judge(const std::string& version) {
        return CCommon_Information::DriverFileCheck(version, "lpfc", kModule);
    }

    void layRamDisk(const std::string& name) {
        machine.file(kConfiguration, "default=0\ntitle one\n\tinitrd /" + name + "\n");
    }
};

// ---- One-line questions ----

TEST_F(CheckBootEnvironment, AnswersOneForABootByEfi) {
    machine.directory("/sys/firmware/efi");
    EXPECT_EQ(CCommon_Information::CheckBootEnvironment(), 1);
}

TEST_F(CheckBootEnvironment, AnswersTwoForAnotherBoot) {
    EXPECT_EQ(CCommon_Information::CheckBootEnvironment(), 2);
    machine.directory("/sys/firmware");
    EXPECT_EQ(CCommon_Information::CheckBootEnvironment(), 2);
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

TEST_F(GetKernelVersion, AsksUname) {
    EXPECT_EQ(CCommon_Information::GetKernelVersion(), kKernelRelease);
    EXPECT_EQ(machine.commandsRun(), (std::vector<std::string>{"/bin/uname -r"}));
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

TEST_F(GetKernelVersion, IsEmptyWhereUnameFails) {
    machine.command("/bin/uname -r", "text\n", {1});
    EXPECT_EQ(CCommon_Information::GetKernelVersion(), "");
    machine.dropCommand("/bin/uname");
    EXPECT_EQ(CCommon_Information::GetKernelVersion(), "");
}

TEST_F(GetRPMInfo, AsksRpmForThePackage) {
    machine.command("/bin/rpm -q kmod-lpfc", "kmod-lpfc-10.2.1-1.el6.x86_64\nsecond\n");
    EXPECT_EQ(CCommon_Information::GetRPMInfo("kmod-lpfc"), "kmod-lpfc-10.2.1-1.el6.x86_64");
    EXPECT_EQ(machine.commandsRun(), (std::vector<std::string>{"/bin/rpm -q kmod-lpfc"}));
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

TEST_F(GetRPMInfo, IsEmptyForAPackageThatIsNotInstalled) {
    machine.command("/bin/rpm -q absent", "package absent is not installed\n", {1});
    EXPECT_EQ(CCommon_Information::GetRPMInfo("absent"), "");
}

TEST_F(GetRPMInfo, CutsTheCommandTo255CharactersAndRunsIt) {
    machine.anyCommand("/bin/rpm", "found\n");
    const std::string start = "rpm -q ";
    EXPECT_EQ(CCommon_Information::GetRPMInfo(std::string(255 - start.size(), 'x')), "found");
    EXPECT_EQ(CCommon_Information::GetRPMInfo(std::string(255 - start.size(), 'x') + "y"), "found");
    const std::string cut = "/bin/rpm -q " + std::string(255 - start.size(), 'x');
    EXPECT_EQ(machine.commandsRun(), (std::vector<std::string>{cut, cut}));
}

TEST_F(GetArchitectureInfo, AsksUnameBetweenItsBoundaries) {
    machine.command("/bin/uname -m", "x86_64\n");
    EXPECT_EQ(CCommon_Information::GetArchitectureInfo(kModule), "x86_64");
    EXPECT_EQ(machine.commandsRun(), (std::vector<std::string>{"/bin/uname -m"}));
    EXPECT_EQ(TestHost::trace(), (Lines{"4 CCommon_Information::GetArchitectureInfo [START]",
                                        "4 CCommon_Information::GetArchitectureInfo [END]"}));
}

TEST_F(GetArchitectureInfo, IsEmptyWhereUnameFails) {
    machine.command("/bin/uname -m", "x86_64\n", {2});
    EXPECT_EQ(CCommon_Information::GetArchitectureInfo(kModule), "");
    EXPECT_EQ(TestHost::trace(), (Lines{"4 CCommon_Information::GetArchitectureInfo [START]",
                                        "4 CCommon_Information::GetArchitectureInfo [END]"}));
}

// ---- CheckRAMDISK ----

TEST_F(CheckRAMDISK, TakesTheInitramfsOfTheRunningKernel) {
    EXPECT_EQ(judge("# boot loader\n\ndefault=0\ntimeout=5\ntitle Linux (358)\n\troot (hd0,0)\n"
                    "\tkernel /vmlinuz-2.6.32-358.el6.x86_64 ro\n\tinitrd /" +
                    kInitramfs + "\n"),
              0);
    EXPECT_EQ(detailsTraced(),
              (Lines{"1 iDefault=0", "1 found title line(title Linux (358))", "1 target title line(title Linux (358))",
                     "1 found initrd line(\tinitrd /" + kInitramfs + ")", compared(kInitramfs)}));
    EXPECT_EQ(machine.commandsRun(), (std::vector<std::string>{"/bin/uname -r"}));
}

TEST_F(CheckRAMDISK, TakesTheInitrdOfTheRunningKernel) {
    EXPECT_EQ(judge("default=0\ntitle one\ninitrd /" + kInitrd + "\n"), 0);
    EXPECT_EQ(detailsTraced(), (Lines{"1 iDefault=0", "1 found title line(title one)", "1 target title line(title one)",
                                      "1 found initrd line(initrd /" + kInitrd + ")", compared(kInitrd)}));
}

TEST_F(CheckRAMDISK, RefusesEveryOtherName) {
    for (const char* name : {"initramfs-2.6.32-279.el6.x86_64.img", "initramfs-2.6.32-358.el6.x86_64.img.old",
                             "initramfs-2.6.32-358.el6.x86_64", "Initrd-2.6.32-358.el6.x86_64.img"}) {
        EXPECT_EQ(judge("default=0\ntitle one\ninitrd /" + std::string(name) + "\n"), 1) << name;
        EXPECT_EQ(detailsTraced().back(), compared(name));
    }
}

TEST_F(CheckRAMDISK, RefusesANameWithAPathInFront) {
    EXPECT_EQ(judge("default=0\ntitle one\ninitrd /boot/" + kInitramfs + "\n"), 1);
    EXPECT_EQ(detailsTraced().back(), compared("boot/" + kInitramfs));
}

TEST_F(CheckRAMDISK, CutsTheNameAtTheFirstBlank) {
    EXPECT_EQ(judge("default=0\ntitle one\ninitrd \t (/" + kInitramfs + " other\n"), 0);
    EXPECT_EQ(detailsTraced().back(), compared(kInitramfs));
}

TEST_F(CheckRAMDISK, TakesALineWithoutANameForAnEmptyName) {
    EXPECT_EQ(judge("default=0\ntitle one\ninitrd /\n"), 1);
    EXPECT_EQ(detailsTraced().back(), compared(""));
    EXPECT_EQ(judge("default=0\ntitle one\ninitrd\n"), 1);
    EXPECT_EQ(detailsTraced().back(), compared(""));
}

TEST_F(CheckRAMDISK, KeepsACarriageReturnInTheName) {
    EXPECT_EQ(judge("default=0\r\ntitle one\r\ninitrd /" + kInitramfs + "\r\n"), 1);
    EXPECT_EQ(detailsTraced().back(), compared(kInitramfs + "\r"));
}

TEST_F(CheckRAMDISK, ReadsALastLineWithoutALineFeed) {
    EXPECT_EQ(judge("default=0\ntitle one\ninitrd /" + kInitramfs), 0);
}

TEST_F(CheckRAMDISK, ReadsLinesOfAnyLength) {
    const std::string longTitle = "title " + std::string(5000, 't');
    EXPECT_EQ(judge("default=0\n" + longTitle + "\ninitrd " + std::string(5000, '/') + kInitramfs + "\n"), 0);
    EXPECT_EQ(detailsTraced().at(1), "1 found title line(" + longTitle + ")");
}

TEST_F(CheckRAMDISK, ReadsTheConfigurationOfABootByEfi) {
    machine.directory("/sys/firmware/efi");
    machine.file(kEfiConfiguration, "default=0\ntitle one\ninitrd /" + kInitrd + "\n");
    EXPECT_EQ(judge("default=0\ntitle one\ninitrd /other\n"), 0);
    EXPECT_EQ(detailsTraced().back(), compared(kInitrd));
}

TEST_F(CheckRAMDISK, CannotTellWithoutAKernelVersion) {
    machine.command("/bin/uname -r", "", {1});
    EXPECT_EQ(judge("default=0\ntitle one\ninitrd /" + kInitramfs + "\n"), 255);
    EXPECT_EQ(detailsTraced(), (Lines{"2 GetKernelVersion() error."}));
}

TEST_F(CheckRAMDISK, CannotTellWithoutAConfiguration) {
    EXPECT_EQ(CCommon_Information::CheckRAMDISK(kModule), 255);
    EXPECT_EQ(detailsTraced(), (Lines{"2 File open error.(/boot/grub/grub.conf)"}));
    forget();
    machine.directory("/sys/firmware/efi");
    EXPECT_EQ(CCommon_Information::CheckRAMDISK(kModule), 255);
    EXPECT_EQ(detailsTraced(), (Lines{"2 File open error.(/boot/efi/EFI/redhat/grub.conf)"}));
}

TEST_F(CheckRAMDISK, TakesAConfigurationThatIsADirectoryForAnEmptyOne) {
    machine.directory(kConfiguration);
    EXPECT_EQ(CCommon_Information::CheckRAMDISK(kModule), 255);
    EXPECT_THAT(detailsTraced(), testing::IsEmpty());
}

TEST_F(CheckRAMDISK, CannotTellWithoutADefaultLine) {
    for (const char* configuration : {"", "\n", "title one\ninitrd /a\ntitle two\ninitrd /b\n", "default 0\ntitle a\n",
                                      "#default=0\ntitle one\ninitrd /a\n", "Default=0\ntitle one\n"}) {
        EXPECT_EQ(judge(configuration), 255) << configuration;
        EXPECT_THAT(detailsTraced(), testing::IsEmpty()) << configuration;
    }
}

TEST_F(CheckRAMDISK, CannotTellWithoutADefaultNumber) {
    for (const char* line : {"default=saved", "default=", "default= ", "default=-", "default=\t#0"}) {
        EXPECT_EQ(judge(std::string(line) + "\ntitle one\ninitrd /" + kInitramfs + "\n"), 255) << line;
        EXPECT_EQ(detailsTraced(), (Lines{"1 iDefault=0", "2 Failed to get default number."})) << line;
    }
}

TEST_F(CheckRAMDISK, CannotTellWithoutTheDefaultTitle) {
    EXPECT_EQ(judge("default=2\ntitle one\ninitrd /a\ntitle two\ninitrd /b\n"), 255);
    EXPECT_EQ(detailsTraced(),
              (Lines{"1 iDefault=2", "1 found title line(title one)", "1 found title line(title two)"}));
}

TEST_F(CheckRAMDISK, CannotTellWithoutARamDiskBehindTheTitle) {
    EXPECT_EQ(judge("default=1\ntitle one\ninitrd /" + kInitramfs + "\ntitle two\nkernel /vmlinuz\n"), 255);
    EXPECT_EQ(detailsTraced(), (Lines{"1 iDefault=1", "1 found title line(title one)", "1 found title line(title two)",
                                      "1 target title line(title two)"}));
}

TEST_F(CheckRAMDISK, CountsTheTitlesUpToTheDefaultNumber) {
    EXPECT_EQ(judge("default=1\ntitle one\ninitrd /old\ntitle two\ninitrd /" + kInitramfs + "\n"), 0);
    EXPECT_EQ(detailsTraced(), (Lines{"1 iDefault=1", "1 found title line(title one)", "1 found title line(title two)",
                                      "1 target title line(title two)",
                                      "1 found initrd line(initrd /" + kInitramfs + ")", compared(kInitramfs)}));
    EXPECT_EQ(judge("default=0\ntitle one\ninitrd /old\ntitle two\ninitrd /" + kInitramfs + "\n"), 1);
}

TEST_F(CheckRAMDISK, TakesTheRamDiskOfTheNextEntryWhereThereIsNoneInTheDefaultOne) {
    EXPECT_EQ(judge("default=0\ntitle one\nkernel /vmlinuz\ntitle two\ninitrd /" + kInitramfs + "\n"), 0);
}

TEST_F(CheckRAMDISK, TakesTheFirstRamDiskOfTheEntry) {
    EXPECT_EQ(judge("default=0\ntitle one\ninitrd /old\ninitrd /" + kInitramfs + "\n"), 1);
}

TEST_F(CheckRAMDISK, DoesNotCountATitleAboveTheDefaultLine) {
    EXPECT_EQ(judge("title zero\ninitrd /old\ndefault=0\ntitle one\ninitrd /" + kInitramfs + "\n"), 0);
    EXPECT_EQ(detailsTraced().at(1), "1 found title line(title one)");
}

TEST_F(CheckRAMDISK, DoesNotLookForATitleInTheDefaultLine) {
    EXPECT_EQ(judge("default=0 title none\ntitle one\ninitrd /" + kInitramfs + "\n"), 0);
    EXPECT_EQ(detailsTraced().at(1), "1 found title line(title one)");
}

TEST_F(CheckRAMDISK, DoesNotCountACommentedTitle) {
    EXPECT_EQ(judge("default=0\n#title zero\ninitrd /old\ntitle one\ninitrd /" + kInitramfs + "\n"), 0);
    EXPECT_EQ(detailsTraced().at(1), "1 found title line(title one)");
}

TEST_F(CheckRAMDISK, CountsATitleBehindOtherCharactersThanLettersAndDigits) {
    EXPECT_EQ(judge("default=1\n \t#title one\n-_\xc3\xa9title two\ninitrd /" + kInitramfs + "\n"), 0);
    EXPECT_EQ(detailsTraced().at(3), "1 target title line(-_\xc3\xa9title two)");
}

TEST_F(CheckRAMDISK, DoesNotCountATitleBehindALetterOrADigit) {
    EXPECT_EQ(judge("default=0\n\tkernel /vmlinuz title=x\n0 title\n-xtitle\nZ title\ntitle one\ninitrd /" +
                    kInitramfs + "\n"),
              0);
    EXPECT_EQ(detailsTraced(),
              (Lines{"1 iDefault=0", "1 found title line(\tkernel /vmlinuz title=x)", "1 found title line(0 title)",
                     "1 found title line(-xtitle)", "1 found title line(Z title)", "1 found title line(title one)",
                     "1 target title line(title one)", "1 found initrd line(initrd /" + kInitramfs + ")",
                     compared(kInitramfs)}));
}

TEST_F(CheckRAMDISK, PassesAnInitrdBehindALetterOrADigitOver) {
    EXPECT_EQ(judge("default=0\ntitle one\nkernel /vmlinuz noinitrd\n1 initrd /old\ninitrd /" + kInitramfs + "\n"), 0);
    EXPECT_EQ(detailsTraced(),
              (Lines{"1 iDefault=0", "1 found title line(title one)", "1 target title line(title one)",
                     "1 found initrd line(kernel /vmlinuz noinitrd)", "1 found initrd line(1 initrd /old)",
                     "1 found initrd line(initrd /" + kInitramfs + ")", compared(kInitramfs)}));
}

TEST_F(CheckRAMDISK, TakesACommentedInitrd) {
    EXPECT_EQ(judge("default=0\ntitle one\n#initrd /old\ninitrd /" + kInitramfs + "\n"), 1);
    EXPECT_EQ(detailsTraced().back(), compared("old"));
}

TEST_F(CheckRAMDISK, ReadsTheDefaultNumberBehindTheFirstEqualsSign) {
    EXPECT_EQ(judge("saved=1 default=0\ntitle one\ninitrd /old\ntitle two\ninitrd /" + kInitramfs + "\n"), 0);
    EXPECT_EQ(detailsTraced().front(), "1 iDefault=1");
}

TEST_F(CheckRAMDISK, ReadsTheLeadingDigitsOfTheDefaultNumber) {
    EXPECT_EQ(judge("default= 010x\n"), 255);
    EXPECT_EQ(detailsTraced(), (Lines{"1 iDefault=10"}));
}

TEST_F(CheckRAMDISK, TakesTheFirstDefaultLine) {
    EXPECT_EQ(judge("default=0\ndefault=1\ntitle one\ninitrd /" + kInitramfs + "\ntitle two\ninitrd /old\n"), 0);
}

TEST_F(CheckRAMDISK, GoesOnLookingBehindADefaultOfMinusOne) {
    EXPECT_EQ(judge("default=-1\ntitle zero\ndefault=0\ntitle one\ninitrd /" + kInitramfs + "\n"), 0);
    EXPECT_EQ(detailsTraced().at(0), "1 iDefault=-1");
    EXPECT_EQ(detailsTraced().at(1), "1 iDefault=0");
    EXPECT_EQ(detailsTraced().at(2), "1 found title line(title one)");
}

TEST_F(CheckRAMDISK, FindsNoTitleForANegativeNumber) {
    EXPECT_EQ(judge("default=-2\ntitle one\ninitrd /" + kInitramfs + "\n"), 255);
    EXPECT_EQ(detailsTraced(), (Lines{"1 iDefault=-2", "1 found title line(title one)"}));
}

TEST_F(CheckRAMDISK, WrapsADefaultNumberThatDoesNotFit) {
    EXPECT_EQ(judge("default=4294967295\ntitle one\ninitrd /" + kInitramfs + "\n"), 255);
    EXPECT_EQ(detailsTraced().front(), "1 iDefault=-1");
    EXPECT_EQ(judge("default=4294967296\ntitle one\ninitrd /" + kInitramfs + "\n"), 0);
}

TEST_F(CheckRAMDISK, LooksAtTheFirstOfTwoTitlesInALine) {
    EXPECT_EQ(judge("default=0\nx title title\ntitle old title\ninitrd /" + kInitramfs + "\n"), 0);
    EXPECT_THAT(detailsTraced(), testing::Contains("1 found title line(title old title)"));
}

TEST_F(CheckRAMDISK, BeginsTheNameAtALetterOrADigitAndEndsItAtABlankAlone) {
    judge("default=0\ntitle one\ninitrd /2.6.img more\n");
    EXPECT_EQ(detailsTraced().back(), compared("2.6.img"));
    EXPECT_EQ(judge("default=0\ntitle one\ninitrd /" + kInitramfs + "\tmore\n"), 1);
    EXPECT_EQ(detailsTraced().back(), compared(kInitramfs + "\tmore"));
}

// ---- DriverFileCheck ----

TEST_F(DriverFileCheck, AcceptsTheExpectedVersion) {
    EXPECT_EQ(judge("10.2.1"), 0);
    EXPECT_EQ(machine.commandsRun(), (std::vector<std::string>{"/sbin/modinfo -F version lpfc"}));
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

TEST_F(DriverFileCheck, TellsAnotherVersionBesideTheRamDiskOfAnotherKernel) {
    layRamDisk("initramfs-2.6.32-279.el6.x86_64.img");
    EXPECT_EQ(judge("10.2.2"), 256);
    EXPECT_EQ(machine.commandsRun(), (std::vector<std::string>{"/sbin/modinfo -F version lpfc", "/bin/uname -r"}));
    EXPECT_EQ(TestHost::trace().front(), "4 CCommon_Information::CheckRAMDISK [START]");
    EXPECT_EQ(TestHost::trace().back(), "4 CCommon_Information::CheckRAMDISK [END]");
}

TEST_F(DriverFileCheck, CannotJudgeAnotherVersionBesideTheRamDiskOfTheRunningKernel) {
    layRamDisk(kInitramfs);
    EXPECT_EQ(judge("10.2"), 1);
}

TEST_F(DriverFileCheck, CannotJudgeAnotherVersionBesideAnUnknownRamDisk) {
    EXPECT_EQ(judge("10.2.10"), 1);
    EXPECT_EQ(TestHost::trace(),
              (Lines{"4 CCommon_Information::CheckRAMDISK [START]", "2 File open error.(/boot/grub/grub.conf)",
                     "4 CCommon_Information::CheckRAMDISK [END]"}));
}

TEST_F(DriverFileCheck, AsksForTheDriverButNotTheBootLoaderWithoutAVersion) {
    layRamDisk("other");
    EXPECT_EQ(judge(""), 1);
    EXPECT_EQ(machine.commandsRun(), (std::vector<std::string>{"/sbin/modinfo -F version lpfc"}));
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

TEST_F(DriverFileCheck, CannotJudgeADriverThatModinfoDoesNotKnow) {
    layRamDisk("other");
    machine.command("/sbin/modinfo -F version lpfc", "", {1});
    EXPECT_EQ(judge("10.2.1"), 1);
    machine.command("/sbin/modinfo -F version lpfc", "\n10.2.1\n");
    EXPECT_EQ(judge("10.2.1"), 1);
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

TEST_F(DriverFileCheck, CutsTheCommandTo4127CharactersAndRunsIt) {
    machine.anyCommand("/sbin/modinfo", "10.2.1\n");
    const std::string fits(4127 - std::string("modinfo -F version ").size(), 'x');
    EXPECT_EQ(CCommon_Information::DriverFileCheck("10.2.1", fits, kModule), 0);
    EXPECT_EQ(CCommon_Information::DriverFileCheck("10.2.1", fits + "y", kModule), 0);
    const std::string cut = "/sbin/modinfo -F version " + fits;
    EXPECT_EQ(machine.commandsRun(), (std::vector<std::string>{cut, cut}));
}

}  // namespace
}  // namespace kvl::test
