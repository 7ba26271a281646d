#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <fstream>

#include "adapter/CEmulexCommon.h"
#include "adapter/error_codes.h"
#include "adapter/report_file.h"
#include "adapter/working_tree.h"
#include "foundation/boundary_trace.h"
#include "foundation/text.h"
#include "host/CMutexUtil.h"
#include "host/CStringUtil.h"

using kvl::AdapterTrace;
using kvl::ReportFile;

namespace kvl {

ReportFile::ReportFile(const std::string& path)
    : path_(path), file_(std::fopen(path.c_str(), "r"), std::fclose), openError_(errno) {}

bool ReportFile::readLine(std::string& line) {
    if (std::fgets(buffer_.data(), static_cast<int>(buffer_.size()), file_.get()) == nullptr) {
        return false;
    }
    line = buffer_.data();
    return true;
}

void ReportFile::reportFailure(const AdapterTrace& trace) const {
    CEmulexCommon::SetLastError(kFileNotOpened);
    trace.error("File Open Error. file(%s) errcode(%d)", path_, openError_);
}

}  // namespace kvl

namespace {

constexpr const char* kListing = "fsresult";
constexpr const char* kListSeparator = "|";

using KeyValue = std::pair<std::string, std::string>;
using Position = std::string::size_type;

bool readWithoutLineEnd(ReportFile& report, std::string& line) {
    if (!report.readLine(line)) {
        return false;
    }
    std::replace_if(
        line.begin(), line.end(), [](char character) { return character == '\r' || character == '\n'; }, ' ');
    return true;
}

/// @return the first text of the list that stands in the line, null if there is none
const std::string* firstHeld(const std::list<std::string>& texts, const std::string& line) {
    const auto found =
        std::find_if(texts.begin(), texts.end(), [&line](const std::string& text) { return kvl::holds(line, text); });
    return found != texts.end() ? &*found : nullptr;
}

/// Takes key and value from a line that holds the key. Without a separator or a value nothing is taken.
void takeValue(const std::string& line, const std::string& key, const std::string& separator, KeyValue& result) {
    // kept: the search starts at the key and not behind it, so a separator inside the key is the one.
    const Position found = line.find(separator, line.find(key));
    if (found == std::string::npos) {
        return;
    }
    const Position begin = line.find_first_not_of(' ', found + separator.size());
    if (begin == std::string::npos) {
        return;
    }
    const Position end = line.find_last_not_of(' ') + 1;
    result = {key, line.substr(begin, end - begin)};
}

/// Reads the lines behind a tag until there is a value. At least one line is read, also where there is one already.
void takeFromSection(ReportFile& report, const std::list<std::string>& keys, const std::string& separator,
                     KeyValue& result) {
    std::string line;
    do {
        if (!readWithoutLineEnd(report, line)) {
            return;
        }
        if (const std::string* key = firstHeld(keys, line)) {
            takeValue(line, *key, separator, result);
        }
    } while (result.first.empty());
}

std::string calendarText(std::time_t time) {
    std::array<char, 64> buffer{};
    const char* text = ctime_r(&time, buffer.data());
    return text != nullptr ? text : "";
}

/// @param listing  a file with one path a line
/// @return the path of the file that was modified last
std::string newestOf(const std::string& listing, const AdapterTrace& trace) {
    std::ifstream paths(listing);
    if (!paths.is_open()) {
        trace.flow("stat error!!");
    }
    std::string newest;
    std::time_t newestTime = 0;
    std::string path;
    // kept: a path that the listing ends with, without a line feed, doesn't count.
    while (paths >> path && !paths.eof()) {
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
    const std::list<std::string> keyList = CStringUtil::Split(keys, kListSeparator);
    std::string line;
    while (result.first.empty() && readWithoutLineEnd(report, line)) {
        const std::string* key = firstHeld(keyList, line);
        if (key == nullptr) {
            continue;
        }
        if (count > 0) {
            --count;
        } else {
            takeValue(line, *key, separator, result);
        }
    }
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
    const std::list<std::string> tagList = CStringUtil::Split(tags, kListSeparator);
    const std::list<std::string> keyList = CStringUtil::Split(keys, kListSeparator);
    std::string line;
    // kept: a value doesn't end the reading, and a later section can replace it.
    while (readWithoutLineEnd(report, line)) {
        for (const std::string& tag : tagList) {
            if (!kvl::holds(line, tag)) {
                continue;
            }
            if (count > 0) {
                --count;
                break;
            }
            takeFromSection(report, keyList, separator, result);
        }
    }
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
    std::string line;
    while (dump.readLine(line)) {
        if (kvl::holds(line, text)) {
            trace.flow("[%s] is finded", text);
            return true;
        }
    }
    trace.flow("[%s] is not finded", text);
    return false;
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
    // kept: where the command fails its listing stays behind.
    if (std::system(command.c_str()) == 0) {
        trace.flow("CEmulexCommon::LatestFile() cmd=%s", listing);
        newest = newestOf(listing, trace);
        unlink(listing.c_str());
    }
    listingLock.Unlock();
    trace.flow("CEmulexCommon::LatestFile() [END] latest filename=%s", newest);
    return CStringUtil::StringToTstring(newest);
}
