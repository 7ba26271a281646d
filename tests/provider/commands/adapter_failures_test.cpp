#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "provider/library/adapter_failure.h"
#include "provider/library/working_tree.h"
#include "tests/provider/adapter_server.h"

namespace {

using kvl::test::Outcome;
using kvl::test::runKvl;
using kvl::test::runOnServer;
using kvl::test::ScratchDirectory;
using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kRemoved =
    "kvl: hbacmd is not installed (error b): install the OneCommand Manager, which brings /usr/sbin/ocmanager/hbacmd\n";
constexpr const char* kToolAdvice =
    " (error 0): run that command by hand, and see whether its services run and the adapters answer\n";

TEST(RemovedTool, IsAnErrorOfEveryQuestionThatNeedsIt) {
    const Outcome outcome = runOnServer(
        "remove_tool; run kvl adapters --versions; run kvl adapter-info 02:00.0\n"
        "run kvl version 02:00.0 --kind firmware; run kvl adapters --format json");
    EXPECT_EQ(
        "ended with 3\nended with 3\nended with 3\n"
        "{\n  \"error\": {\n    \"number\": \"b\",\n    \"name\": \"no-tool\",\n    \"meaning\": \"hbacmd is not "
        "installed\",\n    \"next\": \"install the OneCommand Manager, which brings /usr/sbin/ocmanager/hbacmd\"\n"
        "  }\n}\nended with 3\n",
        outcome.output);
    const std::string once = kRemoved;
    EXPECT_EQ(once + once + once + once, outcome.errors);
}

TEST(RemovedTool, IsNotNeededForVersionsInTheCache) {
    const Outcome outcome = runOnServer(
        "kvl version 15:00.0 --kind firmware; remove_tool\n"
        "for kind in firmware driver boot tool; do run kvl version 15:00.0 --kind $kind; done\n"
        "run kvl version 15:00.0 --kind firmware --refresh; run kvl version 15:00.1 --kind firmware\n"
        "run kvl version 15:00.0 --kind firmware --family cna");
    EXPECT_EQ(
        "2.01a12\n2.01a12\nended with 0\n8.3.7.18\nended with 0\n5.03a4\nended with 0\n6.3.12.1\nended with 0\n"
        "ended with 3\nended with 3\nended with 3\n",
        outcome.output);
}

TEST(RemovedTool, IsNotNeededForVersionsThatAnEarlierRunHasKept) {
    const ScratchDirectory scratch;
    const std::string root = scratch / "root";
    const std::vector<std::string> version = {"replay",  "adapters-mixed", "--root", root,      "--",
                                              "version", "06:00.2",        "--kind", "firmware"};
    EXPECT_EQ("10.2.340.19\n", runKvl(version).output);
    std::filesystem::remove(root + "/usr/sbin/ocmanager/hbacmd");
    const Outcome cached = runKvl(version);
    EXPECT_EQ(0, cached.status);
    EXPECT_EQ("10.2.340.19\n", cached.output);
    auto refreshed = version;
    refreshed.emplace_back("--refresh");
    EXPECT_EQ(3, runKvl(refreshed).status);
}

TEST(ToolThatCannotBeExecuted, IsTold) {
    const Outcome outcome = runOnServer(
        "remove_tool; echo >$tool; chmod 644 $tool; run kvl adapters; run kvl components\n"
        "kvl components --format json 2>/dev/null");
    const std::string sentence =
        "kvl: /usr/sbin/ocmanager/hbacmd can't be executed: as root, see its mode, or install the OneCommand Manager "
        "anew\n";
    EXPECT_EQ(sentence + sentence, outcome.errors);
    const std::string inText = "ended with 3\nthe adapter tool can't be run\nended with 16\n";
    EXPECT_EQ(inText, outcome.output.substr(0, inText.size()));
    EXPECT_EQ(json::parse(R"({"missing": [], "failures": [{"about": null, "number": null,
                  "name": "tool-not-executable", "meaning": "/usr/sbin/ocmanager/hbacmd can't be executed",
                  "next": "as root, see its mode, or install the OneCommand Manager anew"}]})"),
              json::parse(outcome.output.substr(inText.size())));
}

TEST(FailingTool, IsToldWithItsCommand) {
    const Outcome outcome = runOnServer(
        "fault failing; run kvl adapters --versions 2>/tmp/list; run kvl adapters --format json 2>/dev/null; cure\n"
        "fault failing.dump; run kvl version 15:00.0 --kind boot 2>/tmp/dump; cure\n"
        "fault failing.GetDumpDirectory; run kvl version 15:00.0 --kind boot 2>/tmp/directory; cat /tmp/list /tmp/d* "
        ">&2");
    EXPECT_EQ(
        "ended with 3\n"
        "{\n  \"error\": {\n    \"number\": \"0\",\n    \"name\": \"tool-failed\",\n    \"meaning\": "
        "\"/usr/sbin/ocmanager/hbacmd listhbas failed, saying 'hbacmd: the adapters do not answer'\",\n    \"next\": "
        "\"run that command by hand, and see whether "
        "its "
        "services run and the adapters answer\"\n  }\n}\nended with 3\nended with 3\nended with 3\n",
        outcome.output);
    const std::string why = std::string(" failed, saying 'hbacmd: the adapters do not answer'") + kToolAdvice;
    EXPECT_EQ("kvl: /usr/sbin/ocmanager/hbacmd listhbas" + why +
                  "kvl: /usr/sbin/ocmanager/hbacmd GetDumpDirectory 10:00:00:00:c9:d4:7e:30" + why +
                  "kvl: /usr/sbin/ocmanager/hbacmd dump 10:00:00:00:c9:d4:7e:30" + why,
              outcome.errors);
}

TEST(FailingTool, LeavesThePortsListedAndTheirVersionsNamed) {
    const Outcome outcome = runOnServer("fault failing.dump; run kvl adapters --versions --family fc");
    EXPECT_THAT(outcome.output, HasSubstr("0a:00.0  fc      FC    10:00:00:90:fa:5e:41:0a  0     VM14300288  -    "));
    EXPECT_THAT(outcome.output, EndsWith("ended with 1\n"));
    const auto note = [](const std::string& device, const std::string& address) {
        return "kvl: " + device + ": firmware: /usr/sbin/ocmanager/hbacmd dump " + address +
               " failed, saying 'hbacmd: the adapters do not answer'" + kToolAdvice;
    };
    EXPECT_EQ(note("0a:00.0", "10:00:00:90:fa:5e:41:0a") + note("15:00.0", "10:00:00:00:c9:d4:7e:30") +
                  note("15:00.1", "10:00:00:00:c9:d4:7e:31"),
              outcome.errors);
}

TEST(FailingTool, IsQuotedWhereItSaysSomething) {
    const Outcome outcome = runOnServer("fault status.dump 7; run kvl version 15:00.0 --kind boot");
    EXPECT_EQ(
        "kvl: /usr/sbin/ocmanager/hbacmd dump 10:00:00:00:c9:d4:7e:30 failed, saying 'The dump of "
        "10:00:00:00:c9:d4:7e:30 has been written.'" +
            std::string(kToolAdvice),
        outcome.errors);
}

TEST(SilentTool, IsWaitedForAndTold) {
    const Outcome outcome = runOnServer(
        "fault silent; run kvl adapters --versions; cure\n"
        "fault silent.GetDumpDirectory; run kvl version 15:00.0 --kind boot");
    EXPECT_EQ("ended with 3\nended with 3\n", outcome.output);
    EXPECT_EQ("kvl: /usr/sbin/ocmanager/hbacmd listhbas printed nothing in 10 s" + std::string(kToolAdvice) +
                  "kvl: /usr/sbin/ocmanager/hbacmd GetDumpDirectory 10:00:00:00:c9:d4:7e:30 printed nothing in 10 s" +
                  kToolAdvice,
              outcome.errors);
}

TEST(SlowTool, IsWaitedForAndAnswers) {
    const Outcome outcome = runOnServer("fault slow 0.02; run kvl adapters --versions --family fc");
    EXPECT_THAT(outcome.output, EndsWith("2.01a12   8.3.7.18  5.03a4     6.3.12.1\nended with 0\n"));
    EXPECT_EQ("", outcome.errors);
}

TEST(KilledTool, IsTold) {
    const Outcome outcome = runOnServer("fault killed; run kvl adapters");
    EXPECT_EQ("ended with 3\n", outcome.output);
    EXPECT_EQ("kvl: /usr/sbin/ocmanager/hbacmd listhbas failed, saying 'Killed'" + std::string(kToolAdvice),
              outcome.errors);
}

struct NumberedFailure {
    const char* script;
    const char* sentence;
};

void PrintTo(const NumberedFailure& row, std::ostream* stream) {
    *stream << row.sentence;
}

class Code : public testing::TestWithParam<NumberedFailure> {};

TEST_P(Code, IsToldWithItsMeaningItsNumberAndWhatToDo) {
    const Outcome outcome =
        runOnServer(std::string(GetParam().script) + "; run kvl version 15:00.0 --kind boot --refresh");
    EXPECT_EQ("ended with 3\n", outcome.output);
    EXPECT_EQ(std::string("kvl: ") + GetParam().sentence + "\n", outcome.errors);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Code,
    testing::Values(
        NumberedFailure{"fault no-dump-directory",
                        "hbacmd did not tell its dump directory (error 5): see what 'hbacmd GetDumpDirectory ADDRESS' "
                        "prints for the port's address"},
        NumberedFailure{"fault other-port-first 9",
                        "hbacmd wrote no dump of this adapter in three tries (error 6): see whether 'hbacmd dump "
                        "ADDRESS' writes a file into its dump directory"},
        NumberedFailure{"echo '/tmp/a b' >${ports%/*}/dump_directory",
                        "hbacmd wrote no dump of this adapter in three tries (error 6): have the tool keep its dumps "
                        "in a directory without a blank in its name, unlike '/tmp/a b', in which they aren't found"},
        NumberedFailure{"kvl adapters >/dev/null; mkdir -m 700 $tree/cache/FC/CacheDump_15:00.0.txt",
                        "the adapter's dump could not be copied to the cache (error 7): see whether tmp/EMULEX/cache "
                        "below the install directory can be written and the disk has room"},
        NumberedFailure{"sed -i /Boot/d $ports/14/dump",
                        "the adapter's dump does not tell the version (error 9): --refresh makes a new dump; an "
                        "adapter without this module has no version of it"},
        NumberedFailure{"remove_tool",
                        "hbacmd is not installed (error b): install the OneCommand Manager, which brings "
                        "/usr/sbin/ocmanager/hbacmd"},
        NumberedFailure{"rm -r $ports/14",
                        "no adapter in the list has this PCI location (error e): 'kvl adapters' lists the adapters "
                        "with their locations"},
        NumberedFailure{"sed -i d $ports/*/list",
                        "the adapter list is empty, or tells nothing of the adapter (error f): see whether the "
                        "adapters' driver is loaded, and what "
                        "'hbacmd listhbas' prints"},
        NumberedFailure{"mkdir -p -m 700 ${tree%/*} $tree; echo >$tree/cache",
                        "a cache directory could not be made (error 12): see whether tmp/EMULEX/cache below the "
                        "install directory can be made; as root, remove what stands in its way"},
        NumberedFailure{"mkdir -p -m 700 ${tree%/*} $tree; echo >$tree/temp",
                        "a temporary directory could not be made (error 13): see whether tmp/EMULEX/temp below the "
                        "install directory can be made; as root, remove what stands in its way"}));

TEST(Code11, IsToldWhereTheListIsGoneWhenThePortIsLookedUp) {
    const Outcome outcome = runOnServer(R"sh(
remove_tool
printf '#!/bin/sh\n[ "$1" != dump ] || rm -f %s/temp/Listhbas.txt\nexec /.machine/hbacmd "$@"\n' $tree >$tool
chmod 755 $tool
run kvl adapters --versions --family fc)sh");
    EXPECT_THAT(outcome.output, EndsWith("ended with 1\n"));
    const auto note = [](const std::string& device) {
        return "kvl: " + device +
               ": firmware: a file could not be opened, or a step of an update failed (error 11): see whether the "
               "files in tmp/EMULEX below the install directory can be read\n";
    };
    EXPECT_EQ(note("15:00.0") + note("15:00.1"), outcome.errors);
}

TEST(Code6, AdvisesToLookAtAFamilyThatWasGiven) {
    const Outcome outcome = runOnServer("run kvl version 15:00.0 --kind boot --family cna");
    EXPECT_THAT(outcome.errors, HasSubstr("(error 6): "));
    EXPECT_THAT(outcome.errors, EndsWith(" into its dump directory, and whether --family is the port's\n"));
}

TEST(ToolsOutput, OfAnotherFormIsTold) {
    const Outcome outcome =
        runOnServer("sed -i 's/^PCI Bus Number.*/PCI Bus Number:/' $ports/01/list; run kvl adapter-info 15:00.0");
    EXPECT_EQ("ended with 3\n", outcome.output);
    EXPECT_EQ(
        "kvl: hbacmd's list of the adapters does not have the expected form (error 0): see what 'hbacmd listhbas' "
        "prints: tmp/EMULEX/temp/Listhbas.txt below the install directory holds it\n",
        outcome.errors);
}

TEST(ToolsOutput, ThatLacksALineOfAPortIsTold) {
    const Outcome outcome = runOnServer("sed -i /Serial/d $ports/15/list; run kvl adapters --family fc");
    EXPECT_THAT(outcome.output, EndsWith("15:00.1  fc      FC    10:00:00:00:c9:d4:7e:31  1     -\nended with 1\n"));
    EXPECT_EQ(
        "kvl: 15:00.1: hbacmd's list lacks a line of this or an earlier port, so values may stand at the wrong port: "
        "run 'kvl adapters' again, since the list may have been cut\n",
        outcome.errors);
    const Outcome document = runOnServer("sed -i /Serial/d $ports/15/list; kvl adapters --family fc --format json");
    EXPECT_EQ(json::parse(R"([{"about": "15:00.1", "number": null, "name": "incomplete-list", "meaning":
                  "hbacmd's list lacks a line of this or an earlier port, so values may stand at the wrong port",
                  "next": "run 'kvl adapters' again, since the list may have been cut"}])"),
              json::parse(document.output)["failures"]);
}

TEST(ToolsOutput, WithoutALocationLeavesTheVersionsOut) {
    const Outcome outcome = runOnServer(
        "sed -i 's/\\(PCI Function   : \\)1/\\1x/' $ports/15/list; kvl adapters --family fc --versions | tail -n "
        "1\n"
        "kvl adapters --family fc --versions --format json 2>/dev/null");
    EXPECT_THAT(outcome.output,
                StartsWith("-        fc      FC    10:00:00:00:c9:d4:7e:31  1     FC82110931  -         -         -"));
    EXPECT_EQ(
        "kvl: 10:00:00:00:c9:d4:7e:31: hbacmd's list tells no PCI location of it, by which its versions are asked "
        "for: see what 'hbacmd listhbas' prints\n",
        outcome.errors);
    const json document = json::parse(outcome.output.substr(outcome.output.find('{')));
    EXPECT_EQ("no-location", document["adapters"][2]["failures"][0]["name"]);
    EXPECT_EQ(nullptr, document["adapters"][2]["failures"][0]["kind"]);
    ASSERT_EQ(1U, document["failures"].size());
    EXPECT_EQ("no-location", document["failures"][0]["name"]);
    EXPECT_EQ("10:00:00:00:c9:d4:7e:31", document["failures"][0]["about"]);
}

TEST(ToolsOutput, GoesToNoShellWhereItIsNoAddress) {
    const Outcome outcome = runOnServer(
        "sed -i 's/^\\(Port WWN.*\\): .*/\\1: 10:00;touch${IFS}\\/tmp\\/done/' $ports/14/list\n"
        "run kvl version 15:00.0 --kind boot; run kvl adapters --versions --format json 2>/dev/null >/tmp/list\n"
        "ls /tmp/done 2>/dev/null; cat /tmp/list");
    EXPECT_EQ(
        "kvl: hbacmd's list tells no proper address of 15:00.0 (error 0): see what 'hbacmd listhbas' prints: "
        "tmp/EMULEX/temp/Listhbas.txt below the install directory holds it\n",
        outcome.errors);
    ASSERT_THAT(outcome.output, StartsWith("ended with 3\n{\n"));
    const std::string answer = outcome.output.substr(outcome.output.find('{'));
    const json document = json::parse(answer.substr(0, answer.rfind('}') + 1));
    EXPECT_EQ("unexpected-form", document["adapters"][13]["failures"][0]["name"]);
    EXPECT_EQ("2.01a12", document["adapters"][14]["versions"]["firmware"]);
}

TEST(ToolsOutput, GoesToNoShellWhereItLacksTheAddressOfThePortsType) {
    // The first port's type is that of a port with a WWN.
    const Outcome outcome = runOnServer(
        "sed -i 's/^\\(Port Type.*\\): .*/\\1: FC/' $ports/01/list\n"
        "run kvl version 02:00.0 --kind boot 2>&1 | cut -c 1-65; grep -c dump /.machine/log");
    EXPECT_EQ("kvl: hbacmd's list tells no proper address of 02:00.0 (error 0): \nended with 3\n0\n", outcome.output);
}

TEST(ToolsOutput, NeedNotBeText) {
    const Outcome outcome = runOnServer(
        "printf 'Serial No.     : \\377\\033[2Jx\\n' >>$ports/15/list; sed -i '/Serial No.*FC/d' $ports/15/list\n"
        "run kvl adapters --family fc --format json; kvl adapters | tail -n 1");
    const json document = json::parse(outcome.output.substr(0, outcome.output.find("ended with 0")));
    EXPECT_EQ("\xef\xbf\xbd\x1b[2Jx", document["adapters"][2]["serial_number"]);
    EXPECT_THAT(outcome.output, EndsWith("1     \xff [2Jx\n"));
}

TEST(AdapterTree, IsRefusedWhereOthersCanWrite) {
    const Outcome outcome = runOnServer(
        "kvl adapters >/dev/null; chmod 777 $tree/temp; run kvl adapters; chmod 755 $tree/temp\n"
        "run kvl adapters >/dev/null; mv $tree /tmp/tree; ln -s /tmp/tree $tree; run kvl adapters");
    EXPECT_EQ("ended with 3\nended with 3\n", outcome.output);
    EXPECT_EQ(
        "kvl: the adapters' directory /opt/tarvenn/kvl/tmp/EMULEX/temp can be written by other users: 'chmod "
        "go-w /opt/tarvenn/kvl/tmp/EMULEX/temp'\n"
        "kvl: the adapters' directory /opt/tarvenn/kvl/tmp/EMULEX is no directory: remove it, and kvl makes one\n",
        outcome.errors);
}

TEST(AdapterTree, IsRefusedBelowADirectoryThatOthersCanChange) {
    const Outcome outcome = runOnServer("kvl adapters >/dev/null; chmod 777 /opt/tarvenn/kvl/tmp; run kvl adapters");
    EXPECT_EQ("ended with 3\n", outcome.output);
    EXPECT_EQ(
        "kvl: the adapters' directory /opt/tarvenn/kvl/tmp/EMULEX lies in /opt/tarvenn/kvl/tmp, where other users can "
        "write: 'chmod go-w /opt/tarvenn/kvl/tmp'\n",
        outcome.errors);
}

/// Becomes a user who may not enter the directory of the installation, and reports what comes of that.
[[noreturn]] void makeTreeAsOrdinaryUser(const std::string& installation) {
    constexpr uid_t kNobody = 65534;
    setenv("KVL_INSTALL_PATH", installation.c_str(), 1);
    if (geteuid() == 0 && setuid(kNobody) != 0) {
        _exit(1);
    }
    try {
        kvl::provider::WorkingTree::inUse().make();
    } catch (const kvl::provider::AdapterFailure& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        _exit(0);
    }
    _exit(1);
}

TEST(AdapterTree, IsMadeByRootWhereTheUserMayNot) {
    const ScratchDirectory scratch;
    const std::string installation = scratch / "kvl";
    std::filesystem::create_directory(installation);
    std::filesystem::permissions(installation, std::filesystem::perms::owner_read);
    EXPECT_EXIT(makeTreeAsOrdinaryUser(installation), testing::ExitedWithCode(0),
                "a cache directory could not be made .error 12.: run kvl as root");
    std::filesystem::permissions(installation, std::filesystem::perms::owner_all);
}

TEST(AdapterTree, IsRefusedAtAPathThatAShellTakesApart) {
    const Outcome outcome = runOnServer("export KVL_INSTALL_PATH='/tmp/a b'; run kvl adapters; ls '/tmp/a b/tmp'");
    EXPECT_EQ("ended with 3\n", outcome.output);
    EXPECT_THAT(outcome.errors, StartsWith("kvl: the adapters' directory /tmp/a b/tmp/EMULEX holds characters that a "
                                           "shell would not take as they are"));
}

}  // namespace
