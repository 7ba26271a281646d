#include <gmock/gmock.h>
#include <syslog.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "host/CTraceUtility.h"
#include "reference_host/install_path.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Entry = std::pair<int, std::string>;

std::vector<Entry>& entries() {
    static std::vector<Entry> list;
    return list;
}

}  // namespace

/// Stands in front of libc's own: nothing of these tests reaches the machine's log.
extern "C" void syslog(int priority, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    char text[512];
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    entries().emplace_back(priority, text);
}

namespace {

class SystemLog : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("KVL_SYSTEM_LOG");
        entries().clear();
    }
    void TearDown() override { unsetenv("KVL_SYSTEM_LOG"); }
};

TEST_F(SystemLog, HasEachFailureThatIsTraced) {
    CTraceUtility::WriteTrace("cna", "MSGID_EMULEX_0004_F", "ocm", "1a");
    EXPECT_THAT(entries(), ElementsAre(Entry(
                               LOG_USER | LOG_ERR,
                               "MSGID_EMULEX_0004_F: The update of ocm for a converged network adapter failed: 1a")));
}

TEST_F(SystemLog, HasNothingOfATemporaryInstallation) {
    const kvl::host::TemporaryInstallation installation("/nowhere");
    CTraceUtility::WriteTrace("cna", "MSGID_EMULEX_0004_F", "ocm", "1a");
    EXPECT_THAT(entries(), IsEmpty());
}

TEST_F(SystemLog, HasWhatIsNoFailureAsANotice) {
    CTraceUtility::WriteTrace("cna", "MSGID_KVL_UPDATE_DONE_I", "firmware", "now 1.2");
    EXPECT_THAT(entries(), ElementsAre(Entry(LOG_USER | LOG_NOTICE,
                                             "MSGID_KVL_UPDATE_DONE_I: The update of firmware is done: now 1.2")));
}

TEST_F(SystemLog, HasOneLineForAMessage) {
    CTraceUtility::WriteTrace("cna", "MSGID_KVL_UPDATE_DONE_I", "a\nb", "100%s");
    EXPECT_THAT(entries(), ElementsAre(Entry(LOG_USER | LOG_NOTICE,
                                             "MSGID_KVL_UPDATE_DONE_I: The update of a\\nb is done: 100%s")));
}

TEST_F(SystemLog, HasNothingOfTheDebugTrace) {
    CTraceUtility::WriteDebug("cna", TRACE_DBG_ERROR, "an error");
    EXPECT_THAT(entries(), IsEmpty());
}

TEST_F(SystemLog, CanBeSwitchedOff) {
    setenv("KVL_SYSTEM_LOG", "no", 1);
    CTraceUtility::WriteTrace("cna", "MSGID_KVL_UPDATE_DONE_I", "firmware", "now 1.2");
    EXPECT_THAT(entries(), IsEmpty());
    setenv("KVL_SYSTEM_LOG", "yes", 1);
    CTraceUtility::WriteTrace("cna", "MSGID_KVL_UPDATE_DONE_I", "firmware", "now 1.2");
    EXPECT_EQ(1U, entries().size());
}

}  // namespace
