#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "tests/provider/update/update_server.h"

namespace {

using kvl::test::Outcome;
using kvl::test::typeDuringUpdate;
using kvl::test::updateOnServer;
using testing::EndsWith;
using testing::HasSubstr;

constexpr const char* kSteps =
    "[1/5] making /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp anew\n"
    "[2/5] unpacking module.zip\n"
    "[3/5] finding the scripts\n"
    "[4/5] removing the installed tool with uninstall.sh\n"
    "[5/5] installing the new tool with install.sh -q\n";
const std::string kMarker = "/opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_install.txt";

TEST(ToolUpdate, ReplacesTheToolAndShowsTheVersionsBeforeAndAfter) {
    const Outcome outcome = updateOnServer(
        "tool_update tool; cat /.machine/log; cat /etc/emulexRMConfig | head -n 1; ended\n"
        "cd $tree; find . -type f | sort; cat temp/temp_ocm_*; cat /var/lib/hbacmd/version; ls $tool");
    EXPECT_EQ(
        "Update of the management tool\n"
        "  module    /modules/tool/module.zip\n"
        "  judged    by the texts of message.txt; up to 150 s are waited for an end text\n"
        "  now       6.3.12.1\n"
        "  1. delete /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp and make it anew\n"
        "  2. unzip -o \"/modules/tool/module.zip\" -d \"/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp\"\n"
        "  3. chmod 777 /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/*\n"
        "  4. /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/uninstall.sh\n"
        "  5. /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/install.sh -q\n"
        "Updated the management tool: 6.3.12.1 -> 6.4.3.1\n"
        "ended with 0\n"
        "/bin/uname -m\n"
        "/usr/sbin/ocmanager/hbacmd listhbas\n"
        "/usr/sbin/ocmanager/hbacmd dump 00-90-fa-3c-10-20\n"
        "/usr/sbin/ocmanager/hbacmd GetDumpDirectory 00-90-fa-3c-10-20\n"
        "/bin/uname -m\n"
        "/usr/sbin/ocmanager/hbacmd listhbas\n"
        "/usr/sbin/ocmanager/hbacmd dump 00-90-fa-3c-10-20\n"
        "/usr/sbin/ocmanager/hbacmd GetDumpDirectory 00-90-fa-3c-10-20\n"
        "ServerRemoteOperation:enabled\n"
        "[cna] MSGID_KVL_UPDATE_BEGUN_I: The update of the management tool begins: /modules/tool/module.zip\n"
        "[cna] MSGID_KVL_UPDATE_DONE_I: The update of the management tool is done: 6.3.12.1 -> 6.4.3.1\n"
        "./cache/CNA/CacheDump_02:00.0.txt\n"
        "./temp/DumpDirectory.txt\n"
        "./temp/Listhbas.txt\n"
        "./temp/temp_ocm_install.txt\n"
        "./temp/temp_ocm_uninstall.txt\n"
        "./temp/tmp/x64/install.sh\n./temp/tmp/x64/message.txt\n./temp/tmp/x64/uninstall.sh\n./temp/tmp/x64/version\n"
        "./temp/tmp/x86/install.sh\n./temp/tmp/x86/message.txt\n./temp/tmp/x86/uninstall.sh\n./temp/tmp/x86/version\n"
        "Installing the management tool 6.4.3.1\nInstall completed.\nSetup has ended.\n"
        "Removing the management tool\nUninstall completed.\nSetup has ended.\n"
        "6.4.3.1\n/usr/sbin/ocmanager/hbacmd\n",
        outcome.output);
    EXPECT_EQ(kSteps, outcome.errors);
}

TEST(ToolUpdate, TakesTheDirectoryOfTheMachine) {
    for (const char* machine : {"i686", "i386", "i686 x86_64"}) {
        const Outcome outcome = updateOnServer(std::string("replace /bin/uname 'echo ") + machine +
                                               "'; tool_update tool --quiet | sed -n '/^  [45]/p;/^Updated/p'");
        EXPECT_EQ(
            "  4. /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x86/uninstall.sh\n"
            "  5. /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x86/install.sh -q\n"
            "Updated the management tool: 6.3.12.1 -> 6.4.3.1\n",
            outcome.output);
    }
}

TEST(ToolUpdate, IsSkippedOnceItWasTriedAndTriedAgainOnRequest) {
    const Outcome outcome = updateOnServer(
        "tool_update tool >/dev/null 2>&1; rm /.machine/log; echo old >/var/lib/hbacmd/version\n"
        "tool_update tool; tool_update tool --dry-run; cat /.machine/log\n"
        "tool_update tool --again --quiet | sed -n '/^  now/p;/^  1/p;/^Updated/p;/^ended/p'; ended | tail -n 1");
    EXPECT_EQ(
        "ended with 3\nended with 3\n"
        "  now       old\n"
        "  1. delete /opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_install.txt, which would keep the update from being "
        "tried\n"
        "Updated the management tool: old -> 6.4.3.1\nended with 0\n"
        "[cna] MSGID_KVL_UPDATE_DONE_I: The update of the management tool is done: old -> 6.4.3.1\n",
        outcome.output);
    const std::string skipped = "kvl: skipped: an update was tried before, and " + kMarker +
                                " holds what it printed; --again tries it once more\n";
    EXPECT_EQ(skipped + skipped + "cat: can't open '/.machine/log': No such file or directory\n", outcome.errors);
}

TEST(ToolUpdate, ThatWasSkippedIsToldToOperators) {
    EXPECT_EQ(
        "[fc] MSGID_KVL_UPDATE_SKIPPED_I: The update of the management tool was skipped: an update was tried before, "
        "and /opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_install.txt holds what it printed; --again tries it once more\n",
        updateOnServer("kvl adapters >/dev/null; echo >$tree/temp/temp_ocm_install.txt\n"
                       "tool_update tool --family fc >/dev/null 2>&1; ended")
            .output);
}

TEST(ToolUpdate, WithAgainNeedsNoEarlierOne) {
    EXPECT_THAT(updateOnServer("tool_update tool --again --quiet").output,
                EndsWith("Updated the management tool: 6.3.12.1 -> 6.4.3.1\nended with 0\n"));
}

TEST(ToolUpdate, WithAgainIsRefusedWhereTheMarkerCantBeDeleted) {
    const Outcome outcome = updateOnServer(
        "kvl adapters >/dev/null; mkdir $tree/temp/temp_ocm_install.txt\n"
        "tool_update tool --again --quiet >/tmp/out; tail -n 1 /tmp/out; ls $tree/temp; ls $tool");
    EXPECT_EQ("ended with 1\nCNA\nDumpDirectory.txt\nFC\nListhbas.txt\ntemp_ocm_install.txt\n" + std::string() +
                  "/usr/sbin/ocmanager/hbacmd\n",
              outcome.output);
    EXPECT_EQ("kvl: " + kMarker + " can't be deleted: Is a directory\n", outcome.errors);
}

TEST(ToolUpdate, InstallsTheToolWhereThereIsNone) {
    const Outcome outcome = updateOnServer("remove_tool; tool_update tool --quiet | grep -v '^  [mj1-5]'; ls $tool");
    EXPECT_EQ(
        "Update of the management tool\n  now       not installed\n"
        "Updated the management tool: not installed -> 6.4.3.1\nended with 0\n/usr/sbin/ocmanager/hbacmd\n",
        outcome.output);
}

TEST(ToolUpdate, TellsNoVersionWhereThereIsNoAdapter) {
    const Outcome outcome = updateOnServer("rm -r $ports/*; tool_update tool --quiet | grep -v '^  [mj1-5]'");
    EXPECT_EQ(
        "Update of the management tool\n  now       version unknown\n"
        "Updated the management tool: version unknown -> version unknown\nended with 0\n",
        outcome.output);
}

TEST(ToolUpdate, WaitsForTheEndOfEachScriptsOutput) {
    const Outcome outcome = updateOnServer(
        "fault never-ending.uninstall; fault never-ending.install; export KVL_MEANWHILE=/tmp/m\n"
        "replace /tmp/m \"echo >>/tmp/looks; cd $tree/temp; for file in temp_ocm_*; do echo Setup has ended >>\\$file; "
        "done\"\n"
        "tool_update tool --quiet | tail -n 2; wc -l </tmp/looks");
    EXPECT_EQ("Updated the management tool: 6.3.12.1 -> 6.4.3.1\nended with 0\n2\n", outcome.output);
}

struct Typed {
    const char* answer;
    const char* ends;
};

void PrintTo(const Typed& row, std::ostream* stream) {
    *stream << testing::PrintToString(std::string(row.answer));
}

class AnswerAboutTheTool : public testing::TestWithParam<Typed> {};

TEST_P(AnswerAboutTheTool, Decides) {
    const std::string shown =
        typeDuringUpdate(GetParam().answer, "run kvl update tool --module /modules/tool --quiet; ls $tree/temp | cat");
    EXPECT_THAT(shown, HasSubstr("tmp/x64/install.sh -q\nUpdate the tool now? [y/N] " + std::string(GetParam().ends)));
}

INSTANTIATE_TEST_SUITE_P(
    Words, AnswerAboutTheTool,
    testing::Values(Typed{"y\n", "Updated the management tool: 6.3.12.1 -> 6.4.3.1\nended with 0\n"},
                    Typed{"no\n",
                          "kvl: skipped: the operator said no\nended with 3\nCNA\nDumpDirectory.txt\nFC\n"
                          "Listhbas.txt\n"}));

TEST(ToolUpdate, ShowsItsStepsOnATerminal) {
    const std::string shown = typeDuringUpdate("", "fault never-ending.uninstall; tool_update tool");
    EXPECT_THAT(shown, HasSubstr("\rremoving the installed tool with uninstall.sh"));
    EXPECT_THAT(shown, HasSubstr("30 s left  waiting for the end of its output, 4 more looks behind this one"));
    EXPECT_THAT(shown, HasSubstr("30 s left  waiting for the end of its output, 0 more looks behind this one"));
}

TEST(DryRun, OfAToolUpdateChangesNothing) {
    const Outcome outcome = updateOnServer(
        "tool_update tool --quiet >/dev/null; rm -f /.machine/log; state >/dev/shm/before\n"
        "tool_update tool --again --dry-run; tool_update tool-without-x64 --again --dry-run\n"
        "cat /.machine/log; state | /bin/busybox diff /dev/shm/before - && echo same");
    EXPECT_EQ(
        "Update of the management tool\n"
        "  module    /modules/tool/module.zip\n"
        "  judged    by the texts of message.txt; up to 150 s are waited for an end text\n"
        "  1. delete /opt/tarvenn/kvl/tmp/EMULEX/temp/temp_ocm_install.txt, which would keep the update from being "
        "tried\n"
        "  2. delete /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp and make it anew\n"
        "  3. unzip -o \"/modules/tool/module.zip\" -d \"/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp\"\n"
        "  4. chmod 777 /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/*\n"
        "  5. /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/uninstall.sh\n"
        "  6. /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/install.sh -q\n"
        "Nothing was done: this is a dry run.\n"
        "ended with 0\nended with 1\n/bin/uname -m\n/bin/uname -m\nsame\n",
        outcome.output);
    EXPECT_EQ(
        "kvl: the update module lacks the expected file or holds too many, or its family is unknown: module.zip holds "
        "no x64/uninstall.sh "
        "(error 1d): see whether the module is one of the management tool, and for this machine\n",
        outcome.errors);
}

}  // namespace
