#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <ostream>

#include "tests/provider/update/update_server.h"

namespace {

using kvl::test::Outcome;
using kvl::test::typeDuringUpdate;
using kvl::test::updateOnServer;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

const std::string kTemp = "/opt/tarvenn/kvl/tmp/EMULEX/temp/";
const std::string kTool = "/usr/sbin/ocmanager/hbacmd";
constexpr const char* kByTexts = "  judged    by the texts of message.txt; up to 150 s are waited for an end text\n";

TEST(FirmwareUpdate, ShowsItsPlanItsStepsAndTheVersionsBeforeAndAfter) {
    const Outcome outcome = updateOnServer("firmware 02:00.0 OCe11102; versions 01; versions 02; versions 03");
    EXPECT_EQ(
        "Update with OCe11102\n"
        "  adapter   02:00.0, 00-90-fa-3c-10-20, family cna\n"
        "  module    /modules/OCe11102/module.zip: firmware.ufi\n"
        "  judged    by the texts of message.txt; up to 150 s are waited for an end text\n"
        "  runs now  firmware 4.6.247.5\n"
        "  1. delete /opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked and make it anew\n"
        "  2. unzip -o \"/modules/OCe11102/module.zip\" -d \"/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked\"\n"
        "  3. find the adapter in hbacmd's list\n"
        "  4. firmware: \"/usr/sbin/ocmanager/hbacmd\" Download 00-90-fa-3c-10-20 "
        "\"/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked/firmware.ufi\"\n"
        "  5. delete /opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked\n"
        "Updated 02:00.0: firmware 4.6.247.5 -> 4.9.416.0\n"
        "ended with 0\n"
        "4.9.416.0 4.6.247.5\n"
        "4.9.416.0 4.6.247.5\n"
        "4.9.416.0 4.6.247.5\n",
        outcome.output);
    EXPECT_EQ(
        "[1/5] making /opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked anew\n"
        "[2/5] unpacking module.zip\n"
        "[3/5] finding the adapter\n"
        "[4/5] writing the firmware firmware.ufi\n"
        "[5/5] removing /opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked\n",
        outcome.errors);
}

/// An update of an adapter that goes well.
struct GoodUpdate {
    const char* machine;
    const char* device;
    const char* address;
    const char* module;
    const char* uniqueName;
    const char* family;
    const char* firmware;
    const char* bootCode;  ///< null without
    const char* before;
    const char* after;
    const char* change;

    std::string work() const { return kTemp + (std::string(family) == "cna" ? "CNA" : "FC"); }
    std::string scratch() const { return work() + "/unpacked"; }
    std::string files() const { return bootCode == nullptr ? firmware : std::string(firmware) + " and " + bootCode; }
};

void PrintTo(const GoodUpdate& row, std::ostream* stream) {
    *stream << row.module << " on " << row.device;
}

/// Numbers lines.
class Steps {
public:
    Steps(const std::string& before, const std::string& behind) : before_(before), behind_(behind) {}
    void add(const std::string& step) { text_ += before_ + std::to_string(++count_) + behind_ + step + "\n"; }
    const std::string& text() const { return text_; }

private:
    const std::string before_;
    const std::string behind_;
    std::string text_;
    int count_ = 0;
};

std::string planOf(const GoodUpdate& row) {
    const auto download = [&row](const char* file) {
        return "\"" + kTool + "\" Download " + row.address + " \"" + row.scratch() + "/" + file + "\"";
    };
    Steps steps("  ", ". ");
    steps.add("delete " + row.scratch() + " and make it anew");
    steps.add(std::string("unzip -o \"/modules/") + row.module + "/module.zip\" -d \"" + row.scratch() + "\"");
    steps.add("find the adapter in hbacmd's list");
    if (row.bootCode != nullptr) {
        steps.add("boot code: " + download(row.bootCode));
    }
    steps.add("firmware: " + download(row.firmware));
    steps.add("delete " + row.scratch());
    return std::string("Update with ") + row.uniqueName + "\n  adapter   " + row.device + ", " + row.address +
           ", family " + row.family + "\n  module    /modules/" + row.module + "/module.zip: " + row.files() + "\n" +
           kByTexts + "  runs now  " + row.before + "\n" + steps.text();
}

std::string stepsOf(const GoodUpdate& row) {
    Steps steps("[", row.bootCode == nullptr ? "/5] " : "/6] ");
    steps.add("making " + row.scratch() + " anew");
    steps.add("unpacking module.zip");
    steps.add("finding the adapter");
    if (row.bootCode != nullptr) {
        steps.add(std::string("writing the boot code ") + row.bootCode);
    }
    steps.add(std::string("writing the firmware ") + row.firmware);
    steps.add("removing " + row.scratch());
    return steps.text();
}

std::string commandsOf(const GoodUpdate& row) {
    const std::string dump = kTool + " dump " + row.address + "\n" + kTool + " GetDumpDirectory " + row.address + "\n";
    std::string commands = kTool + " listhbas\n" + dump;
    for (const char* file : {row.bootCode, row.firmware}) {
        if (file != nullptr) {
            commands += kTool + " Download " + row.address + " " + row.scratch() + "/" + file + "\n";
        }
    }
    return commands + dump;
}

class EachFamily : public testing::TestWithParam<GoodUpdate> {};

TEST_P(EachFamily, IsUpdatedFromTheLookToTheLastReading) {
    const GoodUpdate& row = GetParam();
    const Outcome outcome = updateOnServer(
        std::string("run kvl update firmware ") + row.device + " --module /modules/" + row.module + " --unique-name " +
            row.uniqueName +
            " --yes\n"
            "cat /.machine/log; ended; cd $tree; find . | sort; cat temp/*/firm/*; stat -c %a . temp/*/firm",
        row.machine);
    EXPECT_EQ(stepsOf(row), outcome.errors);
    const std::string className = row.family == std::string("cna") ? "CNA" : "FC";
    const std::string last = row.scratch() + "/" + row.firmware;
    EXPECT_EQ(planOf(row) + "Updated " + row.device + ": " + row.change + "\nended with 0\n" + commandsOf(row) + "[" +
                  row.family + "] MSGID_KVL_UPDATE_BEGUN_I: The update of the firmware of " + row.device +
                  " begins: " + row.uniqueName + " from /modules/" + row.module + "/module.zip\n[" + row.family +
                  "] MSGID_KVL_UPDATE_DONE_I: The update of the firmware of " + row.device + " is done: " + row.change +
                  "\n"
                  ".\n./cache\n./cache/CNA\n" +
                  (className == "CNA" ? std::string("./cache/CNA/CacheDump_") + row.device + ".txt\n./cache/FC\n"
                                      : std::string("./cache/FC\n./cache/FC/CacheDump_") + row.device + ".txt\n") +
                  "./temp\n./temp/CNA\n" +
                  (className == "CNA" ? "./temp/CNA/firm\n./temp/CNA/firm/temp_hbacmd_Download.txt\n" : "") +
                  "./temp/DumpDirectory.txt\n./temp/FC\n" +
                  (className == "FC" ? "./temp/FC/firm\n./temp/FC/firm/temp_hbacmd_Download.txt\n" : "") +
                  "./temp/Listhbas.txt\nDownloading " + last + " to " + row.address +
                  "\nDownload Complete.\nEnd of download.\n700\n700\n",
              outcome.output);
}

constexpr const char* kEight = "firmware 2.01a12, boot code 5.03a4";
constexpr const char* kEightChange = "firmware 2.01a12 -> 2.02a1, boot code 5.03a4 -> 5.12a5";

INSTANTIATE_TEST_SUITE_P(
    Families, EachFamily,
    testing::Values(
        GoodUpdate{"adapters-mixed", "02:00.0", "00-90-fa-3c-10-20", "OCe11102", "OCe11102", "cna", "firmware.ufi",
                   nullptr, "firmware 4.6.247.5", "firmware 4.9.416.0", "firmware 4.6.247.5 -> 4.9.416.0"},
        GoodUpdate{"adapters-mixed", "06:00.0", "00-90-fa-71-88-00", "OCl14104", "OCl14104", "cna", "firmware.ufi",
                   nullptr, "firmware 10.2.340.19", "firmware 10.6.144.21", "firmware 10.2.340.19 -> 10.6.144.21"},
        GoodUpdate{"adapters-mixed", "0a:00.0", "10:00:00:90:fa:5e:41:0a", "fcelx_16g", "fcelx_16g", "fc",
                   "firmware.grp", nullptr, "firmware 1.12a5", "firmware 1.13a2", "firmware 1.12a5 -> 1.13a2"},
        GoodUpdate{"adapters-fc", "03:00.0", "10:00:00:00:c9:8a:52:1e", "fcelx_8g1p", "fcelx_8g1p", "fc",
                   "firmware.all", "boot.prg", "firmware 2.00a4, boot code 5.02a3", "",
                   "firmware 2.00a4 -> 2.02a1, boot code 5.02a3 -> 5.12a5"},
        GoodUpdate{"adapters-mixed", "15:00.0", "10:00:00:00:c9:d4:7e:30", "fcelx_8g2p", "fcelx_8g2p", "fc",
                   "firmware.all", "boot.prg", kEight, "", kEightChange},
        GoodUpdate{"adapters-mixed", "15:00.1", "10:00:00:00:c9:d4:7e:31", "fcelx_8g2p", "fcelx_8g2p_any", "fc",
                   "firmware.all", "boot.prg", kEight, "", kEightChange},
        GoodUpdate{"adapters-mixed", "02:00.0", "00-90-fa-3c-10-20", "OCe11102-crlf-message", "OCe11102", "cna",
                   "firmware.ufi", nullptr, "firmware 4.6.247.5", "", "firmware 4.6.247.5 -> 4.9.416.0"},
        GoodUpdate{"adapters-mixed", "02:00.0", "00-90-fa-3c-10-20", "OCe11102-only-success-text", "OCe11102", "cna",
                   "firmware.ufi", nullptr, "firmware 4.6.247.5", "", "firmware 4.6.247.5 -> 4.9.416.0"},
        GoodUpdate{"adapters-mixed", "02:00.0", "00-90-fa-3c-10-20", "OCe11102-six-success-texts", "OCe11102", "cna",
                   "firmware.ufi", nullptr, "firmware 4.6.247.5", "", "firmware 4.6.247.5 -> 4.9.416.0"}));

TEST(FirmwareUpdate, LeavesOtherPortsAsTheyAre) {
    const Outcome outcome = updateOnServer(
        "firmware 15:00.1 fcelx_8g2p >/dev/null 2>&1; for port in $ports/*; do versions ${port##*/}; done");
    const std::string small = "4.6.247.5 4.6.247.5\n";
    const std::string large = "10.2.340.19 10.2.340.19\n";
    EXPECT_EQ(small + small + small + small + large + large + large + large + large + large +
                  "1.12a5 (U3D1.12A5), sli-4 8.02a2\n4.6.247.5 4.6.247.5\n4.6.247.5 4.6.247.5\n"
                  "2.01a12 (U3D2.01A12), sli-3 5.03a4\n2.02a1 (U3D2.02A1), sli-3 5.12a5\n",
              outcome.output);
}

TEST(FirmwareUpdate, IsSkippedForAFunctionThatFunctionZeroBringsAlong) {
    const Outcome outcome = updateOnServer(
        "firmware 02:00.1 OCe11102; firmware 06:00.3 OCl14104 --dry-run; firmware 15:00.1 fcelx_16g --family fc\n"
        "cat /.machine/log; ls $tree; ended");
    EXPECT_EQ(
        "ended with 3\nended with 3\nended with 3\n"
        "/usr/sbin/ocmanager/hbacmd listhbas\n/usr/sbin/ocmanager/hbacmd listhbas\n"
        "/usr/sbin/ocmanager/hbacmd listhbas\ncache\ntemp\n"
        "[cna] MSGID_KVL_UPDATE_SKIPPED_I: The update of the firmware of 02:00.1 was skipped: function 1 of an "
        "OCe11102 is updated through function 0\n"
        "[fc] MSGID_KVL_UPDATE_SKIPPED_I: The update of the firmware of 15:00.1 was skipped: function 1 of an "
        "fcelx_16g is updated through function 0\n",
        outcome.output);
    EXPECT_EQ(
        "kvl: skipped: function 1 of an OCe11102 is updated through function 0\n"
        "kvl: skipped: function 3 of an OCl14104 is updated through function 0\n"
        "kvl: skipped: function 1 of an fcelx_16g is updated through function 0\n",
        outcome.errors);
}

TEST(FirmwareUpdate, IsNotSkippedForAnAdapterOrAModuleThatIsNotThere) {
    const Outcome outcome = updateOnServer("firmware 09:00.1 OCe11102; firmware 02:00.1 OCe11102-no-archive");
    EXPECT_EQ("ended with 1\nended with 1\n", outcome.output);
}

TEST(FirmwareUpdate, TakesTheFamilyThatItIsTold) {
    const Outcome outcome = updateOnServer(
        "firmware 15:00.0 fcelx_8g1p --family cna --quiet | grep -v '^  [mjr1-5]\\|^Updated'\n"
        "ls $tree/temp/CNA/firm $tree/temp/FC; ended | cut -c 1-5");
    EXPECT_EQ(
        "Update with fcelx_8g1p\n  adapter   15:00.0, 10:00:00:00:c9:d4:7e:30, family cna\n"
        "  6. delete /opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked\n"
        "ended with 0\n"
        "/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/firm:\ntemp_hbacmd_Download.txt\n\n/opt/tarvenn/kvl/tmp/EMULEX/temp/FC:\n"
        "[cna]\n[cna]\n",
        outcome.output);
}

TEST(FirmwareUpdate, UnpacksWhereItIsTold) {
    const Outcome outcome = updateOnServer(
        "mkdir -m 700 /root/room; echo >/root/room/mine\n"
        "firmware 02:00.0 OCe11102 --scratch /root/../root/room/ | grep -v '^  [amjr]'\n"
        "ls -A /root/room $tree/temp/CNA; grep Download /.machine/log");
    EXPECT_EQ(
        "Update with OCe11102\n"
        "  1. delete /root/room/kvl-update and make it anew\n"
        "  2. unzip -o \"/modules/OCe11102/module.zip\" -d \"/root/room/kvl-update\"\n"
        "  3. find the adapter in hbacmd's list\n"
        "  4. firmware: \"/usr/sbin/ocmanager/hbacmd\" Download 00-90-fa-3c-10-20 "
        "\"/root/room/kvl-update/firmware.ufi\"\n"
        "  5. delete /root/room/kvl-update\n"
        "Updated 02:00.0: firmware 4.6.247.5 -> 4.9.416.0\n"
        "ended with 0\n"
        "/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA:\nfirm\n\n/root/room:\nmine\n"
        "/usr/sbin/ocmanager/hbacmd Download 00-90-fa-3c-10-20 /root/room/kvl-update/firmware.ufi\n",
        outcome.output);
}

TEST(FirmwareUpdate, TakesWhatAnEarlierOneHasLeftAway) {
    const Outcome outcome = updateOnServer(
        "mkdir -p $tree/temp/CNA/unpacked/more; chmod 700 $tree; echo old >$tree/temp/CNA/unpacked/more/old.ufi\n"
        "echo old >$tree/temp/CNA/unpacked/old.ufi; chmod -R go-w $tree\n"
        "firmware 02:00.0 OCe11102 | tail -n 2; find $tree/temp/CNA");
    EXPECT_EQ(
        "Updated 02:00.0: firmware 4.6.247.5 -> 4.9.416.0\nended with 0\n"
        "/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA\n/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/firm\n"
        "/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/firm/temp_hbacmd_Download.txt\n",
        outcome.output);
}

TEST(FirmwareUpdate, WithQuietShowsNoSteps) {
    const Outcome outcome = updateOnServer("firmware 02:00.0 OCe11102 --quiet | tail -n 2");
    EXPECT_EQ("Updated 02:00.0: firmware 4.6.247.5 -> 4.9.416.0\nended with 0\n", outcome.output);
    EXPECT_EQ("", outcome.errors);
}

TEST(FirmwareUpdate, ShowsTheTraceOnRequest) {
    const Outcome outcome = updateOnServer("firmware 02:00.0 OCe11102 -v | tail -n 2");
    EXPECT_EQ("Updated 02:00.0: firmware 4.6.247.5 -> 4.9.416.0\nended with 0\n", outcome.output);
    const std::string unpacked = kTemp + "CNA/unpacked";
    EXPECT_THAT(outcome.errors, HasSubstr("boundary  kvl update of the firmware of 02:00.0 [START]\n"
                                          "flow      OCe11102 from /modules/OCe11102/module.zip\n"));
    EXPECT_THAT(outcome.errors, HasSubstr("boundary  CUnzip_Utility::DeleteFolder [START]\n[1/5] making " + unpacked +
                                          " anew\nboundary  CUnzip_Utility::DeleteFolder [END]\n"));
    EXPECT_THAT(outcome.errors, HasSubstr("\nboundary  CEmulexCommon::FwUpdate() [END]\n"));
    EXPECT_THAT(outcome.errors, HasSubstr("\nboundary  kvl update of the firmware of 02:00.0 [END]\n"));
}

TEST(FirmwareUpdate, IsInTheTraceFileWithTheLevelsOfTheLibrary) {
    const Outcome outcome = updateOnServer(
        "export KVL_TRACE_LEVELS=63; firmware 02:00.0 OCe11102 >/dev/null 2>&1\n"
        "sed -n '/kvl update/,/GetPCIInfo/s/^.\\{24\\}//p' $trace; grep -c 'CEmulexCommon::FwUpdate()' $trace");
    EXPECT_EQ(
        "BOUNDARY [cna] kvl update of the firmware of 02:00.0 [START]\n"
        "FLOW [cna] OCe11102 from /modules/OCe11102/module.zip\n"
        "OPERATOR [cna] MSGID_KVL_UPDATE_BEGUN_I: The update of the firmware of 02:00.0 begins: OCe11102 from "
        "/modules/OCe11102/module.zip\n"
        "BOUNDARY [cna] CEmulexCommon::UpdateProceedingFileCreate_() [Start]\n"
        "BOUNDARY [cna] CEmulexCommon::UpdateProceedingFileCreate_() [END]\n"
        "BOUNDARY [cna] CEmulexCommon::FwUpdate() [START]\n"
        "BOUNDARY [cna] CCommon_Information::GetPCIInfo [START]\n"
        "BOUNDARY [cna] kvl update of the firmware of 02:00.0 [END]\n"
        "BOUNDARY [cna] CEmulexCommon::DelOperatingVersion_() [Start]\n"
        "BOUNDARY [cna] CEmulexCommon::DelOperatingVersion_() [END]\n"
        "2\n",
        outcome.output);
}

TEST(FirmwareUpdate, TellsAFailureToOperatorsAndTraceWithTheStateThatItLeaves) {
    const Outcome outcome = updateOnServer(
        "fault incomplete-download; firmware 02:00.0 OCe11102 >/dev/null 2>&1; ended\n"
        "sed -n 's/^.\\{24\\}\\(ERROR .*writing.*\\)/\\1/p' $trace; ls $tree/temp/CNA $tree/temp/CNA/unpacked");
    const std::string why =
        "writing the firmware firmware.ufi failed: its output does not report success (error 11): it said last 'End of "
        "download.'; /opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/firm/temp_hbacmd_Download.txt holds the rest; the adapter "
        "runs what it ran before: firmware 4.6.247.5\n";
    EXPECT_EQ(
        "[cna] MSGID_KVL_UPDATE_BEGUN_I: The update of the firmware of 02:00.0 begins: OCe11102 from "
        "/modules/OCe11102/module.zip\n"
        "[cna] MSGID_KVL_UPDATE_FAILED_F: The update of the firmware of 02:00.0 failed: " +
            why + "ERROR [cna] " + why +
            "/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA:\nUpdateProceeding.txt\nfirm\nunpacked\n\n"
            "/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked:\nfirmware.ufi\nmessage.txt\n",
        outcome.output);
}

TEST(FirmwareUpdate, IsTriedUpToFourTimesWhereTheModuleHasNoTexts) {
    for (const int failures : {0, 1, 3}) {
        const Outcome outcome = updateOnServer("fault incomplete-download " + std::to_string(failures) +
                                               "\nfirmware 02:00.0 OCe11102-without-message\n"
                                               "grep -c Download /.machine/log");
        EXPECT_THAT(outcome.output,
                    HasSubstr("  judged    by 'Download Complete' in the tool's output, in up to four runs\n"));
        EXPECT_THAT(outcome.output, EndsWith("Updated 02:00.0: firmware 4.6.247.5 -> 4.9.416.0\nended with 0\n" +
                                             std::to_string(failures + 1) + "\n"));
    }
}

TEST(FirmwareUpdate, WaitsForTheEndOfTheToolsOutput) {
    for (const int look : {1, 2, 5}) {
        const Outcome outcome = updateOnServer(
            "fault never-ending; export KVL_MEANWHILE=/tmp/meanwhile\n"
            "replace /tmp/meanwhile 'echo >>/tmp/looks; test $(wc -l </tmp/looks) -lt " +
            std::to_string(look) +
            " || echo End of download >>'$tree/temp/CNA/firm/temp_hbacmd_Download.txt\n"
            "firmware 02:00.0 OCe11102 | tail -n 2; wc -l </tmp/looks");
        EXPECT_EQ("Updated 02:00.0: firmware 4.6.247.5 -> 4.9.416.0\nended with 0\n" + std::to_string(look) + "\n",
                  outcome.output);
    }
}

TEST(FirmwareUpdate, GivesTheEndUpAfterFiveLooks) {
    const Outcome outcome = updateOnServer(
        "fault never-ending; export KVL_MEANWHILE='echo >>/tmp/looks'\n"
        "firmware 02:00.0 OCe11102 >/dev/null; wc -l </tmp/looks; versions 01");
    EXPECT_EQ("5\n4.9.416.0 4.6.247.5\n", outcome.output);
    EXPECT_THAT(outcome.errors,
                EndsWith("kvl: writing the firmware firmware.ufi failed: its output did not come to its end in 150 s "
                         "(error 11): it said last 'Download Complete.'; "
                         "/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/firm/temp_hbacmd_Download.txt holds the rest\n"
                         "kvl: the tool has written to the adapter: firmware 4.6.247.5 -> 4.9.416.0; look at the "
                         "adapter, and run the update again\n"));
}

TEST(FirmwareUpdate, SaysSoWhenTheVersionStaysTheSame) {
    const Outcome outcome =
        updateOnServer("firmware 02:00.0 OCe11102 >/dev/null 2>&1; firmware 02:00.0 OCe11102 --quiet | tail -n 2");
    EXPECT_EQ("Updated 02:00.0: firmware 4.9.416.0 -> 4.9.416.0\nended with 0\n", outcome.output);
    EXPECT_EQ(
        "kvl: the adapter runs the version that it ran before: the module holds that one, or it needs a restart\n",
        outcome.errors);
}

TEST(FirmwareUpdate, IsDoneAlsoWhereTheVersionsCantBeRead) {
    const Outcome outcome = updateOnServer(
        "fault failing.dump; firmware 02:00.0 OCe11102 --quiet 2>/tmp/errors\n"
        "grep ^kvl: /tmp/errors; versions 01; ls $tree/temp/CNA");
    const std::string failed =
        "/usr/sbin/ocmanager/hbacmd dump 00-90-fa-3c-10-20 failed, saying 'hbacmd: the adapters do not answer'";
    EXPECT_THAT(outcome.output, HasSubstr("\n  runs now  firmware unknown (" + failed + ")\n"));
    EXPECT_THAT(outcome.output,
                EndsWith("\nUpdated 02:00.0: firmware unknown (" + failed + ") -> unknown (" + failed +
                         ")\nended with 0\n"
                         "kvl: the tool reports success, but what runs now could not be read: " +
                         failed +
                         " (error 0): run that command by hand, and see whether its services run and the adapters "
                         "answer\n4.9.416.0 4.6.247.5\nUpdateProceeding.txt\nfirm\n"));
}

TEST(FirmwareUpdate, TellsNoVersionFromAnOldDump) {
    const Outcome outcome = updateOnServer(
        "during Download \"echo >$faults/failing.dump\"\n"
        "firmware 15:00.1 fcelx_8g2p --quiet 2>/dev/null | tail -n 2");
    const std::string unknown =
        "unknown (/usr/sbin/ocmanager/hbacmd dump 10:00:00:00:c9:d4:7e:31 failed, saying 'hbacmd: the adapters do not "
        "answer')";
    EXPECT_EQ(
        "Updated 15:00.1: firmware 2.01a12 -> " + unknown + ", boot code 5.03a4 -> " + unknown + "\nended with 0\n",
        outcome.output);
}

TEST(DryRun, OfAFirmwareUpdateChangesNothing) {
    const Outcome outcome = updateOnServer(
        "kvl version 02:00.0 --kind boot >/dev/null; firmware 15:00.0 fcelx_8g2p --quiet >/dev/null\n"
        "rm /.machine/log; state >/dev/shm/before\n"
        "firmware 02:00.0 OCe11102 --dry-run; firmware 15:00.0 fcelx_8g2p-two-firmware --dry-run\n"
        "cat /.machine/log; state | /bin/busybox diff /dev/shm/before - && echo same\n"
        "test $(wc -l </dev/shm/before) -gt 200 && echo all");
    EXPECT_EQ(
        "Update with OCe11102\n"
        "  adapter   02:00.0, 00-90-fa-3c-10-20, family cna\n"
        "  module    /modules/OCe11102/module.zip: firmware.ufi\n"
        "  judged    by the texts of message.txt; up to 150 s are waited for an end text\n"
        "  1. delete /opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked and make it anew\n"
        "  2. unzip -o \"/modules/OCe11102/module.zip\" -d \"/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked\"\n"
        "  3. find the adapter in hbacmd's list\n"
        "  4. firmware: \"/usr/sbin/ocmanager/hbacmd\" Download 00-90-fa-3c-10-20 "
        "\"/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked/firmware.ufi\"\n"
        "  5. delete /opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked\n"
        "Nothing was done: this is a dry run.\n"
        "ended with 0\nended with 1\n"
        "/usr/sbin/ocmanager/hbacmd listhbas\n/usr/sbin/ocmanager/hbacmd listhbas\nsame\nall\n",
        outcome.output);
    EXPECT_THAT(outcome.errors,
                EndsWith("kvl: the update module lacks the expected file or holds too many, or its family is unknown: "
                         "module.zip holds several "
                         "firmware files (*.all) (error 1d): see whether the module is for this family of adapters\n"));
}

TEST(DryRun, IsDescribedForPrograms) {
    const Outcome outcome = updateOnServer(
        "kvl update firmware 02:00.0 --module /modules/OCe11102 --unique-name OCe11102 --dry-run --format json");
    EXPECT_EQ(nlohmann::json::parse(R"({
        "result": "planned",
        "plan": {
            "title": "Update with OCe11102",
            "facts": [
                "adapter   02:00.0, 00-90-fa-3c-10-20, family cna",
                "module    /modules/OCe11102/module.zip: firmware.ufi",
                "judged    by the texts of message.txt; up to 150 s are waited for an end text"
            ],
            "steps": [
                "delete /opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked and make it anew",
                "unzip -o \"/modules/OCe11102/module.zip\" -d \"/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked\"",
                "find the adapter in hbacmd's list",
                "firmware: \"/usr/sbin/ocmanager/hbacmd\" Download 00-90-fa-3c-10-20 \"/opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked/firmware.ufi\"",
                "delete /opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked"
            ]
        },
        "done": [],
        "messages": []
    })"),
              nlohmann::json::parse(outcome.output));
    EXPECT_EQ("", outcome.errors);
}

TEST(DryRun, WorksBesideAnotherKvlAndWithoutATerminal) {
    const Outcome outcome = updateOnServer(
        "work_beside\n"
        "firmware 02:00.0 OCe11102 --dry-run </dev/null | tail -n 2\n"
        "tool_update tool --dry-run </dev/null | tail -n 2; release");
    EXPECT_EQ(
        "Nothing was done: this is a dry run.\nended with 0\nNothing was done: this is a dry run.\nended with 0\n",
        outcome.output);
    EXPECT_EQ("", outcome.errors);
}

TEST(FirmwareUpdate, IsRefusedAtOnceWhileAnotherKvlWorks) {
    const Outcome outcome =
        updateOnServer("work_beside; process=$(cat " + kvl::test::lockFileInside() +
                       ")\n"
                       "firmware 15:00.0 fcelx_8g2p 2>&1 | sed \"s/process $process)/process N)/\"\n"
                       "tool_update tool 2>&1 | sed \"s/process $process)/process N)/\"\n"
                       "release; versions 14; ls $tree/temp; firmware 15:00.0 fcelx_8g2p --quiet | tail -n 1");
    const std::string once =
        "kvl: another kvl (process N) still works on this machine: try again when it has ended, or wait longer with "
        "--wait SECONDS\nended with 1\n";
    EXPECT_EQ(
        once + once + "2.01a12 (U3D2.01A12), sli-3 5.03a4\nCNA\nDumpDirectory.txt\nFC\nListhbas.txt\nended with 0\n",
        outcome.output);
    EXPECT_EQ("", outcome.errors);
}

struct Typed {
    const char* answer;
    bool updates;
};

void PrintTo(const Typed& row, std::ostream* stream) {
    *stream << testing::PrintToString(std::string(row.answer));
}

class AnswerOnTheTerminal : public testing::TestWithParam<Typed> {};

TEST_P(AnswerOnTheTerminal, Decides) {
    const std::string shown = typeDuringUpdate(
        GetParam().answer,
        "run kvl update firmware 02:00.0 --module /modules/OCe11102 --unique-name OCe11102 2>&1; versions 01; ended");
    EXPECT_THAT(shown, HasSubstr("  5. delete /opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/unpacked\nUpdate it now? [y/N] "));
    const std::string behind = shown.substr(shown.find("[y/N] ") + 6);
    if (GetParam().updates) {
        EXPECT_THAT(behind, HasSubstr("[4/5] writing the firmware firmware.ufi\n"));
        EXPECT_THAT(behind, HasSubstr("\r30 s left  waiting for the end of its output, 4 more looks behind this one"));
        EXPECT_THAT(behind, HasSubstr("Updated 02:00.0: firmware 4.6.247.5 -> 4.9.416.0\nended with 0\n4.9.416.0 "));
    } else {
        EXPECT_EQ(
            "kvl: skipped: the operator said no\nended with 3\n4.6.247.5 4.6.247.5\n"
            "[cna] MSGID_KVL_UPDATE_SKIPPED_I: The update of the firmware of 02:00.0 was skipped: the operator said "
            "no\n",
            behind);
    }
}

INSTANTIATE_TEST_SUITE_P(Words, AnswerOnTheTerminal,
                         testing::Values(Typed{"y\n", true}, Typed{"Y\n", true}, Typed{"yes\n", true},
                                         Typed{"n\n", false}, Typed{"\n", false}, Typed{"yonder\n", false},
                                         Typed{"\x04", false}));

TEST(FirmwareUpdate, ShowsOnATerminalWhatIsWaitedFor) {
    const std::string shown = typeDuringUpdate(
        "",
        "fault incomplete-download 1; run kvl update firmware 02:00.0 --module /modules/OCe11102-without-message "
        "--unique-name OCe11102 --yes");
    EXPECT_THAT(shown, HasSubstr("\rreading the versions: hbacmd dump 00-90-fa-3c-10-20"));
    EXPECT_THAT(shown, HasSubstr("\rwriting the firmware firmware.ufi"));
    EXPECT_THAT(shown, HasSubstr("\r1 s left  not done yet, trying again"));
    EXPECT_THAT(shown, EndsWith("Updated 02:00.0: firmware 4.6.247.5 -> 4.9.416.0\nended with 0\n"));
    EXPECT_THAT(shown, Not(HasSubstr("Update it now?")));
}

TEST(FirmwareUpdate, CountsTheLooksThatAreLeft) {
    const std::string shown = typeDuringUpdate("", "fault never-ending; firmware 02:00.0 OCe11102");
    std::size_t place = 0;
    for (int left = 4; left >= 0; --left) {
        const std::string text =
            "30 s left  waiting for the end of its output, " + std::to_string(left) + " more looks behind this one";
        place = shown.find(text, place);
        ASSERT_NE(std::string::npos, place) << text;
    }
}

class TwoUpdates : public testing::TestWithParam<int> {};

TEST_P(TwoUpdates, AtOnceAreOneThatRunsAndOneThatNamesIt) {
    // The tool waits until the other update has ended, whichever of the two it is.
    const Outcome outcome = updateOnServer(
        "during Download 'while [ ! -f /tmp/ended ]; do sleep 0.001; done'\n"
        "start() {\n"
        "    kvl update firmware 02:00.0 --module /modules/OCe11102 --unique-name OCe11102 --yes >/tmp/$1.output "
        "2>/tmp/$1.errors\n"
        "    echo $? >/tmp/$1.status; touch /tmp/ended\n"
        "}\n"
        "for round in 1 2 3 4 5; do\n"
        "    rm -f /tmp/ended; start one & start two & wait\n"
        "    cat /tmp/one.status /tmp/two.status | sort | tr '\\n' ' '\n"
        "    grep -l 'Updated 02:00.0' /tmp/*.output | wc -l\n"
        "    grep -h ^kvl: /tmp/*.errors | grep -v 'that it ran before' | sed 's/process [0-9]*/process N/'\n"
        "done");
    const std::string round =
        "0 1 1\n"
        "kvl: another kvl (process N) still works on this machine: try again when it has ended, or wait longer with "
        "--wait SECONDS\n";
    EXPECT_EQ(round + round + round + round + round, outcome.output);
    EXPECT_EQ("", outcome.errors);
}

INSTANTIATE_TEST_SUITE_P(TwentyTimes, TwoUpdates, testing::Range(0, 4));

}  // namespace
