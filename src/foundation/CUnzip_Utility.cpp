#include "foundation/CUnzip_Utility.h"

#include <dirent.h>
#include <sys/stat.h>

#include <memory>

#include "foundation/CCommon_Information.h"
#include "foundation/boundary_trace.h"
#include "foundation/shell_child.h"
#include "foundation/text.h"
#include "host/CTraceUtility.h"
#include "host/HostFunctions.h"

namespace {

constexpr std::string::size_type kPathLimit = 4096;
constexpr std::string::size_type kCommandLimit = 8223;

using DirectoryStream = std::unique_ptr<DIR, int (*)(DIR*)>;

bool deleteEntry(const std::string& path, const std::string& moduleName) {
    struct stat entry {};
    if (lstat(path.c_str(), &entry) != 0) {
        return false;
    }
    return S_ISDIR(entry.st_mode) ? CUnzip_Utility::DeleteFolder(path, moduleName)
                                  : CCommon_Information::RetryDeleteFile(path);
}

bool deleteEntries(const std::string& path, const std::string& moduleName) {
    const DirectoryStream directory(opendir(path.c_str()), closedir);
    if (!directory) {
        return false;
    }
    while (const dirent* entry = readdir(directory.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != ".." && !deleteEntry(path + "/" + name, moduleName)) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool CUnzip_Utility::DeleteFolder(std::string path, std::string moduleName) {
    const kvl::BoundaryTrace trace(moduleName, "CUnzip_Utility::DeleteFolder");
    if (path.empty()) {
        CTraceUtility::WriteDebug(moduleName.c_str(), TRACE_DBG_ERROR,
                                  "CUnzip_Utility::DeleteFolder Invalid input path");
        return false;
    }
    if (path.size() > kPathLimit) {
        CTraceUtility::WriteDebug(moduleName.c_str(), TRACE_DBG_ERROR,
                                  "CUnzip_Utility::DeleteFolder Input path is too long");
        return false;
    }
    if (!CCommon_Information::MyPathFileExists(path)) {
        return true;
    }
    return deleteEntries(path, moduleName) && RemoveDirectoryA(path.c_str()) != 0;
}

bool CUnzip_Utility::Unzip(std::string zipPath, std::string outPath, std::string moduleName) {
    const kvl::BoundaryTrace trace(moduleName, "CUnzip_Utility::Unzip");
    const char* const module = moduleName.c_str();
    CTraceUtility::WriteDebug(module, TRACE_DBG_FLOW, "CUnzip_Utility::Unzip ARG Check tsZipPath=%s tsOutPath=%s",
                              zipPath.c_str(), outPath.c_str());
    if (!CCommon_Information::MyPathFileExists(outPath)) {
        CTraceUtility::WriteDebug(module, TRACE_DBG_ERROR, "CUnzip_Utility::Unzip() Output dir is not found.");
        return false;
    }
    // kept: a longer command is cut and run, and a quote in a name isn't masked from the shell.
    const std::string command =
        kvl::formatText("unzip -o \"%s\" -d \"%s\"", zipPath.c_str(), outPath.c_str()).substr(0, kCommandLimit);
    unsigned long exitCode = 0;
    if (CCommon_Information::ExecForeignModule(command, "", "", &exitCode, kvl::kNoTimeout) != kvl::kRan) {
        CTraceUtility::WriteDebug(module, TRACE_DBG_ERROR, "CUnzip_Utility::Unzip() ExecForeignModule() failed.");
        return false;
    }
    if (exitCode != 0) {
        CTraceUtility::WriteDebug(module, TRACE_DBG_ERROR, "CUnzip_Utility::Unzip() unzip() failed. dwRtnCode=%d",
                                  static_cast<int>(exitCode));
        return false;
    }
    return true;
}

bool CUnzip_Utility::UpdateModuleUnzip(std::string directory, std::list<std::string>* files, std::string outPath,
                                       std::string* moduleBaseName, std::string moduleName) {
    const kvl::BoundaryTrace trace(moduleName, "CUnzip_Utility::UpdateModuleUnzip");
    for (const std::string& file : *files) {
        if (kvl::holds(file, ".zip")) {
            const bool unpacked = Unzip(directory + "/" + file, outPath, moduleName);
            *moduleBaseName = kvl::upTo(file, '.');
            return unpacked;
        }
    }
    return false;
}
