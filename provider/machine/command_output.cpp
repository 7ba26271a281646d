#include "provider/machine/command_output.h"

#include <algorithm>
#include <array>
#include <optional>
#include <sstream>
#include <string_view>
#include <vector>

namespace kvl::provider {
namespace {

using Names = std::set<std::string>;

std::vector<std::string> wordsOf(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

/// ifconfig begins an interface's lines with its name; the others are indented.
void takeFirstWord(const std::string& line, Names& names) {
    const auto words = wordsOf(line);
    if (!words.empty() && line.front() != ' ') {
        names.insert(words.front());
    }
}

void takeAllWords(const std::string& line, Names& names) {
    for (const std::string& word : wordsOf(line)) {
        names.insert(word);
    }
}

/// The library only compares these with names that it has.
void takeNothing(const std::string&, Names&) {}

struct NamedIn {
    const char* command;  ///< its beginning
    void (*take)(const std::string& line, Names& names);
};

constexpr std::array<NamedIn, 6> kNamedIn = {{
    {"/sbin/ifconfig -a", takeFirstWord},
    {"/bin/ls /proc/net/bonding", takeAllWords},
    {"/bin/cat /proc/net/bonding/", takeNothing},
    {"/bin/cat /proc/net/vlan/config", takeNothing},
    {"/sbin/route", takeNothing},
    {"/bin/netstat -A inet6 -nr", takeNothing},
}};

const NamedIn* findRow(const PlainCommand& command) {
    const std::string line = describe(command);
    for (const NamedIn& row : kNamedIn) {
        if (line.rfind(row.command, 0) == 0) {
            return &row;
        }
    }
    return nullptr;
}

constexpr std::string_view kDriverCommand = "/usr/sbin/ethtool -i ";
constexpr std::string_view kBusInfoKey = "bus-info";

bool isHexadecimal(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789abcdefABCDEF") == text.npos;
}

/// @return the value after the key and its colon; nothing for a line with another key
std::optional<std::string> busInfoOfLine(const std::string& line) {
    constexpr const char* kBlanks = " \t\r";
    if (line.rfind(kBusInfoKey, 0) != 0) {
        return std::nullopt;
    }
    const auto begin = line.find_first_not_of(kBlanks, std::min(line.size(), line.find(':')) + 1);
    return begin == std::string::npos ? "" : line.substr(begin, line.find_last_not_of(kBlanks) + 1 - begin);
}

}  // namespace

bool namesInterfaces(const PlainCommand& command) {
    return findRow(command) != nullptr;
}

std::set<std::string> interfaceNamesIn(const PlainCommand& command, const std::string& output) {
    Names names;
    if (const NamedIn* row = findRow(command)) {
        std::istringstream lines(output);
        for (std::string line; std::getline(lines, line);) {
            row->take(line, names);
        }
    }
    return names;
}

std::string busInfoIn(const std::string& output) {
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        if (const auto busInfo = busInfoOfLine(line)) {
            return *busInfo;
        }
    }
    return "";
}

bool isPciAddress(std::string_view text) {
    constexpr std::size_t kAfterDomain = 8;  // :03:00.0
    constexpr std::size_t kShortestDomain = 4;
    if (text.size() < kShortestDomain + kAfterDomain) {
        return false;
    }
    const std::string_view domain = text.substr(0, text.size() - kAfterDomain);
    const std::string_view rest = text.substr(domain.size());
    return isHexadecimal(domain) && rest[0] == ':' && isHexadecimal(rest.substr(1, 2)) && rest[3] == ':' &&
           isHexadecimal(rest.substr(4, 2)) && rest[6] == '.' && isHexadecimal(rest.substr(7));
}

std::string withholdForeignBusInfo(const PlainCommand& command, const std::string& pciAddress, std::string& output) {
    if (describe(command).rfind(kDriverCommand, 0) != 0) {
        return "";
    }
    std::string withheld;
    std::string kept;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        const std::string end = lines.eof() ? "" : "\n";
        const std::string busInfo = busInfoOfLine(line).value_or("");
        if (busInfo.empty() || isPciAddress(busInfo)) {
            kept += line + end;
        } else if (!pciAddress.empty()) {
            kept += std::string(kBusInfoKey) + ": " + pciAddress + end;
        } else {
            withheld = busInfo;
        }
    }
    output = kept;
    return withheld;
}

}  // namespace kvl::provider
