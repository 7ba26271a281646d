#include <sys/file.h>
#include <unistd.h>

#include <filesystem>

#include "tests/adapter/adapter_test.h"

namespace kvl::test {
namespace {

using namespace std::string_literals;

using KeyValue = std::pair<std::string, std::string>;

const std::string kFile = "/tmp/report.txt";
const std::string kAddress = "10:00:00:00:c9:aa:bb:cc";

class ReportFiles : public AdapterTest {
protected:
    /// @return the key and the value, which replace an earlier result
    KeyValue read(const std::string& keys, unsigned int count = 0, const std::string& separator = ":") {
        KeyValue result = {"earlier", "earlier"};
        EXPECT_TRUE(CEmulexCommon::GetKeyValueFromFile_(kFile, keys, separator, result, module, count));
        return result;
    }

    std::string valueOf(const std::string& line, const std::string& key = "Key", const std::string& separator = ":") {
        machine.file(kFile, line);
        return read(key, 0, separator).second;
    }

    KeyValue readTagged(const std::string& tags, const std::string& keys, unsigned int count = 0) {
        KeyValue result = {"earlier", "earlier"};
        EXPECT_TRUE(CEmulexCommon::GetTagKeyValueFromFile_(kFile, tags, keys, ":", result, module, count));
        return result;
    }
};

using KeyReader = ReportFiles;
using TagReader = ReportFiles;
using DumpFileKeyWord = ReportFiles;

// ---- GetKeyValueFromFile_ ----

TEST_F(KeyReader, TakesTheFirstLineThatHoldsTheKey) {
    machine.file(kFile, "Other: x\nPort Number : 1\nPort Number : 2\n");
    EXPECT_EQ(read("Port Number"), (KeyValue{"Port Number", "1"}));
    EXPECT_EQ(TestHost::trace(), (Lines{"1 GetKeyValueFromFile(/tmp/report.txt,Port Number,:)"}));
    EXPECT_EQ(takeError(), 0U);
}

TEST_F(KeyReader, LeavesNothingForAnAbsentKey) {
    machine.file(kFile, "Port Number : 1\n");
    EXPECT_EQ(read("port number"), (KeyValue{}));
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(TestHost::trace(), (Lines{keyTrace(kFile, "port number")}));
}

TEST_F(KeyReader, FailsForAFileThatCannotBeOpened) {
    KeyValue result = {"earlier", "earlier"};
    EXPECT_FALSE(CEmulexCommon::GetKeyValueFromFile_("/tmp/absent", "Key", "=", result, module, 0));
    EXPECT_EQ(result, (KeyValue{}));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(TestHost::trace(),
              (Lines{"1 GetKeyValueFromFile(/tmp/absent,Key,=)", "2 File Open Error. file(/tmp/absent) errcode(2)",
                     "1 CEmulexCommon::GetKeyValueFromFile_() [END]"}));
}

TEST_F(KeyReader, TracesTheErrorNumberOfTheOpening) {
    machine.file(kFile, "Key: x\n");
    chmod(kFile.c_str(), 0);
    KeyValue result;
    EXPECT_FALSE(CEmulexCommon::GetKeyValueFromFile_(kFile, "Key", ":", result, module, 0));
    EXPECT_EQ(TestHost::trace()[1], openErrorTrace(kFile, EACCES));
}

TEST_F(KeyReader, TakesADirectoryAsAnEmptyFile) {
    KeyValue result;
    EXPECT_TRUE(CEmulexCommon::GetKeyValueFromFile_("/tmp", "Key", ":", result, module, 0));
    EXPECT_EQ(result, (KeyValue{}));
    EXPECT_EQ(takeError(), 0U);
}

TEST_F(KeyReader, FindsTheKeyAnywhereInTheLine) {
    EXPECT_EQ(valueOf("  my Key word : value\n"), "value");
}

TEST_F(KeyReader, GivesTheKeyAsItStandsInTheListWithTheValue) {
    machine.file(kFile, "Permanent MAC : 00-00-c9-aa-bb-cc\n");
    EXPECT_EQ(read("Port WWN|Permanent MAC"), (KeyValue{"Permanent MAC", "00-00-c9-aa-bb-cc"}));
}

TEST_F(KeyReader, LetsTheFirstKeyOfTheListWinWithinALine) {
    machine.file(kFile, "B: 1 A: 2\n");
    EXPECT_EQ(read("A|B"), (KeyValue{"A", "2"}));
    EXPECT_EQ(read("B|A"), (KeyValue{"B", "1 A: 2"}));
}

TEST_F(KeyReader, LetsTheFirstLineWinOverTheOrderOfTheList) {
    machine.file(kFile, "B: 1\nA: 2\n");
    EXPECT_EQ(read("A|B"), (KeyValue{"B", "1"}));
}

TEST_F(KeyReader, TakesAValueThatHoldsTheSeparator) {
    EXPECT_EQ(valueOf("Port WWN       : " + kAddress + "\n", "Port WWN"), kAddress);
}

TEST_F(KeyReader, SearchesTheSeparatorFromTheStartOfTheKey) {
    EXPECT_EQ(valueOf("a:b Key: c\n"), "c");
    EXPECT_EQ(valueOf("K:y: c\n", "K:y"), "y: c");
    EXPECT_EQ(valueOf("Key => c\n", "Key", "=>"), "c");
    EXPECT_EQ(valueOf("Dump Directory = /var/x y/z\n", "Dump Directory", "="), "/var/x y/z");
}

TEST_F(KeyReader, CutsBlanksOnBothSidesOfTheValueAndKeepsThoseInside) {
    EXPECT_EQ(valueOf("Key:   a  b c   \n"), "a  b c");
    EXPECT_EQ(valueOf("Key:x\n"), "x");
    EXPECT_EQ(valueOf("Key:   x"), "x");
}

TEST_F(KeyReader, TakesATabForNoBlank) {
    EXPECT_EQ(valueOf("Key:\tx\t \n"), "\tx\t");
}

TEST_F(KeyReader, TakesCarriageReturnsAndLineFeedsForBlanks) {
    EXPECT_EQ(valueOf("Key: x\r\n"), "x");
    EXPECT_EQ(valueOf("Key: x\ry\r\r\n"), "x y");
    EXPECT_EQ(valueOf("A\rKey: x\n", "A Key"), "x");
    EXPECT_EQ(valueOf("Key\n: x\n", "Key :"), "");
}

TEST_F(KeyReader, PassesALineWithoutASeparatorOrAValueBy) {
    EXPECT_EQ(valueOf("Key x\nKey: y\n"), "y");
    EXPECT_EQ(valueOf("Key:\nKey: y\n"), "y");
    EXPECT_EQ(valueOf("Key:   \r\nKey: y\n"), "y");
    machine.file(kFile, "Key:   \n");
    EXPECT_EQ(read("Key"), (KeyValue{}));
}

TEST_F(KeyReader, TriesNoOtherKeyOnALineWithoutAValueForTheFirst) {
    machine.file(kFile, "B: 1 A\nB: 2\n");
    EXPECT_EQ(read("A|B"), (KeyValue{"B", "2"}));
}

TEST_F(KeyReader, PassesOverAsManyLinesWithAKeyAsCounted) {
    machine.file(kFile, "Port WWN: 1\nPort Number: x\nPort WWN: 2\n");
    EXPECT_EQ(read("Port WWN", 0).second, "1");
    EXPECT_EQ(read("Port WWN", 1).second, "2");
    EXPECT_EQ(read("Port WWN", 2), (KeyValue{}));
    EXPECT_EQ(read("Port WWN", 4294967295U), (KeyValue{}));
}

TEST_F(KeyReader, CountsALineWithBothKeysOnce) {
    machine.file(kFile, "A: 1 B: 1\nB: 2\nA: 3\n");
    EXPECT_EQ(read("A|B", 1), (KeyValue{"B", "2"}));
    EXPECT_EQ(read("A|B", 2), (KeyValue{"A", "3"}));
}

TEST_F(KeyReader, CountsALineWithoutAValueToo) {
    machine.file(kFile, "Key\nKey:\nKey: 1\n");
    EXPECT_EQ(read("Key", 2).second, "1");
    EXPECT_EQ(read("Key", 1).second, "1");
}

TEST_F(KeyReader, CountsEachPieceOfALongLineAsALine) {
    // 255 characters, then the rest: the key stands in both pieces.
    machine.file(kFile, "Key: a" + std::string(249, 'x') + "Key: b\nKey: c\n");
    EXPECT_EQ(read("Key", 0).second, "a" + std::string(249, 'x'));
    EXPECT_EQ(read("Key", 1).second, "b");
    EXPECT_EQ(read("Key", 2).second, "c");
}

TEST_F(KeyReader, LosesAKeyThatIsSplitBetweenTwoPieces) {
    machine.file(kFile, std::string(253, 'x') + "Key: a\n");
    EXPECT_EQ(read("Key"), (KeyValue{}));
    machine.file(kFile, std::string(252, 'x') + "Key: a\n");
    EXPECT_EQ(read("Key"), (KeyValue{}));
    machine.file(kFile, std::string(250, 'x') + "Key: a\n");
    EXPECT_EQ(read("Key"), (KeyValue{}));
    machine.file(kFile, std::string(249, 'x') + "Key: a\n");
    EXPECT_EQ(read("Key"), (KeyValue{"Key", "a"}));
}

TEST_F(KeyReader, EndsALineAtAZeroByte) {
    machine.file(kFile, std::string("Key: a\0b\nA\0Key: x\nKey: c\n", 25));
    EXPECT_EQ(read("Key", 0).second, "a");
    EXPECT_EQ(read("Key", 1).second, "c");
}

TEST_F(KeyReader, NeverEndsOnTheEmptyKeyOfAnEmptyListAndLeavesTheLastValue) {
    machine.file(kFile, "a: 1\nb\nc: 2\n");
    EXPECT_EQ(read(""), (KeyValue{"", "2"}));
}

TEST_F(KeyReader, TakesAnEmptySeparatorToStandAtTheKey) {
    EXPECT_EQ(valueOf("a Key: b\n", "Key", ""), "Key: b");
}

// ---- GetTagKeyValueFromFile_ ----

TEST_F(TagReader, TakesTheKeyBehindTheTag) {
    machine.file(kFile, "Key: outside\n[Tag]\nOther: x\nKey: inside\n");
    EXPECT_EQ(readTagged("[Tag]", "Key"), (KeyValue{"Key", "inside"}));
    EXPECT_EQ(TestHost::trace(), (Lines{"1 CEmulexCommon::GetTagKeyValueFromFile_() [START]",
                                        "1 GetTagKeyValueFromFile(/tmp/report.txt,[Tag],Key,:)",
                                        "1 CEmulexCommon::GetTagKeyValueFromFile_() [END]"}));
    EXPECT_EQ(takeError(), 0U);
}

TEST_F(TagReader, FailsForAFileThatCannotBeOpened) {
    KeyValue result = {"earlier", "earlier"};
    EXPECT_FALSE(CEmulexCommon::GetTagKeyValueFromFile_("/tmp/absent", "T", "K", "=", result, module, 0));
    EXPECT_EQ(result, (KeyValue{}));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(
        TestHost::trace(),
        (Lines{"1 CEmulexCommon::GetTagKeyValueFromFile_() [START]", "1 GetTagKeyValueFromFile(/tmp/absent,T,K,=)",
               "2 File Open Error. file(/tmp/absent) errcode(2)", "1 CEmulexCommon::GetTagKeyValueFromFile_() [END]"}));
}

TEST_F(TagReader, LeavesNothingWithoutTheTagOrTheKey) {
    machine.file(kFile, "Key: x\n");
    EXPECT_EQ(readTagged("Tag", "Key"), (KeyValue{}));
    machine.file(kFile, "Key: x\nTag\nOther: y\n");
    EXPECT_EQ(readTagged("Tag", "Key"), (KeyValue{}));
}

TEST_F(TagReader, DoesNotLookForAKeyOnTheTagLineItself) {
    machine.file(kFile, "Tag Key: a\nKey: b\n");
    EXPECT_EQ(readTagged("Tag", "Key").second, "b");
}

TEST_F(TagReader, KnowsSeveralTagsAndKeys) {
    machine.file(kFile, "Two\r\nB:  x y \r\n");
    EXPECT_EQ(readTagged("One|Two", "A|B"), (KeyValue{"B", "x y"}));
}

TEST_F(TagReader, TakesACarriageReturnInATagLineForABlank) {
    machine.file(kFile, "A\rB\nKey: 1\n");
    EXPECT_EQ(readTagged("A B", "Key").second, "1");
    EXPECT_EQ(readTagged("A\rB", "Key"), (KeyValue{}));
    machine.file(kFile, "AB\r\nKey: 1\n");
    EXPECT_EQ(readTagged("AB  ", "Key").second, "1");  // the line end is two blanks
}

TEST_F(TagReader, GoesOnBehindALineThatYieldsNothing) {
    machine.file(kFile, "Tag\nKey\nKey:  \nB: 1 Key\nKey: x\n");
    EXPECT_EQ(readTagged("Tag", "Key|B"), (KeyValue{"Key", "x"}));
}

TEST_F(TagReader, SearchesPastATagOnceItSearches) {
    machine.file(kFile, "Tag\nx\nTag\nKey: 1\n");
    EXPECT_EQ(readTagged("Tag", "Key").second, "1");
}

TEST_F(TagReader, ReplacesAValueByOneDirectlyBehindALaterTag) {
    machine.file(kFile, "Tag\nKey: 1\nTag\nKey: 2\n");
    EXPECT_EQ(readTagged("Tag", "Key").second, "2");
    machine.file(kFile, "Tag\nKey: 1\nTag\nB: 2\n");
    EXPECT_EQ(readTagged("Tag", "Key|B"), (KeyValue{"B", "2"}));
}

TEST_F(TagReader, LooksAtOneLineOnlyBehindALaterTag) {
    machine.file(kFile, "Tag\nKey: 1\nTag\nx\nKey: 2\n");
    EXPECT_EQ(readTagged("Tag", "Key").second, "1");
}

TEST_F(TagReader, ConsumesTheLineThatItLooksAt) {
    // The second tag line is looked at for a key, so it starts no search of its own.
    machine.file(kFile, "Tag\nKey: 1\nTag\nTag\nKey: 2\n");
    EXPECT_EQ(readTagged("Tag", "Key").second, "1");
}

TEST_F(TagReader, PassesOverAsManyTagLinesAsCounted) {
    machine.file(kFile, "Tag\nKey: 1\nTag\nKey: 2\nTag\nKey: 3\n");
    EXPECT_EQ(readTagged("Tag", "Key", 2).second, "3");
    EXPECT_EQ(readTagged("Tag", "Key", 3), (KeyValue{}));
}

TEST_F(TagReader, CountsALineWithTwoTagsOnce) {
    machine.file(kFile, "A B\nKey: 1\nA\nKey: 2\n");
    EXPECT_EQ(readTagged("A|B", "Key", 1).second, "2");
    EXPECT_EQ(readTagged("A|B", "Key", 2), (KeyValue{}));
}

TEST_F(TagReader, SearchesOnceForEachTagOfALine) {
    // The second tag of the line has its search where the first one's ended.
    machine.file(kFile, "A B\nKey: 1\nKey: 2\nKey: 3\n");
    EXPECT_EQ(readTagged("A|B", "Key").second, "2");
    EXPECT_EQ(readTagged("A", "Key").second, "1");
}

TEST_F(TagReader, ReadsPiecesOfALongLineAsLines) {
    machine.file(kFile, "Tag" + std::string(252, 'x') + "Key: 1\nKey: 2\n");
    EXPECT_EQ(readTagged("Tag", "Key").second, "1");
}

// ---- CheckDumpFileKeyWord_ ----

TEST_F(DumpFileKeyWord, IsWwpnAndMacForCna) {
    machine.file(kFile, "Port WWN: " + kAddress + "\nPort WWPN/MAC: " + kAddress + "\n");
    EXPECT_TRUE(CEmulexCommon::CheckDumpFileKeyWord_(kFile, kAddress, "cna"));
    EXPECT_EQ(TestHost::trace(), (Lines{"4 CEmulexCommon::CheckDumpFileKeyWord_() [START]",
                                        "1 CheckDumpFileKeyWord_(/tmp/report.txt,Port WWPN/MAC: " + kAddress + ")",
                                        "1 [Port WWPN/MAC: " + kAddress + "] is finded",
                                        "4 CEmulexCommon::CheckDumpFileKeyWord_() [END]"}));
    EXPECT_EQ(takeError(), 0U);
}

TEST_F(DumpFileKeyWord, IsWwnForAnyOtherModule) {
    machine.file(kFile, "Port WWN: " + kAddress + "\n");
    for (const std::string name : {"fc", "CNA", "test-module"}) {
        useModule(name);
        EXPECT_TRUE(CEmulexCommon::CheckDumpFileKeyWord_(kFile, kAddress, name));
        EXPECT_EQ(takeTrace(), checkTrace(kFile, "Port WWN: " + kAddress, "is finded"));
    }
}

TEST_F(DumpFileKeyWord, IsNotFoundInAnotherSpelling) {
    for (const std::string& line : {"Port WWPN/MAC: 10:00:00:00:C9:AA:BB:CC\n"s, "Port WWPN/MAC:  "s + kAddress,
                                    "Port WWPN/MAC:"s + kAddress, "Port WWN: "s + kAddress, ""s}) {
        machine.file(kFile, line);
        EXPECT_FALSE(CEmulexCommon::CheckDumpFileKeyWord_(kFile, kAddress, "cna")) << line;
        EXPECT_EQ(takeTrace(), checkTrace(kFile, "Port WWPN/MAC: " + kAddress, "is not finded"));
        EXPECT_EQ(takeError(), 0U);
    }
}

TEST_F(DumpFileKeyWord, MayStandAnywhereInALaterLine) {
    machine.file(kFile, "x\n  the Port WWPN/MAC: " + kAddress + "0\n");
    EXPECT_TRUE(CEmulexCommon::CheckDumpFileKeyWord_(kFile, kAddress, "cna"));
}

TEST_F(DumpFileKeyWord, IsComparedWithTheLineEndAsItStands) {
    machine.file(kFile, "Port WWPN/MAC: id\r\n");
    EXPECT_FALSE(CEmulexCommon::CheckDumpFileKeyWord_(kFile, "id ", "cna"));
    EXPECT_TRUE(CEmulexCommon::CheckDumpFileKeyWord_(kFile, "id\r\n", "cna"));
}

TEST_F(DumpFileKeyWord, IsLostWhereItIsSplitBetweenTwoPiecesOfALine) {
    const std::string text = "Port WWPN/MAC: " + kAddress;
    for (const std::string::size_type start : {255 - text.size() + 1, std::string::size_type{254}}) {
        machine.file(kFile, std::string(start, 'x') + text + "\n");
        EXPECT_FALSE(CEmulexCommon::CheckDumpFileKeyWord_(kFile, kAddress, "cna")) << start;
    }
    for (const std::string::size_type start : {255 - text.size(), std::string::size_type{255}}) {
        machine.file(kFile, std::string(start, 'x') + text + "\n");
        EXPECT_TRUE(CEmulexCommon::CheckDumpFileKeyWord_(kFile, kAddress, "cna")) << start;
    }
}

TEST_F(DumpFileKeyWord, IsNotFoundInAFileThatCannotBeOpened) {
    EXPECT_FALSE(CEmulexCommon::CheckDumpFileKeyWord_("/tmp/absent", "id", "cna"));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(TestHost::trace(), (Lines{"4 CEmulexCommon::CheckDumpFileKeyWord_() [START]",
                                        "1 CheckDumpFileKeyWord_(/tmp/absent,Port WWPN/MAC: id)",
                                        "2 File Open Error. file(/tmp/absent) errcode(2)",
                                        "4 CEmulexCommon::CheckDumpFileKeyWord_() [END]"}));
}

// ---- LatestFile ----

class Latest : public AdapterTest {
protected:
    void lay(const std::string& path, std::int64_t time) {
        machine.file(path, "");
        setModified(path, time);
    }

    std::string latest(const std::string& directory = kDumps, const std::string& pattern = "*.txt") {
        return CEmulexCommon::LatestFile(directory, pattern, module);
    }

    void TearDown() override {
        EXPECT_EQ(CEmulexCommon::GetLastError(), 0U) << "no search sets a code";
        AdapterTest::TearDown();
    }
};

TEST_F(Latest, IsTheFileThatWasModifiedLast) {
    lay("/var/dumps/a.txt", 1000);
    lay("/var/dumps/b.txt", 86400);
    lay("/var/dumps/c.txt", 2000);
    lay("/var/dumps/d.log", 90000);
    EXPECT_EQ(latest(), "/var/dumps/b.txt");
    EXPECT_EQ(
        TestHost::trace(),
        (Lines{"1 CEmulexCommon::LatestFile() [START]",
               "1 CEmulexCommon::LatestFile() [/var/dumps][*.txt][/opt/tarvenn/kvl/tmp/EMULEX/temp][fsresult]",
               "1 CEmulexCommon::LatestFile() exec[/bin/ls /var/dumps/*.txt > "
               "/opt/tarvenn/kvl/tmp/EMULEX/temp/fsresult 2>&1]",
               "1 CEmulexCommon::LatestFile() cmd=/opt/tarvenn/kvl/tmp/EMULEX/temp/fsresult",
               "1 CEmulexCommon::LatestFile() file=/var/dumps/a.txt",
               "1 CEmulexCommon::LatestFile() filename=/var/dumps/a.txt", "1 st_mtime=1000",
               "1 Last Modify [Thu Jan  1 00:16:40 1970\n]", "1 CEmulexCommon::LatestFile() file=/var/dumps/b.txt",
               "1 CEmulexCommon::LatestFile() filename=/var/dumps/b.txt", "1 st_mtime=86400",
               "1 Last Modify [Fri Jan  2 00:00:00 1970\n]", "1 CEmulexCommon::LatestFile() file=/var/dumps/c.txt",
               "1 CEmulexCommon::LatestFile() filename=/var/dumps/c.txt", "1 st_mtime=2000",
               "1 Last Modify [Thu Jan  1 00:33:20 1970\n]",
               "1 CEmulexCommon::LatestFile() [END] latest filename=/var/dumps/b.txt"}));
    EXPECT_EQ(contentOf(kListing), "(absent)");
}

TEST_F(Latest, IsEmptyWithoutAMatchAndTheListingStaysWithTheErrorText) {
    machine.directory(kDumps);
    EXPECT_EQ(latest(), "");
    EXPECT_EQ(TestHost::trace(), (latestStartTrace(kDumps, "*.txt") + Lines{latestEndTrace("")}));
    EXPECT_THAT(contentOf(kListing), testing::HasSubstr("/var/dumps/*.txt: No such file"));
}

TEST_F(Latest, IsEmptyIfTheCommandFailsInAnyWay) {
    for (const int status : {-1, 1, 256, 9}) {
        libc().system = [status](const char*) { return status; };
        EXPECT_EQ(latest(), "");
        EXPECT_EQ(takeTrace(), (latestStartTrace(kDumps, "*.txt") + Lines{latestEndTrace("")}));
    }
}

TEST_F(Latest, IsTheFirstListedOfFilesWithTheSameTime) {
    lay("/var/dumps/b.txt", 1000);
    lay("/var/dumps/a.txt", 1000);
    lay("/var/dumps/c.txt", 1000);
    EXPECT_EQ(latest(), "/var/dumps/a.txt");
}

TEST_F(Latest, IsNeverAFileOfTimeZeroOrBefore) {
    lay("/var/dumps/a.txt", 0);
    lay("/var/dumps/b.txt", -5);
    EXPECT_EQ(latest(), "");
    EXPECT_THAT(TestHost::trace(), testing::IsSupersetOf({"1 st_mtime=0", "1 st_mtime=-5"}));
    lay("/var/dumps/c.txt", 1);
    EXPECT_EQ(latest(), "/var/dumps/c.txt");
}

TEST_F(Latest, PassesOverNamesWithABlank) {
    lay("/var/dumps/a b.txt", 5000);
    lay("/var/dumps/c.txt", 1000);
    EXPECT_EQ(latest(), "/var/dumps/c.txt");
    EXPECT_EQ(TestHost::trace(), (latestStartTrace(kDumps, "*.txt") +
                                  Lines{latestListingTrace(), "1 CEmulexCommon::LatestFile() file=/var/dumps/a",
                                        "1 CEmulexCommon::LatestFile() filename=/var/dumps/a", "1 stat error!!",
                                        "1 CEmulexCommon::LatestFile() file=b.txt",
                                        "1 CEmulexCommon::LatestFile() filename=b.txt", "1 stat error!!"} +
                                  listedTrace("/var/dumps/c.txt", 1000, "Thu Jan  1 00:16:40 1970") +
                                  Lines{latestEndTrace("/var/dumps/c.txt")}));
}

TEST_F(Latest, PassesOverTheDirectoriesThatThePatternMatches) {
    machine.directory("/var/dumps/d.txt");
    setModified("/var/dumps/d.txt", 1000);
    EXPECT_EQ(latest("/var", "dum*/d.txt"), "");  // an empty directory lists nothing
    lay("/var/dumps/e.txt", 500);
    EXPECT_EQ(latest(), "/var/dumps/e.txt");
}

TEST_F(Latest, IgnoresALastWordThatEndsTheListing) {
    lay("/var/dumps/a.txt", 1000);
    lay("/var/dumps/b.txt", 2000);
    libc().system = [this](const char*) {
        machine.file(kListing, "/var/dumps/a.txt\n/var/dumps/b.txt");
        return 0;
    };
    EXPECT_EQ(latest(), "/var/dumps/a.txt");
}

TEST_F(Latest, IsEmptyForAnEmptyListing) {
    libc().system = [this](const char*) {
        machine.file(kListing, "");
        return 0;
    };
    EXPECT_EQ(latest(), "");
    EXPECT_EQ(TestHost::trace(), (latestStartTrace(kDumps, "*.txt") + Lines{latestListingTrace(), latestEndTrace("")}));
    EXPECT_EQ(contentOf(kListing), "(absent)");
}

TEST_F(Latest, IsEmptyForAListingThatCannotBeOpened) {
    libc().system = [](const char*) { return 0; };
    EXPECT_EQ(latest(), "");
    EXPECT_EQ(TestHost::trace(),
              (latestStartTrace(kDumps, "*.txt") + Lines{latestListingTrace(), "1 stat error!!", latestEndTrace("")}));
}

TEST_F(Latest, IsEmptyForAListingThatIsADirectory) {
    libc().system = [this](const char*) {
        machine.directory(kListing);
        return 0;
    };
    EXPECT_EQ(latest(), "");
    EXPECT_EQ(TestHost::trace(), (latestStartTrace(kDumps, "*.txt") + Lines{latestListingTrace(), latestEndTrace("")}));
}

TEST_F(Latest, RunsACommandOfAnyLengthAndTakesAPathOfAnyLength) {
    const std::string directory = "/var/" + std::string(200, 'd') + "/" + std::string(200, 'e');
    lay(directory + "/a.txt", 1000);
    EXPECT_EQ(latest(directory), directory + "/a.txt");
}

TEST_F(Latest, HasAnEmptyTimeTextForAYearWithoutACalendarText) {
    lay("/var/dumps/a.txt", 1000);
    std::int64_t time = 300000000000000000;
    setModified("/var/dumps/a.txt", time);
    struct stat status {};
    ASSERT_EQ(stat("/var/dumps/a.txt", &status), 0);
    if (status.st_mtime == time) {  // the file system may hold no such time
        EXPECT_EQ(latest(), "/var/dumps/a.txt");
        EXPECT_THAT(TestHost::trace(), testing::Contains("1 Last Modify []"));
    }
}

/// @return true if somebody holds the lock that the reference host's mutexes share
bool isLocked() {
    const int file = open((kInstallPath + "/lock/kvl.mutex").c_str(), O_RDONLY | O_CLOEXEC);
    const bool locked = file >= 0 && flock(file, LOCK_EX | LOCK_NB) != 0;
    close(file);
    return locked;
}

TEST_F(Latest, HoldsTheLockFromBeforeTheListingUntilItIsGone) {
    for (const bool isListed : {true, false}) {
        SCOPED_TRACE(isListed);
        if (isListed) {
            lay("/var/dumps/a.txt", 1000);
        } else {
            std::filesystem::remove_all(kDumps);
        }
        Lines unlocked;
        TestHost::onTrace([&](const std::string& line) {
            if (!isLocked()) {
                unlocked.push_back(line);
            }
        });
        const std::string result = latest();
        EXPECT_EQ(unlocked, (Lines{"1 CEmulexCommon::LatestFile() [START]", latestEndTrace(result)}));
        TestHost::forget();
    }
}

}  // namespace
}  // namespace kvl::test
