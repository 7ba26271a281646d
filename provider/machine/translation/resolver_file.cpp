#include "provider/machine/translation/resolver_file.h"

#include <arpa/inet.h>

#include <algorithm>

#include "provider/machine/translation/text_lines.h"

namespace kvl::provider {
namespace {

/// @return true if the line is one of that keyword, for glibc or for the library, which also takes the bare word
bool isLineOf(const std::string& line, const std::string& keyword) {
    return startsWith(line, keyword) &&
           (line.size() == keyword.size() || line[keyword.size()] == ' ' || line[keyword.size()] == '\t');
}

bool isDomainLine(const std::string& line) {
    return isLineOf(line, "domain") || isLineOf(line, "search");
}

/// An address as glibc takes it: any form that inet_aton knows, and IPv6, also with a zone.
bool isAddress(const std::string& word) {
    in_addr ipv4{};
    in6_addr ipv6{};
    return inet_aton(word.c_str(), &ipv4) != 0 ||
           inet_pton(AF_INET6, word.substr(0, word.find('%')).c_str(), &ipv6) == 1;
}

bool isPassedOver(const std::string& line) {
    const std::vector<std::string> words = wordsOf(line);
    if (isLineOf(line, "nameserver")) {
        return words.size() < 2 || !isAddress(words[1]);
    }
    return isDomainLine(line) && words.size() < 2;
}

/// @return the words of the line with one blank between them, as many as the library can read
std::string upToLongestLine(const std::string& line) {
    std::string shortened;
    for (const std::string& word : wordsOf(line)) {
        const std::string longer = shortened.empty() ? word : shortened + " " + word;
        if (longer.size() > kLongestLine) {
            break;
        }
        shortened = longer;
    }
    return shortened;
}

std::string withBlanks(std::string line) {
    std::replace(line.begin(), line.end(), '\t', ' ');
    line = withoutTrailingBlanks(line);
    return line.size() > kLongestLine ? upToLongestLine(line) : line;
}

}  // namespace

std::string translateResolverFile(const std::string& file) {
    std::vector<TextLine> lines = linesOf(file);
    lines.erase(
        std::remove_if(lines.begin(), lines.end(), [](const TextLine& line) { return isPassedOver(line.text); }),
        lines.end());
    const auto last =
        std::find_if(lines.rbegin(), lines.rend(), [](const TextLine& line) { return isDomainLine(line.text); });
    const auto beforeLast = last == lines.rend() ? lines.begin() : std::prev(last.base());
    lines.erase(std::remove_if(lines.begin(), beforeLast, [](const TextLine& line) { return isDomainLine(line.text); }),
                beforeLast);
    for (TextLine& line : lines) {
        if (isDomainLine(line.text) || isLineOf(line.text, "nameserver")) {
            line.text = withBlanks(line.text);
        }
    }
    return textOf(lines);
}

}  // namespace kvl::provider
