#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <ostream>

#include "tests/provider/update/made_archive.h"
#include "tests/provider/update/update_server.h"

namespace {

using kvl::test::makeArchive;
using kvl::test::Outcome;
using kvl::test::ScratchDirectory;
using kvl::test::updateOnServer;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// What a command prints besides its answer and its steps, and how it ended.
constexpr const char* kTold =
    "told() { \"$@\" 2>&1 >/dev/null | sed '/^\\[[0-9]\\/[0-9]\\]/d'; }\n"
    "run() { \"$@\"; echo \"ended with $?\" >&2; }\n";

Outcome told(const std::string& script) {
    return updateOnServer(kTold + script);
}

const std::string kToolAdvice =
    " (error 0): run that command by hand, and see whether its services run and the adapters answer";
const std::string kModuleAdvice = " (error 1a): get the module again from its maker";
const std::string kContentAdvice = " (error 1d): see whether the module is for this family of adapters";
const std::string kToolContentAdvice =
    " (error 1d): see whether the module is one of the management tool, and for this machine";
const std::string kAddressAdvice =
    " (error 1b): see what 'hbacmd listhbas' prints of the adapter, and whether the family is the right one";
const std::string kFormAdvice =
    " (error 0): see what 'hbacmd listhbas' prints: tmp/EMULEX/temp/Listhbas.txt below the install directory holds it";
const std::string kFolderAdvice = " (error 1c): remove the folder by hand, and see why it can't be deleted";
const std::string kDirectoryAdvice =
    " (error 13): see whether tmp/EMULEX/temp below the install directory can be made; as root, remove what stands in "
    "its way";
const std::string kUnzipAdvice = " (error 1a): see whether the module's archive is whole and 'unzip' is installed";
const std::string kTemp = "/opt/tarvenn/kvl/tmp/EMULEX/temp";
const std::string kCannotUnpack = "the update module could not be unpacked: ";
const std::string kWrongContent =
    "the update module lacks the expected file or holds too many, or its family is unknown";
const std::string kSame = "kvl: nothing was changed: the adapter runs firmware 4.6.247.5\n";
const std::string kStill = "kvl: the adapter runs what it ran before: firmware 4.6.247.5\n";
const std::string kToolStays = "kvl: nothing was changed: the management tool is 6.3.12.1\n";

/// The updater's words, where it has printed into a file.
std::string words(const std::string& last, const std::string& file) {
    return " (error 11): it said last '" + last + "'; " + file + " holds the rest\n";
}
std::string noWords(const std::string& file) {
    return " (error 11): nothing was printed into " + file + "\n";
}
const std::string kDownloaded = kTemp + "/CNA/firm/temp_hbacmd_Download.txt";
const std::string kFcDownloaded = kTemp + "/FC/firm/temp_hbacmd_Download.txt";
const std::string kUninstalled = kTemp + "/temp_ocm_uninstall.txt";
const std::string kInstalled = kTemp + "/temp_ocm_install.txt";
const std::string kWriting = "kvl: writing the firmware firmware.ufi failed: ";
const std::string kRemoving = "kvl: removing the installed tool with uninstall.sh failed: ";
const std::string kInstalling = "kvl: installing the new tool with install.sh -q failed: ";
const std::string kNoSuccess = "its output does not report success";
const std::string kNoEnd = "its output did not come to its end in 150 s";
const std::string kTryAgain = "; look at the adapter, and run the update again\n";
const std::string kToolGone =
    "kvl: the installed tool was to be removed, and the new one was not installed: 6.3.12.1 -> not installed; mend "
    "what "
    "is told above, and run the update again\n";

std::string notInPlace(const std::string& change) {
    return "kvl: the installed tool was removed, and the new one is not known to be in place: " + change +
           "; mend what is told above, and try it once more with --again\n";
}

struct FailureRow {
    const char* what;
    const char* script;
    std::string told;
    int exitCode;
};

void PrintTo(const FailureRow& row, std::ostream* stream) {
    *stream << row.what;
}

class Failure : public testing::TestWithParam<FailureRow> {};

TEST_P(Failure, IsToldWithItsSentenceItsNumberAndItsExitCode) {
    const Outcome outcome = told(GetParam().script);
    EXPECT_EQ(GetParam().told + "ended with " + std::to_string(GetParam().exitCode) + "\n", outcome.output);
    EXPECT_EQ("", outcome.errors);
}

INSTANTIATE_TEST_SUITE_P(
    FoundByTheLookOfAFirmwareUpdate, Failure,
    testing::Values(
        FailureRow{"no module", "told firmware 02:00.0 OCe11102-none",
                   "kvl: the module's directory /modules/OCe11102-none can't be read: No such file or directory\n", 1},
        FailureRow{"no archive", "told firmware 02:00.0 OCe11102-no-archive",
                   "kvl: " + kCannotUnpack + "/modules/OCe11102-no-archive holds no .zip file" + kModuleAdvice + "\n",
                   1},
        FailureRow{"empty archive", "told firmware 02:00.0 OCe11102-empty-archive",
                   "kvl: " + kCannotUnpack + "module.zip is empty" + kModuleAdvice + "\n", 1},
        FailureRow{"damaged archive", "told firmware 02:00.0 OCe11102-damaged-archive",
                   "kvl: " + kCannotUnpack + "/modules/OCe11102-damaged-archive/module.zip: Not a zip archive" +
                       kModuleAdvice + "\n",
                   1},
        FailureRow{"no firmware", "told firmware 02:00.0 OCe11102-no-firmware",
                   "kvl: " + kWrongContent + ": module.zip holds no firmware file (*.ufi)" + kContentAdvice + "\n", 1},
        FailureRow{
            "two firmware files", "told firmware 0a:00.0 fcelx_16g-two-firmware",
            "kvl: " + kWrongContent + ": module.zip holds several firmware files (*.grp)" + kContentAdvice + "\n", 1},
        FailureRow{"no boot code", "told firmware 15:00.0 fcelx_8g1p-no-boot-code",
                   "kvl: " + kWrongContent + ": module.zip holds no boot code file (*.prg)" + kContentAdvice + "\n", 1},
        FailureRow{
            "two boot code files", "told firmware 15:00.0 fcelx_8g2p-two-boot-code",
            "kvl: " + kWrongContent + ": module.zip holds several boot code files (*.prg)" + kContentAdvice + "\n", 1},
        FailureRow{"boot code without texts", "told firmware 15:00.0 fcelx_8g2p-without-message",
                   "kvl: " + kWrongContent + ": module.zip holds boot code and no message.txt to judge by" +
                       kContentAdvice + "\n",
                   1},
        FailureRow{"another adapter's module",
                   "told run kvl update firmware 0a:00.0 --module /modules/OCe11102 --unique-name fcelx_16g --yes",
                   "kvl: " + kWrongContent + ": module.zip holds no firmware file (*.grp)" + kContentAdvice + "\n", 1},
        FailureRow{"no such adapter", "told firmware 02:07.0 OCe11102",
                   "kvl: no adapter in the list has this PCI location (error e): 'kvl adapters' lists the adapters "
                   "with their locations\n",
                   1},
        FailureRow{"no adapters", "rm -r $ports/*; told update",
                   "kvl: the adapter list is empty, or tells nothing of the adapter (error f): see whether the "
                   "adapters' driver is loaded, and what "
                   "'hbacmd listhbas' prints\n",
                   1},
        FailureRow{"no tool", "remove_tool; told update",
                   "kvl: hbacmd is not installed (error b): install the OneCommand Manager, which brings "
                   "/usr/sbin/ocmanager/hbacmd\n",
                   1},
        FailureRow{"a failing tool", "fault failing.listhbas; told update",
                   "kvl: /usr/sbin/ocmanager/hbacmd listhbas failed, saying 'hbacmd: the adapters do not answer'" +
                       kToolAdvice + "\n",
                   1},
        FailureRow{"a silent tool", "fault silent.listhbas; told update",
                   "kvl: /usr/sbin/ocmanager/hbacmd listhbas printed nothing in 10 s" + kToolAdvice + "\n", 1},
        FailureRow{"a disk that is full for the list", "during listhbas 'exec >/dev/full 2>&1'; told update",
                   "kvl: /usr/sbin/ocmanager/hbacmd listhbas printed nothing in 10 s" + kToolAdvice + "\n", 1},
        FailureRow{"a list of another form",
                   "sed -i 's/^PCI Bus Number.*/PCI Bus Number:/' $ports/01/list; told update",
                   "kvl: hbacmd's list of the adapters does not have the expected form" + kFormAdvice + "\n", 1},
        FailureRow{"no MAC", "told firmware 15:00.0 OCe11102",
                   "kvl: the adapter's address could not be had: hbacmd's list has no 'Permanent MAC' of it" +
                       kAddressAdvice + "\n",
                   1},
        FailureRow{"no WWPN", "told firmware 02:00.0 fcelx_16g",
                   "kvl: the adapter's address could not be had: hbacmd's list has no 'Port WWN' of it" +
                       kAddressAdvice + "\n",
                   1},
        FailureRow{"an address that is none",
                   "sed -i 's/^Permanent MAC .*/Permanent MAC  : 00;touch${IFS}\\/tmp\\/done/' $ports/01/list\n"
                   "told update; ls /tmp/done 2>/dev/null",
                   "kvl: hbacmd's list tells no proper 'Permanent MAC'" + kFormAdvice + "\n", 1},
        FailureRow{"no such scratch directory", "told update --scratch /nowhere",
                   "kvl: /nowhere can't be looked at: No such file or directory\n", 1},
        FailureRow{"a scratch directory that is none", "told update --scratch /etc/passwd",
                   "kvl: /etc/passwd is no directory\n", 1},
        FailureRow{"a scratch directory that is a link", "ln -s /root /root/link; told update --scratch /root/link",
                   "kvl: /root/link is no directory\n", 1},
        FailureRow{"a scratch directory of everybody", "told update --scratch /tmp",
                   "kvl: /tmp belongs to another user, or others can write there: choose a directory of your own\n", 1},
        FailureRow{"a scratch directory without room", "told update --scratch /.proc/self/task",
                   "kvl: the disk of /.proc/self/task has too little room: 2 MiB are needed, 0 MiB are free\n", 1},
        FailureRow{"a read-only scratch directory", "mkdir -m 500 /root/own; told update --scratch /root/own",
                   "kvl: /root/own can't be written: Permission denied\n", 1},
        FailureRow{"a read-only work directory", "kvl adapters >/dev/null; chmod 500 $work; told update",
                   "kvl: " + kTemp + "/CNA can't be written: Permission denied\n", 1},
        FailureRow{"a read-only work directory beside a scratch directory",
                   "kvl adapters >/dev/null; chmod 500 $work; mkdir -m 700 /root/own; told update --scratch /root/own",
                   "kvl: " + kTemp + "/CNA can't be written: Permission denied\n", 1},
        FailureRow{
            "a work directory that others can write", "kvl adapters >/dev/null; chmod 777 $temp; told update",
            "kvl: the adapters' directory " + kTemp + " can be written by other users: 'chmod go-w " + kTemp + "'\n",
            1},
        FailureRow{"a file in the work directory's place", "mkdir -p -m 700 ${tree%/*} $tree; echo >$temp; told update",
                   "kvl: a temporary directory could not be made" + kDirectoryAdvice + "\n", 1},
        FailureRow{"no unzip", "rm /bin/unzip; told update",
                   "kvl: 'unzip' isn't installed: install the package that brings it\n", 1}));

INSTANTIATE_TEST_SUITE_P(
    OfAFirmwareUpdate, Failure,
    testing::Values(
        FailureRow{"a link that leads nowhere in the scratch directory",
                   "kvl adapters >/dev/null; mkdir $work/unpacked; ln -s /nowhere $work/unpacked/link; told update",
                   "kvl: making " + kTemp +
                       "/CNA/unpacked anew failed: the folder of an unpacked module could not be deleted" +
                       kFolderAdvice + "\n" + kSame,
                   1},
        FailureRow{"a file in the scratch directory's place",
                   "kvl adapters >/dev/null; echo >$work/unpacked; told update",
                   "kvl: making " + kTemp +
                       "/CNA/unpacked anew failed: the folder of an unpacked module could not be deleted" +
                       kFolderAdvice + "\n" + kSame,
                   1},
        FailureRow{"a link that leads nowhere in the scratch directory's place",
                   "kvl adapters >/dev/null; ln -s /nowhere $work/unpacked; told update",
                   "kvl: making " + kTemp + "/CNA/unpacked anew failed: the directory can't be made" +
                       kDirectoryAdvice + "\n" + kSame,
                   1},
        FailureRow{"a file in the result directory's place", "kvl adapters >/dev/null; echo >$work/firm; told update",
                   "kvl: a temporary directory could not be made" + kDirectoryAdvice + "\n" + kSame, 1},
        FailureRow{"an unzip that fails", "instead_of_unzip 'exit 9'; told update",
                   "kvl: unpacking module.zip failed: 'unzip' failed" + kUnzipAdvice + "\n" + kSame, 1},
        FailureRow{"an unzip whose shell is killed", "instead_of_unzip 'kill -KILL $PPID'; told update",
                   "kvl: unpacking module.zip failed: 'unzip' could not be run, or a signal ended it" + kUnzipAdvice +
                       "\n" + kSame,
                   1},
        FailureRow{"a disk that is full for the module",
                   "instead_of_unzip 'ulimit -f 0; trap \"\" XFSZ; exec /bin/busybox unzip \"$@\"'; told update",
                   "kvl: unpacking module.zip failed: 'unzip' failed" + kUnzipAdvice + "\n" + kSame, 1},
        FailureRow{"an unzip that leaves the firmware out", "after_unzip 'rm $4/*.ufi'; told update",
                   "kvl: unpacking module.zip failed: " + kWrongContent + kContentAdvice + "\n" + kSame, 1},
        FailureRow{"an adapter that is gone from the list", "after_unzip \"echo >$list\"; told update",
                   "kvl: finding the adapter failed: the adapter list is empty, or tells nothing of the adapter (error "
                   "f): see whether the adapters' "
                   "driver is loaded, and what 'hbacmd listhbas' prints\n"
                   "kvl: nothing was changed: the adapter runs firmware unknown (the adapter list is empty, or tells "
                   "nothing of the adapter)\n",
                   1},
        FailureRow{"an address that is gone from the list", "after_unzip \"sed -i '/^Permanent/d' $list\"; told update",
                   "kvl: finding the adapter failed: the adapter's address could not be had" + kAddressAdvice +
                       "\nkvl: nothing was changed: the adapter runs firmware unknown (hbacmd's list tells no proper "
                       "address of 02:00.0)\n",
                   1},
        FailureRow{"a list that changes its form",
                   "after_unzip \"sed -i 's/^PCI Bus.*/PCI Bus Number:/' $list\"; told update",
                   "kvl: hbacmd's list of the adapters does not have the expected form" + kFormAdvice +
                       "\nkvl: nothing was changed: the adapter runs firmware unknown (hbacmd's list of the adapters "
                       "does not have the expected form)\n",
                   1},
        FailureRow{"a tool that fails", "fault failing.Download; told update",
                   kWriting + kNoEnd + noWords(kDownloaded) + kStill, 1},
        FailureRow{"a tool that is killed", "fault killed.Download; told update",
                   kWriting + kNoEnd +
                       words("Downloading /opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked/firmw", kDownloaded) + kStill,
                   1},
        FailureRow{"a tool whose shell is killed", "during Download 'kill -KILL $PPID; exit 1'; told update",
                   kWriting + "it could not be started, or a signal ended it" + noWords(kDownloaded) + kStill, 1},
        FailureRow{"a tool that reports a failure", "fault incomplete-download; told update",
                   kWriting + kNoSuccess + words("End of download.", kDownloaded) + kStill, 1},
        FailureRow{"a tool that reports nothing", "fault no-success-text; told update",
                   kWriting + kNoSuccess + words("End of download.", kDownloaded) +
                       "kvl: the tool has written to the adapter: firmware 4.6.247.5 -> 4.9.416.0" + kTryAgain,
                   4},
        FailureRow{"a tool that comes to no end", "fault never-ending; told update",
                   kWriting + kNoEnd + words("Download Complete.", kDownloaded) +
                       "kvl: the tool has written to the adapter: firmware 4.6.247.5 -> 4.9.416.0" + kTryAgain,
                   4},
        FailureRow{"a tool that leaves the adapter without an answer",
                   "during Download \"echo >$faults/failing.dump; exit 1\"; told update",
                   kWriting + kNoEnd + noWords(kDownloaded) +
                       "kvl: the tool was at work, and what the adapter runs now is not known: firmware 4.6.247.5 -> "
                       "unknown (/usr/sbin/ocmanager/hbacmd dump 00-90-fa-3c-10-20 failed, saying 'hbacmd: the "
                       "adapters do not answer')" +
                       kTryAgain,
                   4},
        FailureRow{"texts that the tool never prints", "told firmware 02:00.0 OCe11102-other-texts",
                   kWriting + kNoSuccess + words("End of download.", kDownloaded) +
                       "kvl: the tool has written to the adapter: firmware 4.6.247.5 -> 4.9.416.0" + kTryAgain,
                   4},
        FailureRow{"no text of success", "fault incomplete-download; told firmware 02:00.0 OCe11102-only-end-text",
                   kWriting + "the module's message.txt holds no text of success" +
                       words("End of download.", kDownloaded) + kStill,
                   1},
        FailureRow{"a result file that can't be opened",
                   "kvl adapters >/dev/null; mkdir -p $work/firm/temp_hbacmd_Download.txt; told update",
                   kWriting + kNoEnd + noWords(kDownloaded) + kStill, 1},
        FailureRow{"a result file that is removed", "during Download \"rm $work/firm/*; exit 1\"; told update",
                   kWriting + "its output can't be read" + noWords(kDownloaded) + kStill, 1},
        FailureRow{"a disk that is full for the result",
                   "during Download '/.machine/hbacmd \"$@\" >/dev/full; exit 1'; told update",
                   kWriting + kNoEnd + noWords(kDownloaded) +
                       "kvl: the tool has written to the adapter: firmware 4.6.247.5 -> 4.9.416.0" + kTryAgain,
                   4},
        FailureRow{
            "a message file that is removed",
            "fault incomplete-download; during Download \"rm $work/unpacked/message.txt\"; told update",
            kWriting + "the module's message.txt can't be read" + words("End of download.", kDownloaded) + kStill, 1},
        FailureRow{"four runs without success",
                   "fault incomplete-download 4\n"
                   "told firmware 02:00.0 OCe11102-without-message",
                   kWriting +
                       "it did not report 'Download Complete' in four runs (error 10): it said last 'End of "
                       "download.'; " +
                       kDownloaded + " holds the rest\n" + kStill,
                   1},
        FailureRow{
            "a result file that can't be opened, without texts",
            "during Download \"rm $work/firm/*; exit 1\"; told firmware 02:00.0 OCe11102-without-message",
            kWriting + "a file could not be opened, or a step of an update failed" + noWords(kDownloaded) + kStill, 1},
        FailureRow{"boot code that can't be written", "fault incomplete-download; told firmware 15:00.0 fcelx_8g2p",
                   "kvl: writing the boot code boot.prg failed: " + kNoSuccess +
                       words("End of download.", kFcDownloaded) +
                       "kvl: the adapter runs what it ran before: firmware 2.01a12, boot code 5.03a4\n",
                   1},
        FailureRow{
            "boot code that is written and not confirmed", "fault no-success-text; told firmware 15:00.0 fcelx_8g2p",
            "kvl: writing the boot code boot.prg failed: " + kNoSuccess + words("End of download.", kFcDownloaded) +
                "kvl: the tool has written to the adapter: firmware 2.01a12 -> 2.01a12, boot code 5.03a4 -> "
                "5.12a5" +
                kTryAgain,
            4},
        FailureRow{"firmware that can't be written behind boot code",
                   "during Download \"case \\$3 in *.all) exit 1 ;; esac\"; told firmware 15:00.0 fcelx_8g2p",
                   "kvl: writing the firmware firmware.all failed: " + kNoEnd + noWords(kFcDownloaded) +
                       "kvl: the boot code is written, the firmware is not: firmware 2.01a12 -> 2.01a12, boot code "
                       "5.03a4 -> 5.12a5" +
                       kTryAgain,
                   4},
        FailureRow{"firmware that is written and not confirmed behind boot code",
                   "during Download \"case \\$3 in *.all) echo >$faults/no-success-text ;; esac\"\n"
                   "told firmware 15:00.0 fcelx_8g2p",
                   "kvl: writing the firmware firmware.all failed: " + kNoSuccess +
                       words("End of download.", kFcDownloaded) +
                       "kvl: the tool has written to the adapter: firmware 2.01a12 -> 2.02a1, boot code 5.03a4 -> "
                       "5.12a5" +
                       kTryAgain,
                   4},
        FailureRow{"a link that the tool leaves", "during Download 'ln -s /nowhere ${3%/*}/link'; told update",
                   "kvl: removing " + kTemp + "/CNA/unpacked failed: the directory can't be removed" + kFolderAdvice +
                       "\nkvl: the adapter is updated: firmware 4.6.247.5 -> 4.9.416.0; only " + kTemp +
                       "/CNA/unpacked is left over\n",
                   4}));

INSTANTIATE_TEST_SUITE_P(
    FoundByTheLookOfAToolUpdate, Failure,
    testing::Values(
        FailureRow{"no module", "told tool_update none",
                   "kvl: the module's directory /modules/none can't be read: No such file or directory\n", 1},
        FailureRow{"no archive", "told tool_update tool-no-archive",
                   "kvl: " + kCannotUnpack + "/modules/tool-no-archive holds no .zip file" + kModuleAdvice + "\n", 1},
        FailureRow{"empty archive", "told tool_update tool-empty-archive",
                   "kvl: " + kCannotUnpack + "module.zip is empty" + kModuleAdvice + "\n", 1},
        FailureRow{"damaged archive", "told tool_update tool-damaged-archive",
                   "kvl: " + kCannotUnpack + "/modules/tool-damaged-archive/module.zip: Not a zip archive" +
                       kModuleAdvice + "\n",
                   1},
        FailureRow{"nothing for this machine", "told tool_update tool-without-x64",
                   "kvl: " + kWrongContent + ": module.zip holds no x64/uninstall.sh" + kToolContentAdvice + "\n", 1},
        FailureRow{"no uninstall.sh", "told tool_update tool-without-uninstall",
                   "kvl: " + kWrongContent + ": module.zip holds no x64/uninstall.sh" + kToolContentAdvice + "\n", 1},
        FailureRow{"no install.sh", "told tool_update tool-without-install",
                   "kvl: " + kWrongContent + ": module.zip holds no x64/install.sh" + kToolContentAdvice + "\n", 1},
        FailureRow{"no message.txt", "told tool_update tool-without-message",
                   "kvl: " + kWrongContent + ": module.zip holds no x64/message.txt" + kToolContentAdvice + "\n", 1},
        FailureRow{"a machine of another kind", "replace /bin/uname 'echo sparc64'; told tool_update tool",
                   "kvl: modules are for x86 and x86_64 alone, and this machine is 'sparc64', as 'uname -m' tells\n",
                   1},
        FailureRow{"no unzip", "rm /bin/unzip; told tool_update tool",
                   "kvl: 'unzip' isn't installed: install the package that brings it\n", 1},
        FailureRow{"a read-only work directory", "kvl adapters >/dev/null; chmod 500 $temp; told tool_update tool",
                   "kvl: " + kTemp + " can't be written: Permission denied\n", 1}));

INSTANTIATE_TEST_SUITE_P(
    OfAToolUpdate, Failure,
    testing::Values(
        FailureRow{"a link that leads nowhere in the scratch directory",
                   "kvl adapters >/dev/null; mkdir $temp/tmp; ln -s /nowhere $temp/tmp/link; told tool_update tool",
                   "kvl: making " + kTemp + "/tmp anew failed: the folder of an unpacked module could not be deleted" +
                       kFolderAdvice + "\n" + kToolStays,
                   1},
        FailureRow{"a link that leads nowhere in the scratch directory's place",
                   "kvl adapters >/dev/null; ln -s /nowhere $temp/tmp; told tool_update tool",
                   "kvl: making " + kTemp + "/tmp anew failed: the directory can't be made" + kDirectoryAdvice + "\n" +
                       kToolStays,
                   1},
        FailureRow{"an unzip that fails", "instead_of_unzip 'exit 9'; told tool_update tool",
                   "kvl: unpacking module.zip failed: 'unzip' failed" + kUnzipAdvice + "\n" + kToolStays, 1},
        FailureRow{"a disk that is full for the module",
                   "instead_of_unzip 'ulimit -f 0; trap \"\" XFSZ; exec /bin/busybox unzip \"$@\"'\n"
                   "told tool_update tool",
                   "kvl: unpacking module.zip failed: 'unzip' failed" + kUnzipAdvice + "\n" + kToolStays, 1},
        FailureRow{"a machine that becomes one of another kind",
                   "after_unzip 'rm /bin/uname; echo \"#!/bin/sh\" >/bin/uname; chmod 755 /bin/uname'\n"
                   "told tool_update tool",
                   "kvl: unpacking module.zip failed: what kind of machine this is can't be told (error 0): run the "
                   "command again with -v, which shows each step\n" +
                       kToolStays,
                   1},
        FailureRow{"an unzip that leaves uninstall.sh out",
                   "after_unzip 'rm $4/x64/uninstall.sh'; told tool_update tool",
                   "kvl: finding the scripts failed: " + kWrongContent + kContentAdvice + "\n" + kToolStays, 1},
        FailureRow{"an unzip that leaves install.sh out", "after_unzip 'rm $4/x64/install.sh'; told tool_update tool",
                   kRemoving + "no install.sh was unpacked to follow it (error 1d): it said last 'Setup has ended.'; " +
                       kUninstalled + " holds the rest\n" + kToolGone,
                   4},
        FailureRow{
            "an unzip that leaves message.txt out", "after_unzip 'rm $4/x64/message.txt'; told tool_update tool",
            kRemoving + "the module's message.txt can't be read" + words("Setup has ended.", kUninstalled) + kToolGone,
            4},
        FailureRow{"an uninstall.sh that fails", "told tool_update tool-failing-uninstall",
                   kRemoving + kNoSuccess + words("Setup has ended.", kUninstalled) +
                       "kvl: the installed tool is still there: 6.3.12.1\n",
                   1},
        FailureRow{"an uninstall.sh that is killed", "fault killed.uninstall; told tool_update tool",
                   kRemoving + kNoEnd + words("Removing the management tool", kUninstalled) + kToolGone, 4},
        FailureRow{"an uninstall.sh that comes to no end", "fault never-ending.uninstall; told tool_update tool",
                   kRemoving + kNoEnd + words("Uninstall completed.", kUninstalled) + kToolGone, 4},
        FailureRow{"an output of uninstall.sh that can't be opened",
                   "kvl adapters >/dev/null; mkdir $temp/temp_ocm_uninstall.txt; told tool_update tool",
                   kRemoving + kNoEnd + noWords(kUninstalled) + "kvl: the installed tool is still there: 6.3.12.1\n",
                   1},
        FailureRow{
            "an install.sh that fails", "told tool_update tool-failing-install",
            kInstalling + kNoSuccess + words("Setup has ended.", kInstalled) + notInPlace("6.3.12.1 -> not installed"),
            4},
        FailureRow{"an install.sh that is killed", "fault killed.install; told tool_update tool",
                   kInstalling + kNoEnd + words("Installing the management tool 6.4.3.1", kInstalled) +
                       notInPlace("6.3.12.1 -> not installed"),
                   4},
        FailureRow{"an install.sh that comes to no end", "fault never-ending.install; told tool_update tool",
                   kInstalling + kNoEnd + words("Install completed.", kInstalled) + notInPlace("6.3.12.1 -> 6.4.3.1"),
                   4}));

TEST(EarlyFailuresOfAToolUpdate, AreToldToOperatorsByTheLibraryToo) {
    const std::string begun =
        "MSGID_KVL_UPDATE_BEGUN_I: The update of the management tool begins: /modules/tool/module.zip";
    const std::string failed =
        "MSGID_KVL_UPDATE_FAILED_F: The update of the management tool failed: unpacking module.zip failed: 'unzip' "
        "failed (error 1a): see whether the module's archive is whole and 'unzip' is installed; nothing was changed: "
        "the "
        "management tool is 6.3.12.1";
    EXPECT_EQ("[cna] " + begun +
                  "\n[cna] MSGID_EMULEX_0004_F: The update of ocm for a converged network adapter failed: "
                  "1a\n[cna] " +
                  failed + "\n[fc] " + begun +
                  "\n[fc] MSGID_EMULEX_FC_0004_F: The update of ocm for a Fibre Channel adapter failed: 1a\n[fc] " +
                  failed + "\n",
              updateOnServer("instead_of_unzip 'exit 9'; tool_update tool >/dev/null 2>&1\n"
                             "tool_update tool --family fc >/dev/null 2>&1; ended")
                  .output);
}

// What an update lives through
// -----------------------------------------------------------------------------------------

struct Survived {
    const char* what;
    const char* script;
};

void PrintTo(const Survived& row, std::ostream* stream) {
    *stream << row.what;
}

class Fault : public testing::TestWithParam<Survived> {};

TEST_P(Fault, DoesNotKeepTheFirmwareFromBeingUpdated) {
    const Outcome outcome =
        updateOnServer(std::string(GetParam().script) + "\nfirmware 02:00.0 OCe11102 --quiet | tail -n 2; versions 01");
    EXPECT_EQ("Updated 02:00.0: firmware 4.6.247.5 -> 4.9.416.0\nended with 0\n4.9.416.0 4.6.247.5\n", outcome.output);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Fault,
    testing::Values(
        Survived{"ten mebibytes of output", "fault flood.Download 10"},
        Survived{"a line without an end", "fault endless-line.Download 4"},
        Survived{"a process that is left behind", "fault lingering.Download 0.2"},
        Survived{"an exit status", "fault status.Download 7"},
        Survived{"a trace file without room", "export KVL_TRACE_FILE=/dev/full"},
        Survived{"a trace file that can't be made", "export KVL_TRACE_FILE=/nowhere/at/all"},
        Survived{"a marker without room", "kvl adapters >/dev/null; ln -s /dev/full $work/UpdateProceeding.txt"},
        Survived{"a marker that can't be made", "kvl adapters >/dev/null; mkdir $work/UpdateProceeding.txt"},
        Survived{"another user's umask", "umask 777"}, Survived{"no PATH", "PATH=; PATH=/bin"},
        Survived{"a locale", "export LC_ALL=de_DE.UTF-8"}));

TEST(Cache, WithoutRoomLeavesTheVersionsUnknown) {
    // Only kvl itself can't write: the tool and its state have room.
    const Outcome outcome = updateOnServer(
        "during '*' 'ulimit -S -f unlimited'\n"
        "replace /bin/ls 'ulimit -S -f unlimited; exec /bin/busybox ls \"$@\"'\n"
        "instead_of_unzip 'ulimit -S -f unlimited; exec /bin/busybox unzip "
        "\"$@\"'\n"
        "trap '' XFSZ; { ulimit -S -f 0; firmware 02:00.0 OCe11102 --quiet; } 2>&1 | cat | tail -n 3; versions 01");
    const std::string unknown = "unknown (the adapter's dump could not be copied to the cache)";
    EXPECT_EQ(
        "Updated 02:00.0: firmware " + unknown + " -> " + unknown +
            "\nkvl: the tool reports success, but what runs now could not be read: the adapter's dump could not be "
            "copied to the cache (error 7): see whether tmp/EMULEX/cache below the install directory can be written "
            "and the disk has room\nended with 0\n4.9.416.0 4.6.247.5\n",
        outcome.output);
}

TEST(LingeringProcess, KeepsOthersAwayWhereItsUpdateHasFailed) {
    const Outcome outcome = updateOnServer(
        "during Download 'while [ ! -f /tmp/released ]; do sleep 0.001; done & exit 1'\n"
        "firmware 02:00.0 OCe11102 --quiet 2>/dev/null | tail -n 1; run kvl adapters --wait 0 2>&1; release");
    EXPECT_EQ(
        "ended with 1\nkvl: another kvl, or a command that one has left behind, still works on this machine: try again "
        "when it has ended, or wait longer with --wait SECONDS\nended with 3\n",
        outcome.output);
}

TEST(LingeringProcess, KeepsNobodyAwayOnceItsUpdateHasEnded) {
    const Outcome outcome = updateOnServer(
        "during Download '{ while [ ! -f /tmp/released ]; do sleep 0.001; done; } &'\n"
        "firmware 02:00.0 OCe11102 --quiet | tail -n 1; firmware 15:00.0 fcelx_8g2p --quiet | tail -n 1\n"
        "touch /tmp/released");
    EXPECT_EQ("ended with 0\nended with 0\n", outcome.output);
    EXPECT_EQ("", outcome.errors);
}

// Death
// ----------------------------------------------------------------------------------------------------------------

class DeathOfAFirmwareUpdate : public testing::TestWithParam<const char*> {};

TEST_P(DeathOfAFirmwareUpdate, LeavesTheNextOneToSucceedFromTheStart) {
    const Outcome outcome = updateOnServer(
        std::string("KVL_LAST_WORDS='") + GetParam() +
        "' LD_PRELOAD=$no_waits:$last_words \"$program\" update firmware 15:00.0 --module /modules/fcelx_8g2p "
        "--unique-name fcelx_8g2p --yes -v >/dev/null 2>&1; echo $?\n"
        "firmware 15:00.0 fcelx_8g2p | grep -v '^  '; versions 14; ls $tree/temp/FC");
    EXPECT_THAT(outcome.output, StartsWith("137\nUpdate with fcelx_8g2p\nUpdated 15:00.0: firmware 2.0"));
    EXPECT_THAT(outcome.output, EndsWith(" -> 5.12a5\nended with 0\n2.02a1 (U3D2.02A1), sli-3 5.12a5\nfirm\n"));
    EXPECT_THAT(outcome.errors, HasSubstr("[1/6] making "));
}

INSTANTIATE_TEST_SUITE_P(
    AtEachStep, DeathOfAFirmwareUpdate,
    testing::Values("CEmulexCommon::GetOCMManagerInstallPath [START]", "CEmulexCommon::GetHBAInfo() [START]",
                    "CEmulexCommon::GetOperatingVersion(", "kvl update of the firmware of 15:00.0 [START]",
                    "CEmulexCommon::UpdateProceedingFileCreate_() [END]", "CEmulexCommon::FwUpdate() [START]",
                    "CUnzip_Utility::DeleteFolder [START]", "CUnzip_Utility::Unzip [START]",
                    "CUnzip_Utility::Unzip [END]", "bios update file name(", "writing the boot code boot.prg",
                    "CEmulexCommon::CheckUpdateResult_() [START]", "Find endmsg[", "Update Result Check OK",
                    "writing the firmware firmware.all", "removing /opt", "CEmulexCommon::FwUpdate() [END]",
                    "kvl update of the firmware of 15:00.0 [END]", "CEmulexCommon::DelOperatingVersion_() [Start]",
                    "CEmulexCommon::DelOperatingVersion_() [END]"));

class DeathOfAToolUpdate : public testing::TestWithParam<const char*> {};

TEST_P(DeathOfAToolUpdate, LeavesTheNextOneToSucceedFromTheStart) {
    const Outcome outcome = updateOnServer(
        std::string("KVL_LAST_WORDS='") + GetParam() +
        "' LD_PRELOAD=$no_waits:$last_words \"$program\" update tool --module /modules/tool --yes -v >/dev/null 2>&1\n"
        "echo $?; tool_update tool --again | tail -n 2; cat /var/lib/hbacmd/version; ls $tool");
    EXPECT_THAT(outcome.output, StartsWith("137\nUpdated the management tool: "));
    EXPECT_THAT(outcome.output, EndsWith(" -> 6.4.3.1\nended with 0\n6.4.3.1\n/usr/sbin/ocmanager/hbacmd\n"));
    EXPECT_THAT(outcome.errors, HasSubstr("[1/5] making "));
}

INSTANTIATE_TEST_SUITE_P(AtEachStep, DeathOfAToolUpdate,
                         testing::Values("kvl update of the management tool [START]",
                                         "CEmulexCommon::OCMUpdate() [START]", "CUnzip_Utility::DeleteFolder [START]",
                                         "CUnzip_Utility::Unzip [START]", "CUnzip_Utility::Unzip [END]",
                                         "Search uninstall.sh in [", "Execute command [chmod",
                                         "removing the installed tool", "Find endmsg[", "Update Result Check OK",
                                         "installing the new tool", "in [Install completed.]",
                                         "CEmulexCommon::OCMUpdate() [END]",
                                         "kvl update of the management tool [END]"));

TEST(DeathOfAnUpdate, WhoseToolLivesOnKeepsOthersAwayUntilThatEnds) {
    const Outcome outcome = updateOnServer(
        "during Download 'kill -KILL $(cat /tmp/kvl); while [ ! -f /tmp/released ]; do sleep 0.001; done; echo "
        ">/tmp/end'\n"
        "group_kvl update firmware 02:00.0 --module /modules/OCe11102 --unique-name OCe11102 --yes >/dev/null 2>&1\n"
        "firmware 02:00.0 OCe11102 | tail -n 1; tool_update tool | tail -n 1; run kvl adapters --wait 0\n"
        "touch /tmp/released; firmware 02:00.0 OCe11102 --wait 60 --quiet | tail -n 1; cat /tmp/end");
    EXPECT_EQ("ended with 1\nended with 1\nended with 3\nended with 0\n\n", outcome.output);
    const std::string away =
        "kvl: another kvl, or a command that one has left behind, still works on this machine: try again when it has "
        "ended, or wait longer with --wait SECONDS\n";
    EXPECT_THAT(outcome.errors, StartsWith(away + away + away));
}

// Signals
// --------------------------------------------------------------------------------------------------------------

struct Signal {
    const char* name;
    const char* title;
};

void PrintTo(const Signal& row, std::ostream* stream) {
    *stream << row.name;
}

class SignalDuringAnUpdate : public testing::TestWithParam<Signal> {};

/// The tool sends it to the whole group, as a terminal does, and goes on when it is noted.
std::string sending(const char* name) {
    return std::string("'kill -") + name +
           " -$(cat /tmp/kvl); until grep -q noted /tmp/errors; do sleep 0.001; done; kill -" + name +
           " -$(cat /tmp/kvl)'\n";
}

TEST_P(SignalDuringAnUpdate, IsNotedAndTheUpdateGoesOnToItsEnd) {
    const std::string noted =
        std::string("kvl: ") + GetParam().title +
        ": noted, and the update goes on to its end; an updater that is broken off can leave an adapter or a tool that "
        "doesn't work\n";
    const std::string run =
        "run group_kvl update firmware 02:00.0 --module /modules/OCe11102 --unique-name OCe11102 --yes 2>/tmp/errors";
    const Outcome updated = updateOnServer("during Download " + sending(GetParam().name) + run +
                                           " | tail -n 2; cat /tmp/errors; versions 01; ended");
    const std::string steps =
        "[1/5] making /opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked anew\n[2/5] unpacking module.zip\n"
        "[3/5] finding the adapter\n[4/5] writing the firmware firmware.ufi\n";
    const std::string meanwhile = std::string("; ") + GetParam().title + " came meanwhile\n";
    EXPECT_EQ("Updated 02:00.0: firmware 4.6.247.5 -> 4.9.416.0" + meanwhile + "ended with 0\n" + steps + noted +
                  "[5/5] removing /opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked\n4.9.416.0 4.6.247.5\n"
                  "[cna] MSGID_KVL_UPDATE_BEGUN_I: The update of the firmware of 02:00.0 begins: OCe11102 from "
                  "/modules/OCe11102/module.zip\n"
                  "[cna] MSGID_KVL_UPDATE_SIGNAL_I: The update of the firmware of 02:00.0 goes on to its end in spite "
                  "of a signal: " +
                  GetParam().title +
                  "\n"
                  "[cna] MSGID_KVL_UPDATE_DONE_I: The update of the firmware of 02:00.0 is done: firmware 4.6.247.5 -> "
                  "4.9.416.0\n",
              updated.output);
    const Outcome failed = updateOnServer("fault incomplete-download; during Download " + sending(GetParam().name) +
                                          run + " | tail -n 1; cat /tmp/errors");
    EXPECT_EQ("ended with 1\n" + steps + noted + kWriting + kNoSuccess + words("End of download.", kDownloaded) +
                  kStill.substr(0, kStill.size() - 1) + meanwhile,
              failed.output);
}

INSTANTIATE_TEST_SUITE_P(OfAnOperatorOrATerminal, SignalDuringAnUpdate,
                         testing::Values(Signal{"INT", "Interrupt"}, Signal{"HUP", "Hangup"},
                                         Signal{"TERM", "Terminated"}, Signal{"QUIT", "Quit"},
                                         Signal{"TSTP", "Stopped"}));

TEST(SignalDuringAnUpdate, IsNamedInTheDocument) {
    const Outcome outcome = updateOnServer(
        "during Download " + sending("HUP") +
        "run group_kvl update firmware 02:00.0 --module /modules/OCe11102 --unique-name OCe11102 --yes --format json "
        "2>/tmp/errors");
    const auto end = outcome.output.rfind("ended with 0\n");
    ASSERT_NE(std::string::npos, end);
    const auto document = nlohmann::json::parse(outcome.output.substr(0, end));
    EXPECT_EQ("done", document.at("result"));
    EXPECT_EQ("SIGHUP", document.at("interrupted_by"));
    EXPECT_EQ(nlohmann::json({"Updated 02:00.0: firmware 4.6.247.5 -> 4.9.416.0; Hangup came meanwhile"}),
              document.at("done"));
}

TEST(SignalDuringAnUpdate, OfTheToolIsNotedToo) {
    const Outcome outcome = updateOnServer(
        "after_unzip " + sending("INT") +
        "run group_kvl update tool --module /modules/tool --yes 2>/tmp/errors | tail -n 2; cat /tmp/errors");
    EXPECT_EQ(
        "Updated the management tool: 6.3.12.1 -> 6.4.3.1; Interrupt came meanwhile\nended with 0\n"
        "[1/5] making /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp anew\n[2/5] unpacking module.zip\n"
        "kvl: Interrupt: noted, and the update goes on to its end; an updater that is broken off can leave an adapter "
        "or a tool that doesn't work\n"
        "[3/5] finding the scripts\n[4/5] removing the installed tool with uninstall.sh\n"
        "[5/5] installing the new tool with install.sh -q\n",
        outcome.output);
}

// ---- What is given or printed to the wrong place ----

TEST(ModuleThatWouldBeDeleted, IsRefused) {
    const Outcome outcome = updateOnServer(
        "mkdir -m 700 /root/s; cp -r /modules/OCe11102 /root/s/kvl-update\n"
        "run kvl update firmware 02:00.0 --module /root/s/kvl-update --scratch /root/s --unique-name OCe11102 --yes\n"
        "mkdir -p $tree/temp/tmp; cp -r /modules/tool $tree/temp/tmp/inner; ln -s $tree/temp/tmp/inner /root/link\n"
        "run kvl update tool --module /root/link --yes; ls /root/s/kvl-update $tree/temp/tmp/inner");
    EXPECT_EQ(
        "ended with 1\nended with 1\n/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/inner:\nmodule.zip\n\n"
        "/root/s/kvl-update:\nmodule.zip\n",
        outcome.output);
    EXPECT_EQ(
        "kvl: /root/s/kvl-update lies in /root/s/kvl-update, which is deleted first: move the module elsewhere\n"
        "kvl: /root/link lies in /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp, which is deleted first: move the module "
        "elsewhere\n",
        outcome.errors);
}

TEST(PlanThatCantBeShown, KeepsAnUpdateFromBeginning) {
    const Outcome outcome = updateOnServer(
        "for command in 'firmware 02:00.0 --unique-name OCe11102 --module /modules/OCe11102' "
        "'tool --module /modules/tool'; do kvl update $command --yes >/dev/full; echo $?; done; versions 01");
    EXPECT_EQ("1\n1\n4.6.247.5 4.6.247.5\n", outcome.output);
    EXPECT_EQ(
        "kvl: the plan could not be written to standard output\n"
        "kvl: the plan could not be written to standard output\n",
        outcome.errors);
}

TEST(ResultThatCantBePrinted, LeavesADocumentsExitCodeAsItIs) {
    const Outcome outcome = updateOnServer(
        "kvl update firmware 02:00.0 --module /modules/OCe11102 --unique-name OCe11102 --yes --quiet --format json "
        ">/dev/full; echo $?; versions 01");
    EXPECT_EQ("0\n4.9.416.0 4.6.247.5\n", outcome.output);
    EXPECT_EQ("kvl: the answer could not be written to standard output\n", outcome.errors);
}

TEST(MarkerOfAnUpdate, ThatCantBeMadeOrDeletedIsToldOfAnUpdateThatIsDone) {
    const std::string marker = "/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/UpdateProceeding.txt";
    const std::string done = "Updated 02:00.0: firmware 4.6.247.5 -> 4.9.416.0\nended with 0\n";
    const Outcome unmade = updateOnServer(
        "kvl adapters >/dev/null; mkdir -p $tree/temp/CNA/UpdateProceeding.txt\n"
        "firmware 02:00.0 OCe11102 --quiet | tail -n 2");
    EXPECT_EQ(done, unmade.output);
    EXPECT_EQ("kvl: " + marker + " could not be made, which marks an update that was begun: see what stands there\n",
              unmade.errors);
    const Outcome undeleted = updateOnServer(
        "during Download \"rm $tree/temp/CNA/UpdateProceeding.txt; mkdir -p $tree/temp/CNA/UpdateProceeding.txt/x\"\n"
        "firmware 02:00.0 OCe11102 --quiet | tail -n 2");
    EXPECT_EQ(done, undeleted.output);
    EXPECT_EQ("kvl: " + marker + " could not be deleted: remove it by hand, since the update is done\n",
              undeleted.errors);
}

TEST(MarkerOfAnUpdate, ThatCantBeMadeIsToldOfAnUpdateThatFailsToo) {
    const Outcome outcome = updateOnServer(
        "kvl adapters >/dev/null; mkdir -p $tree/temp/CNA/UpdateProceeding.txt; instead_of_unzip 'exit 9'\n"
        "firmware 02:00.0 OCe11102 --quiet | tail -n 1");
    EXPECT_EQ("ended with 1\n", outcome.output);
    EXPECT_THAT(outcome.errors,
                testing::EndsWith("kvl: nothing was changed: the adapter runs firmware 4.6.247.5\n"
                                  "kvl: /opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/UpdateProceeding.txt could not be made, "
                                  "which marks an update that was begun: see what stands there\n"));
}

TEST(ResultThatCantBePrinted, IsToldOnStandardError) {
    const Outcome outcome = updateOnServer(
        "{ kvl update firmware 02:00.0 --module /modules/OCe11102 --unique-name OCe11102 --yes --quiet; echo $? "
        ">/tmp/status; } | head -n 1; cat /tmp/status");
    EXPECT_EQ("Update with OCe11102\n0\n", outcome.output);
    EXPECT_EQ("kvl: this could not be written to standard output: Updated 02:00.0: firmware 4.6.247.5 -> 4.9.416.0\n",
              outcome.errors);
}

TEST(ToolThatIsNotInstalled, IsSaidToBeMissingAsBefore) {
    const Outcome outcome = updateOnServer("remove_tool; tool_update tool-failing-uninstall --quiet | tail -n 1");
    EXPECT_EQ("ended with 1\n", outcome.output);
    EXPECT_THAT(outcome.errors, testing::EndsWith("kvl: no tool is installed, as before\n"));
}

TEST(SignalBeforeAnUpdate, EndsItWithNothingChanged) {
    const Outcome outcome = updateOnServer(
        "during dump 'kill -TERM -$(cat /tmp/kvl); sleep 1'\n"
        "run group_kvl update firmware 02:00.0 --module /modules/OCe11102 --unique-name OCe11102 --yes 2>/dev/null\n"
        "versions 01; ls $tree/temp/CNA; ended 2>/dev/null");
    EXPECT_EQ("ended with 143\n4.6.247.5 4.6.247.5\n", outcome.output);
}

TEST(BrokenOutput, DoesNotBreakTheUpdateOff) {
    const Outcome outcome = updateOnServer("{ { firmware 02:00.0 OCe11102 2>&1; } | head -n 1; } ; while [ -s " +
                                           kvl::test::lockFileInside() +
                                           " ]; do sleep 0.001; done\n"
                                           "versions 01; ended | tail -n 1 | cut -c 1-30");
    EXPECT_EQ("Update with OCe11102\n4.9.416.0 4.6.247.5\n[cna] MSGID_KVL_UPDATE_DONE_I:\n", outcome.output);
}

// Modules that somebody has thought up
// -----------------------------------------------------------------------------------

struct OddModule {
    const char* archive;
    std::vector<kvl::test::MadeEntry> entries;
    std::string told;
};

void PrintTo(const OddModule& row, std::ostream* stream) {
    *stream << row.archive << " with " << row.entries.front().path;
}

class ModuleOfSomebody : public testing::TestWithParam<OddModule> {};

TEST_P(ModuleOfSomebody, IsRefusedBeforeAnyShellSeesItsNames) {
    const ScratchDirectory modules;
    std::filesystem::create_directory(modules / "OCe11102");
    makeArchive(modules / "OCe11102/" + GetParam().archive, GetParam().entries);
    const Outcome outcome =
        updateOnServer("firmware 02:00.0 OCe11102; cat /.machine/log; ls /tmp/done $tree/temp/CNA 2>/dev/null",
                       "adapters-mixed", modules.path());
    EXPECT_EQ("ended with 1\n/usr/sbin/ocmanager/hbacmd listhbas\n/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA:\n",
              outcome.output);
    EXPECT_EQ("kvl: " + GetParam().told + "\n", outcome.errors);
}

const std::string kTakenDifferently = ": a shell would take the name of the firmware file '";
const std::string kLeadsOut = " in the archive is a link, or leads out of it";

INSTANTIATE_TEST_SUITE_P(
    Modules, ModuleOfSomebody,
    testing::Values(
        OddModule{"m;touch done.zip",
                  {{"a.ufi", "x"}},
                  kCannotUnpack +
                      "the name of the archive 'm;touch done.zip' holds characters that a shell takes "
                      "differently" +
                      kModuleAdvice},
        OddModule{"$(touch done).zip",
                  {{"a.ufi", "x"}},
                  kCannotUnpack +
                      "the name of the archive '$(touch done).zip' holds characters that a shell takes "
                      "differently" +
                      kModuleAdvice},
        OddModule{"'m'.zip",
                  {{"a.ufi", "x"}},
                  kCannotUnpack + "the name of the archive ''m'.zip' holds characters that a shell takes differently" +
                      kModuleAdvice},
        OddModule{"m.zip",
                  {{"$(touch done).ufi", "x"}},
                  kWrongContent + kTakenDifferently + "$(touch done).ufi' differently" + kContentAdvice},
        OddModule{"m.zip",
                  {{"a\";touch done;\".ufi", "x"}},
                  kWrongContent + kTakenDifferently + "a\";touch done;\".ufi' differently" + kContentAdvice},
        OddModule{
            "m.zip", {{"`id`.ufi", "x"}}, kWrongContent + kTakenDifferently + "`id`.ufi' differently" + kContentAdvice},
        OddModule{
            "m.zip", {{"a b.ufi", "x"}}, kWrongContent + kTakenDifferently + "a b.ufi' differently" + kContentAdvice},
        OddModule{
            "m.zip", {{"a\n.ufi", "x"}}, kWrongContent + kTakenDifferently + "a .ufi' differently" + kContentAdvice},
        OddModule{"m.zip", {{"a.ufi", "/etc/passwd", 0120777}}, kCannotUnpack + "a.ufi" + kLeadsOut + kModuleAdvice},
        OddModule{"m.zip", {{"../a.ufi", "x"}}, kCannotUnpack + "../a.ufi" + kLeadsOut + kModuleAdvice},
        OddModule{"m.zip", {{"/tmp/done", "x"}}, kCannotUnpack + "/tmp/done" + kLeadsOut + kModuleAdvice},
        OddModule{"m.zip",
                  {{"a.ufi", "x", 0100644, true}},
                  kCannotUnpack + "a.ufi in the archive is damaged, or locked with a password" + kModuleAdvice}));

}  // namespace
