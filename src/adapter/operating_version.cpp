#include <array>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_record.h"
#include "adapter/adapter_trace.h"
#include "adapter/error_codes.h"
#include "adapter/working_tree.h"
#include "foundation/CCommon_Information.h"
#include "foundation/file_state.h"
#include "foundation/text.h"
#include "host/CFileUtility.h"
#include "host/HostFunctions.h"

using kvl::AdapterRecord;
using kvl::AdapterTrace;

namespace {

constexpr int kDumpAttempts = 3;
constexpr unsigned long kDumpPause = 1000;

/// What a dump calls the version of a module.
struct VersionKey {
    EMULEX_MODULE_KIND kind;
    const char* cnaKey;
    const char* fcKey;
};

constexpr std::array<VersionKey, 4> kVersionKeys = {{
    {EMULEX_MODULE_FIRMWARE, "FW Version", "Firmware Version"},
    {EMULEX_MODULE_DRIVER, "Driver Version", "Driver Version"},
    {EMULEX_MODULE_OCM, "OneCommand Manager", "OneCommand Manager"},
    {EMULEX_MODULE_BOOT_BIOS, "Boot Bios Version", "Boot Bios Version"},
}};

std::string cacheFile(const std::string& deviceId, const std::string& moduleName) {
    return kvl::cacheDirectory(moduleName) + "/CacheDump_" + CONVERT_DEVID(deviceId) + ".txt";
}

std::string identifierOf(const AdapterRecord& info) {
    return kvl::valueOf(info, kvl::hasWorldWideName(info) ? kvl::kWwnKey : kvl::kMacKey);
}

/// Has the tool dump a port, and asks for the directory of the dumps.
bool makeDump(const std::string& tool, const std::string& identifier, std::string& directory,
              const std::string& moduleName) {
    const std::string answer = kvl::workPath("temp/DumpDirectory.txt");
    const std::string quotedTool = "\"" + tool;  // kept: the quote is never closed
    std::pair<std::string, std::string> keyValue;
    if (CEmulexCommon::ExecCommand_(quotedTool + " dump " + identifier, moduleName) != 0 ||
        CEmulexCommon::ExecCommand_(quotedTool + " GetDumpDirectory " + identifier + " > \"" + answer + "\"",
                                    moduleName) != 0 ||
        !CEmulexCommon::GetKeyValueFromFile_(answer, "Dump Directory", "=", keyValue, moduleName, 0)) {
        return false;
    }
    if (keyValue.second.empty()) {
        CEmulexCommon::SetLastError(kvl::kNoDumpDirectory);
        return false;
    }
    directory = keyValue.second;
    return true;
}

/// Runs after a try without a dump. The refreshed list is for the next caller, not for this one.
void pauseAndRefreshList(const std::string& tool, const std::string& moduleName) {
    const AdapterTrace trace(moduleName);
    Sleep(kDumpPause);
    const std::string command = "\"" + tool + " listhbas > \"" + kvl::adapterListFile() + "\"";
    if (CEmulexCommon::ExecCommand_(command, moduleName) != 0) {
        trace.error("Failed to execute command (%s)", command);
    }
    trace.error("Retry(No such Dump File)");
}

/// Looks for a dump of the port among the newest dumps, with a new dump for each try.
bool findDump(const std::string& tool, const AdapterRecord& info, std::string& dump, const std::string& moduleName) {
    const std::string identifier = identifierOf(info);
    for (int attempt = 0; attempt < kDumpAttempts; ++attempt) {
        std::string directory;
        if (!makeDump(tool, identifier, directory, moduleName)) {
            return false;
        }
        dump = CEmulexCommon::LatestFile(directory, "*.txt", moduleName);
        if (CEmulexCommon::CheckDumpFileKeyWord_(dump, identifier, moduleName)) {
            return true;
        }
        pauseAndRefreshList(tool, moduleName);
    }
    CEmulexCommon::SetLastError(kvl::kNoDumpFile);
    return false;
}

bool refreshCache(const std::string& deviceId, const std::string& cache, const std::string& moduleName) {
    std::string tool;
    AdapterRecord info;
    std::string dump;
    if (!CEmulexCommon::GetOCMManagerInstallPath(&tool, moduleName) ||
        !CEmulexCommon::GetHBAInfo(deviceId, &info, moduleName) || !findDump(tool, info, dump, moduleName)) {
        return false;
    }
    if (CopyFileA(dump.c_str(), cache.c_str(), 0) == 0) {
        CEmulexCommon::SetLastError(kvl::kDumpNotCached);
        return false;
    }
    return true;
}

/// @return null for a kind whose version no dump gives
const char* keyOf(EMULEX_MODULE_KIND kind, const std::string& moduleName) {
    for (const VersionKey& row : kVersionKeys) {
        if (row.kind == kind) {
            return kvl::isCna(moduleName) ? row.cnaKey : row.fcKey;
        }
    }
    return nullptr;
}

bool readVersion(const std::string& cache, EMULEX_MODULE_KIND kind, std::string& version,
                 const std::string& moduleName) {
    const char* key = keyOf(kind, moduleName);
    if (key == nullptr) {
        CEmulexCommon::SetLastError(kvl::kUnknownModuleKind);
        return false;
    }
    std::pair<std::string, std::string> keyValue;
    if (!CEmulexCommon::GetKeyValueFromFile_(cache, key, ":", keyValue, moduleName, 0)) {
        return false;
    }
    if (keyValue.second.empty()) {
        CEmulexCommon::SetLastError(kvl::kNoVersion);
        return false;
    }
    version = keyValue.second;
    return true;
}

/// Cuts the text in parentheses off a firmware version, and the blanks in front of it.
std::string withoutParentheses(const std::string& version, const AdapterTrace& trace) {
    std::string plain = kvl::upTo(version, '(');
    plain.erase(plain.find_last_not_of(' ') + 1);
    trace.flow("tmp = [%s]", plain);
    return plain;
}

/// Deletes the cached dumps that it finds.
void deleteCachedDumps(const std::string& moduleName) {
    const std::string directory = kvl::cacheDirectory(moduleName);
    std::list<std::string> names;
    // kept: the cached dumps are called CacheDump_, so the search finds none.
    CFileUtility::SearchFile(directory, "cache_dump_*.txt", &names, false);
    for (const std::string& name : names) {
        // kept: the quotes are part of the path, so there is no such file, and that counts as deleted.
        const std::string path = kvl::formatText("\"%s/%s\"", directory.c_str(), name.c_str());
        if (!CCommon_Information::RetryDeleteFile(path)) {
            AdapterTrace(moduleName).warning("Failed to delete File [%s]", path);
        }
    }
}

}  // namespace

bool CEmulexCommon::GetOperatingVersion(std::string DeviceID, EMULEX_MODULE_KIND kind, std::string* version,
                                        bool forceRefresh, std::string moduleName) {
    const AdapterTrace trace(moduleName);
    trace.boundary("CEmulexCommon::GetOperatingVersion(%s / %d) [START]", DeviceID, static_cast<int>(kind));
    const auto end = [&trace](int failure) {
        trace.boundary("CEmulexCommon::GetOperatingVersion(%d) [END]", failure);
        return failure == 0;
    };
    if (version == nullptr) {
        SetLastError(kvl::kInvalidArgument);
        return end(1);
    }
    if (kind == EMULEX_MODULE_UNVERSIONED) {
        version->clear();
        return end(0);
    }
    const std::string cache = cacheFile(DeviceID, moduleName);
    if ((forceRefresh || !kvl::isThere(cache)) && !refreshCache(DeviceID, cache, moduleName)) {
        return end(1);
    }
    std::string found;
    if (!readVersion(cache, kind, found, moduleName)) {
        return end(1);
    }
    *version = kvl::isFc(moduleName) && kind == EMULEX_MODULE_FIRMWARE ? withoutParentheses(found, trace) : found;
    trace.boundary("CEmulexCommon::GetOperatingVersion(%d) [END](Module: %d Version:%s)", 0, static_cast<int>(kind),
                   *version);
    return true;
}

bool CEmulexCommon::DelOperatingVersion_(std::string directory, std::string moduleName) {
    const AdapterTrace trace(moduleName);
    trace.boundary("CEmulexCommon::DelOperatingVersion_() [Start]");
    const std::string marker = directory + "/UpdateProceeding.txt";
    if (!CCommon_Information::MyPathFileExists(marker)) {
        SetLastError(kvl::kFileNotOpened);  // kept: there is nothing to do, and still a code
        trace.boundary("CEmulexCommon::DelOperatingVersion_() [END](%s)", marker);
        return true;
    }
    deleteCachedDumps(moduleName);
    const bool isDeleted = CCommon_Information::RetryDeleteFile(marker);
    if (!isDeleted) {
        SetLastError(kvl::kInvalidArgument);
        trace.warning("Failed to delete File [%s]", marker);
    }
    trace.boundary("CEmulexCommon::DelOperatingVersion_() [END]");
    return isDeleted;
}
