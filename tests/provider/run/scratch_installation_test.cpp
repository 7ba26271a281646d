#include "provider/run/scratch_installation.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "host/CFileUtility.h"
#include "host/CTraceUtility.h"
#include "provider/library/working_tree.h"
#include "reference_host/trace_log.h"
#include "tests/machines/outside.h"

namespace {

namespace fs = std::filesystem;
using kvl::provider::ScratchInstallation;
using kvl::provider::WorkingTree;
using kvl::test::ScratchDirectory;

TEST(ScratchInstallation, LeavesNeitherItselfNorATraceOfWhatWasDoneInIt) {
    const ScratchDirectory scratch;
    setenv("KVL_INSTALL_PATH", scratch.path().c_str(), 1);
    setenv("KVL_SYSTEM_LOG", "no", 1);
    kvl::host::reloadTraceSettings();
    std::string directory;
    {
        const ScratchInstallation installation;
        directory = CFileUtility::GetInstallPath(0);
        EXPECT_NE(scratch.path(), directory);
        EXPECT_EQ(directory + "/tmp/EMULEX", WorkingTree::inUse().path());
        EXPECT_EQ(scratch.path() + "/tmp/EMULEX", WorkingTree::installed().path());
        CFileUtility::CreateFolder(WorkingTree::inUse().temporary("CNA"));
        CTraceUtility::WriteDebug("m", TRACE_DBG_ERROR, "%s", "in it");
        EXPECT_TRUE(fs::is_directory(directory + "/tmp/EMULEX/temp/CNA"));
    }
    EXPECT_FALSE(fs::exists(directory));
    EXPECT_TRUE(fs::is_empty(scratch.path()));
    EXPECT_EQ(scratch.path(), CFileUtility::GetInstallPath(0));
}

TEST(ScratchInstallation, GivesTheTraceBackToTheInstallation) {
    const ScratchDirectory scratch;
    setenv("KVL_INSTALL_PATH", scratch.path().c_str(), 1);
    fs::create_directory(scratch / "log");
    { const ScratchInstallation installation; }
    CTraceUtility::WriteDebug("m", TRACE_DBG_ERROR, "%s", "after it");
    EXPECT_NE(std::string::npos, kvl::test::readFile(scratch / "log/kvl.log").find("after it"));
}

}  // namespace
