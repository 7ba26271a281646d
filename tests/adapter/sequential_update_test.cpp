#include <sys/stat.h>

#include <climits>
#include <filesystem>

#include "tests/adapter/adapter_test.h"
#include "tests/adapter/literal_trace.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

using Kinds = std::list<std::string>;

const std::string kTemp = kWorkRoot + "/temp";
const std::vector<unsigned long> kAllPauses = {1000, 6000, 11000, 16000, 21000};

struct Mark {
    int number;
    std::string text;
    std::string path;
};

const Mark kMarks[] = {
    {1, "NIC", "/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_NIC.txt"},
    {2, "FCoE", "/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_FCoE.txt"},
    {3, "iSCSI", "/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_iSCSI.txt"},
};
const Mark& kNic = kMarks[0];
const Mark& kFcoe = kMarks[1];
const Mark& kIscsi = kMarks[2];

/// The record of updates, with the error of an earlier operation.
class MarkedUpdates : public AdapterTest {
protected:
    void SetUp() override {
        AdapterTest::SetUp();
        CEmulexCommon::SetLastError(kEarlierError);
    }

    void TearDown() override {
        EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
        EXPECT_THAT(TestHost::operatorMessages(), testing::IsEmpty());
        EXPECT_EQ(libc().sleeps, 0);
        chmod(kTemp.c_str(), 0755);
        AdapterTest::TearDown();
    }

    bool write(int kind) { return CEmulexCommon::SequentialUpadateFileWrite(kind, "unused", "unused too", module); }

    bool read() { return CEmulexCommon::SequentialUpadateFileRead(&kinds, module); }

    /// The files in the directory of the marks.
    static Lines files() {
        Lines names;
        for (const std::string& name : namesIn(kTemp)) {
            if (name != "CNA" && name != "FC") {
                names.push_back(name);
            }
        }
        return names;
    }

    static constexpr unsigned long kEarlierError = 14;
    Kinds kinds = {"before"};
};

using UpdateMarking = MarkedUpdates;
using UpdateReading = MarkedUpdates;

// ---- Writing ----

TEST_F(UpdateMarking, LeavesALineWithTheKindInAFileOfItsOwn) {
    for (const Mark& mark : kMarks) {
        forget();
        EXPECT_TRUE(write(mark.number));
        EXPECT_EQ(contentOf(mark.path), mark.text + "\n");
        EXPECT_EQ(files(), (Lines{fs::path(mark.path).filename()}));
        EXPECT_EQ(TestHost::trace(), traceOf(R"(
            4 CEmulexCommon::SequentialUpadateFileWrite() [START]
            4 CEmulexCommon::SequentialUpadateFileWrite() [END]
        )"));
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlierError);
        fs::remove(mark.path);
    }
}

TEST_F(UpdateMarking, AppendsAtEachCall) {
    EXPECT_TRUE(write(2));
    EXPECT_TRUE(write(2));
    EXPECT_TRUE(write(2));
    EXPECT_EQ(contentOf(kFcoe.path), "FCoE\nFCoE\nFCoE\n");
    EXPECT_EQ(files(), (Lines{"SequentialUpdateFile_FCoE.txt"}));
}

TEST_F(UpdateMarking, AppendsToWhateverIsThere) {
    machine.file(kIscsi.path, "no line feed");
    EXPECT_TRUE(write(3));
    EXPECT_EQ(contentOf(kIscsi.path), "no line feediSCSI\n");
}

TEST_F(UpdateMarking, IsNoErrorAndNoFileForAnotherKind) {
    for (const int kind : {0, 4, -1, -2, 100, INT_MAX, INT_MIN}) {
        forget();
        EXPECT_TRUE(write(kind)) << kind;
        EXPECT_EQ(TestHost::trace(), traceOf(R"(
            4 CEmulexCommon::SequentialUpadateFileWrite() [START]
            4 CEmulexCommon::SequentialUpadateFileWrite() [END]
        )"));
        EXPECT_THAT(files(), testing::IsEmpty());
    }
    fs::remove_all(kTemp);
    EXPECT_TRUE(write(0));
    EXPECT_FALSE(fs::exists(kTemp));
    EXPECT_EQ(takeError(), kEarlierError);
}

TEST_F(UpdateMarking, DoesNotUseTheOtherArguments) {
    for (const std::string unused : {"", "FCoE", "/tmp/elsewhere"}) {
        EXPECT_TRUE(CEmulexCommon::SequentialUpadateFileWrite(1, unused, unused, module));
    }
    EXPECT_EQ(contentOf(kNic.path), "NIC\nNIC\nNIC\n");
    EXPECT_EQ(files(), (Lines{"SequentialUpdateFile_NIC.txt"}));
    EXPECT_FALSE(fs::exists("/tmp/elsewhere"));
}

TEST_F(UpdateMarking, FailsWithoutTheDirectory) {
    fs::remove_all(kTemp);
    for (const Mark& mark : kMarks) {
        forget();
        EXPECT_FALSE(write(mark.number));
        EXPECT_EQ(TestHost::trace(), traceOf({{"path", mark.path}}, R"(
            4 CEmulexCommon::SequentialUpadateFileWrite() [START]
            2 Sequential File : {path}
            4 CEmulexCommon::SequentialUpadateFileWrite() [END]
        )"));
        EXPECT_EQ(takeError(), 17U);
    }
    EXPECT_FALSE(fs::exists(kTemp));
}

TEST_F(UpdateMarking, FailsInADirectoryThatCannotBeWritten) {
    chmod(kTemp.c_str(), 0555);
    EXPECT_FALSE(write(1));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::SequentialUpadateFileWrite() [START]
        2 Sequential File : /opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_NIC.txt
        4 CEmulexCommon::SequentialUpadateFileWrite() [END]
    )"));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_THAT(files(), testing::IsEmpty());
}

TEST_F(UpdateMarking, FailsForAFileThatCannotBeWritten) {
    machine.file(kFcoe.path, "FCoE\n");
    chmod(kFcoe.path.c_str(), 0444);
    EXPECT_FALSE(write(2));
    EXPECT_EQ(contentOf(kFcoe.path), "FCoE\n");
    machine.directory(kIscsi.path);
    EXPECT_FALSE(write(3));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::SequentialUpadateFileWrite() [START]
        2 Sequential File : /opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_FCoE.txt
        4 CEmulexCommon::SequentialUpadateFileWrite() [END]
        4 CEmulexCommon::SequentialUpadateFileWrite() [START]
        2 Sequential File : /opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_iSCSI.txt
        4 CEmulexCommon::SequentialUpadateFileWrite() [END]
    )"));
    EXPECT_EQ(takeError(), 17U);
}

TEST_F(UpdateMarking, TakesAWriteThatFailsForDoneWhereTheFileCanBeOpened) {
    ASSERT_TRUE(fs::is_character_file("/dev/full"));
    for (const Mark& mark : kMarks) {
        fs::create_symlink("/dev/full", mark.path);
        forget();
        EXPECT_TRUE(write(mark.number));
        EXPECT_EQ(TestHost::trace(), traceOf(R"(
            4 CEmulexCommon::SequentialUpadateFileWrite() [START]
            4 CEmulexCommon::SequentialUpadateFileWrite() [END]
        )"));
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlierError);
        EXPECT_TRUE(fs::is_symlink(mark.path));
    }
}

TEST_F(UpdateMarking, NeedsNoReadAccess) {
    machine.file(kNic.path, "");
    chmod(kNic.path.c_str(), 0200);
    EXPECT_TRUE(write(1));
    chmod(kNic.path.c_str(), 0600);
    EXPECT_EQ(contentOf(kNic.path), "NIC\n");
}

TEST_F(UpdateMarking, TracesUnderTheGivenModuleName) {
    useModule("fc");
    EXPECT_TRUE(write(1));
    EXPECT_TRUE(write(0));
    fs::remove_all(kTemp);
    EXPECT_FALSE(write(1));
    EXPECT_EQ(TestHost::modules(), (Lines{"fc"}));
}

// ---- Reading ----

TEST_F(UpdateReading, TellsNothingAndLeavesTheCodeOfAMissingFileWithoutMarks) {
    EXPECT_TRUE(read());
    EXPECT_THAT(kinds, testing::IsEmpty());
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::SequentialUpadateFileRead() [START]
        1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_NIC.txt).
        1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_FCoE.txt).
        1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_iSCSI.txt).
        4 CEmulexCommon::SequentialUpadateFileRead() [END]
    )"));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_THAT(TestHost::deletions(), testing::IsEmpty());
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdateReading, TellsEachCombinationOfMarksInOneOrderAndTakesThemAway) {
    struct Row {
        std::vector<Mark> marks;
        std::string trace;
    };
    const Row rows[] = {
        {{},
         R"(
            4 CEmulexCommon::SequentialUpadateFileRead() [START]
            1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_NIC.txt).
            1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_FCoE.txt).
            1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_iSCSI.txt).
            4 CEmulexCommon::SequentialUpadateFileRead() [END]
        )"},
        {{kNic},
         R"(
            4 CEmulexCommon::SequentialUpadateFileRead() [START]
            1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_FCoE.txt).
            1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_iSCSI.txt).
            4 CEmulexCommon::SequentialUpadateFileRead() [END]
        )"},
        {{kFcoe},
         R"(
            4 CEmulexCommon::SequentialUpadateFileRead() [START]
            1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_NIC.txt).
            1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_iSCSI.txt).
            4 CEmulexCommon::SequentialUpadateFileRead() [END]
        )"},
        {{kNic, kFcoe},
         R"(
            4 CEmulexCommon::SequentialUpadateFileRead() [START]
            1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_iSCSI.txt).
            4 CEmulexCommon::SequentialUpadateFileRead() [END]
        )"},
        {{kIscsi},
         R"(
            4 CEmulexCommon::SequentialUpadateFileRead() [START]
            1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_NIC.txt).
            1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_FCoE.txt).
            4 CEmulexCommon::SequentialUpadateFileRead() [END]
        )"},
        {{kNic, kIscsi},
         R"(
            4 CEmulexCommon::SequentialUpadateFileRead() [START]
            1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_FCoE.txt).
            4 CEmulexCommon::SequentialUpadateFileRead() [END]
        )"},
        {{kFcoe, kIscsi},
         R"(
            4 CEmulexCommon::SequentialUpadateFileRead() [START]
            1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_NIC.txt).
            4 CEmulexCommon::SequentialUpadateFileRead() [END]
        )"},
        {{kNic, kFcoe, kIscsi},
         R"(
            4 CEmulexCommon::SequentialUpadateFileRead() [START]
            4 CEmulexCommon::SequentialUpadateFileRead() [END]
        )"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.trace);
        Kinds expected;
        Lines deleted;
        for (const Mark& mark : row.marks) {
            expected.push_back(mark.text);
            deleted.push_back(mark.path);
            EXPECT_TRUE(write(mark.number));
        }
        forget();
        CEmulexCommon::SetLastError(kEarlierError);
        EXPECT_TRUE(read());
        EXPECT_EQ(kinds, expected);
        EXPECT_EQ(TestHost::trace(), traceOf(row.trace));
        EXPECT_EQ(takeError(), row.marks.size() == 3 ? kEarlierError : 17U);
        EXPECT_EQ(TestHost::deletions(), deleted);
        EXPECT_THAT(files(), testing::IsEmpty());
        EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
    }
}

TEST_F(UpdateReading, DoesNotGoByTheOrderOfTheWrites) {
    EXPECT_TRUE(write(3));
    EXPECT_TRUE(write(1));
    EXPECT_TRUE(read());
    EXPECT_EQ(kinds, (Kinds{"NIC", "iSCSI"}));
}

TEST_F(UpdateReading, TellsAKindOnceThatWasMarkedTwice) {
    EXPECT_TRUE(write(2));
    EXPECT_TRUE(write(2));
    EXPECT_TRUE(read());
    EXPECT_EQ(kinds, (Kinds{"FCoE"}));
}

TEST_F(UpdateReading, TellsNothingTheSecondTime) {
    EXPECT_TRUE(write(1));
    EXPECT_TRUE(write(2));
    EXPECT_TRUE(read());
    forget();
    EXPECT_TRUE(read());
    EXPECT_THAT(kinds, testing::IsEmpty());
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::SequentialUpadateFileRead() [START]
        1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_NIC.txt).
        1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_FCoE.txt).
        1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_iSCSI.txt).
        4 CEmulexCommon::SequentialUpadateFileRead() [END]
    )"));
}

TEST_F(UpdateReading, TellsWhatIsMarkedAnew) {
    EXPECT_TRUE(write(1));
    EXPECT_TRUE(read());
    EXPECT_TRUE(write(3));
    EXPECT_TRUE(read());
    EXPECT_EQ(kinds, (Kinds{"iSCSI"}));
}

TEST_F(UpdateReading, DoesNotLookAtTheContent) {
    machine.file(kNic.path, "");
    machine.file(kFcoe.path, "iSCSI\nNIC\n");
    machine.file(kIscsi.path, std::string(10000, '\0'));
    EXPECT_TRUE(read());
    EXPECT_EQ(kinds, (Kinds{"NIC", "FCoE", "iSCSI"}));
    EXPECT_THAT(files(), testing::IsEmpty());
}

TEST_F(UpdateReading, LeavesOtherFilesAlone) {
    machine.file(kTemp + "/SequentialUpdateFile_FC.txt", "FC\n");
    machine.file(kTemp + "/SequentialUpdateFile_nic.txt", "NIC\n");
    EXPECT_TRUE(read());
    EXPECT_THAT(kinds, testing::IsEmpty());
    EXPECT_EQ(files(), (Lines{"SequentialUpdateFile_FC.txt", "SequentialUpdateFile_nic.txt"}));
}

TEST_F(UpdateReading, TakesAFileThatCannotBeReadForUnmarkedAndLeavesIt) {
    EXPECT_TRUE(write(1));
    EXPECT_TRUE(write(2));
    chmod(kNic.path.c_str(), 0200);
    forget();
    EXPECT_TRUE(read());
    EXPECT_EQ(kinds, (Kinds{"FCoE"}));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::SequentialUpadateFileRead() [START]
        1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_NIC.txt).
        1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_iSCSI.txt).
        4 CEmulexCommon::SequentialUpadateFileRead() [END]
    )"));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(TestHost::deletions(), (Lines{kFcoe.path}));
    EXPECT_EQ(files(), (Lines{"SequentialUpdateFile_NIC.txt"}));
}

TEST_F(UpdateReading, TellsNothingWithoutTheDirectory) {
    fs::remove_all(kTemp);
    EXPECT_TRUE(read());
    EXPECT_THAT(kinds, testing::IsEmpty());
    EXPECT_EQ(takeError(), 17U);
    EXPECT_FALSE(fs::exists(kTemp));
}

TEST_F(UpdateReading, FailsAtTheFirstMarkThatStaysWithAllKindsTold) {
    for (std::size_t stuck = 0; stuck < 3; ++stuck) {
        SCOPED_TRACE(stuck);
        for (std::size_t place = 0; place < 3; ++place) {
            fs::remove(kMarks[place].path);
            // A directory can be opened, and not be deleted.
            if (place == stuck) {
                machine.directory(kMarks[place].path);
            } else {
                machine.file(kMarks[place].path, "");
            }
        }
        forget();
        EXPECT_FALSE(read());
        EXPECT_EQ(kinds, (Kinds{"NIC", "FCoE", "iSCSI"}));
        EXPECT_EQ(TestHost::trace(), traceOf({{"path", kMarks[stuck].path}}, R"(
            4 CEmulexCommon::SequentialUpadateFileRead() [START]
            16 Failed to delete File [{path}]
            4 CEmulexCommon::SequentialUpadateFileRead() [END]
        )"));
        EXPECT_EQ(CEmulexCommon::GetLastError(), kEarlierError);
        EXPECT_EQ(TestHost::sleeps(), kAllPauses);
        Lines attempts(5, kMarks[stuck].path);
        for (std::size_t place = 0; place < 3; ++place) {
            EXPECT_EQ(fs::exists(kMarks[place].path), place >= stuck);
            if (place < stuck) {
                attempts.insert(attempts.begin() + static_cast<std::ptrdiff_t>(place), kMarks[place].path);
            }
        }
        EXPECT_EQ(TestHost::deletions(), attempts);
        fs::remove(kMarks[stuck].path);
    }
}

TEST_F(UpdateReading, KeepsTheCodeOfAnUnmarkedKindWhereItFails) {
    machine.directory(kFcoe.path);
    EXPECT_FALSE(read());
    EXPECT_EQ(kinds, (Kinds{"FCoE"}));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::SequentialUpadateFileRead() [START]
        1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_NIC.txt).
        1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_iSCSI.txt).
        16 Failed to delete File [/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_FCoE.txt]
        4 CEmulexCommon::SequentialUpadateFileRead() [END]
    )"));
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(TestHost::sleeps(), kAllPauses);
}

TEST_F(UpdateReading, TellsTheMarksOfAFailedReadAgain) {
    for (const Mark& mark : kMarks) {
        EXPECT_TRUE(write(mark.number));
    }
    chmod(kTemp.c_str(), 0555);
    forget();
    EXPECT_FALSE(read());
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::SequentialUpadateFileRead() [START]
        16 Failed to delete File [/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_NIC.txt]
        4 CEmulexCommon::SequentialUpadateFileRead() [END]
    )"));
    chmod(kTemp.c_str(), 0755);
    forget();
    EXPECT_TRUE(read());
    EXPECT_EQ(kinds, (Kinds{"NIC", "FCoE", "iSCSI"}));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::SequentialUpadateFileRead() [START]
        4 CEmulexCommon::SequentialUpadateFileRead() [END]
    )"));
    EXPECT_THAT(files(), testing::IsEmpty());
}

TEST_F(UpdateReading, WaitsForAMarkThatCanBeDeletedLater) {
    EXPECT_TRUE(write(1));
    EXPECT_TRUE(write(3));
    chmod(kTemp.c_str(), 0555);
    forget();
    TestHost::onSleep([] {
        if (TestHost::sleeps().size() == 2) {
            chmod(kTemp.c_str(), 0755);
        }
    });
    EXPECT_TRUE(read());
    EXPECT_EQ(kinds, (Kinds{"NIC", "iSCSI"}));
    EXPECT_EQ(TestHost::sleeps(), (std::vector<unsigned long>{1000, 6000}));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::SequentialUpadateFileRead() [START]
        1 Failed to open file(/opt/tarvenn/kvl/tmp/EMULEX/temp/SequentialUpdateFile_FCoE.txt).
        4 CEmulexCommon::SequentialUpadateFileRead() [END]
    )"));
    EXPECT_THAT(files(), testing::IsEmpty());
}

TEST_F(UpdateReading, LooksForAllMarksBeforeItDeletesOne) {
    EXPECT_TRUE(write(1));
    forget();
    TestHost::onDeletion([](const char*) { EXPECT_EQ(TestHost::trace().size(), 3U); });
    EXPECT_TRUE(read());
    EXPECT_EQ(TestHost::deletions(), (Lines{kNic.path}));
    EXPECT_EQ(TestHost::trace().size(), 4U);
}

TEST_F(UpdateReading, TracesUnderTheGivenModuleName) {
    useModule("fc");
    machine.directory(kNic.path);
    EXPECT_FALSE(read());
    EXPECT_EQ(TestHost::modules(), (Lines{"fc"}));
}

}  // namespace
}  // namespace kvl::test
