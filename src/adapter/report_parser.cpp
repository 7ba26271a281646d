#include "adapter/report_parser.h"

#include <algorithm>
#include <list>

#include "foundation/text.h"
#include "host/CStringUtil.h"

namespace kvl {

namespace {

constexpr const char* kListSeparator = "|";

/// @return the first text of the list that the line holds, null if there is none
const std::string* firstHeld(const std::list<std::string>& texts, const std::string& line) {
    const auto found =
        std::find_if(texts.begin(), texts.end(), [&line](const std::string& text) { return holds(line, text); });
    return found != texts.end() ? &*found : nullptr;
}

/// Takes key and value from a line that holds the key. Without a separator or a value nothing is taken.
void takeValue(const std::string& line, const std::string& key, const std::string& separator, KeyValue& result) {
    // kept: the search starts at the key and not after it, so a separator inside the key is the one.
    const std::string::size_type found = line.find(separator, line.find(key));
    if (found == std::string::npos) {
        return;
    }
    const std::string::size_type begin = line.find_first_not_of(' ', found + separator.size());
    if (begin == std::string::npos) {
        return;
    }
    const std::string::size_type end = line.find_last_not_of(' ') + 1;
    result = {key, line.substr(begin, end - begin)};
}

/// Reads the lines after a tag until there is a value. At least one line is read, also where there is one already.
void takeFromSection(ReportLines& report, const std::list<std::string>& keys, const std::string& separator,
                     KeyValue& result) {
    std::string line;
    do {
        if (!report.readWithoutLineEnd(line)) {
            return;
        }
        if (const std::string* key = firstHeld(keys, line)) {
            takeValue(line, *key, separator, result);
        }
    } while (result.first.empty());
}

}  // namespace

KeyValue findKeyValue(ReportLines report, std::string keys, const std::string& separator, unsigned int count) {
    const std::list<std::string> keyList = CStringUtil::Split(keys, kListSeparator);
    KeyValue result;
    std::string line;
    while (result.first.empty() && report.readWithoutLineEnd(line)) {
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
    return result;
}

KeyValue findTagKeyValue(ReportLines report, std::string tags, std::string keys, const std::string& separator,
                         unsigned int count) {
    const std::list<std::string> tagList = CStringUtil::Split(tags, kListSeparator);
    const std::list<std::string> keyList = CStringUtil::Split(keys, kListSeparator);
    KeyValue result;
    std::string line;
    // kept: a value doesn't end the reading, and a later section can replace it.
    while (report.readWithoutLineEnd(line)) {
        for (const std::string& tag : tagList) {
            if (!holds(line, tag)) {
                continue;
            }
            if (count > 0) {
                --count;
                break;
            }
            takeFromSection(report, keyList, separator, result);
        }
    }
    return result;
}

bool holdsText(ReportLines report, const std::string& text) {
    std::string line;
    while (report.read(line)) {
        if (holds(line, text)) {
            return true;
        }
    }
    return false;
}

}  // namespace kvl
