#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "machines/replay.h"
#include "tests/machines/outside.h"
#include "tests/machines/recording_text.h"

namespace kvl::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// Names for the scripts: the tool, its state, its dumps, one port of each kind, and two ways of switching a fault on.
constexpr const char* kNames =
    "tool=/usr/sbin/ocmanager/hbacmd state=/var/lib/hbacmd dumps=/var/opt/ocmanager/Dump\n"
    "nic=00-90-fa-3c-10-20 fcoe=10:00:00:90:fa:3c:10:21 fc=10:00:00:00:c9:d4:7e:30 fc16=10:00:00:90:fa:5e:41:0a\n"
    "fault() { mkdir -p $state/faults; printf '%s' \"${2-}\" >$state/faults/$1; }\n"
    "firmware() { mkdir -p /tmp/module; printf 'Version: %s\\n' \"$2\" >/tmp/module/$1; }\n"
    "version() { sed -n \"s/^$2: //p\" $state/ports/$1/dump; }\n";

// A script that waits until a process sleeps for this long.
std::string untilItSleeps(const std::string& seconds) {
    return "until cat /.proc/[0-9]*/cmdline 2>/dev/null | tr '\\0' ' ' | grep -q 'busybox [s]leep " + seconds +
           " '; do sleep 0.002; done\n";
}

class AdapterTool : public testing::Test {
protected:
    /// Runs a script on the server with adapters of all kinds.
    Outcome run(const std::string& script) const {
        machines::PrivateRootOptions options;
        options.recording = machines::findRecording("adapters-mixed");
        options.keptRoot = keptRoot_;
        return runInside(options, kNames + script);
    }

    std::string output(const std::string& script) const { return run(script).output; }

    std::string keptRoot_;
};

TEST_F(AdapterTool, ListsThePortsWithABlockEach) {
    const Outcome outcome = run("$tool listhbas");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output, StartsWith("Manageable HBA List\n"
                                           "\n"
                                           "Permanent MAC  : 00-90-fa-3c-10-20\n"
                                           "Current MAC    : 00-90-fa-3c-10-20\n"
                                           "Host Name      : server6\n"
                                           "Mfg            : Emulex Corporation\n"
                                           "Serial No.     : BG21100417\n"
                                           "Port Number    : 0\n"
                                           "PCI Bus Number : 2\n"
                                           "PCI Function   : 0\n"
                                           "Port Type      : NIC\n"
                                           "Model          : OCe11102-F\n"
                                           "\n"
                                           "Permanent MAC  : 00-90-fa-3c-10-24\n"));
    EXPECT_THAT(outcome.output, EndsWith("\n"
                                         "\n"
                                         "Port WWN       : 10:00:00:00:c9:d4:7e:31\n"
                                         "Node WWN       : 20:00:00:00:c9:d4:7e:31\n"
                                         "Host Name      : server6\n"
                                         "Mfg            : Emulex Corporation\n"
                                         "Serial No.     : FC82110931\n"
                                         "Port Number    : 1\n"
                                         "Mode           : Initiator\n"
                                         "PCI Bus Number : 21\n"
                                         "PCI Function   : 1\n"
                                         "Port Type      : FC\n"
                                         "Model          : LPe12002\n"));
}

TEST_F(AdapterTool, ListsTheKindsAndPlacesOfAllPorts) {
    EXPECT_EQ(output("$tool listhbas | sed -n 's/^PCI Bus Number : //p; s/^PCI Function   : //p; s/^Port Type .*: //p' "
                     "| tr '\\n' ' '"),
              "2 0 NIC 2 1 NIC 2 2 FCoE 2 3 FCoE 6 0 NIC 6 1 NIC 6 2 iSCSI 6 3 iSCSI 6 8 FCoE 6 9 FCoE 10 0 FC "
              "15 0 iSCSI 15 1 iSCSI 21 0 FC 21 1 FC ");
}

TEST_F(AdapterTool, ListsNothingButItsTitleWithoutPorts) {
    const Outcome outcome = run("rm -r $state/ports; $tool listhbas");
    EXPECT_EQ(outcome.output, "Manageable HBA List\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(AdapterTool, ListsAPortThatWasAdded) {
    EXPECT_EQ(output("rm -r $state/ports/*; mkdir $state/ports/1; printf 'Port WWN       : 1' >$state/ports/1/list\n"
                     "$tool listhbas"),
              "Manageable HBA List\n\nPort WWN       : 1\n");
}

TEST_F(AdapterTool, DumpsAPortIntoAFileWithANameOfItsOwn) {
    EXPECT_EQ(output("$tool dump $nic; $tool dump $fc; cd $dumps; ls; cat dump_0001.txt; cat dump_0002.txt"),
              "The dump of 00-90-fa-3c-10-20 has been written.\n"
              "The dump of 10:00:00:00:c9:d4:7e:30 has been written.\n"
              "dump_0001.txt\n"
              "dump_0002.txt\n"
              "Port WWPN/MAC: 00-90-fa-3c-10-20\n"
              "Host Name: server6\n"
              "Model: OCe11102-F\n"
              "Serial No.: BG21100417\n"
              "Port Type: NIC\n"
              "FW Version: 4.6.247.5\n"
              "Boot Bios Version: 4.6.247.5\n"
              "Driver Name: be2net\n"
              "Driver Version: 4.6.62.0u\n"
              "OneCommand Manager: 6.3.12.1\n"
              "Port WWN: 10:00:00:00:c9:d4:7e:30\n"
              "Host Name: server6\n"
              "Model: LPe12002\n"
              "Serial No.: FC82110931\n"
              "Port Type: FC\n"
              "Hardware Version: 31004549\n"
              "Firmware Version: 2.01a12 (U3D2.01A12), sli-3\n"
              "Boot Bios Version: 5.03a4\n"
              "Driver Name: lpfc\n"
              "Driver Version: 8.3.7.18\n"
              "OneCommand Manager: 6.3.12.1\n");
}

TEST_F(AdapterTool, ShowsTheToolsVersionInADump) {
    EXPECT_THAT(output("echo 7.0.1.2 >$state/version; $tool dump $nic; tail -n 1 $dumps/*"),
                EndsWith("\nOneCommand Manager: 7.0.1.2\n"));
}

TEST_F(AdapterTool, DatesEachDumpBehindAllOthers) {
    EXPECT_EQ(output("for port in $nic $fcoe $fc $nic $fc $fcoe; do $tool dump $port >/dev/null; done; cd $dumps\n"
                     "stat -c '%Y %n' * | sort -n | cut -d ' ' -f 2; stat -c %Y * | sort -u | wc -l"),
              "dump_0001.txt\ndump_0002.txt\ndump_0003.txt\ndump_0004.txt\ndump_0005.txt\ndump_0006.txt\n6\n");
}

TEST_F(AdapterTool, DatesADumpBehindAFileOfTheFuture) {
    EXPECT_EQ(output("mkdir -p $dumps; touch -d @4000000000 $dumps/foreign.txt; $tool dump $nic >/dev/null\n"
                     "stat -c %Y $dumps/dump_0001.txt"),
              "4000000001\n");
}

TEST_F(AdapterTool, TellsWhereTheDumpsAre) {
    EXPECT_EQ(output("$tool GetDumpDirectory $nic"), "Dump Directory = /var/opt/ocmanager/Dump\n");
    EXPECT_EQ(
        output("echo /tmp/dumps >$state/dump_directory; $tool GetDumpDirectory $fc; $tool dump $fc; ls /tmp/dumps"),
        "Dump Directory = /tmp/dumps\nThe dump of 10:00:00:00:c9:d4:7e:30 has been written.\ndump_0001.txt\n");
}

TEST_F(AdapterTool, RefusesWhatMakesNoSense) {
    const Outcome outcome =
        run("set -f; for call in '' reboot dump 'dump 10:00:00:90:fa:5e' 'dump .*' 'GetDumpDirectory 1' Download "
            "'Download 1 2' "
            "'DUMP'; do\n"
            "    $tool $call; echo $?\ndone");
    EXPECT_EQ(outcome.output, "1\n1\n1\n1\n1\n1\n1\n1\n1\n");
    EXPECT_THAT(
        linesOf(outcome.errors),
        ElementsAre("hbacmd: usage: hbacmd listhbas | dump ADDRESS | GetDumpDirectory ADDRESS | Download ADDRESS "
                    "FILE",
                    StartsWith("hbacmd: usage: "), "hbacmd: no port has the address ",
                    "hbacmd: no port has the address 10:00:00:90:fa:5e", "hbacmd: no port has the address .*",
                    "hbacmd: no port has the address 1", "hbacmd: no port has the address ",
                    "hbacmd: no port has the address 1", StartsWith("hbacmd: usage: ")));
}

TEST_F(AdapterTool, NotesItsCallsAmongThoseOfTheStandIns) {
    EXPECT_EQ(
        output("$tool GetDumpDirectory $nic >/dev/null; uname -r >/dev/null; $tool 2>/dev/null; cat /.machine/log"),
        "/usr/sbin/ocmanager/hbacmd GetDumpDirectory 00-90-fa-3c-10-20\n/bin/uname -r\n"
        "/usr/sbin/ocmanager/hbacmd\n");
}

TEST_F(AdapterTool, NeedsNoToolOfTheServer) {
    EXPECT_THAT(output("firmware new.ufi 4.9.1.2; rm /bin/[!bs]* /bin/s[!h]*; PATH=\n"
                       "$tool listhbas; $tool dump $nic; $tool Download $nic /tmp/module/new.ufi; $tool dump $nic\n"
                       "/bin/busybox cat $dumps/dump_0002.txt"),
                HasSubstr("\nFW Version: 4.9.1.2\n"));
}

TEST_F(AdapterTool, KeepsItsStateInAKeptRoot) {
    const ScratchDirectory scratch;
    keptRoot_ = scratch / "root";
    EXPECT_EQ(run("firmware new.ufi 4.9.1.2; $tool dump $nic; $tool Download $nic /tmp/module/new.ufi").status, 0);
    run("fault no-dump-at-first 2");
    EXPECT_EQ(output("$tool dump $nic >/dev/null; ls $dumps"), "dump_0001.txt\n");
    EXPECT_EQ(output("$tool dump $nic >/dev/null; ls $dumps"), "dump_0001.txt\n");
    EXPECT_THAT(output("$tool dump $nic; cat $dumps/dump_0002.txt"), HasSubstr("\nFW Version: 4.9.1.2\n"));
}

TEST_F(AdapterTool, DownloadSaysThatItIsComplete) {
    const Outcome outcome = run("firmware new.ufi 4.9.1.2; $tool Download $nic \"/tmp/module/new.ufi\"");
    EXPECT_EQ(outcome.output,
              "Downloading /tmp/module/new.ufi to 00-90-fa-3c-10-20\nDownload Complete.\nEnd of download.\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(AdapterTool, DownloadIsSeenInTheNextDumpAlone) {
    EXPECT_EQ(output("firmware new.ufi 4.9.1.2; { $tool dump $nic; $tool Download $nic /tmp/module/new.ufi\n"
                     "$tool dump $nic; } >/dev/null; cd $dumps; grep '^FW' dump_0001.txt; grep '^FW' dump_0002.txt"),
              "FW Version: 4.6.247.5\nFW Version: 4.9.1.2\n");
}

TEST_F(AdapterTool, DownloadOfAUfiFileReachesAllPortsOfTheAdapter) {
    EXPECT_EQ(output("firmware new.ufi 4.9.1.2; $tool Download $fcoe /tmp/module/new.ufi >/dev/null\n"
                     "for port in 01 02 03 04 05; do version $port 'FW Version'; done; version 01 'Boot Bios Version'"),
              "4.9.1.2\n4.9.1.2\n4.9.1.2\n4.9.1.2\n10.2.340.19\n4.6.247.5\n");
}

TEST_F(AdapterTool, DownloadOfAGrpFileReachesAllPortsOfTheAdapter) {
    EXPECT_EQ(output("firmware new.grp '10.4a2 (X10.4A2)'; $tool Download $fc /tmp/module/new.grp >/dev/null\n"
                     "for port in 11 14 15; do version $port 'Firmware Version'; done"),
              "1.12a5 (U3D1.12A5), sli-4\n10.4a2 (X10.4A2)\n10.4a2 (X10.4A2)\n");
}

TEST_F(AdapterTool, DownloadOfAnAllFileReachesThePortAlone) {
    EXPECT_EQ(output("firmware new.all '2.02a1 (U3D2.02A1), sli-3'; $tool Download $fc /tmp/module/new.all >/dev/null\n"
                     "for port in 14 15; do version $port 'Firmware Version'; done"),
              "2.02a1 (U3D2.02A1), sli-3\n2.01a12 (U3D2.01A12), sli-3\n");
}

TEST_F(AdapterTool, DownloadOfAPrgFileChangesTheBootCodeOfThePort) {
    EXPECT_EQ(output("firmware new.prg 5.10a1; $tool Download $fc /tmp/module/new.prg >/dev/null\n"
                     "version 14 'Boot Bios Version'; version 15 'Boot Bios Version'; version 14 'Firmware Version'"),
              "5.10a1\n5.03a4\n2.01a12 (U3D2.01A12), sli-3\n");
}

TEST_F(AdapterTool, DownloadRefusesAFileThatIsNoneForTheAdapter) {
    const Outcome outcome = run(
        "cp -R $state /tmp/before; firmware new.ufi 4.9.1.2; firmware new.all 2.1a1; firmware new.txt 1\n"
        "echo text >/tmp/module/no.all; firmware bad.all 'a/b'\n"
        "$tool Download $fc /tmp/module/new.ufi; $tool Download $nic /tmp/module/new.all\n"
        "for file in none.all new.txt no.all bad.all; do $tool Download $fc /tmp/module/$file; echo $?; done\n"
        "$tool Download $fc; for file in $state/ports/*/*; do /bin/busybox cmp $file /tmp/before/${file#$state}; done");
    EXPECT_EQ(outcome.output, "1\n1\n1\n1\n");
    EXPECT_THAT(
        linesOf(outcome.errors),
        ElementsAre("hbacmd: /tmp/module/new.ufi is not for this adapter",
                    "hbacmd: /tmp/module/new.all is not for this adapter", "hbacmd: /tmp/module/none.all can't be read",
                    "hbacmd: /tmp/module/new.txt is no firmware file", "hbacmd: /tmp/module/no.all holds no version",
                    "hbacmd: /tmp/module/bad.all holds no version", "hbacmd:  can't be read"));
}

TEST_F(AdapterTool, SlowOneWaitsBeforeItDoesAnything) {
    EXPECT_EQ(output("fault slow 0.01; $tool GetDumpDirectory $nic"), "Dump Directory = /var/opt/ocmanager/Dump\n");
    EXPECT_EQ(output("fault slow 1000; $tool listhbas >/tmp/list &\n" + untilItSleeps("1000") + "wc -c </tmp/list"),
              "0\n");
    EXPECT_EQ(output("fault slow; $tool listhbas >/tmp/list &\n" + untilItSleeps("5") + "wc -c </tmp/list"), "0\n");
}

TEST_F(AdapterTool, FailingOneEndsWithItsStatusAndDoesNothing) {
    const Outcome outcome =
        run("fault failing; $tool listhbas; echo $?; $tool dump $nic; echo $?\n"
            "fault failing 82; $tool GetDumpDirectory $nic; echo $?; ls $dumps 2>/dev/null");
    EXPECT_EQ(outcome.output, "1\n1\n82\n");
    EXPECT_EQ(outcome.errors,
              "hbacmd: the adapters do not answer\nhbacmd: the adapters do not answer\n"
              "hbacmd: the adapters do not answer\n");
}

TEST_F(AdapterTool, SilentOneDoesNothingAndEndsWell) {
    const Outcome outcome =
        run("fault silent; firmware new.ufi 9; for call in listhbas \"dump $nic\" \"GetDumpDirectory $nic\" "
            "\"Download $nic /tmp/module/new.ufi\"; do $tool $call; echo $?; done; ls $dumps 2>/dev/null\n"
            "version 01 'FW Version'");
    EXPECT_EQ(outcome.output, "0\n0\n0\n0\n4.6.247.5\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST_F(AdapterTool, KilledOneDiesInTheMiddleOfItsAnswer) {
    const Outcome whole = run("$tool listhbas");
    const Outcome half = run("fault killed; exec $tool listhbas");
    EXPECT_EQ(half.status, 128 + 9);
    EXPECT_EQ(half.output, whole.output.substr(0, whole.output.size() / 2));
    EXPECT_EQ(run("fault killed; exec $tool GetDumpDirectory $nic").output, "Dump Directory = /va");
}

TEST_F(AdapterTool, KilledOneLeavesHalfADumpThatIsTheNewest) {
    const std::string dump = output("$tool dump $nic >/dev/null; cat $dumps/*");
    EXPECT_EQ(output("$tool dump $fc >/dev/null; fault killed; $tool dump $nic >/dev/null 2>&1; cd $dumps\n"
                     "cat dump_0002.txt; [ $(stat -c %Y dump_0001.txt) -lt $(stat -c %Y dump_0002.txt) ]; echo $?"),
              dump.substr(0, (dump.size() - 1) / 2) + "0\n");
}

TEST_F(AdapterTool, KilledOneInstallsNothing) {
    const Outcome outcome =
        run("fault killed.Download; firmware new.ufi 9; $tool dump $nic >/dev/null && echo alive\n"
            "(exec $tool Download $nic /tmp/module/new.ufi); echo; echo $?; version 01 'FW Version'");
    EXPECT_THAT(outcome.output, StartsWith("alive\nDownloading /tmp/"));
    EXPECT_THAT(outcome.output, EndsWith("\n4.6.247.5\n"));
    EXPECT_THAT(outcome.output, Not(HasSubstr("Complete")));
}

TEST_F(AdapterTool, StatusMayDisagreeWithTheAnswer) {
    EXPECT_EQ(output("fault status 3; $tool GetDumpDirectory $nic; echo $?; fault status; $tool dump $nic; echo $?\n"
                     "ls $dumps; fault status 0; fault incomplete-download; firmware new.ufi 9\n"
                     "$tool Download $nic /tmp/module/new.ufi >/dev/null; echo $?"),
              "Dump Directory = /var/opt/ocmanager/Dump\n3\nThe dump of 00-90-fa-3c-10-20 has been written.\n1\n"
              "dump_0001.txt\n0\n");
}

TEST_F(AdapterTool, DumpsAnotherPortFirst) {
    EXPECT_EQ(output("fault other-port-first; for try in 1 2; do $tool dump $nic; done; ls $state/faults\n"
                     "grep -h WWPN/MAC $dumps/*"),
              "The dump of 00-90-fa-3c-10-20 has been written.\nThe dump of 00-90-fa-3c-10-20 has been written.\n"
              "Port WWPN/MAC: 00-90-fa-3c-10-24\nPort WWPN/MAC: 00-90-fa-3c-10-20\n");
}

TEST_F(AdapterTool, DumpsAnotherPortAsOftenAsToldTo) {
    EXPECT_EQ(output("fault other-port-first 3; for try in 1 2 3 4; do $tool dump $fc >/dev/null; done\n"
                     "grep -h -e 'Port WW' $dumps/*"),
              "Port WWPN/MAC: 00-90-fa-3c-10-20\nPort WWPN/MAC: 00-90-fa-3c-10-20\nPort WWPN/MAC: 00-90-fa-3c-10-20\n"
              "Port WWN: 10:00:00:00:c9:d4:7e:30\n");
}

TEST_F(AdapterTool, DumpsOnlyAtTheThirdTry) {
    EXPECT_EQ(output("fault no-dump-at-first; for try in 1 2 3; do $tool dump $nic; ls $dumps; done"),
              "The dump of 00-90-fa-3c-10-20 has been written.\nThe dump of 00-90-fa-3c-10-20 has been written.\n"
              "The dump of 00-90-fa-3c-10-20 has been written.\ndump_0001.txt\n");
}

TEST_F(AdapterTool, TellsADirectoryLineWithoutAValue) {
    const Outcome outcome = run("fault no-dump-directory; $tool GetDumpDirectory $nic");
    EXPECT_EQ(outcome.output, "Dump Directory = \n");
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(AdapterTool, CompletesADownloadOnlyAtALaterTry) {
    EXPECT_EQ(output("fault incomplete-download 2; firmware new.ufi 9; for try in 1 2 3; do\n"
                     "    $tool Download $nic /tmp/module/new.ufi | sed -n 2p; version 01 'FW Version'; done"),
              "Download Failed: the adapter did not answer.\n4.6.247.5\nDownload Failed: the adapter did not answer.\n"
              "4.6.247.5\nDownload Complete.\n9\n");
    EXPECT_EQ(output("fault incomplete-download; firmware new.ufi 9; for try in 1 2; do\n"
                     "    $tool Download $nic /tmp/module/new.ufi >/dev/null; echo $?; done"),
              "1\n0\n");
}

TEST_F(AdapterTool, CompletesADownloadAtOnceWithAFaultOfNoTimes) {
    EXPECT_EQ(
        output("fault incomplete-download 0; firmware new.ufi 9; $tool Download $nic /tmp/module/new.ufi | sed -n 2p\n"
               "ls $state/faults"),
        "Download Complete.\n");
}

TEST_F(AdapterTool, TellsTheEndOfAFailedDownloadToo) {
    const Outcome outcome =
        run("fault incomplete-download; firmware new.ufi 9; $tool Download $nic /tmp/module/new.ufi");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(
        linesOf(outcome.output),
        ElementsAre(StartsWith("Downloading "), "Download Failed: the adapter did not answer.", "End of download."));
}

TEST_F(AdapterTool, DownloadMayLeaveItsSuccessOut) {
    EXPECT_EQ(output("fault no-success-text; firmware new.ufi 9; $tool Download $nic /tmp/module/new.ufi; echo $?\n"
                     "version 01 'FW Version'"),
              "Downloading /tmp/module/new.ufi to 00-90-fa-3c-10-20\nEnd of download.\n0\n9\n");
}

TEST_F(AdapterTool, DownloadMayLeaveItsEndOut) {
    EXPECT_EQ(
        output("fault never-ending; fault late-end 0; firmware new.ufi 9; $tool Download $nic /tmp/module/new.ufi\n"
               "echo $?; version 01 'FW Version'"),
        "Downloading /tmp/module/new.ufi to 00-90-fa-3c-10-20\nDownload Complete.\n0\n9\n");
}

TEST_F(AdapterTool, DownloadMayTellItsEndWhenTheToolHasLongEnded) {
    EXPECT_EQ(output("fault late-end 0.02; firmware new.ufi 9; $tool Download $nic /tmp/module/new.ufi >/tmp/result\n"
                     "version 01 'FW Version'; until grep '^End' /tmp/result; do sleep 0.002; done; cat /tmp/result"),
              "9\nEnd of download.\n"
              "Downloading /tmp/module/new.ufi to 00-90-fa-3c-10-20\nDownload Complete.\nEnd of download.\n");
    EXPECT_EQ(output("fault late-end; firmware new.ufi 9; $tool Download $nic /tmp/module/new.ufi >/tmp/result\n" +
                     untilItSleeps("45") + "tail -n 1 /tmp/result"),
              "Download Complete.\n");
}

TEST_F(AdapterTool, FloodsItsReader) {
    EXPECT_EQ(output("fault flood; $tool GetDumpDirectory $nic >/tmp/answer; wc -c -l </tmp/answer | tr -s ' '\n"
                     "tail -n 1 /tmp/answer; fault flood 1; $tool GetDumpDirectory $nic | wc -l | tr -d ' '"),
              " 163841 10485801\nDump Directory = /var/opt/ocmanager/Dump\n16385\n");
}

TEST_F(AdapterTool, AnswersAtTheEndOfAnEndlessLine) {
    EXPECT_EQ(output("fault endless-line; $tool GetDumpDirectory $nic >/tmp/answer; wc -c -l </tmp/answer | tr -s ' '\n"
                     "tail -c 44 /tmp/answer; fault endless-line 1; $tool listhbas | head -n 1 | wc -c | tr -d ' '"),
              " 1 4194345\n...Dump Directory = /var/opt/ocmanager/Dump\n1048596\n");
}

TEST_F(AdapterTool, LeavesAProcessThatHoldsItsOutputOpen) {
    EXPECT_EQ(output("fault lingering 1000; $tool GetDumpDirectory $nic >/tmp/answer; echo $?; cat /tmp/answer\n" +
                     untilItSleeps("1000") + "ls -l /.proc/[0-9]*/fd/1 2>/dev/null | grep -c 'fd/1 -> /tmp/answer'"),
              "0\nDump Directory = /var/opt/ocmanager/Dump\n1\n");
}

TEST_F(AdapterTool, SuffersAFaultForOneCommandAlone) {
    EXPECT_EQ(output("fault failing.dump 4; $tool dump $nic 2>/dev/null; echo $?; $tool listhbas | head -n 1"),
              "4\nManageable HBA List\n");
}

TEST_F(AdapterTool, RecoversWhenTheFaultIsTakenAway) {
    EXPECT_EQ(output("fault failing; rm $state/faults/failing; $tool GetDumpDirectory $nic"),
              "Dump Directory = /var/opt/ocmanager/Dump\n");
}

TEST_F(AdapterTool, IsMissingWhereItIsNotInstalled) {
    machines::PrivateRootOptions options;
    options.recording = machines::findRecording("adapters-none");
    EXPECT_EQ(runInside(options, "/usr/sbin/ocmanager/hbacmd listhbas; echo $?").output, "127\n");
}

TEST_F(AdapterTool, CanBeTakenAwayFromAServer) {
    EXPECT_EQ(output("rm $tool; $tool listhbas; echo $?"), "127\n");
}

TEST_F(AdapterTool, RunsOnTheServerWithFcAdaptersToo) {
    machines::PrivateRootOptions options;
    options.recording = machines::findRecording("adapters-fc");
    EXPECT_EQ(
        runInside(options, std::string(kNames) + "$tool dump 10:00:00:00:c9:e1:07:51 >/dev/null\n"
                                                 "sed -n 's/ Version: / /p; s/^Port WWN: //p; s/^OneC.*: //p' $dumps/*")
            .output,
        "10:00:00:00:c9:e1:07:51\nHardware 31004549\nFirmware 2.01a12 (U3D2.01A12), sli-3\nBoot Bios 5.03a4\n"
        "Driver 8.3.5.86\n6.1.20.1\n");
}

}  // namespace
}  // namespace kvl::test
