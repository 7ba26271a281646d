#include "foundation/ini_value.h"

#include "foundation/line_reader.h"
#include "foundation/text.h"
#include "host/CStringUtil.h"

namespace kvl {

bool findIniValue(std::istream& text, const std::string& key, std::string& result) {
    result.clear();
    const std::string search = key + "=";
    LineReader lines(text);
    for (bool more = true; more;) {
        std::string line;
        more = lines.read(line);
        if (holds(line, search)) {
            CStringUtil::strReplace(line, "\"", "");
            // kept: the value is cut at the length of the search text from the start of the line, wherever the
            // search text stands. A line that got shorter than that has an empty value.
            result = search.size() < line.size() ? line.substr(search.size()) : "";
            return true;
        }
    }
    return false;
}

}  // namespace kvl
