#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <ostream>
#include <utility>
#include <vector>

#include "tests/provider/update/update_server.h"

namespace {

using kvl::test::Outcome;
using kvl::test::updateOnServer;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kFunctions = R"sh(
kernel=2.6.32-358.el6.x86_64
image=/boot/initramfs-$kernel.img
conf=/etc/depmod.d
boot_files() { run kvl boot-files "$@"; }
dracut_fault() { mkdir -p /var/lib/dracut; : >/var/lib/dracut/$1; }
mended() { rm -r /var/lib/dracut; }
fail_depmod() { echo "$1" >/.machine/commands/sbin/depmod/-a.status; }
log() { grep -v uname /.machine/log; rm /.machine/log; }
images() { for name in $image $image.org; do head -n 1 $name 2>/dev/null || echo none; done; }
everything() { state; find /boot /run -type f -exec /bin/busybox md5sum {} + | sort; }
notes() { find $tree/temp -name 'initramfs*'; }
await() { replace /tmp/await_$1 "tries=0; until $2 || [ \$((tries += 1)) -gt 1000 ]; do sleep 0.01; done"; }
await note 'grep -q noted /tmp/errors'
await go '[ -e /tmp/go ]'
)sh";

// What the images are: of the installation, of the simulated dracut, or none.
constexpr const char* kInstalled = "The RAM disk image of 2.6.32-358.el6.x86_64 as the installation made it\n";
constexpr const char* kBuilt = "The simulated RAM disk image of 2.6.32-358.el6.x86_64\n";

const std::string kImage = "/boot/initramfs-2.6.32-358.el6.x86_64.img";
const std::string kRestore = "mv -f " + kImage + ".org " + kImage;
const std::string kNoImage =
    "; the kernel 2.6.32-358.el6.x86_64 has no whole RAM disk image now and can't be started: move the former one "
    "back, with '" +
    kRestore + "'\n";

constexpr const char* kBe2net =
    "\noverride be2net * weak-updates/updates/be2net\noverride be2net * weak-updates/be2net\n";
constexpr const char* kLpfc =
    "\noverride lpfc * weak-updates/updates/elx-lpfc\noverride lpfc * weak-updates/elx-lpfc\n";
constexpr const char* kBe2iscsi =
    "\noverride be2iscsi * weak-updates/updates/be2iscsi\noverride be2iscsi * weak-updates/be2iscsi\n";

Outcome onServer(const std::string& script, const std::string& machine = "adapters-mixed") {
    return updateOnServer(kFunctions + script, machine);
}

// ---- Overrides ----

TEST(Overrides, AreAddedAndReadByDepmod) {
    const Outcome outcome = onServer("boot_files --override be2iscsi,be2net; log; cd $conf; ls; cat elx*");
    EXPECT_EQ(
        "Update of the boot files\n"
        "  1. add to /etc/depmod.d/elxbe2net.conf: 'override be2net * weak-updates/updates/be2net', 'override be2net * "
        "weak-updates/be2net'\n"
        "  2. add to /etc/depmod.d/elxbe2iscsi.conf: 'override be2iscsi * weak-updates/updates/be2iscsi', 'override "
        "be2iscsi * weak-updates/be2iscsi'\n"
        "  3. depmod -a\n"
        "Added the override lines, and depmod has run\n"
        "ended with 0\n"
        "/sbin/depmod -a\n"
        "dist.conf\nelxbe2iscsi.conf\nelxbe2net.conf\n" +
            std::string(kBe2iscsi) + kBe2net,
        outcome.output);
    EXPECT_EQ("[1/2] adding the override lines\n[2/2] depmod -a\n", outcome.errors);
}

TEST(Overrides, OfEachDriverGoIntoItsFile) {
    EXPECT_EQ(kLpfc, onServer("kvl boot-files --override lpfc >/dev/null; cat $conf/elx*").output);
    EXPECT_EQ(std::string(kBe2iscsi) + kBe2net + kLpfc,
              onServer("kvl boot-files --override lpfc --override be2net,be2iscsi >/dev/null; cat $conf/elx*").output);
}

TEST(Overrides, AreAddedOnceAndDepmodRunsAgain) {
    const Outcome outcome = onServer(
        "kvl boot-files --override lpfc >/dev/null 2>&1; log >/dev/null; boot_files --override lpfc --quiet; log; cat "
        "$conf/elx*");
    EXPECT_EQ(
        "Update of the boot files\n"
        "  1. leave /etc/depmod.d/elxlpfc.conf as it is: it holds the lines of lpfc\n"
        "  2. depmod -a\n"
        "The override lines were there, and depmod has run\nended with 0\n/sbin/depmod -a\n" +
            std::string(kLpfc),
        outcome.output);
    EXPECT_EQ("", outcome.errors);
}

TEST(Overrides, AreAddedOnOtherReleasesToo) {
    const Outcome outcome =
        onServer("kvl boot-files --override lpfc --quiet >/dev/null && cat $conf/elx* && log", "adapters-fc");
    EXPECT_EQ(kLpfc + std::string("/sbin/depmod -a\n"), outcome.output);
}

TEST(Overrides, KeepWhatStandsInTheFile) {
    EXPECT_EQ("# mine" + std::string(kLpfc),
              onServer("printf '# mine' >$conf/elxlpfc.conf; kvl boot-files --override lpfc >/dev/null; cat "
                       "$conf/elxlpfc.conf")
                  .output);
}

struct Refusal {
    const char* change;
    std::string options;
    std::string sentence;
};

void PrintTo(const Refusal& row, std::ostream* stream) {
    *stream << row.change;
}

class BootFilesThatDontFit : public testing::TestWithParam<Refusal> {};

TEST_P(BootFilesThatDontFit, AreRefusedBeforeAnythingIsChanged) {
    const Refusal& row = GetParam();
    const Outcome outcome = onServer(
        std::string(row.change) +
        "\nbefore=$(find /etc /boot /var -exec stat -c '%N %s %i %Y' {} + | sort)\nboot_files " + row.options +
        "\n[ \"$before\" = \"$(find /etc /boot /var -exec stat -c '%N %s %i %Y' {} + | sort)\" ] || echo changed\n"
        "grep -v uname /.machine/log 2>/dev/null");
    EXPECT_EQ("ended with 1\n", outcome.output);
    EXPECT_EQ("kvl: " + row.sentence + "\n", outcome.errors);
}

constexpr const char* kLpfcNamed =
    ", and nothing is added to a file that names 'override lpfc': take that line out, or add the others by hand";

INSTANTIATE_TEST_SUITE_P(
    Overrides, BootFilesThatDontFit,
    testing::Values(
        Refusal{"rm /sbin/depmod", "--override lpfc", "'depmod' isn't installed: install the package that brings it"},
        Refusal{"rm -r $conf", "--override lpfc",
                "there is no directory /etc/depmod.d: see whether this system's depmod reads one, and make it"},
        Refusal{"chmod 500 $conf", "--override lpfc", "/etc/depmod.d can't be written: Permission denied"},
        Refusal{"mkdir $conf/elxbe2net.conf", "--override lpfc,be2net",
                "/etc/depmod.d/elxbe2net.conf is no file: remove it"},
        Refusal{"ln -s /dev/full $conf/elxlpfc.conf", "--override lpfc",
                "/etc/depmod.d/elxlpfc.conf is no file: remove it"},
        Refusal{": >$conf/elxlpfc.conf; chmod 400 $conf/elxlpfc.conf", "--override lpfc",
                "/etc/depmod.d/elxlpfc.conf can't be read and written: Permission denied"},
        Refusal{": >$conf/elxlpfc.conf; chmod 200 $conf/elxlpfc.conf", "--override lpfc",
                "/etc/depmod.d/elxlpfc.conf can't be read and written: Permission denied"},
        Refusal{"printf '# override lpfc\\t* extra' >$conf/elxlpfc.conf", "--override be2net,lpfc",
                "/etc/depmod.d/elxlpfc.conf has the line '# override lpfc * extra' and lacks 'override lpfc * "
                "weak-updates/updates/elx-lpfc', 'override lpfc * weak-updates/elx-lpfc'" +
                    std::string(kLpfcNamed)},
        Refusal{"printf '\\noverride lpfc * weak-updates/updates/elx-lpfc\\noverride lp' >$conf/elxlpfc.conf",
                "--override lpfc",
                "/etc/depmod.d/elxlpfc.conf has the line 'override lpfc * weak-updates/updates/elx-lpfc' and lacks "
                "'override lpfc * weak-updates/elx-lpfc'" +
                    std::string(kLpfcNamed)}));

const std::string kDepmodAdvice =
    ": see why, and run it by hand, since the lines that are in place have no effect before\n";

TEST(Overrides, AreToldToHaveNoEffectWhereDepmodFails) {
    const Outcome outcome = onServer(
        "fail_depmod 3; echo 'FATAL: no  modules.dep' >/.machine/commands/sbin/depmod/-a\n"
        "boot_files --override lpfc --quiet | tail -n 1; cat $conf/elxlpfc.conf\n"
        "fail_depmod 'signal 9'; : >/.machine/commands/sbin/depmod/-a; boot_files --override lpfc --quiet | tail -n 1");
    EXPECT_EQ("ended with 4\n" + std::string(kLpfc) + "ended with 4\n", outcome.output);
    EXPECT_THAT(outcome.errors,
                StartsWith("kvl: 'depmod -a' ended with 3, saying 'FATAL: no  modules.dep'" + kDepmodAdvice));
    EXPECT_THAT(outcome.errors, EndsWith("kvl: 'depmod -a' was ended by signal 9, saying 'Killed'" + kDepmodAdvice));
}

TEST(Overrides, AreToldWhereTheirFileCantBeOpened) {
    const Outcome outcome = onServer(
        "ln -s /nowhere/file $conf/elxbe2net.conf; boot_files --override be2net --quiet | tail -n 1\n"
        "boot_files --override be2net,lpfc --quiet | tail -n 1; log; cat $conf/elxlpfc.conf");
    EXPECT_EQ("ended with 1\nended with 4\n/sbin/depmod -a\n/sbin/depmod -a\n" + std::string(kLpfc), outcome.output);
    const std::string once =
        "kvl: /etc/depmod.d/elxbe2net.conf could not be opened for writing: see what stands in its way\n";
    EXPECT_EQ(once + once, outcome.errors);
}

TEST(Overrides, AreToldWhereTheyDidntFitOnTheDisk) {
    const Outcome outcome = onServer(
        "printf '# %0506d\\n' 0 >$conf/elxlpfc.conf; cp $conf/elxlpfc.conf /tmp/before\n"
        "(trap '' XFSZ; ulimit -f 1; boot_files --override be2net,lpfc --rebuild-initramfs --quiet 2>&1 | tail -n 2)\n"
        "log; images; cat $conf/elxbe2net.conf; tail -n 1 $conf/elxlpfc.conf; echo\n"
        ""
        "cp /tmp/before $conf/elxlpfc.conf; kvl boot-files --override lpfc --quiet | tail -n 1; tail -n 3 "
        "$conf/elxlpfc.conf");
    EXPECT_EQ(
        "kvl: /etc/depmod.d/elxlpfc.conf lacks 'override lpfc * weak-updates/updates/elx-lpfc', 'override lpfc * "
        "weak-updates/elx-lpfc': see whether the disk has room, remove what was written into that file, and run this "
        "again; the RAM disk image was not rebuilt\nended with 4\n/sbin/depmod -a\n" +
            std::string(kInstalled) + "none\n" + kBe2net +
            "ov\n"
            "Added the override lines, and depmod has run\n" +
            kLpfc,
        outcome.output)
        << outcome.errors;
}

// ---- The RAM disk image ----

TEST(Rebuild, MakesANewImageAndKeepsTheFormerOne) {
    const Outcome outcome = onServer("boot_files --rebuild-initramfs; log; images; notes; ls -A /boot");
    EXPECT_EQ(
        "Update of the boot files\n"
        "  kernel    2.6.32-358.el6.x86_64\n"
        "  image     " +
            kImage +
            ", 72 bytes\n"
            "  if dracut fails, the former image is to be moved back by hand\n"
            "  1. mv -f " +
            kImage + " " + kImage +
            ".org\n"
            "  2. dracut " +
            kImage +
            "\n"
            "Rebuilt " +
            kImage + ", 168 bytes; the former one is " + kImage +
            ".org\n"
            "ended with 0\n"
            "/sbin/dracut " +
            kImage + "\n" + kBuilt + kInstalled +
            "grub\ninitramfs-2.6.32-279.el6.x86_64.img\ninitramfs-2.6.32-358.el6.x86_64.img\n"
            "initramfs-2.6.32-358.el6.x86_64.img.org\n",
        outcome.output);
    EXPECT_EQ("[1/1] dracut " + kImage + "\n", outcome.errors);
}

TEST(Rebuild, KeepsTheImageOfTheLastRunAsTheFormerOne) {
    EXPECT_EQ(std::string(kBuilt) + kBuilt, onServer("kvl boot-files --rebuild-initramfs >/dev/null\n"
                                                     "kvl boot-files --rebuild-initramfs >/dev/null; images")
                                                .output);
}

TEST(Rebuild, FollowsTheOverrides) {
    const Outcome outcome = onServer(
        "boot_files --rebuild-initramfs --override lpfc --restore-on-failure; log; grep "
        "-c override.lpfc $image");
    EXPECT_THAT(outcome.output, HasSubstr("\n  if dracut fails, the former image is moved back\n"));
    EXPECT_THAT(outcome.output, EndsWith("ended with 0\n/sbin/depmod -a\n/sbin/dracut " + kImage + "\n2\n"));
}

TEST(Rebuild, KeepsTheCommandsWordsOutOfTheAnswer) {
    const Outcome outcome = onServer(
        "replace /sbin/dracut 'echo chatter; : >>$1; echo x >$1'; echo talk >/.machine/commands/sbin/depmod/-a\n"
        "kvl boot-files --rebuild-initramfs --override lpfc");
    EXPECT_THAT(outcome.output, AllOf(HasSubstr("\nAdded the override lines"), HasSubstr("\nRebuilt "),
                                      Not(HasSubstr("chatter")), Not(HasSubstr("talk"))));
}

constexpr const char* kSkipped =
    "kvl: skipped: the RAM disk image is rebuilt on a release 6 alone, and /etc/redhat-release ";

TEST(Rebuild, IsSkippedOnOtherReleases) {
    const Outcome outcome = onServer(
        "boot_files --rebuild-initramfs --restore-on-failure; boot_files --rebuild-initramfs --dry-run; cat "
        "/.machine/log; ls $tree; ended",
        "adapters-fc");
    EXPECT_EQ(
        "ended with 3\nended with 3\n"
        "[cna] MSGID_KVL_UPDATE_SKIPPED_I: The update of the boot files was skipped: the RAM disk image is rebuilt on "
        "a "
        "release 6 alone, and /etc/redhat-release says 'Red Hat Enterprise Linux Server release 5.8 (Tikanga)'\n",
        outcome.output);
    EXPECT_THAT(outcome.errors,
                HasSubstr(kSkipped + std::string("says 'Red Hat Enterprise Linux Server release 5.8 (Tikanga)'\n")));
    EXPECT_EQ(kSkipped + std::string("tells none\n"),
              onServer("rm /etc/redhat-release; kvl boot-files --rebuild-initramfs").errors);
    EXPECT_EQ("ended with 0\n", onServer("echo 'Some Linux release 60' >/etc/redhat-release; boot_files "
                                         "--rebuild-initramfs | tail -n 1")
                                    .output);
}

TEST(Rebuild, IsSkippedWhenTheOverridesAreDone) {
    const Outcome outcome =
        onServer("boot_files --rebuild-initramfs --override lpfc --quiet; log; cat $conf/elx*", "adapters-fc");
    EXPECT_EQ(
        "Update of the boot files\n"
        "  skipped   the RAM disk image is rebuilt on a release 6 alone, and /etc/redhat-release says 'Red Hat "
        "Enterprise Linux Server release 5.8 (Tikanga)'\n"
        "  1. add to /etc/depmod.d/elxlpfc.conf: 'override lpfc * weak-updates/updates/elx-lpfc', 'override lpfc * "
        "weak-updates/elx-lpfc'\n"
        "  2. depmod -a\n"
        "Added the override lines, and depmod has run\nended with 3\n/sbin/depmod -a\n" +
            std::string(kLpfc),
        outcome.output);
    EXPECT_EQ(kSkipped + std::string("says 'Red Hat Enterprise Linux Server release 5.8 (Tikanga)'\n"), outcome.errors);
}

INSTANTIATE_TEST_SUITE_P(
    Rebuild, BootFilesThatDontFit,
    testing::Values(Refusal{"rm /sbin/dracut", "--rebuild-initramfs",
                            "'dracut' isn't installed: install the package that brings it"},
                    Refusal{"rm /bin/mv", "--rebuild-initramfs --override lpfc",
                            "'mv' isn't installed: install the package that brings it"},
                    Refusal{"rm $image", "--rebuild-initramfs",
                            "the running kernel's RAM disk image " + kImage +
                                " isn't there, or is no file: make it by hand with 'dracut " + kImage + "'"},
                    Refusal{"rm $image; mkdir $image", "--rebuild-initramfs",
                            "the running kernel's RAM disk image " + kImage +
                                " isn't there, or is no file: make it by hand with 'dracut " + kImage + "'"},
                    Refusal{"mv $image $image.real; ln -s $image.real $image; : >$image.org", "--rebuild-initramfs",
                            "the running kernel's RAM disk image " + kImage +
                                " isn't there, or is no file: make it by hand with 'dracut " + kImage + "'"},
                    Refusal{"chmod 500 /boot", "--rebuild-initramfs --override lpfc",
                            "/boot can't be written: Permission denied"},
                    Refusal{"rm /bin/uname", "--rebuild-initramfs",
                            "the running kernel can't be told: 'uname -r' says ''; see why"},
                    Refusal{"echo '1;id' >/.machine/commands/bin/uname/-r", "--rebuild-initramfs",
                            "the running kernel can't be told: 'uname -r' says '1;id'; see why"},
                    Refusal{"echo '../x' >/.machine/commands/bin/uname/-r", "--rebuild-initramfs",
                            "the running kernel can't be told: 'uname -r' says '../x'; see why"}));

TEST(Rebuild, NeedsRoomForASecondImage) {
    const Outcome outcome = onServer(
        "/bin/busybox truncate -s 1125899906842624 $image; boot_files --rebuild-initramfs --override lpfc; ls $conf; "
        "cat "
        "/.machine/log");
    EXPECT_EQ("ended with 1\ndist.conf\n/bin/uname -r\n", outcome.output);
    EXPECT_THAT(outcome.errors, StartsWith("kvl: the disk of /boot has too little room: 1073741825 MiB are needed, "));
}

// ---- A dracut that fails ----

TEST(FailedDracut, IsToldWithTheCommandThatMovesTheFormerImageBack) {
    const Outcome outcome = onServer("dracut_fault failing; boot_files --rebuild-initramfs | tail -n 1; images; ended");
    EXPECT_EQ("ended with 4\nnone\n" + std::string(kInstalled) +
                  "[cna] MSGID_KVL_UPDATE_BEGUN_I: The update of the boot files begins: RAM disk image of "
                  "2.6.32-358.el6.x86_64\n"
                  "[cna] MSGID_KVL_UPDATE_FAILED_F: The update of the boot files failed: 'dracut' ended with 1, saying "
                  "'dracut: no module could be installed'" +
                  kNoImage,
              outcome.output);
    EXPECT_EQ("[1/1] dracut " + kImage + "\nkvl: 'dracut' ended with 1, saying 'dracut: no module could be installed'" +
                  kNoImage,
              outcome.errors);
}

TEST(FailedDracut, IsQuotedWhereItSaysSomething) {
    const Outcome outcome = onServer(
        "echo talk >/.machine/commands/sbin/depmod/-a; replace /sbin/dracut 'echo first; printf \"no  "
        "room\\tleft\\n\\n\"; "
        "exit 5'\n"
        "boot_files --override lpfc --rebuild-initramfs --quiet | tail -n 1");
    EXPECT_EQ("ended with 4\n", outcome.output);
    EXPECT_EQ("kvl: 'dracut' ended with 5, saying 'no  room left'" + kNoImage, outcome.errors);
    EXPECT_EQ("kvl: 'dracut' ended with 5" + kNoImage,
              onServer("echo talk >/.machine/commands/sbin/depmod/-a; replace /sbin/dracut 'exit 5'\n"
                       "kvl boot-files --override lpfc --rebuild-initramfs --quiet")
                  .errors)
        << "what depmod said is no matter of dracut's";
}

TEST(FailedDracut, IsAlsoOneThatASignalEndedOrThatWroteNothing) {
    const Outcome outcome =
        onServer("replace /sbin/dracut 'kill -9 $$'; boot_files --rebuild-initramfs --quiet | tail -n 1; " + kRestore +
                 "\nreplace /sbin/dracut 'exit 0'; boot_files --rebuild-initramfs --quiet | tail -n 1; " + kRestore +
                 "\nreplace /sbin/dracut ': >$1'; boot_files --rebuild-initramfs --quiet | tail -n 1");
    EXPECT_EQ("ended with 4\nended with 4\nended with 4\n", outcome.output);
    EXPECT_EQ("kvl: 'dracut' was ended by signal 9, saying 'Killed'" + kNoImage + "kvl: dracut wrote no image" +
                  kNoImage + "kvl: dracut wrote no image" + kNoImage,
              outcome.errors);
}

struct Fault {
    const char* name;
    std::string words;  // that dracut says
};

void PrintTo(const Fault& row, std::ostream* stream) {
    *stream << row.name;
}

class DracutFault : public testing::TestWithParam<Fault> {};

TEST_P(DracutFault, IsMendedOnRequest) {
    const Outcome outcome = onServer("dracut_fault " + std::string(GetParam().name) +
                                     "; before=$(stat -c '%i %s %Y' $image)\n"
                                     "boot_files --rebuild-initramfs --restore-on-failure --quiet 2>&1 | tail -n 2\n"
                                     "images; notes; [ \"$before\" = \"$(stat -c '%i %s %Y' $image)\" ] && echo same\n"
                                     "mended; boot_files --rebuild-initramfs --quiet | tail -n 1; images");
    EXPECT_EQ("kvl: 'dracut' ended with 1, saying '" + GetParam().words +
                  "'; the former image was moved back: " + kImage + " is as it was\nended with 1\n" + kInstalled +
                  "none\nsame\nended with 0\n" + kBuilt + kInstalled,
              outcome.output)
        << outcome.errors;
}

TEST_P(DracutFault, IsMendedByHandAsTold) {
    const Outcome outcome = onServer("dracut_fault " + std::string(GetParam().name) +
                                     "; boot_files --rebuild-initramfs --quiet 2>/tmp/errors | tail -n 1\n"
                                     "eval \"$(sed -n \"s/.*with '\\(mv -f.*\\)'$/\\1/p\" /tmp/errors)\"; images\n"
                                     "mended; boot_files --rebuild-initramfs --quiet | tail -n 2; images; notes");
    EXPECT_EQ("ended with 4\n" + std::string(kInstalled) + "none\nRebuilt " + kImage +
                  ", 168 bytes; the former one is " + kImage + ".org\nended with 0\n" + kBuilt + kInstalled,
              outcome.output)
        << outcome.errors;
    EXPECT_EQ("", outcome.errors);
}

TEST_P(DracutFault, IsMendedByTheNextRun) {
    const Outcome outcome = onServer("dracut_fault " + std::string(GetParam().name) +
                                     "; kvl boot-files --rebuild-initramfs --quiet >/dev/null 2>&1\n"
                                     "mended; boot_files --rebuild-initramfs --quiet; images; notes");
    EXPECT_THAT(outcome.output, HasSubstr("\n  1. " + kRestore + "\n  2. mv -f " + kImage + " "));
    EXPECT_THAT(outcome.output, HasSubstr(kImage + ", 72 bytes\n"));
    EXPECT_THAT(outcome.output, EndsWith("\nended with 0\n" + std::string(kBuilt) + kInstalled));
    EXPECT_EQ("kvl: an earlier rebuild was broken off or failed: the former image is " + kImage +
                  ".org and is moved back first; by hand: " + kRestore + "\n",
              outcome.errors);
}

INSTANTIATE_TEST_SUITE_P(Dracut, DracutFault,
                         testing::Values(Fault{"failing", "dracut: no module could be installed"},
                                         Fault{"full", "dracut: " + kImage + ": No space left on device"}));

TEST(FailedDracut, LeavesTheOverridesWhichIsNoMatterOfNothingChanged) {
    const Outcome outcome = onServer(
        "dracut_fault full\n"
        "boot_files --override lpfc --rebuild-initramfs --restore-on-failure --quiet 2>&1 | tail -n 2; images\n"
        "boot_files --override lpfc --rebuild-initramfs --restore-on-failure --quiet 2>&1 | tail -n 2");
    const std::string restored = "kvl: 'dracut' ended with 1, saying 'dracut: " + kImage +
                                 ": No space left on device'; the former image was moved back: " + kImage +
                                 " is as it was";
    EXPECT_EQ(restored + "; the override lines are in place\nended with 4\n" + kInstalled + "none\n" + restored +
                  "\nended with 1\n",
              outcome.output);
}

TEST(FailedDracut, IsToldWhereTheFormerImageCantBeMovedBack) {
    const Outcome outcome = onServer(
        "replace /sbin/dracut 'mkdir $1; exit 1'; boot_files --rebuild-initramfs --restore-on-failure --quiet | tail "
        "-n 1\n"
        "rmdir $image; $(echo " +
        kRestore +
        ")\n"
        "replace /sbin/dracut 'rm $1.org; exit 1'; boot_files --rebuild-initramfs --restore-on-failure --quiet | tail "
        "-n 1");
    EXPECT_EQ("ended with 4\nended with 4\n", outcome.output);
    const auto told = [](const std::string& why) {
        return "kvl: 'dracut' ended with 1; the former image could not be moved back (" + why +
               "): do it by hand, with '" + kRestore + "', or the kernel 2.6.32-358.el6.x86_64 can't be started\n";
    };
    EXPECT_EQ(told("Is a directory") + told(kImage + ".org is not the former image"), outcome.errors);
}

TEST(FailedMove, ChangesNothing) {
    const Outcome outcome = onServer(
        "replace /bin/mv 'echo no; exit 3'; boot_files --rebuild-initramfs --restore-on-failure --quiet | tail -n 1\n"
        "images; notes; log; boot_files --override lpfc --rebuild-initramfs --quiet | tail -n 1");
    EXPECT_EQ("ended with 1\n" + std::string(kInstalled) + "none\nended with 4\n", outcome.output);
    const std::string told =
        "kvl: 'mv -f' ended with 3, saying 'no', and " + kImage + " is as it was: see why, and run this again";
    EXPECT_EQ(told + "\n" + told + "; the override lines are in place\n", outcome.errors);
}

// ---- Both ----

TEST(BootFiles, AreNotRebuiltWhereTheOverridesFail) {
    const Outcome outcome = onServer(
        "fail_depmod 1; boot_files --override lpfc --rebuild-initramfs --quiet | tail -n 1; log; images; ended");
    EXPECT_THAT(outcome.output, StartsWith("ended with 4\n/sbin/depmod -a\n" + std::string(kInstalled) + "none\n"));
    EXPECT_THAT(outcome.output, HasSubstr("begins: overrides of lpfc, RAM disk image of 2.6.32-358.el6.x86_64\n"));
    const std::string depmod = kDepmodAdvice.substr(0, kDepmodAdvice.size() - 1);
    EXPECT_EQ("kvl: 'depmod -a' ended with 1" + depmod + "; the RAM disk image was not rebuilt\n", outcome.errors);
}

TEST(BootFiles, AreRecordedWhenTheyAreDone) {
    const Outcome outcome =
        onServer("kvl boot-files --override be2net,lpfc --rebuild-initramfs --quiet >/dev/null; ended");
    const std::string what = "overrides of be2net, overrides of lpfc, RAM disk image of 2.6.32-358.el6.x86_64\n";
    EXPECT_EQ("[cna] MSGID_KVL_UPDATE_BEGUN_I: The update of the boot files begins: " + what +
                  "[cna] MSGID_KVL_UPDATE_DONE_I: The update of the boot files is done: " + what,
              outcome.output);
}

TEST(BootFiles, AreLeftAloneByADryRun) {
    const Outcome outcome = onServer(
        "before=$(everything)\n"
        "boot_files --override be2net,lpfc,be2iscsi --rebuild-initramfs --restore-on-failure --dry-run | tail -n 6\n"
        "[ \"$before\" = \"$(everything)\" ] || echo changed; echo \"$before\" | grep -q ' /boot/initramfs.*img$' && "
        "echo looked\n"
        "grep -v uname /.machine/log");
    EXPECT_EQ(
        "  3. add to /etc/depmod.d/elxbe2iscsi.conf: 'override be2iscsi * weak-updates/updates/be2iscsi', 'override "
        "be2iscsi * weak-updates/be2iscsi'\n  4. depmod -a\n  5. mv -f " +
            kImage + " " + kImage + ".org\n  6. dracut " + kImage +
            "\nNothing was done: this is a dry run.\nended with 0\nlooked\n",
        outcome.output);
}

TEST(BootFiles, AreRefusedByADryRunAsByARealOne) {
    const Outcome outcome = onServer(
        "rm /sbin/dracut; boot_files --override lpfc --rebuild-initramfs --dry-run; find /opt /tmp -name 'kvl-*'");
    EXPECT_EQ("ended with 1\n", outcome.output);
    EXPECT_EQ("kvl: 'dracut' isn't installed: install the package that brings it\n", outcome.errors);
}

TEST(BootFiles, AreChangedByOneRunAtATime) {
    const Outcome outcome = onServer(
        "replace /sbin/dracut 'LD_PRELOAD= \"$program\" boot-files --override lpfc 2>&1; echo \"inner ended with $?\" "
        ">/tmp/inner; \"$program\" boot-files --override lpfc 2>/tmp/words; exec /.machine/dracut \"$@\"'\n"
        "boot_files --rebuild-initramfs --quiet | tail -n 1; cat /tmp/inner /tmp/words; ls $conf");
    EXPECT_THAT(outcome.output, StartsWith("ended with 0\ninner ended with 1\nkvl: another kvl (process "));
    EXPECT_THAT(outcome.output, EndsWith(") still works on this machine: try again when it has ended, or wait longer "
                                         "with --wait SECONDS\ndist.conf\n"));
}

TEST(BootFiles, AreNotChangedWhereThePlanCantBeShown) {
    const Outcome outcome =
        onServer("kvl boot-files --override lpfc --rebuild-initramfs >/dev/full; echo $?; images; ls $conf");
    EXPECT_EQ("1\n" + std::string(kInstalled) + "none\ndist.conf\n", outcome.output);
    EXPECT_EQ("kvl: the plan could not be written to standard output\n", outcome.errors);
}

TEST(BootFiles, AreDescribedForPrograms) {
    const Outcome outcome = onServer("kvl boot-files --override lpfc --rebuild-initramfs --quiet --format json");
    EXPECT_EQ(nlohmann::json::parse(R"({
        "result": "done",
        "plan": {
            "title": "Update of the boot files",
            "facts": [
                "kernel    2.6.32-358.el6.x86_64",
                "image     /boot/initramfs-2.6.32-358.el6.x86_64.img, 72 bytes",
                "if dracut fails, the former image is to be moved back by hand"
            ],
            "steps": [
                "add to /etc/depmod.d/elxlpfc.conf: 'override lpfc * weak-updates/updates/elx-lpfc', 'override lpfc * weak-updates/elx-lpfc'",
                "depmod -a",
                "mv -f /boot/initramfs-2.6.32-358.el6.x86_64.img /boot/initramfs-2.6.32-358.el6.x86_64.img.org",
                "dracut /boot/initramfs-2.6.32-358.el6.x86_64.img"
            ]
        },
        "done": [
            "Added the override lines, and depmod has run",
            "Rebuilt /boot/initramfs-2.6.32-358.el6.x86_64.img, 253 bytes; the former one is /boot/initramfs-2.6.32-358.el6.x86_64.img.org"
        ],
        "messages": []
    })"),
              nlohmann::json::parse(outcome.output));
    EXPECT_EQ("", outcome.errors);
}

TEST(BootFiles, AreDescribedForProgramsAlsoWhereTheyFail) {
    const Outcome outcome = onServer("rm /sbin/dracut; run kvl boot-files --rebuild-initramfs --format json");
    const auto end = outcome.output.rfind("ended with 1\n");
    ASSERT_NE(std::string::npos, end);
    EXPECT_EQ(nlohmann::json::parse(R"({"error": {"number": null, "name": null, "next": null,
                  "meaning": "'dracut' isn't installed: install the package that brings it"}})"),
              nlohmann::json::parse(outcome.output.substr(0, end)));
}

// ---- Signals and sudden ends ----

TEST(BootFiles, AreNotBrokenOffByASignal) {
    const std::vector<std::pair<std::string, std::string>> signals = {
        {"INT", "Interrupt"}, {"TERM", "Terminated"}, {"HUP", "Hangup"}};
    for (const auto& [name, title] : signals) {
        const Outcome outcome =
            onServer("replace /sbin/dracut 'kill -" + name +
                     " -$(cat /tmp/kvl); /tmp/await_note; exec /.machine/dracut \"$@\"'\n"
                     "run group_kvl boot-files --rebuild-initramfs 2>/tmp/errors | tail -n 2; images; notes\n"
                     "grep noted /tmp/errors >&2");
        EXPECT_EQ("Rebuilt " + kImage + ", 168 bytes; the former one is " + kImage + ".org; " + title +
                      " came meanwhile\nended with 0\n" + kBuilt + kInstalled,
                  outcome.output);
        EXPECT_THAT(outcome.errors, HasSubstr(": noted, and the update goes on to its end"));
    }
}

TEST(BootFiles, AreMendedAlsoBehindASignal) {
    const Outcome outcome = onServer(
        "replace /sbin/dracut 'kill -INT -$(cat /tmp/kvl); /tmp/await_note; exit "
        "2'\n"
        "run group_kvl boot-files --rebuild-initramfs --restore-on-failure 2>/tmp/errors | tail -n 1; images\n"
        "tail -n 1 /tmp/errors >&2");
    EXPECT_EQ("ended with 1\n" + std::string(kInstalled) + "none\n", outcome.output);
    EXPECT_EQ("kvl: 'dracut' ended with 2; the former image was moved back: " + kImage +
                  " is as it was; Interrupt came meanwhile\n",
              outcome.errors);
}

TEST(BootFiles, AreNotRebuiltBehindASignal) {
    const Outcome outcome = onServer(
        "replace /sbin/depmod 'kill -TERM -$(cat /tmp/kvl); /tmp/await_note'\n"
        "run group_kvl boot-files --override lpfc --rebuild-initramfs 2>/tmp/errors | tail -n 2; images\n"
        "tail -n 1 /tmp/errors >&2");
    EXPECT_EQ("Added the override lines, and depmod has run\nended with 4\n" + std::string(kInstalled) + "none\n",
              outcome.output);
    EXPECT_EQ(
        "kvl: the RAM disk image was not rebuilt, since a signal came before; the override lines are in place; "
        "Terminated came meanwhile\n",
        outcome.errors);
}

struct SuddenEnd {
    const char* title;
    const char* command;
    const char* script;
};

void PrintTo(const SuddenEnd& row, std::ostream* stream) {
    *stream << row.title;
}

class KilledBootFiles : public testing::TestWithParam<SuddenEnd> {};

TEST_P(KilledBootFiles, AreMadeByASecondRun) {
    const Outcome outcome =
        onServer("cp -P " + std::string(GetParam().command) + " /tmp/real; replace " + GetParam().command + " '" +
                 GetParam().script +
                 "'\n"
                 "group_kvl boot-files --override lpfc --rebuild-initramfs >/dev/null 2>&1; echo \"ended with $?\"\n"
                 "rm " +
                 GetParam().command + "; cp -P /tmp/real " + GetParam().command +
                 "\n"
                 "run kvl boot-files --override lpfc --rebuild-initramfs --wait 60 2>&1 | tail -n 1\n"
                 "images; tail -n 1 $image; grep -c override $conf/elxlpfc.conf; notes");
    EXPECT_EQ("ended with 137\nended with 0\n" + std::string(kBuilt) + kInstalled + "End of the image\n2\n",
              outcome.output)
        << outcome.errors;
}

INSTANTIATE_TEST_SUITE_P(
    Steps, KilledBootFiles,
    testing::Values(SuddenEnd{"depmod", "/sbin/depmod", "kill -9 $(cat /tmp/kvl); exit 1"},
                    SuddenEnd{"before the move", "/bin/mv", "kill -9 $(cat /tmp/kvl); exit 1"},
                    SuddenEnd{"behind the move", "/bin/mv", "/bin/busybox mv \"$@\"; kill -9 $(cat /tmp/kvl); exit 1"},
                    SuddenEnd{"before dracut", "/sbin/dracut", "kill -9 $(cat /tmp/kvl); exit 1"},
                    SuddenEnd{"half an image", "/sbin/dracut", "echo half >$1; kill -9 $(cat /tmp/kvl); exit 1"},
                    SuddenEnd{"a whole image", "/sbin/dracut", "/.machine/dracut \"$@\"; kill -9 $(cat /tmp/kvl)"},
                    SuddenEnd{"dracut goes on", "/sbin/dracut",
                              "kill -9 $(cat /tmp/kvl); sleep 0.1; exec /.machine/dracut \"$@\""}));

TEST(KilledBootFiles, KeepOthersAwayWhileDracutGoesOn) {
    const Outcome outcome = onServer(
        "replace /sbin/dracut 'kill -9 $(cat /tmp/kvl); /tmp/await_go; exec "
        "/.machine/dracut "
        "\"$@\"'\n"
        "group_kvl boot-files --rebuild-initramfs >/dev/null 2>&1; echo \"ended with $?\"\n"
        "boot_files --override lpfc; : >/tmp/go; ls $conf");
    EXPECT_EQ("ended with 137\nended with 1\ndist.conf\n", outcome.output);
    EXPECT_EQ(
        "kvl: another kvl, or a command that one has left behind, still works on this machine: try again when it has "
        "ended, or wait longer with --wait SECONDS\n",
        outcome.errors);
}

TEST(Rebuild, TrustsAnImageThatWasMadeByHandBehindABrokenOffOne) {
    const Outcome outcome = onServer(
        "dracut_fault full; kvl boot-files --rebuild-initramfs >/dev/null 2>&1; mended; rm $image $image.org\n"
        "echo 'made by hand' >$image; kvl boot-files --rebuild-initramfs --quiet >/dev/null; images; notes");
    EXPECT_EQ(std::string(kBuilt) + "made by hand\n", outcome.output);
    EXPECT_EQ("", outcome.errors);
}

TEST(Rebuild, TrustsAnImageThatWasMadeByHandBesideTheFormerOne) {
    const Outcome outcome = onServer(
        "dracut_fault full; kvl boot-files --rebuild-initramfs >/dev/null 2>&1; mended\n"
        "echo 'made by hand' >$image; kvl boot-files --rebuild-initramfs --quiet >/dev/null; images; notes");
    EXPECT_EQ(std::string(kBuilt) + "made by hand\n", outcome.output);
    EXPECT_EQ("", outcome.errors);
}

TEST(Rebuild, PutsAFormerImageBackWhereThePresentOneIsMissing) {
    const Outcome outcome =
        onServer("mv $image $image.org; kvl boot-files --rebuild-initramfs --quiet | tail -n 4; images");
    EXPECT_EQ("  1. " + kRestore + "\n  2. mv -f " + kImage + " " + kImage + ".org\n  3. dracut " + kImage +
                  "\nRebuilt " + kImage + ", 168 bytes; the former one is " + kImage + ".org\n" + kBuilt + kInstalled,
              outcome.output);
}

TEST(Rebuild, CountsTheRoomThatAHalfImageTakes) {
    const Outcome outcome = onServer(
        "dracut_fault full; kvl boot-files --rebuild-initramfs >/dev/null 2>&1; mended\n"
        "sed -i 2d $tree/temp/initramfs-*.txt  # as if it had been killed\n"
        "/bin/busybox truncate -s 1125899906842624 $image; boot_files --rebuild-initramfs --quiet 2>/dev/null | tail "
        "-n 1; "
        "images");
    EXPECT_EQ("ended with 0\n" + std::string(kBuilt) + kInstalled, outcome.output);
}

TEST(Rebuild, NeedsAPlaceForItsNote) {
    const Outcome outcome = onServer(
        "kvl pending --take >/dev/null; chmod 500 $tree/temp; boot_files --rebuild-initramfs --quiet | tail -n 1; "
        "images");
    EXPECT_EQ("ended with 1\n" + std::string(kInstalled) + "none\n", outcome.output);
    EXPECT_EQ(
        "kvl: nothing can be written into /opt/tarvenn/kvl/tmp/EMULEX/temp: see whether the disk has room; the RAM "
        "disk "
        "image was not rebuilt\n",
        outcome.errors);
}

}  // namespace
