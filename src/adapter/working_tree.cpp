#include "adapter/working_tree.h"

#include <array>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_trace.h"
#include "adapter/error_codes.h"
#include "foundation/boundary_trace.h"
#include "host/CFileUtility.h"

namespace {

constexpr const char* kToolPath = "/usr/sbin/ocmanager/hbacmd";

struct WorkDirectory {
    const char* tail;
    kvl::AdapterError failure;
};

constexpr std::array<WorkDirectory, 6> kWorkDirectories = {{
    {"cache", kvl::kNoCacheDirectory},
    {"cache/FC", kvl::kNoCacheDirectory},
    {"cache/CNA", kvl::kNoCacheDirectory},
    {"temp", kvl::kNoTemporaryDirectory},
    {"temp/FC", kvl::kNoTemporaryDirectory},
    {"temp/CNA", kvl::kNoTemporaryDirectory},
}};

}  // namespace

namespace kvl {

bool isCna(const std::string& moduleName) {
    return moduleName == "cna";
}

bool isFc(const std::string& moduleName) {
    return moduleName == "fc";
}

std::string workPath(const std::string& tail) {
    return CFileUtility::GetInstallPath(0) + "/tmp/EMULEX/" + tail;
}

std::string cacheDirectory(const std::string& moduleName) {
    return workPath(isCna(moduleName) ? "cache/CNA" : "cache/FC");
}

std::string adapterListFile() {
    return workPath("temp/Listhbas.txt");
}

}  // namespace kvl

bool CEmulexCommon::GetProgramFilesFolder_(std::string* path, std::string moduleName) {
    const kvl::BoundaryTrace trace(moduleName, "CEmulexCommon::GetProgramFilesFolder_()");
    if (path == nullptr) {
        SetLastError(kvl::kInvalidArgument);
        return false;
    }
    return true;
}

bool CEmulexCommon::GetOCMManagerInstallPath(std::string* path, std::string moduleName) {
    const kvl::AdapterTrace trace(moduleName);
    trace.boundary("CEmulexCommon::GetOCMManagerInstallPath [START]");
    if (path == nullptr) {
        SetLastError(kvl::kInvalidArgument);
        trace.boundary("CEmulexCommon::GetOCMManagerInstallPath(%d) [END]", 1);
        return false;
    }
    const bool isInstalled = CFileUtility::IsFileExist(kToolPath);
    if (isInstalled) {
        *path = kToolPath;
    } else {
        SetLastError(kvl::kNoTool);
    }
    // kept: this end line is of another level than the start line.
    trace.flow("CEmulexCommon::GetOCMManagerInstallPath() [END]");
    return isInstalled;
}

std::list<CNecessaryComponentInfo> CEmulexCommon::NecessaryComponentCheck(std::string moduleName) {
    kvl::AdapterTrace(moduleName).boundary("CEmulexCommon::NecessaryComponentCheck() [START]");
    std::list<CNecessaryComponentInfo> missing;
    std::string unused;
    if (!GetOCMManagerInstallPath(&unused, moduleName)) {
        CNecessaryComponentInfo tool;
        tool.name = "One Command Manager";
        missing.push_back(tool);
    }
    return missing;
}

bool CEmulexCommon::CreateLocalDirectory() {
    for (const WorkDirectory& directory : kWorkDirectories) {
        if (!CFileUtility::CreateFolder(kvl::workPath(directory.tail))) {
            SetLastError(directory.failure);
            return false;
        }
    }
    return true;
}
