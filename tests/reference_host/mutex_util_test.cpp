#include <fcntl.h>
#include <gmock/gmock.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <memory>
#include <thread>
#include <vector>

#include "host/CMutexUtil.h"
#include "reference_host/file_descriptor.h"
#include "tests/reference_host/host_test.h"
#include "tests/reference_host/processes.h"

namespace {

using kvl::host::FileDescriptor;
using kvl::test::becomeAnotherUser;
using kvl::test::exitCodeOf;
using kvl::test::HostTest;
using kvl::test::isRunning;
using kvl::test::SharedValue;
using kvl::test::startChild;

constexpr int kRounds = 300;

// Loses increments where two of these run at a time.
void incrementSlowly(volatile int& counter) {
    const int value = counter;
    ::sched_yield();
    counter = value + 1;
}

void incrementUnderMutexes(volatile int& counter) {
    for (int i = 0; i < kRounds; ++i) {
        CMutexUtil mutex;
        mutex.Create(1, nullptr, nullptr);
        mutex.Lock(-1);
        incrementSlowly(counter);
        mutex.Unlock();
    }
}

class MutexUtil : public HostTest {
protected:
    FileDescriptor openFile() const {
        return FileDescriptor(::open(file_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    }

    // True if some process or object holds the mutex.
    bool isHeld() const {
        const FileDescriptor file = openFile();
        return ::flock(file.number(), LOCK_EX | LOCK_NB) != 0;
    }

    const std::string file_ = scratch_ / "lock/kvl.mutex";
};

TEST_F(MutexUtil, IsHeldFromLockToUnlock) {
    CMutexUtil mutex;
    mutex.Create(1, nullptr, nullptr);
    EXPECT_FALSE(isHeld());
    mutex.Lock(-1);
    EXPECT_TRUE(isHeld());
    mutex.Unlock();
    EXPECT_FALSE(isHeld());
    mutex.Lock(-1);
    EXPECT_TRUE(isHeld());
}

TEST_F(MutexUtil, IsReleasedByItsDestructor) {
    {
        CMutexUtil mutex;
        mutex.Create(1, nullptr, nullptr);
        mutex.Lock(-1);
    }
    EXPECT_FALSE(isHeld());
    CMutexUtil next;
    next.Create(1, nullptr, nullptr);
    next.Lock(-1);
    EXPECT_TRUE(isHeld());
}

TEST_F(MutexUtil, GivesUpAfterTheTimeout) {
    CMutexUtil holder;
    holder.Create(1, nullptr, nullptr);
    holder.Lock(-1);
    for (const int timeout : {0, 3}) {
        const auto start = std::chrono::steady_clock::now();
        CMutexUtil waiter;
        waiter.Create(1, nullptr, nullptr);
        waiter.Lock(timeout);
        EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(timeout));
        waiter.Unlock();
        EXPECT_TRUE(isHeld());
    }
    EXPECT_TRUE(isHeld());
}

TEST_F(MutexUtil, GivesUpAfterTheTimeoutOnAnotherProcess) {
    CMutexUtil waiter;
    waiter.Create(1, nullptr, nullptr);
    {
        const FileDescriptor other = openFile();
        ASSERT_EQ(::flock(other.number(), LOCK_EX), 0);
        waiter.Lock(0);
        waiter.Lock(3);
        waiter.Unlock();
        EXPECT_TRUE(isHeld());
    }
    EXPECT_FALSE(isHeld());
    waiter.Lock(0);
    EXPECT_TRUE(isHeld());
}

TEST_F(MutexUtil, TakesUnlockWithoutLock) {
    CMutexUtil holder;
    holder.Create(1, nullptr, nullptr);
    holder.Lock(-1);
    CMutexUtil other;
    other.Unlock();
    other.Create(1, nullptr, nullptr);
    other.Unlock();
    EXPECT_TRUE(isHeld());
    holder.Unlock();
    holder.Unlock();
    EXPECT_FALSE(isHeld());
}

TEST_F(MutexUtil, TakesASecondLockOfTheSameThread) {
    CMutexUtil mutex;
    mutex.Create(1, nullptr, nullptr);
    mutex.Lock(-1);
    mutex.Lock(-1);
    mutex.Unlock();
    EXPECT_FALSE(isHeld());
}

TEST_F(MutexUtil, ReportsSuccessToAStatus) {
    int status = 7;
    CMutexUtil mutex;
    mutex.Create(1, nullptr, &status);
    EXPECT_EQ(status, 0);
}

TEST_F(MutexUtil, ExcludesTheThreadsOfAProcess) {
    volatile int counter = 0;
    std::thread first([&counter] { incrementUnderMutexes(counter); });
    std::thread second([&counter] { incrementUnderMutexes(counter); });
    first.join();
    second.join();
    EXPECT_EQ(counter, 2 * kRounds);
}

TEST_F(MutexUtil, ExcludesThreadsThatShareOneObject) {
    volatile int counter = 0;
    CMutexUtil mutex;
    mutex.Create(1, nullptr, nullptr);
    const auto increment = [&] {
        for (int i = 0; i < kRounds; ++i) {
            mutex.Lock(-1);
            incrementSlowly(counter);
            mutex.Unlock();
        }
    };
    std::thread first(increment);
    std::thread second(increment);
    first.join();
    second.join();
    EXPECT_EQ(counter, 2 * kRounds);
}

void yieldUntil(const std::atomic<int>& counter, int value) {
    while (counter < value) {
        ::sched_yield();
    }
}

void limitOpenFiles(rlim_t count) {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = count;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

TEST_F(MutexUtil, ExcludesThreadsWhereNoFileCanBeOpened) {
    const auto incrementWithoutFiles = [] {
        volatile int counter = 0;
        std::atomic<int> started{0};
        std::atomic<int> finished{0};
        std::atomic<int> go{0};
        const auto increment = [&] {
            ++started;
            yieldUntil(go, 1);
            incrementUnderMutexes(counter);
            ++finished;
        };
        std::thread first(increment);
        std::thread second(increment);
        // The limit stands for as long as the mutexes are used; sanitizers need a descriptor now and then.
        yieldUntil(started, 2);
        limitOpenFiles(0);
        go = 1;
        yieldUntil(finished, 2);
        limitOpenFiles(100);
        first.join();
        second.join();
        return counter == 2 * kRounds ? 0 : 1;
    };
    EXPECT_EQ(exitCodeOf(incrementWithoutFiles), 0);
    EXPECT_FALSE(std::filesystem::exists(file_));
}

TEST_F(MutexUtil, ExcludesProcesses) {
    const SharedValue<int> counter;
    const auto increment = [&counter] {
        incrementUnderMutexes(*counter);
        return 0;
    };
    const pid_t first = startChild(increment);
    const pid_t second = startChild(increment);
    EXPECT_EQ(exitCodeOf(first), 0);
    EXPECT_EQ(exitCodeOf(second), 0);
    EXPECT_EQ(*counter, 2 * kRounds);
}

// Hides this process's /dev/shm under an empty one.
bool mountPrivateMemory() {
    return ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount("none", "/dev/shm", "tmpfs", 0, "mode=1777") == 0;
}

TEST_F(MutexUtil, ExcludesOtherUsersWhereTheInstallDirectoryIsNoHelp) {
    constexpr int kImpossible = 2;
    const auto lockForTwoUsers = [] {
        setVariable("KVL_INSTALL_PATH", "/proc/kvl");
        if (!mountPrivateMemory()) {
            return kImpossible;
        }
        ::umask(077);
        CMutexUtil first;
        first.Create(1, nullptr, nullptr);
        if (!becomeAnotherUser()) {
            return kImpossible;
        }
        CMutexUtil second;
        second.Create(1, nullptr, nullptr);
        second.Lock(-1);
        std::vector<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
            files.push_back(entry.path());
        }
        const FileDescriptor file(::open(files.front().c_str(), O_RDONLY | O_CLOEXEC));
        const bool isHeld = file.isOpen() && ::flock(file.number(), LOCK_EX | LOCK_NB) != 0;
        return files.size() == 1 && isHeld ? 0 : 1;
    };
    const int result = exitCodeOf(lockForTwoUsers);
    if (result == kImpossible) {
        GTEST_SKIP() << "only root can mount, and become another user";
    }
    EXPECT_EQ(result, 0);
}

TEST_F(MutexUtil, WaitsThroughSignals) {
    static SharedValue<std::atomic<int>> signals;
    const SharedValue<std::atomic<bool>> released;
    FileDescriptor holder;
    CMutexUtil().Create(1, nullptr, nullptr);
    holder = openFile();
    ASSERT_EQ(::flock(holder.number(), LOCK_EX), 0);

    const pid_t waiter = startChild([&] {
        struct sigaction action {};
        action.sa_handler = [](int) { ++*signals; };
        ::sigaction(SIGALRM, &action, nullptr);
        const itimerval interval{{0, 500}, {0, 500}};
        ::setitimer(ITIMER_REAL, &interval, nullptr);
        CMutexUtil mutex;
        mutex.Create(1, nullptr, nullptr);
        mutex.Lock(-1);
        return *released ? 0 : 1;
    });
    while (*signals < 5 && isRunning(waiter)) {
        ::sched_yield();
    }
    *released = true;
    ::flock(holder.number(), LOCK_UN);
    EXPECT_EQ(exitCodeOf(waiter), 0);
}

TEST_F(MutexUtil, IsGivenBackThoughAChildProcessGoesOn) {
    int pipe[2] = {-1, -1};
    ASSERT_EQ(::pipe(pipe), 0);
    FileDescriptor reader(pipe[0]);
    FileDescriptor writer(pipe[1]);
    CMutexUtil mutex;
    mutex.Create(1, nullptr, nullptr);
    mutex.Lock(-1);
    const pid_t child = startChild([&] {
        writer.close();
        char byte = 0;
        return ::read(reader.number(), &byte, 1) == 0 ? 0 : 1;
    });
    mutex.Unlock();
    EXPECT_FALSE(isHeld());
    writer.close();
    EXPECT_EQ(exitCodeOf(child), 0);
}

TEST_F(MutexUtil, IsNotGivenBackByAForkedChild) {
    auto mutex = std::make_unique<CMutexUtil>();
    mutex->Create(1, nullptr, nullptr);
    mutex->Lock(-1);
    const auto dropCopy = [&mutex] {
        mutex->Unlock();
        mutex.reset();
        return 0;
    };
    EXPECT_EQ(exitCodeOf(dropCopy), 0);
    EXPECT_TRUE(isHeld());
}

}  // namespace
