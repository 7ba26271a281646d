#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>

#include "tests/provider/adapter_server.h"

namespace {

using kvl::test::Outcome;
using kvl::test::readFile;
using kvl::test::replayKvl;
using kvl::test::runKvl;
using kvl::test::runOnServer;
using kvl::test::runOnTerminal;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string expected(const std::string& file) {
    return readFile(std::string(KVL_EXPECTED_FOLDER) + "/" + file);
}

TEST(Adapters, AreListedInTheOrderOfTheTool) {
    const Outcome outcome = replayKvl("adapters-mixed", {"adapters"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ(expected("adapters_mixed.txt"), outcome.output);
    EXPECT_EQ("", outcome.errors);
}

TEST(Adapters, AreListedWithTheVersionsOfEachPort) {
    const Outcome outcome = replayKvl("adapters-mixed", {"adapters", "--versions"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ(expected("adapters_mixed_versions.txt"), outcome.output);
    EXPECT_EQ("", outcome.errors);
}

TEST(Adapters, AreListedForOneFamily) {
    const std::string all = expected("adapters_mixed.txt");
    for (const std::string family : {"cna", "fc"}) {
        std::istringstream lines(all);
        std::string line;
        std::string ofFamily;
        while (std::getline(lines, line)) {
            const bool isChosen =
                line.find("FAMILY") != std::string::npos || line.find("  " + family + " ") != std::string::npos;
            ofFamily += isChosen ? line + "\n" : "";
        }
        const Outcome outcome = replayKvl("adapters-mixed", {"adapters", "--family", family});
        const auto withoutBlanks = [](std::string text) {
            text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
            return text;
        };
        EXPECT_EQ(withoutBlanks(ofFamily), withoutBlanks(outcome.output));
    }
}

TEST(Adapters, AreADocumentForPrograms) {
    const Outcome outcome = replayKvl("adapters-mixed", {"adapters", "--versions", "--format", "json"});
    EXPECT_EQ(0, outcome.status);
    const json document = json::parse(outcome.output);
    ASSERT_EQ(15U, document["adapters"].size());
    EXPECT_EQ(json::parse(R"({
        "device": "06:01.1", "family": "cna", "type": "FCoE", "address": "10:00:00:90:fa:71:88:06",
        "port_number": "3", "pci_bus_number": "6", "pci_function": "9", "serial_number": "BG41400902",
        "versions": {"firmware": "10.2.340.19", "driver": "8.3.7.18", "boot": "10.2.340.19", "tool": "6.3.12.1"},
        "failures": []})"),
              document["adapters"][9]);
    const json plain = json::parse(replayKvl("adapters-mixed", {"adapters", "--format", "json"}).output);
    EXPECT_FALSE(plain["adapters"][0].contains("versions"));
}

TEST(Adapters, AreReadFromTheToolEachTimeAndTheirVersionsFromTheCache) {
    const Outcome outcome = runOnServer(
        "kvl adapters --family fc --versions >/dev/null; rm /.machine/log\n"
        "kvl adapters --family fc --versions >/dev/null; cat /.machine/log; rm /.machine/log\n"
        "rm -r $ports/1[0-4]\n"
        "kvl adapters --family fc --versions --refresh >/dev/null; cat /.machine/log; ls $tree $tree/cache/FC "
        "$tree/temp");
    EXPECT_EQ(
        "/usr/sbin/ocmanager/hbacmd listhbas\n"
        "/usr/sbin/ocmanager/hbacmd listhbas\n"
        "/usr/sbin/ocmanager/hbacmd dump 10:00:00:00:c9:d4:7e:31\n"
        "/usr/sbin/ocmanager/hbacmd GetDumpDirectory 10:00:00:00:c9:d4:7e:31\n"
        "/opt/tarvenn/kvl/tmp/EMULEX:\ncache\ntemp\n\n"
        "/opt/tarvenn/kvl/tmp/EMULEX/cache/FC:\nCacheDump_0a:00.0.txt\nCacheDump_15:00.0.txt\nCacheDump_15:00.1.txt\n\n"
        "/opt/tarvenn/kvl/tmp/EMULEX/temp:\nCNA\nDumpDirectory.txt\nFC\nListhbas.txt\n",
        outcome.output);
}

TEST(Adapters, AreShownUnderTheLocationByWhichTheOtherCommandsFindThem) {
    // Functions after the first device, on a bus whose number begins like another's.
    const Outcome outcome = runOnServer(R"sh(
add() {
    mkdir $ports/$1
    printf '%s\n' "Permanent MAC  : $2" 'Port Number    : 0' "PCI Bus Number : $3" "PCI Function   : $4" \
        'Port Type      : iSCSI' 'Serial No.     : S' >$ports/$1/list
    echo "Port WWPN/MAC: $2" >$ports/$1/dump
}
add 16 00-00-00-00-00-16 12 2
add 17 00-00-00-00-00-17 12 9
add 18 00-00-00-00-00-18 1 2
add 19 00-00-00-00-00-19 1 1
kvl adapters | tail -n +2 >/tmp/list
while read -r device family type address rest; do
    kvl adapter-info $device 2>/dev/null | tr a-f A-F | grep -q "$(echo $address | tr a-f- A-F:)" ||
        echo "$device is not $address"
done </tmp/list
tail -n 4 /tmp/list | cut -c 1-7)sh");
    EXPECT_EQ("0c:01.0\n0c:04.1\n01:00.2\n01:00.1\n", outcome.output) << outcome.errors;
}

TEST(Adapters, AreListedWithFewQuestionsHoweverManyBusesThereAre) {
    // The question is how many functions each bus counts for a device. The library reads the whole list for it.
    const std::string list = R"sh(
cat >/tmp/list <<end
Permanent MAC  : 00-00-00-00-00-00
Port Number    : 0
PCI Bus Number : BUS
PCI Function   : FUNCTION
Port Type      : iSCSI
Serial No.     : S
end
rm -r $ports
bus=0
while [ $bus -lt 40 ]; do
    mkdir -p $ports/$bus; sed "s/BUS/$bus/; s/FUNCTION/2/" /tmp/list >$ports/$bus/list
    bus=$((bus + 1))
done
questions() {
    rm -f /tmp/trace; KVL_TRACE_FILE=/tmp/trace KVL_TRACE_LEVELS=1 kvl adapters | tail -n +2 | cut -c 1-7 >/tmp/devices
    wc -l </tmp/devices; grep -c 'GetHBAInfo() \[START\]' /tmp/trace; grep ':00.2' /tmp/devices
}
)sh";
    EXPECT_EQ("40\n0\n", runOnServer(list + "questions").output) << "no function above 7: two functions a device";
    const Outcome some = runOnServer(list + "sed 's/BUS/3/; s/FUNCTION/8/' /tmp/list >>$ports/3/list; questions");
    EXPECT_EQ("41\n10\n03:00.2\n", some.output) << "only a bus of one digit can count another number";
}

TEST(Adapters, AreShownAtTheLocationThatTheKernelKnows) {
    const Outcome outcome = runOnServer(
        "mkdir -p /sys/bus/pci/devices/0000:02:00.2 /sys/bus/pci/devices/0000:02:01.1\n"
        "kvl adapters | head -n 5 | tail -n 2 | cut -c 1-7");
    EXPECT_EQ("02:00.2\n02:01.1\n", outcome.output);
}

struct Answer {
    std::vector<std::string> command;
    int status;
    const char* output;
    const char* errors;
};

void PrintTo(const Answer& row, std::ostream* stream) {
    *stream << kvl::test::quoted(row.command);
}

class AnswerOnTheMixedServer : public testing::TestWithParam<Answer> {};

TEST_P(AnswerOnTheMixedServer, IsWhole) {
    const Outcome outcome = replayKvl("adapters-mixed", GetParam().command);
    EXPECT_EQ(GetParam().status, outcome.status);
    EXPECT_EQ(GetParam().output, outcome.output);
    EXPECT_EQ(GetParam().errors, outcome.errors);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, AnswerOnTheMixedServer,
    testing::Values(
        Answer{{"adapter-info", "06:01.0"},
               0,
               "Adapter 06:01.0\n  WWPN              10:00:00:90:fa:71:88:02\n  Bus/Dev/Func      6/1/0\n",
               ""},
        Answer{{"adapter-info", "15:00.1-10df"},
               0,
               "Adapter 15:00.1\n  WWPN              10:00:00:00:c9:d4:7e:31\n  Bus/Dev/Func      21/0/1\n",
               ""},
        Answer{{"adapter-info", "06:00.3"},
               0,
               "Adapter 06:00.3\n  MAC Address       00:90:FA:71:88:05\n  Bus/Dev/Func      6/0/3\n",
               ""},
        Answer{{"adapter-info", "02:00.0"},
               1,
               "Adapter 02:00.0\n  MAC Address       00:90:FA:3C:10:20\n  Bus/Dev/Func      2/0/0\n",
               "kvl: the interface of 02:00.0 could not be told, since the kernel lists no interface but lo: see "
               "whether the port's driver is loaded\n"},
        Answer{{"adapter-info", "02:07.0"},
               3,
               "",
               "kvl: no adapter in the list has this PCI location (error e): 'kvl adapters' lists the adapters with "
               "their locations\n"},
        Answer{{"version", "06:01.0", "--kind", "firmware"}, 0, "10.2.340.19\n", ""},
        Answer{{"version", "0a:00.0", "--kind", "firmware"}, 0, "1.12a5\n", ""},
        Answer{{"version", "02:00.1", "--kind", "driver"}, 0, "4.6.62.0u\n", ""},
        Answer{{"version", "15:00.0", "--kind", "boot", "--family", "fc"}, 0, "5.03a4\n", ""},
        Answer{{"version", "0f:00.0", "--kind", "tool", "--refresh"}, 0, "6.3.12.1\n", ""},
        Answer{{"version", "02:07.0", "--kind", "tool"},
               3,
               "",
               "kvl: no adapter in the list has this PCI location (error e): 'kvl adapters' lists the adapters with "
               "their locations\n"},
        Answer{{"supported"},
               0,
               "CNA   /opt/tarvenn/kvl/CnaVCFac.ini\n"
               "  Devices ending 0  0710, 0720\n"
               "  Devices ending 2  0712, 0722\n"
               "  Devices ending 4  0714, 0724\n"
               "  Hardware          PCI\\VEN_19A2&DEV_0710, PCI\\VEN_10DF&DEV_0720\n"
               "  Vendors           19A2, 10DF\n"
               "\n"
               "FC   /opt/tarvenn/kvl/FcVCFac.ini\n"
               "  Devices           DEV_F100, DEV_E200\n"
               "  Hardware          PCI\\VEN_10DF&DEV_F100, PCI\\VEN_10DF&DEV_E200\n",
               ""},
        Answer{{"slot", "0b:00.1"}, 0, "11\n", ""}, Answer{{"slot", "FF:1f.7-x"}, 0, "255\n", ""},
        Answer{{"slot", "0b:00.1", "--format", "json"}, 0, "{\n  \"device\": \"0b:00.1\",\n  \"slot\": 11\n}\n", ""},
        Answer{{"driver-check", "lpfc", "8.3.7.18"}, 0, "lpfc has this version\n", ""},
        Answer{{"driver-check", "lpfc", "8.3.7.19"},
               13,
               "lpfc has another version, or isn't installed, or tells no version\n",
               ""},
        Answer{{"boot-image"}, 0, "the default boot entry has the RAM disk of the running kernel\n", ""},
        Answer{{"components"}, 0, "nothing is missing\n", ""}));

TEST(AdapterInfo, TellsProgramsWhatCouldNotBeHad) {
    const Outcome outcome = replayKvl("adapters-mixed", {"adapter-info", "02:00.0", "--format", "json"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ(json::parse(R"([{"about": null, "number": null, "name": "no-interface",
                  "meaning": "the interface of 02:00.0 could not be told, since the kernel lists no interface but lo",
                  "next": "see whether the port's driver is loaded"}])"),
              json::parse(outcome.output)["failures"]);
    const Outcome whole = replayKvl("adapters-mixed", {"adapter-info", "06:01.0", "--format", "json"});
    EXPECT_FALSE(json::parse(whole.output).contains("failures"));
}

TEST(Device, HasOneCacheHoweverItIsSpelled) {
    const Outcome outcome = runOnServer(
        "for device in 15:00.0 15:0.0 15:00.00 15:00.0- 15:00.0-a/b; do\n"
        "    kvl version $device --kind firmware --format json | grep device\n"
        "done; ls $tree/cache/FC; grep -c dump /.machine/log; kvl adapter-info 2:0.0 2>/dev/null | head -n 1\n"
        "kvl version A:00.0 --kind firmware --format json | grep device");
    const std::string device = "  \"device\": \"15:00.0\",\n";
    EXPECT_EQ(device + device + device + device + device +
                  "CacheDump_15:00.0.txt\n1\nAdapter 02:00.0\n  \"device\": \"0a:00.0\",\n",
              outcome.output);
}

TEST(AnswerThatCannotBeWritten, EndsWithThree) {
    for (const std::string command :
         {"slot 0b:00.1", "compare 1.2.3.4 1.2.3.4 --kind tool --family fc", "components", "supported", "boot-image",
          "driver-check lpfc 8.3.7.18", "adapters", "adapter-info 06:01.0", "version 15:00.0 --kind boot"}) {
        const Outcome outcome = runOnServer("kvl " + command + " >/dev/full; echo $?");
        EXPECT_EQ("3\n", outcome.output) << command;
        EXPECT_EQ("kvl: the answer could not be written to standard output\n", outcome.errors) << command;
    }
}

TEST(DriverCheck, TellsThatTheMachineStartsAnotherKernel) {
    const Outcome outcome = replayKvl("adapters-fc", {"driver-check", "lpfc", "1.2.3.4"});
    EXPECT_EQ(14, outcome.status);
    EXPECT_EQ(
        "lpfc has another version, and the default boot entry has another RAM disk than that of the running kernel, or "
        "names it with a directory in front: see which kernel it names, and if it is another, start the machine anew "
        "and check again\n",
        outcome.output);
}

TEST(BootImage, TellsWhetherTheMachineStartsTheRunningKernel) {
    const Outcome other = replayKvl("adapters-fc", {"boot-image", "--format", "json"});
    EXPECT_EQ(15, other.status);
    EXPECT_EQ("{\n  \"result\": \"other\"\n}\n", other.output);
    EXPECT_EQ(0, replayKvl("adapters-none", {"boot-image"}).status);
    const Outcome unknown = runOnServer("rm /boot/grub/grub.conf; run kvl boot-image");
    EXPECT_EQ("ended with 3\n", unknown.output);
    EXPECT_THAT(unknown.errors, StartsWith("kvl: the default boot entry's RAM disk could not be told: see whether"));
}

TEST(Components, NamesTheToolWhereItIsMissing) {
    const Outcome outcome = replayKvl("adapters-none", {"components"});
    EXPECT_EQ(16, outcome.status);
    EXPECT_EQ("One Command Manager is missing\n", outcome.output);
    EXPECT_EQ(
        "kvl: hbacmd is not installed (error b): install the OneCommand Manager, which brings "
        "/usr/sbin/ocmanager/hbacmd\n",
        outcome.errors);
    EXPECT_EQ(json::parse(R"({"missing": ["One Command Manager"], "failures": [{"about": null, "number": "b",
                  "name": "no-tool", "meaning": "hbacmd is not installed",
                  "next": "install the OneCommand Manager, which brings /usr/sbin/ocmanager/hbacmd"}]})"),
              json::parse(replayKvl("adapters-none", {"components", "--format", "json"}).output));
}

TEST(Compare, TellsTheOutcomeInAWordAndByTheExitCode) {
    const Outcome outcome = runOnServer(
        "run kvl compare 4.6.281.21 4.6.281.21 --kind firmware --family cna\n"
        "run kvl compare 4.6.281.21 4.6.281.9 --kind driver --family fc\n"
        "run kvl compare 4.6.281.9 4.6.281.21 --kind tool --family cna\n"
        "run kvl compare 4.6.281 4.6.281.21 --kind driver --family cna\n"
        "run kvl compare 4.6.281.21u 4.6.281.21 --kind driver --family cna\n"
        "run kvl compare 2.72a2 2.72a2 --kind firmware --family fc\n"
        "run kvl compare 2.72a2 2.72a1 --kind firmware --family fc\n"
        "run kvl compare 2.72a2 2.72c1 --kind firmware --family fc\n"
        "run kvl compare 2.72c2 2.72a3 --kind firmware --family fc\n"
        "run kvl compare 2.72a2 2.72 --kind firmware --family fc\n"
        "run kvl compare 2.72a2 2.72a2 --kind firmware --family cna\n"
        "run kvl compare 1.2.3.4 1.2.3.5 --kind driver --family cna --format json");
    EXPECT_EQ(
        "equal\nended with 0\n"
        "older\nended with 10\n"
        "newer\nended with 11\n"
        "not a version\nended with 12\n"
        "equal\nended with 0\n"
        "equal\nended with 0\n"
        "older\nended with 10\n"
        "newer\nended with 11\n"
        "older\nended with 10\n"
        "not a version\nended with 12\n"
        "not a version\nended with 12\n"
        "{\n  \"old\": \"1.2.3.4\",\n  \"new\": \"1.2.3.5\",\n  \"kind\": \"driver\",\n  \"family\": \"cna\",\n"
        "  \"result\": \"newer\"\n}\nended with 11\n",
        outcome.output);
    EXPECT_EQ(
        "kvl: OLD: '4.6.281' is not a version of this kind (error 1e): give four numbers, as in 4.6.281.21; letters "
        "may follow the last\n"
        "kvl: NEW: '2.72' is not a version of this kind (error 1e): firmware of the family fc has two fields, as in "
        "2.72a2\n"
        "kvl: OLD: '2.72a2' is not a version of this kind (error 1e): give four numbers, as in 4.6.281.21; letters may "
        "follow the last\n"
        "kvl: NEW: '2.72a2' is not a version of this kind (error 1e): give four numbers, as in 4.6.281.21; letters may "
        "follow the last\n",
        outcome.errors);
}

TEST(Compare, TellsProgramsWhichOfTheTwoIsNoVersion) {
    const Outcome outcome =
        runKvl({"compare", "1.2.3.4", "1.2", "--kind", "tool", "--family", "fc", "--format", "json"});
    EXPECT_EQ(12, outcome.status);
    EXPECT_EQ(json::parse(R"({"old": "1.2.3.4", "new": "1.2", "kind": "tool", "family": "fc", "result": "not a version",
                  "failures": [{"about": "NEW", "number": "1e", "name": "bad-version",
                  "meaning": "'1.2' is not a version of this kind",
                  "next": "give four numbers, as in 4.6.281.21; letters may follow the last"}]})"),
              json::parse(outcome.output));
}

TEST(Supported, RefusesACatalogueThatSaysItIsHuge) {
    const Outcome outcome = runOnServer(
        "cd /opt/tarvenn/kvl\n"
        "for size in 10000 10001 1000000000 99999999999999999999 -5; do\n"
        "    printf '[SuportDevice]\\nSuportDeviceNum=%s\\nVendor1=VEN_10DF\\nDevice1=DEV_F100\\n' $size >FcVCFac.ini\n"
        "    kvl supported --family fc | head -n 2 | tail -n 1\n"
        "done");
    EXPECT_THAT(outcome.output, AllOf(StartsWith("  Devices           DEV_F100"), Not(HasSubstr("10001"))));
    EXPECT_EQ(
        "kvl: /opt/tarvenn/kvl/FcVCFac.ini says that it lists 10001 devices, and more than 10000 are not read: correct "
        "its SuportDeviceNum\n"
        "kvl: /opt/tarvenn/kvl/FcVCFac.ini says that it lists 1000000000 devices, and more than 10000 are not read: "
        "correct its SuportDeviceNum\n"
        "kvl: /opt/tarvenn/kvl/FcVCFac.ini says that it lists 2147483647 devices, and more than 10000 are not read: "
        "correct its SuportDeviceNum\n"
        "kvl: /opt/tarvenn/kvl/FcVCFac.ini does not say how many devices it lists: correct its SuportDeviceNum\n",
        outcome.errors);
}

TEST(Supported, NamesACatalogueThatCannotBeRead) {
    const Outcome outcome = runOnServer(
        "cd /opt/tarvenn/kvl; rm CnaVCFac.ini; mkdir CnaVCFac.ini; run kvl supported | tail -n 1\n"
        "rmdir CnaVCFac.ini; echo >CnaVCFac.ini; chmod 0 CnaVCFac.ini; run kvl supported | tail -n 1\n"
        "chmod 644 CnaVCFac.ini; echo '[SuportDevice]' >CnaVCFac.ini; run kvl supported --format json");
    EXPECT_EQ(
        "kvl: the catalogue /opt/tarvenn/kvl/CnaVCFac.ini is no regular file: remove it; the product's package brings "
        "it\n"
        "kvl: the catalogue /opt/tarvenn/kvl/CnaVCFac.ini can't be read (Permission denied): see its mode, or run kvl "
        "as root\n"
        "kvl: /opt/tarvenn/kvl/CnaVCFac.ini does not say how many devices it lists: correct its SuportDeviceNum\n",
        outcome.errors);
    EXPECT_THAT(outcome.output,
                AllOf(StartsWith("ended with 1\nended with 1\n{\n"), testing::EndsWith("}\nended with 1\n")));
    const auto begin = outcome.output.find('{');
    const json document = json::parse(outcome.output.substr(begin, outcome.output.rfind('}') + 1 - begin));
    ASSERT_EQ(1U, document["catalogues"].size());
    EXPECT_EQ("fc", document["catalogues"][0]["family"]);
    EXPECT_EQ(json::parse(R"([{"about": null, "number": null, "name": "bad-catalogue",
                  "meaning": "/opt/tarvenn/kvl/CnaVCFac.ini does not say how many devices it lists",
                  "next": "correct its SuportDeviceNum"}])"),
              document["failures"]);
}

TEST(Supported, NamesACatalogueThatIsMissing) {
    const Outcome outcome = runOnServer(
        "cd /opt/tarvenn/kvl; rm CnaVCFac.ini\n"
        "run kvl supported; rm FcVCFac.ini; run kvl supported; run kvl supported --format json");
    EXPECT_EQ(
        "FC   /opt/tarvenn/kvl/FcVCFac.ini\n"
        "  Devices           DEV_F100, DEV_E200\n"
        "  Hardware          PCI\\VEN_10DF&DEV_F100, PCI\\VEN_10DF&DEV_E200\n"
        "ended with 1\n"
        "ended with 3\n"
        "{\n  \"error\": {\n    \"number\": null,\n    \"name\": \"no-catalogue\",\n    \"meaning\": \"there is no "
        "catalogue /opt/tarvenn/kvl/CnaVCFac.ini; there is no catalogue /opt/tarvenn/kvl/FcVCFac.ini\",\n    \"next\": "
        "\"the product's package brings it\"\n  }\n}\n"
        "ended with 3\n",
        outcome.output);
    const std::string one = "there is no catalogue /opt/tarvenn/kvl/CnaVCFac.ini";
    const std::string both = "kvl: " + one +
                             "; there is no catalogue /opt/tarvenn/kvl/FcVCFac.ini: the product's "
                             "package brings it\n";
    EXPECT_EQ("kvl: " + one + ": the product's package brings it\n" + both + both, outcome.errors);
}

TEST(Supported, IsADocumentForPrograms) {
    const json document = json::parse(replayKvl("adapters-mixed", {"supported", "--format", "json"}).output);
    EXPECT_EQ(json::parse(R"({"family": "fc", "file": "/opt/tarvenn/kvl/FcVCFac.ini",
                              "devices": ["DEV_F100", "DEV_E200"],
                              "hardware": ["PCI\\VEN_10DF&DEV_F100", "PCI\\VEN_10DF&DEV_E200"]})"),
              document["catalogues"][1]);
    EXPECT_EQ((json{"0712", "0722"}), document["catalogues"][0]["devices_ending_2"]);
}

TEST(AdapterCommands, ShowOnATerminalWhatIsWaitedFor) {
    const std::string shown = runOnTerminal({"replay", "adapters-mixed", "--", "version", "15:00.1", "--kind", "boot"});
    EXPECT_THAT(shown, StartsWith("\rhbacmd listhbas"));
    EXPECT_THAT(shown, HasSubstr("\rhbacmd dump 10:00:00:00:c9:d4:7e:31"));
    EXPECT_THAT(shown, testing::EndsWith(" \r5.03a4\r\n")) << "the line is gone before the answer comes";
    const std::string listed =
        runOnTerminal({"replay", "adapters-mixed", "--", "adapters", "--versions", "--family", "fc"});
    EXPECT_THAT(listed, HasSubstr("\rreading the list of 15 ports"));
    EXPECT_THAT(listed, HasSubstr("\r15:00.0 (2 of 3): hbacmd dump 10:00:00:00:c9:d4:7e:30"));
    EXPECT_EQ("5.03a4\r\n",
              runOnTerminal({"replay", "adapters-mixed", "--", "version", "15:00.1", "--kind", "boot", "--quiet"}));
}

TEST(AdapterCommands, ShowTheTraceOnRequest) {
    const Outcome outcome = replayKvl("adapters-mixed", {"adapters", "-v"});
    EXPECT_EQ(expected("adapters_mixed.txt"), outcome.output);
    EXPECT_THAT(outcome.errors, StartsWith("boundary  CEmulexCommon::GetOCMManagerInstallPath [START]\n"));
}

TEST(AdapterCommands, KeepTheToolsWordsOutOfTheAnswer) {
    const Outcome outcome = replayKvl("adapters-mixed", {"version", "15:00.1", "--kind", "boot", "--format", "json"});
    EXPECT_EQ(json::parse(R"({"device": "15:00.1", "kind": "boot", "family": "fc", "version": "5.03a4"})"),
              json::parse(outcome.output));
}

TEST(AdapterCommands, TakeTurnsWithOtherCollections) {
    auto options = kvl::test::rootWithKvl(std::string(KVL_MACHINES_FOLDER) + "/adapters-mixed");
    options.binds.push_back({"/usr/bin/flock"});
    const std::string program = KVL_PROGRAM;
    const Outcome outcome = kvl::test::runInside(
        options, "locked() { " + kvl::test::lockingInside() + program +
                     " \"$@\" --wait 0 2>/dev/null; echo $?; }\n"
                     "locked adapters; locked adapter-info 02:00.0; locked version 02:00.0 --kind boot\n"
                     "locked driver-check lpfc 1; locked boot-image");
    EXPECT_EQ("3\n3\n3\n3\n3\n", outcome.output);
}

TEST(AdapterCommands, KeepTheirFilesToThemselvesAndTheDirectoriesAboveOpen) {
    const Outcome outcome = runOnServer(
        "rm -r /opt/tarvenn/kvl/tmp 2>/dev/null; umask 0; kvl adapters --versions >/dev/null\n"
        "cd /opt/tarvenn/kvl; stat -c '%a %n' . tmp tmp/EMULEX tmp/EMULEX/temp/Listhbas.txt");
    EXPECT_EQ("755 .\n755 tmp\n700 tmp/EMULEX\n600 tmp/EMULEX/temp/Listhbas.txt\n", outcome.output);
}

}  // namespace
