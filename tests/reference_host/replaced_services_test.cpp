#include <gtest/gtest.h>

#include <cstdlib>
#include <list>
#include <string>
#include <vector>

#include "host/CFileUtility.h"
#include "host/CKvlXmlWrite.h"
#include "host/CMutexUtil.h"
#include "host/CStringUtil.h"
#include "host/CTraceUtility.h"
#include "host/HostFunctions.h"
#include "tests/reference_host/scratch_directory.h"

namespace {

std::vector<std::string> ownCalls;

}  // namespace

void CTraceUtility::WriteDebug(const char*, TRACE_DBG_LEVEL, const char*, ...) {
    ownCalls.emplace_back("WriteDebug");
}

void CTraceUtility::WriteTrace(const char*, const char*, ...) {
    ownCalls.emplace_back("WriteTrace");
}

void Sleep(unsigned long) {
    ownCalls.emplace_back("Sleep");
}

namespace {

TEST(ReplacedServices, StandBesideThoseOfTheArchive) {
    const kvl::test::ScratchDirectory scratch;
    ::setenv("KVL_INSTALL_PATH", scratch.path().c_str(), 1);
    CTraceUtility::WriteDebug("m", TRACE_DBG_ERROR, "text");
    CTraceUtility::WriteTrace("m", "id");
    Sleep(30000);
    EXPECT_EQ(ownCalls, (std::vector<std::string>{"WriteDebug", "WriteTrace", "Sleep"}));

    CMutexUtil mutex;
    mutex.Create(1, nullptr, nullptr);
    mutex.Lock(-1);
    mutex.Unlock();
    const std::string report = scratch / "report.xml";
    const std::string copy = scratch / "copy.xml";
    EXPECT_TRUE(CKvlXmlWrite().writeXML(report, CKvlXmlNode("tag")));
    EXPECT_NE(CopyFileA(report.c_str(), copy.c_str(), 0), 0);
    std::list<std::string> found;
    CFileUtility::SearchFile(CFileUtility::GetInstallPath(0), "*.xml", &found, false);
    EXPECT_EQ(found, (std::list<std::string>{"copy.xml", "report.xml"}));
    EXPECT_NE(DeleteFileA(copy.c_str()), 0);
    EXPECT_EQ(GetPrivateProfileIntA("s", "k", 3, report.c_str()), 3);
    EXPECT_EQ(CStringUtil::NumberToTString(3), "3");
}

}  // namespace
