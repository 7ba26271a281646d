#ifndef KVL_TESTS_ADAPTER_LITERAL_TRACE_H
#define KVL_TESTS_ADAPTER_LITERAL_TRACE_H

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/test_host.h"

namespace kvl::test {

/// What stands in a literal trace for its placeholders, as {"folder", "/tmp/unpacked"} for "{folder}".
using Values = std::vector<std::pair<std::string, std::string>>;

/// The lines of a trace that is written out, each as "LEVEL TEXT". Indentation and empty lines don't count.
/// Characters that can't be seen are written as {BLANK}, for one at the end of a line, {CR} and {TAB}.
inline Lines traceOf(Values values, std::string text) {
    values.insert(values.end(), {{"BLANK", " "}, {"CR", "\r"}, {"TAB", "\t"}});
    for (const auto& [name, value] : values) {
        const std::string placeholder = "{" + name + "}";
        for (std::size_t place = text.find(placeholder); place != std::string::npos;
             place = text.find(placeholder, place + value.size())) {
            text.replace(place, placeholder.size(), value);
        }
    }
    Lines lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::size_t first = text.find_first_not_of(' ', begin);
        if (first < end) {
            lines.push_back(text.substr(first, end - first));
        }
        begin = end + 1;
    }
    return lines;
}

inline Lines traceOf(const std::string& text) {
    return traceOf({}, text);
}

}  // namespace kvl::test

#endif
