#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "machines/replay.h"
#include "tests/machines/outside.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kFamilies[] = {"OCe11102", "OCl14104", "fcelx_16g", "fcelx_8g1p", "fcelx_8g2p"};
const std::string kScript = std::string(KVL_MACHINES_FOLDER) + "/modules/make-modules";

// For the scripts: unpacks a module, and the names of the tool and its state.
constexpr const char* kNames =
    "unpack() { rm -rf /tmp/module; mkdir /tmp/module; unzip -o \"$modules/$1/module.zip\" -d /tmp/module >/dev/null; "
    "}\n"
    "tool=/usr/sbin/ocmanager/hbacmd state=/var/lib/hbacmd\n"
    "fault() { mkdir -p $state/faults; printf '%s' \"${2-}\" >$state/faults/$1; }\n";

Outcome runOn(const std::string& machine, const std::string& script) {
    machines::PrivateRootOptions options;
    options.recording = machines::findRecording(machine);
    options.binds = {{KVL_UPDATE_MODULES}};
    options.environment = {{"modules", KVL_UPDATE_MODULES}};
    return runInside(options, kNames + script);
}

std::string output(const std::string& script) {
    return runOn("adapters-mixed", script).output;
}

std::set<std::string> entriesOf(const std::string& directory) {
    std::set<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

std::set<std::string> expectedModules() {
    std::set<std::string> names = {"tool"};
    for (const char* variant :
         {"without-x64", "without-uninstall", "without-install", "without-message", "failing-uninstall",
          "failing-install", "no-archive", "empty-archive", "damaged-archive"}) {
        names.insert(std::string("tool-") + variant);
    }
    for (const std::string family : kFamilies) {
        names.insert(family);
        for (const char* variant :
             {"without-message", "two-firmware", "no-firmware", "crlf-message", "only-end-text", "only-success-text",
              "other-texts", "six-success-texts", "sixth-success-text", "six-end-texts", "sixth-end-text", "no-archive",
              "empty-archive", "damaged-archive"}) {
            names.insert(family + "-" + variant);
        }
    }
    for (const std::string family : {"fcelx_8g1p", "fcelx_8g2p"}) {
        names.insert({family + "-two-boot-code", family + "-no-boot-code"});
    }
    return names;
}

TEST(Modules, AreThoseOfTheirTable) {
    EXPECT_EQ(entriesOf(KVL_UPDATE_MODULES), expectedModules());
}

TEST(Modules, AreTheSameWhoeverMakesThem) {
    const ScratchDirectory scratch;
    EXPECT_EQ(runOutside("umask 077; TZ=Asia/Tokyo sh '" + kScript + "' '" + scratch / "new" + "'").status, 0);
    EXPECT_EQ(readTree(scratch / "new"), readTree(KVL_UPDATE_MODULES));
}

TEST(Modules, AreMadeAnewOverOlderOnes) {
    const ScratchDirectory scratch;
    scratch.write("old/OCe11102/other.zip", "old");
    EXPECT_EQ(runOutside("sh '" + kScript + "' '" + scratch / "old" + "'").status, 0);
    EXPECT_EQ(readTree(scratch / "old"), readTree(KVL_UPDATE_MODULES));
}

TEST(Modules, NeedADirectory) {
    const Outcome outcome = runOutside("sh '" + kScript + "'");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors, "usage: make-modules DIRECTORY\n");
}

struct Content {
    const char* module;
    const char* files;
};

class ModuleContent : public testing::TestWithParam<Content> {};

TEST_P(ModuleContent, IsWhatTheNameSays) {
    EXPECT_EQ(
        output(std::string("unpack ") + GetParam().module + "; cd /tmp/module; find . -type f | sort | tr '\\n' ' '"),
        GetParam().files);
    EXPECT_EQ(entriesOf(std::string(KVL_UPDATE_MODULES "/") + GetParam().module), std::set<std::string>{"module.zip"});
}

constexpr const char* kTwoFiles = "./boot.prg ./firmware.all ";
constexpr const char* kThreeFiles = "./boot.prg ./firmware.all ./message.txt ";
constexpr const char* kToolFiles =
    "./x64/install.sh ./x64/message.txt ./x64/uninstall.sh ./x64/version "
    "./x86/install.sh ./x86/message.txt ./x86/uninstall.sh ./x86/version ";

INSTANTIATE_TEST_SUITE_P(
    Modules, ModuleContent,
    testing::Values(
        Content{"OCe11102", "./firmware.ufi ./message.txt "}, Content{"OCl14104", "./firmware.ufi ./message.txt "},
        Content{"fcelx_16g", "./firmware.grp ./message.txt "}, Content{"fcelx_8g1p", kThreeFiles},
        Content{"fcelx_8g2p", kThreeFiles}, Content{"OCe11102-without-message", "./firmware.ufi "},
        Content{"fcelx_8g1p-without-message", kTwoFiles},
        Content{"OCl14104-two-firmware", "./firmware-2.ufi ./firmware.ufi ./message.txt "},
        Content{"fcelx_16g-two-firmware", "./firmware-2.grp ./firmware.grp ./message.txt "},
        Content{"fcelx_8g2p-two-firmware", "./boot.prg ./firmware-2.all ./firmware.all ./message.txt "},
        Content{"OCe11102-no-firmware", "./message.txt "},
        Content{"fcelx_8g1p-no-firmware", "./boot.prg ./message.txt "},
        Content{"fcelx_8g1p-two-boot-code", "./boot-2.prg ./boot.prg ./firmware.all ./message.txt "},
        Content{"fcelx_8g2p-no-boot-code", "./firmware.all ./message.txt "}, Content{"tool", kToolFiles},
        Content{"tool-without-x64", "./x86/install.sh ./x86/message.txt ./x86/uninstall.sh ./x86/version "},
        Content{"tool-without-uninstall",
                "./x64/install.sh ./x64/message.txt ./x64/version ./x86/install.sh ./x86/message.txt ./x86/version "},
        Content{"tool-without-install",
                "./x64/message.txt ./x64/uninstall.sh ./x64/version ./x86/message.txt "
                "./x86/uninstall.sh ./x86/version "},
        Content{"tool-without-message",
                "./x64/install.sh ./x64/uninstall.sh ./x64/version ./x86/install.sh "
                "./x86/uninstall.sh ./x86/version "}));

struct MessageFile {
    const char* variant;
    const char* text;
};

class MessageFileOfModules : public testing::TestWithParam<MessageFile> {};

TEST_P(MessageFileOfModules, HoldsTheTextsThatTheNameSays) {
    for (const std::string family : kFamilies) {
        EXPECT_EQ(output("unpack " + family + GetParam().variant + "; cat /tmp/module/message.txt"), GetParam().text)
            << family;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Modules, MessageFileOfModules,
    testing::Values(
        MessageFile{"", "SuccessMessage=Download Complete\nEndMessage=End of download\n"},
        MessageFile{"-crlf-message", "SuccessMessage=Download Complete\r\nEndMessage=End of download\r\n"},
        MessageFile{"-only-end-text", "EndMessage=End of download\n"},
        MessageFile{"-only-success-text", "SuccessMessage=Download Complete\n"},
        MessageFile{"-other-texts", "SuccessMessage=Update finished\nEndMessage=End of download\n"},
        MessageFile{"-six-success-texts",
                    "SuccessMessage=A1\nSuccessMessage=B2\nSuccessMessage=C3\nSuccessMessage=D4\n"
                    "SuccessMessage=Download Complete\nSuccessMessage=F6\nEndMessage=End of download\n"},
        MessageFile{"-sixth-success-text",
                    "SuccessMessage=A1\nSuccessMessage=B2\nSuccessMessage=C3\nSuccessMessage=D4\nSuccessMessage=E5\n"
                    "SuccessMessage=Download Complete\nEndMessage=End of download\n"},
        MessageFile{"-six-end-texts",
                    "SuccessMessage=Download Complete\nEndMessage=A1\nEndMessage=B2\nEndMessage=C3\n"
                    "EndMessage=D4\nEndMessage=End of download\nEndMessage=F6\n"},
        MessageFile{"-sixth-end-text",
                    "SuccessMessage=Download Complete\nEndMessage=A1\nEndMessage=B2\nEndMessage=C3\n"
                    "EndMessage=D4\nEndMessage=E5\nEndMessage=End of download\n"}));

TEST(Modules, WithoutASoundArchiveAreThereForEachFamilyAndTheTool) {
    for (const std::string name : {"OCe11102", "OCl14104", "fcelx_16g", "fcelx_8g1p", "fcelx_8g2p", "tool"}) {
        EXPECT_THAT(entriesOf(KVL_UPDATE_MODULES "/" + name + "-no-archive"), ElementsAre("readme.txt"));
        EXPECT_EQ(output("unpack " + name + "-empty-archive; ls /tmp/module"), "");
        const Outcome damaged = runOn("adapters-mixed", "unpack " + name + "-damaged-archive; echo $?");
        EXPECT_EQ(damaged.output, "1\n");
        EXPECT_THAT(damaged.errors, HasSubstr("unzip: "));
    }
}

struct Update {
    const char* machine;
    const char* module;
    const char* address;
    const char* port;
    const char* firmwareLine;
    const char* bootCodeLine;
};

class GoodModule : public testing::TestWithParam<Update> {};

TEST_P(GoodModule, BringsItsVersionsAndItsTextsAreTheTools) {
    const Update& update = GetParam();
    const Outcome outcome =
        runOn(update.machine, std::string("unpack ") + update.module +
                                  "; cd /tmp/module; for file in *.[!t]*; do $tool Download " + update.address +
                                  " $file >/tmp/answer || echo failed\n"
                                  "    sed -n 's/.*Message=//p' message.txt | while read -r text; do\n"
                                  "        grep -q \"^$text\" /tmp/answer || echo \"no $text\"; done; done\n"
                                  "grep -E '^(FW|Firmware|Boot Bios) Version' $state/ports/" +
                                  update.port + "/dump");
    EXPECT_EQ(outcome.output, std::string(update.firmwareLine) + "\n" + update.bootCodeLine + "\n");
    EXPECT_EQ(outcome.errors, "");
}

INSTANTIATE_TEST_SUITE_P(
    Modules, GoodModule,
    testing::Values(Update{"adapters-mixed", "OCe11102", "00-90-fa-3c-10-20", "01", "FW Version: 4.9.416.0",
                           "Boot Bios Version: 4.6.247.5"},
                    Update{"adapters-mixed", "OCl14104", "00-90-fa-71-88-00", "05", "FW Version: 10.6.144.21",
                           "Boot Bios Version: 10.2.340.19"},
                    Update{"adapters-mixed", "fcelx_16g", "10:00:00:90:fa:5e:41:0a", "11",
                           "Firmware Version: 1.13a2 (U3D1.13A2), sli-4", "Boot Bios Version: 8.02a2"},
                    Update{"adapters-fc", "fcelx_8g1p", "10:00:00:00:c9:8a:52:1e", "01",
                           "Firmware Version: 2.02a1 (U3D2.02A1), sli-3", "Boot Bios Version: 5.12a5"},
                    Update{"adapters-mixed", "fcelx_8g2p", "10:00:00:00:c9:d4:7e:31", "15",
                           "Firmware Version: 2.02a1 (U3D2.02A1), sli-3", "Boot Bios Version: 5.12a5"}),
    [](const auto& row) { return std::string(row.param.module); });

class ToolModule : public testing::TestWithParam<const char*> {
protected:
    // Runs a script in the module's directory for a kind of machine.
    static Outcome run(const std::string& module, const std::string& script,
                       const std::string& server = "adapters-mixed") {
        return runOn(server, "unpack " + module + "; chmod 777 /tmp/module/" + GetParam() + "/*\nscripts=/tmp/module/" +
                                 GetParam() + "\n" + script);
    }
};

TEST_P(ToolModule, TakesTheToolAwayAndBringsANewOne) {
    const Outcome outcome = run("tool",
                                "$scripts/uninstall.sh; echo $?; $tool listhbas 2>/dev/null; echo $?; ls $state\n"
                                "$scripts/install.sh -q; echo $?; $tool dump 00-90-fa-3c-10-20 >/dev/null\n"
                                "tail -n 1 /var/opt/ocmanager/Dump/dump_0001.txt");
    EXPECT_EQ(outcome.output,
              "Removing the management tool\nUninstall completed.\nSetup has ended.\n0\n"
              "127\ndump_directory\nports\nversion\n"
              "Installing the management tool 6.4.3.1\nInstall completed.\nSetup has ended.\n0\n"
              "OneCommand Manager: 6.4.3.1\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST_P(ToolModule, AsksForTheTextsOfBothScripts) {
    EXPECT_EQ(run("tool", "cat $scripts/message.txt").output,
              "SuccessMessage=Uninstall completed\nSuccessMessage=Install completed\nEndMessage=Setup has ended\n");
}

TEST_P(ToolModule, InstalledSilentlyLeavesTheConfigurationOfASilentInstall) {
    EXPECT_EQ(run("tool",
                  "cp /etc/emulex* /tmp; rm /etc/emulex*; $scripts/install.sh -q >/dev/null; cd /etc\n"
                  "for file in emulex*; do /bin/busybox cmp $file /tmp/$file && echo $file; done")
                  .output,
              "emulexDiscConfig\nemulexRMConfig\n");
}

TEST_P(ToolModule, InstalledWithoutTheOptionIsSetUpOtherwise) {
    EXPECT_EQ(run("tool", "$scripts/install.sh; head -n 1 /etc/emulexRMConfig").output,
              "Installing the management tool 6.4.3.1\nManagement mode: this server alone.\nInstall completed.\n"
              "Setup has ended.\nServerRemoteOperation:disabled\n");
}

TEST_P(ToolModule, BringsTheToolToAServerThatHadNone) {
    EXPECT_EQ(run("tool", "$scripts/install.sh -q >/dev/null; $tool listhbas", "adapters-none").output,
              "Manageable HBA List\n");
}

TEST_P(ToolModule, NeedsNothingButTheShellAndOrdinaryTools) {
    EXPECT_EQ(run("tool", "cd /tmp; $scripts/uninstall.sh; $scripts/install.sh -q").errors, "");
}

TEST_P(ToolModule, MayFailToUninstall) {
    for (const char* module : {"tool-failing-uninstall", "tool"}) {
        const Outcome outcome = run(module,
                                    "[ -e $scripts/failing.uninstall ] || fault failing.uninstall; "
                                    "$scripts/uninstall.sh; echo $?; [ -L $tool ] && echo there");
        EXPECT_EQ(outcome.output,
                  "Removing the management tool\nUninstall failed: the tool is in use.\nSetup has ended.\n1\nthere\n");
    }
}

TEST_P(ToolModule, MayFailToInstall) {
    EXPECT_THAT(run("tool-failing-uninstall", "$scripts/uninstall.sh; echo $?; $scripts/install.sh -q").output,
                HasSubstr("\n1\nInstalling the management tool 6.4.3.1\nInstall completed.\n"));
    for (const char* module : {"tool-failing-install", "tool"}) {
        const Outcome outcome =
            run(module,
                "[ -e $scripts/failing.install ] || fault failing.install; $scripts/uninstall.sh >/dev/null; echo $?\n"
                "$scripts/install.sh -q; echo $?; [ -L $tool ] || echo none; cat $state/version");
        EXPECT_EQ(outcome.output,
                  "0\nInstalling the management tool 6.4.3.1\nInstall failed: a package is broken.\nSetup has ended.\n"
                  "1\nnone\n6.3.12.1\n");
    }
}

TEST_P(ToolModule, MayBeKilledHalfWay) {
    EXPECT_EQ(run("tool",
                  "fault killed.uninstall; (exec $scripts/uninstall.sh); echo $?; [ -L $tool ] || echo none\n"
                  "fault killed.install; (exec $scripts/install.sh -q); echo $?; [ -L $tool ] || echo none\n"
                  "cat $state/version")
                  .output,
              "Removing the management tool\n137\nnone\nInstalling the management tool 6.4.3.1\n137\nnone\n6.4.3.1\n");
}

TEST_P(ToolModule, MayLeaveItsEndOut) {
    EXPECT_EQ(
        run("tool",
            "fault never-ending.uninstall; $scripts/uninstall.sh; fault never-ending.install; $scripts/install.sh -q")
            .output,
        "Removing the management tool\nUninstall completed.\n"
        "Installing the management tool 6.4.3.1\nInstall completed.\n");
}

INSTANTIATE_TEST_SUITE_P(Modules, ToolModule, testing::Values("x86", "x64"),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace
}  // namespace kvl::test
