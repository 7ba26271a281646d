#include <gmock/gmock.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "host/CKvlXmlWrite.h"
#include "tests/reference_host/host_test.h"
#include "tests/reference_host/processes.h"

namespace {

using kvl::test::contentOf;
using kvl::test::HostTest;
using kvl::test::lay;
using ::testing::ElementsAre;

enum class End { kFinished, kKilled, kUntraceable };

// Lets the child go on to the next entry into or return from the kernel. @return false if it ended
bool step(pid_t child) {
    int status = 0;
    return ::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) == 0 && ::waitpid(child, &status, 0) == child &&
           WIFSTOPPED(status);
}

void kill(pid_t child) {
    int status = 0;
    ::kill(child, SIGKILL);
    while (::waitpid(child, &status, 0) == child && WIFSTOPPED(status)) {
    }
}

pid_t startTracedWriter(const std::string& path, const CKvlXmlNode& report) {
    return kvl::test::startChild([&] {
        if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
            return 1;
        }
        ::raise(SIGSTOP);
        return CKvlXmlWrite().writeXML(path, report) ? 0 : 1;
    });
}

struct NamedCall {
    unsigned long number;
    const char* name;
};

// The calls that make a file safe and put it into its place.
constexpr NamedCall kDurabilityCalls[] = {
    {SYS_fsync, "fsync"},
    {SYS_rename, "rename"},
    {SYS_renameat, "rename"},
    {SYS_renameat2, "rename"},
};

// Notes the call that the stopped child is about to make, if it is one of those.
void noteDurabilityCall(pid_t child, std::vector<std::string>& calls) {
    __ptrace_syscall_info info{};
    if (::ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof(info), &info) <= 0 || info.op != PTRACE_SYSCALL_INFO_ENTRY) {
        return;
    }
    for (const NamedCall& call : kDurabilityCalls) {
        if (call.number == info.entry.nr) {
            calls.emplace_back(call.name);
        }
    }
}

// Has a child write the report, and kills it after `steps` entries into and returns from the kernel.
End writeAndKill(const std::string& path, const CKvlXmlNode& report, int steps) {
    const pid_t child = startTracedWriter(path, report);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!WIFSTOPPED(status)) {
        return End::kUntraceable;
    }
    for (int taken = 0; taken < steps; ++taken) {
        if (!step(child)) {
            return End::kFinished;
        }
    }
    kill(child);
    return End::kKilled;
}

CKvlXmlNode largeReport() {
    CKvlXmlNode report("Report");
    for (int i = 0; i < 500; ++i) {
        CKvlXmlNode port("Port");
        port.addAttribute("Name", "eth" + std::to_string(i));
        report.addChildNode(port);
    }
    return report;
}

void removeTemporaryFiles(const kvl::test::ScratchDirectory& directory) {
    for (const std::string& name : directory.entries()) {
        if (name.front() == '.') {
            std::filesystem::remove(directory / name);
        }
    }
}

class InterruptedWrite : public HostTest {};

TEST_F(InterruptedWrite, FindsTheReportOnTheDiskBeforeItsNameAndTheNameBeforeTheSuccess) {
    const pid_t child = startTracedWriter(scratch_ / "report.xml", largeReport());
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!WIFSTOPPED(status)) {
        GTEST_SKIP() << "this system lets no process trace its child";
    }
    ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    std::vector<std::string> calls;
    while (step(child)) {
        noteDurabilityCall(child, calls);
    }
    EXPECT_THAT(calls, ElementsAre("fsync", "rename", "fsync"));
}

TEST_F(InterruptedWrite, LeavesTheOldOrTheNewReportWholeAtEveryStep) {
    constexpr int kMostSteps = 10000;
    const std::string path = scratch_ / "report.xml";
    const CKvlXmlNode report = largeReport();
    ASSERT_TRUE(CKvlXmlWrite().writeXML(path, report));
    const std::string newContent = contentOf(path);
    const std::string oldContent = "<Old/>\n";

    int killedBefore = 0;
    int killedAfter = 0;
    End end = End::kKilled;
    for (int steps = 1; end == End::kKilled && steps < kMostSteps; ++steps) {
        lay(path, oldContent);
        end = writeAndKill(path, report, steps);
        if (end == End::kUntraceable) {
            GTEST_SKIP() << "this system lets no process trace its child";
        }
        const std::string content = contentOf(path);
        ASSERT_TRUE(content == oldContent || content == newContent) << "killed after " << steps << " steps";
        ++(content == oldContent ? killedBefore : killedAfter);
        if (end == End::kKilled) {
            removeTemporaryFiles(scratch_);
        }
    }
    EXPECT_EQ(end, End::kFinished);
    EXPECT_EQ(contentOf(path), newContent);
    EXPECT_THAT(scratch_.entries(), ElementsAre("report.xml"));
    EXPECT_GT(killedBefore, 10);
    EXPECT_GT(killedAfter, 1);
}

}  // namespace
