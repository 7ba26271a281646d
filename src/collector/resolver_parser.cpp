#include "collector/resolver_parser.h"

#include <optional>
#include <string>

#include "foundation/columns.h"
#include "foundation/line_reader.h"
#include "foundation/text.h"

namespace kvl {

namespace {

/// The second column; empty if there is none.
std::string valueOf(const std::string& line) {
    std::string value;
    takeColumn(line, 2, value);
    return value;
}

strarray_t wordsAfterKey(const std::string& line) {
    strarray_t words;
    std::string word;
    for (int column = 2; takeColumn(line, column, word); ++column) {
        words.push_back(word);
    }
    return words;
}

}  // namespace

ResolvConf parseResolvConf(std::istream& text) {
    ResolvConf conf;
    conf.valid = true;
    std::optional<std::string> domain;
    std::optional<strarray_t> search;
    LineReader lines(text);
    for (bool more = true; more;) {
        std::string line;
        more = lines.read(line);
        const std::string key = upTo(line, ' ');
        if (key == "nameserver") {
            conf.nameserver.push_back(valueOf(line));
        } else if (key == "domain" && !domain) {
            domain = valueOf(line);
        } else if (key == "search" && !search) {
            search = wordsAfterKey(line);
        }
    }
    if (domain) {
        conf.dns_suffix.push_back(*domain);
    }
    if (search) {
        conf.dns_suffix.insert(conf.dns_suffix.end(), search->begin(), search->end());
    }
    return conf;
}

}  // namespace kvl
