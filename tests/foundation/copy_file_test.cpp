#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "foundation/CCommon_Information.h"
#include "tests/foundation/foundation_test.h"

namespace kvl::test {
namespace {

const std::string kSource = "/tmp/source";
const std::string kTarget = "/tmp/target";

class CopyFile : public FoundationTest {
protected:
    void SetUp() override {
        FoundationTest::SetUp();
        libc().recordsFileCalls = true;
    }

    static bool copy(bool overwrite) { return CCommon_Information::CopyFileA(kSource, kTarget, overwrite); }

    static unsigned modeOf(const std::string& path) {
        struct stat file {};
        EXPECT_EQ(stat(path.c_str(), &file), 0);
        return file.st_mode & 07777U;
    }
};

/// Lets no file of this process grow above a size, as a full disk would.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t size) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit = {size, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, signal_);
    }

    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*signal_)(int);
    rlimit before_{};
};

TEST_F(CopyFile, CopiesEveryByte) {
    for (const std::size_t size : {0U, 1U, 1023U, 1024U, 1025U, 2048U, 100000U}) {
        std::string text;
        for (std::size_t place = 0; place < size; ++place) {
            text += static_cast<char>(place % 251);
        }
        machine.file(kSource, text);
        EXPECT_TRUE(copy(true)) << size;
        EXPECT_EQ(contentOf(kTarget), text) << size;
        EXPECT_EQ(contentOf(kSource), text) << size;
    }
}

TEST_F(CopyFile, TracesNothing) {
    machine.file(kSource, "text");
    copy(true);
    copy(false);
    EXPECT_THAT(TestHost::trace(), testing::IsEmpty());
}

TEST_F(CopyFile, ReplacesALongerTargetWhole) {
    machine.file(kSource, "new");
    machine.file(kTarget, "a longer text");
    EXPECT_TRUE(copy(true));
    EXPECT_EQ(contentOf(kTarget), "new");
}

TEST_F(CopyFile, MakesATargetWithoutOverwriting) {
    machine.file(kSource, "text");
    EXPECT_TRUE(copy(false));
    EXPECT_EQ(contentOf(kTarget), "text");
}

TEST_F(CopyFile, LeavesATargetAloneThatItMustNotOverwrite) {
    machine.file(kSource, "new");
    machine.file(kTarget, "old");
    EXPECT_FALSE(copy(false));
    EXPECT_EQ(contentOf(kTarget), "old");
}

TEST_F(CopyFile, TakesALinkToNowhereForATargetThatIsThere) {
    machine.file(kSource, "text");
    std::filesystem::create_symlink("/tmp/elsewhere", kTarget);
    EXPECT_FALSE(copy(false));
    EXPECT_EQ(contentOf("/tmp/elsewhere"), "(absent)");
    EXPECT_TRUE(copy(true));
    EXPECT_EQ(contentOf("/tmp/elsewhere"), "text");
}

TEST_F(CopyFile, MakesTheTargetWithTheMode0774LessTheUmask) {
    machine.file(kSource, "text");
    const mode_t umaskBefore = umask(0);
    EXPECT_TRUE(copy(false));
    EXPECT_EQ(modeOf(kTarget), 0774U);
    unlink(kTarget.c_str());
    umask(022);
    EXPECT_TRUE(copy(true));
    EXPECT_EQ(modeOf(kTarget), 0754U);
    umask(umaskBefore);
}

TEST_F(CopyFile, KeepsTheModeOfATargetThatIsThere) {
    machine.file(kSource, "text");
    machine.file(kTarget, "");
    chmod(kTarget.c_str(), 0600);
    EXPECT_TRUE(copy(true));
    EXPECT_EQ(modeOf(kTarget), 0600U);
}

TEST_F(CopyFile, LeavesTheTargetAloneWithoutASource) {
    machine.file(kTarget, "old");
    EXPECT_FALSE(copy(true));
    EXPECT_EQ(contentOf(kTarget), "old");
    unlink(kTarget.c_str());
    EXPECT_FALSE(copy(false));
    EXPECT_EQ(contentOf(kTarget), "(absent)");
}

TEST_F(CopyFile, FailsForATargetThatCannotBeOpened) {
    machine.file(kSource, "text");
    EXPECT_FALSE(CCommon_Information::CopyFileA(kSource, "/tmp/absent/target", true));
    EXPECT_FALSE(CCommon_Information::CopyFileA(kSource, "/tmp", true));
    EXPECT_EQ(contentOf(kSource), "text");
}

TEST_F(CopyFile, DeletesTheTargetWhereReadingFails) {
    machine.directory(kSource);
    machine.file(kTarget, "old");
    EXPECT_FALSE(copy(true));
    EXPECT_EQ(contentOf(kTarget), "(absent)");
    EXPECT_FALSE(copy(false));
    EXPECT_EQ(contentOf(kTarget), "(absent)");
}

TEST_F(CopyFile, DeletesTheTargetWhereWritingFails) {
    machine.file(kSource, std::string(4000, 'x'));
    {
        const FileSizeLimit limit(2048);
        EXPECT_FALSE(copy(true));
    }
    EXPECT_EQ(contentOf(kTarget), "(absent)");
}

TEST_F(CopyFile, DoesNotNoticeAShortWrite) {
    machine.file(kSource, std::string(2000, 'x'));
    {
        const FileSizeLimit limit(1500);
        EXPECT_TRUE(copy(true));
    }
    EXPECT_EQ(contentOf(kTarget), std::string(1500, 'x'));
}

TEST_F(CopyFile, WorksInStepsOf1024Bytes) {
    // The first write is cut short unnoticed, a second one fails.
    for (const std::size_t size : {1024U, 1025U}) {
        machine.file(kSource, std::string(size, 'x'));
        const FileSizeLimit limit(100);
        EXPECT_EQ(copy(true), size == 1024) << size;
    }
}

TEST_F(CopyFile, EmptiesAFileThatIsCopiedOntoItself) {
    machine.file(kSource, "text");
    EXPECT_TRUE(CCommon_Information::CopyFileA(kSource, kSource, true));
    EXPECT_EQ(contentOf(kSource), "");
}

TEST_F(CopyFile, ClosesTheSourceThenWritesTheTargetThroughToTheDisk) {
    machine.file(kSource, "text");
    EXPECT_TRUE(copy(true));
    EXPECT_EQ(libc().fileCalls, (Lines{"close " + kSource, "fsync " + kTarget, "close " + kTarget}));
}

TEST_F(CopyFile, WritesAFailedCopyThroughBeforeItDeletesTheTarget) {
    const Lines calls = {"close " + kSource, "fsync " + kTarget, "close " + kTarget, "unlink " + kTarget};
    machine.directory(kSource);
    EXPECT_FALSE(copy(true));
    EXPECT_EQ(libc().fileCalls, calls);
    rmdir(kSource.c_str());
    machine.file(kSource, std::string(4000, 'x'));
    libc().fileCalls.clear();
    {
        const FileSizeLimit limit(2048);
        EXPECT_FALSE(copy(true));
    }
    EXPECT_EQ(libc().fileCalls, calls);
}

TEST_F(CopyFile, ClosesNothingButTheSourceWithoutATarget) {
    EXPECT_FALSE(copy(true));
    EXPECT_THAT(libc().fileCalls, testing::IsEmpty());
    machine.file(kSource, "text");
    machine.file(kTarget, "old");
    EXPECT_FALSE(copy(false));
    EXPECT_EQ(libc().fileCalls, (Lines{"close " + kSource}));
}

}  // namespace
}  // namespace kvl::test
