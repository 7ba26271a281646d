#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/provider/adapter_server.h"

namespace {

using kvl::test::Outcome;
using kvl::test::runOnServer;
using nlohmann::json;
using testing::HasSubstr;

constexpr const char* kFunctions = R"(
marks=$tree/temp
mark() { echo $1 >>$marks/SequentialUpdateFile_$1.txt; }
)";

Outcome pendingOn(const std::string& script) {
    return runOnServer(kFunctions + script);
}

TEST(Pending, IsNothingOnANewServer) {
    const Outcome outcome = pendingOn("run kvl pending; run kvl pending --take; ls /opt/tarvenn/kvl");
    EXPECT_EQ(
        "nothing is pending\nended with 0\nnothing is pending\nended with 0\nCnaVCFac.ini\nFcVCFac.ini\n"
        "provider\ntmp\n",
        outcome.output);
    EXPECT_EQ("", outcome.errors);
}

TEST(Pending, IsWhatWasMarkedAndIsntTakenByALook) {
    const Outcome outcome = pendingOn(
        "run kvl pending --add iscsi; run kvl pending --add nic; run kvl pending; run kvl pending\n"
        "cd $marks; cat Seq*");
    EXPECT_EQ(
        "iSCSI\nended with 0\nNIC\niSCSI\nended with 0\nNIC\niSCSI\nended with 0\nNIC\niSCSI\nended with 0\n"
        "NIC\niSCSI\n",
        outcome.output);
    EXPECT_EQ("", outcome.errors);
}

TEST(Pending, ListsWithoutMakingAnything) {
    EXPECT_EQ("nothing is pending\nCnaVCFac.ini\nFcVCFac.ini\nprovider\n",
              pendingOn("kvl pending; ls /opt/tarvenn/kvl").output);
}

TEST(Pending, MarksSeveralKindsEachOfThemOnce) {
    const Outcome outcome =
        pendingOn("run kvl pending --add fcoe --add nic --add fcoe; cd $marks; cat Seq*; stat -c '%a %n' Seq*");
    EXPECT_EQ(
        "NIC\nFCoE\nended with 0\nFCoE\nNIC\n600 SequentialUpdateFile_FCoE.txt\n600 SequentialUpdateFile_NIC.txt\n",
        outcome.output);
}

TEST(PendingTake, HandsTheMarksBackOnce) {
    const Outcome outcome = pendingOn(
        "kvl pending --add iscsi --add fcoe --add nic; run kvl pending --take; run kvl pending --take\n"
        "run kvl pending; ls $marks");
    EXPECT_EQ(
        "NIC\nFCoE\niSCSI\nNIC\nFCoE\niSCSI\nended with 0\nnothing is pending\nended with 0\nnothing is pending\n"
        "ended with 0\nCNA\nFC\n",
        outcome.output);
    EXPECT_EQ("", outcome.errors);
}

TEST(Pending, IsADocumentForPrograms) {
    const Outcome outcome =
        pendingOn("kvl pending --format json; kvl pending --add nic --format json; kvl pending --take --format json");
    EXPECT_EQ(
        "{\n  \"pending\": []\n}\n{\n  \"pending\": [\n    \"NIC\"\n  ]\n}\n"
        "{\n  \"taken\": [\n    \"NIC\"\n  ],\n  \"staying\": []\n}\n",
        outcome.output);
}

TEST(PendingAdd, TellsTheFileThatCantBeWrittenAndKeepsTheMarksBeforeIt) {
    const std::string change = "kvl pending --take >/dev/null; mkdir $marks/SequentialUpdateFile_FCoE.txt\n";
    const Outcome outcome =
        pendingOn(change + "run kvl pending --add nic --add fcoe --add iscsi; ls $marks | grep -cE 'NIC|iSCSI'");
    EXPECT_EQ("ended with 3\n1\n", outcome.output);
    EXPECT_EQ(
        "kvl: FCoE is not marked: /opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_FCoE.txt can't be written "
        "(error 11): see whether the file and its directory can be written, and whether the disk has room; 'kvl "
        "pending' lists what is marked\n",
        outcome.errors);
    const json document = json::parse(pendingOn(change + "kvl pending --add fcoe --format json 2>/dev/null").output);
    EXPECT_EQ("11", document["error"]["number"]);
    EXPECT_THAT(document["error"]["meaning"], HasSubstr("FCoE is not marked"));
}

TEST(PendingAdd, NeedsASafeTree) {
    const Outcome outcome = pendingOn("mkdir -p $tree; chmod 777 $tree; run kvl pending --add nic");
    EXPECT_EQ("ended with 3\n", outcome.output);
    EXPECT_THAT(outcome.errors, HasSubstr("can be written by other users: 'chmod go-w"));
}

TEST(PendingAdd, MarksOnAFullDiskSinceTheFileAloneCounts) {
    const Outcome outcome = pendingOn(
        "kvl pending --take >/dev/null\n"
        "(trap '' XFSZ; ulimit -f 0; run kvl pending --add nic; run kvl pending) 2>&1 | cat\n"
        "wc -c <$marks/SequentialUpdateFile_NIC.txt; kvl pending --take");
    EXPECT_EQ("NIC\nended with 0\nNIC\nended with 0\n0\nNIC\n", outcome.output);
}

TEST(PendingTake, TellsWhichMarksStay) {
    const Outcome outcome = pendingOn(
        "kvl pending --add nic --add iscsi >/dev/null; mkdir $marks/SequentialUpdateFile_FCoE.txt\n"
        "run kvl pending --take; run kvl pending; run kvl pending --take --format json 2>/dev/null\n"
        "rmdir $marks/SequentialUpdateFile_FCoE.txt; run kvl pending --take");
    EXPECT_EQ(
        "NIC\nended with 3\nFCoE\niSCSI\nended with 0\n"
        "{\n  \"taken\": [],\n  \"staying\": [\n    \"FCoE\",\n    \"iSCSI\"\n  ]\n}\nended with 3\n"
        "iSCSI\nended with 0\n",
        outcome.output);
    EXPECT_EQ(
        "kvl: FCoE, iSCSI stay marked: /opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_FCoE.txt can't be "
        "deleted; remove it by hand, and take again\n",
        outcome.errors);
}

TEST(PendingTake, SaysNothingOnStandardOutputWhereNothingIsTakenAndOneMarkStays) {
    const Outcome outcome =
        pendingOn("kvl pending --take >/dev/null; mkdir $marks/SequentialUpdateFile_NIC.txt; run kvl pending --take");
    EXPECT_EQ("ended with 3\n", outcome.output);
    EXPECT_THAT(outcome.errors, HasSubstr("kvl: NIC stays marked: "));
}

TEST(PendingTake, TakesNothingWhereTheDirectoryCantBeWritten) {
    const Outcome outcome = pendingOn(
        "kvl pending --add nic --add fcoe >/dev/null; chmod 500 $marks; run kvl pending --take; run kvl pending\n"
        "chmod 700 $marks; run kvl pending --take");
    EXPECT_EQ("ended with 3\nNIC\nFCoE\nended with 0\nNIC\nFCoE\nended with 0\n", outcome.output);
    EXPECT_EQ(
        "kvl: nothing was taken: the marks in /opt/tarvenn/kvl/tmp/EMULEX/temp can't be deleted (Permission denied): "
        "run this as the user whose directory it is, or make it writable\n",
        outcome.errors);
}

TEST(PendingTake, HandsTheMarksBackBeforeASignalCounts) {
    // The second mark can't be deleted at first, and the signal comes in the pause.
    const Outcome outcome = pendingOn(
        "kvl pending --add nic >/dev/null; mkdir $marks/SequentialUpdateFile_FCoE.txt\n"
        "KVL_MEANWHILE='kill -INT $PPID; ls '$marks'; rmdir '$marks/SequentialUpdateFile_FCoE.txt; export "
        "KVL_MEANWHILE\n"
        "run kvl pending --take; ls $marks");
    EXPECT_EQ("NIC\nFCoE\nended with 0\nCNA\nFC\n", outcome.output);
    EXPECT_EQ("kvl: Interrupt: noted; the marks are handed back first\n", outcome.errors);
}

TEST(PendingTake, NamesTheSignalInTheDocument) {
    const Outcome outcome = pendingOn(
        "kvl pending --add nic >/dev/null; mkdir $marks/SequentialUpdateFile_FCoE.txt\n"
        "KVL_MEANWHILE='kill -TERM $PPID; rmdir '$marks/SequentialUpdateFile_FCoE.txt; export KVL_MEANWHILE\n"
        "kvl pending --take --format json 2>/dev/null; echo $?");
    EXPECT_EQ(
        "{\n  \"taken\": [\n    \"NIC\",\n    \"FCoE\"\n  ],\n  \"staying\": [],\n  \"interrupted_by\": "
        "\"SIGTERM\"\n}\n0\n",
        outcome.output);
}

TEST(Pending, TellsAMarkThatCantBeRead) {
    const Outcome outcome = pendingOn(
        "kvl pending --add fcoe --add nic >/dev/null; chmod 0 $marks/*FCoE*; run kvl pending; run kvl pending --take\n"
        "run kvl pending --format json 2>/dev/null; ls $marks");
    EXPECT_THAT(outcome.output, testing::StartsWith("ended with 3\nended with 3\n{\n  \"error\": {\n    \"number\": "
                                                    "\"11\",\n"));
    EXPECT_THAT(outcome.output, testing::EndsWith("ended with 3\nCNA\nFC\nSequentialUpdateFile_FCoE.txt\n"
                                                  "SequentialUpdateFile_NIC.txt\n"));
    const std::string once =
        "kvl: /opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_FCoE.txt can't be read, so whether FCoE is pending "
        "can't be told: Permission denied (error 11): run this as the user whose file it is, or mend the file\n";
    EXPECT_EQ(once + once, outcome.errors);
}

TEST(Pending, TakesTurnsWithOtherRunsWhereItChangesSomething) {
    auto options = kvl::test::rootWithKvl(std::string(KVL_MACHINES_FOLDER) + "/adapters-mixed");
    options.binds.push_back({"/usr/bin/flock"});
    const std::string program = KVL_PROGRAM;
    const Outcome outcome = kvl::test::runInside(options, "locked() { " + kvl::test::lockingInside() + program +
                                                              " pending --wait 0 \"$@\" 2>/dev/null; echo $?; "
                                                              "}\nlocked --add nic; locked --take; locked");
    EXPECT_EQ("3\n3\nnothing is pending\n0\n", outcome.output);
}

TEST(Pending, StaysMarkedWhereTheAnswerCantBePrinted) {
    const Outcome outcome = runOnServer(
        "kvl pending --add nic --add iscsi >/dev/null; kvl pending --take >/dev/full; echo $?; kvl pending");
    EXPECT_EQ("3\nNIC\niSCSI\n", outcome.output);
    EXPECT_EQ("kvl: the answer could not be written to standard output\n", outcome.errors);
}

}  // namespace
