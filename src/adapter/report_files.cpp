#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <fstream>

#include "adapter/CEmulexCommon.h"
#include "adapter/report_file.h"
#include "adapter/report_parser.h"
#include "adapter/working_tree.h"
#include "foundation/boundary_trace.h"
#include "foundation/words.h"
#include "host/CMutexUtil.h"
#include "host/CStringUtil.h"

using kvl::AdapterTrace;
using kvl::ReportFile;

namespace {

constexpr const char* kListing = "fsresult";

std::string calendarText(std::time_t time) {
    std::array<char, 64> buffer{};
    const char* text = ctime_r(&time, buffer.data());
    return text != nullptr ? text : "";
}

/// @param listing  a file with one path per line
/// @return the path of the file that was modified last
std::string newestOf(const std::string& listing, const AdapterTrace& trace) {
    std::ifstream paths(listing);
    if (!paths.is_open()) {
        trace.flow("stat error!!");
    }
    std::string newest;
    std::time_t newestTime = 0;
    for (const std::string& path : kvl::readWords(paths)) {
        trace.flow("CEmulexCommon::LatestFile() file=%s", path);
        trace.flow("CEmulexCommon::LatestFile() filename=%s", path);
        struct stat status {};
        if (stat(path.c_str(), &status) != 0) {
            trace.flow("stat error!!");
            continue;
        }
        trace.flow("st_mtime=%d", static_cast<int>(status.st_mtime));
        trace.flow("Last Modify [%s]", calendarText(status.st_mtime));
        if (newestTime < status.st_mtime) {
            newest = path;
            newestTime = status.st_mtime;
        }
    }
    return newest;
}

}  // namespace

bool CEmulexCommon::GetKeyValueFromFile_(std::string file, std::string keys, std::string separator,
                                         std::pair<std::string, std::string>& result, std::string moduleName,
                                         unsigned int count) {
    const AdapterTrace trace(moduleName);
    trace.flow("GetKeyValueFromFile(%s,%s,%s)", file, keys, separator);
    result = {};
    ReportFile report(file);
    if (!report.isOpen()) {
        report.reportFailure(trace);
        trace.flow("CEmulexCommon::GetKeyValueFromFile_() [END]");
        return false;
    }
    result = kvl::findKeyValue(report.lines(), keys, separator, count);
    return true;  // kept: an end line is written on failure only
}

bool CEmulexCommon::GetTagKeyValueFromFile_(std::string file, std::string tags, std::string keys, std::string separator,
                                            std::pair<std::string, std::string>& result, std::string moduleName,
                                            unsigned int count) {
    const AdapterTrace trace(moduleName);
    trace.flow("CEmulexCommon::GetTagKeyValueFromFile_() [START]");
    trace.flow("GetTagKeyValueFromFile(%s,%s,%s,%s)", file, tags, keys, separator);
    result = {};
    ReportFile report(file);
    if (!report.isOpen()) {
        report.reportFailure(trace);
        trace.flow("CEmulexCommon::GetTagKeyValueFromFile_() [END]");
        return false;
    }
    result = kvl::findTagKeyValue(report.lines(), tags, keys, separator, count);
    trace.flow("CEmulexCommon::GetTagKeyValueFromFile_() [END]");
    return true;
}

bool CEmulexCommon::CheckDumpFileKeyWord_(std::string file, std::string id, std::string moduleName) {
    const kvl::BoundaryTrace boundaries(moduleName, "CEmulexCommon::CheckDumpFileKeyWord_()");
    const AdapterTrace trace(moduleName);
    const std::string text = (kvl::isCna(moduleName) ? "Port WWPN/MAC: " : "Port WWN: ") + id;
    trace.flow("CheckDumpFileKeyWord_(%s,%s)", file, text);
    ReportFile dump(file);
    if (!dump.isOpen()) {
        dump.reportFailure(trace);
        return false;
    }
    const bool isHeld = kvl::holdsText(dump.lines(), text);
    trace.flow(isHeld ? "[%s] is finded" : "[%s] is not finded", text);
    return isHeld;
}

std::string CEmulexCommon::LatestFile(std::string directory, std::string pattern, std::string moduleName) {
    const AdapterTrace trace(moduleName);
    trace.flow("CEmulexCommon::LatestFile() [START]");
    CMutexUtil listingLock;
    listingLock.Create(1, nullptr, nullptr);
    listingLock.Lock(-1);
    const std::string tempDirectory = kvl::workPath("temp");
    trace.flow("CEmulexCommon::LatestFile() [%s][%s][%s][%s]", directory, pattern, tempDirectory, kListing);
    const std::string listing = tempDirectory + "/" + kListing;
    const std::string command = "/bin/ls " + directory + "/" + pattern + " > " + listing + " 2>&1";
    trace.flow("CEmulexCommon::LatestFile() exec[%s]", command);
    std::string newest;
    // kept: where the command fails its listing is not deleted.
    if (std::system(command.c_str()) == 0) {
        trace.flow("CEmulexCommon::LatestFile() cmd=%s", listing);
        newest = newestOf(listing, trace);
        unlink(listing.c_str());
    }
    listingLock.Unlock();
    trace.flow("CEmulexCommon::LatestFile() [END] latest filename=%s", newest);
    return CStringUtil::StringToTstring(newest);
}
