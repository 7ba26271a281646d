#include "collector/ifconfig_parser.h"

#include <array>

#include "collector/cutters.h"
#include "foundation/line_reader.h"
#include "foundation/text.h"

namespace kvl {

namespace {

struct FlagWord {
    const char* word;
    bool IfconfigResult::*field;
};

constexpr std::array<FlagWord, 4> kFlagWords = {{
    {"UP", &IfconfigResult::up},
    {"BROADCAST", &IfconfigResult::broadcast},
    {"RUNNING", &IfconfigResult::running},
    {"MULTICAST", &IfconfigResult::multicast},
}};

struct ValueWord {
    const char* prefix;
    std::string IfconfigResult::*field;
};

constexpr std::array<ValueWord, 5> kValueWords = {{
    {"Bcast:", &IfconfigResult::Bcast},
    {"Mask:", &IfconfigResult::Mask},
    {"Scope:", &IfconfigResult::Scope},
    {"MTU:", &IfconfigResult::MTU},
    {"Metric:", &IfconfigResult::Metric},
}};

/// Takes the words of an interface's lines into its record.
class BlockParser {
public:
    explicit BlockParser(IfconfigResult& record) : record_(record) {}

    void takeLine(std::string rest) {
        for (std::string word = takeWord(rest); !word.empty(); word = takeWord(rest)) {
            if (!takeWordWithFollower(word, rest) && !takeFlag(word)) {
                takeValue(word);
            }
        }
    }

private:
    bool takeWordWithFollower(const std::string& word, std::string& rest) {
        if (word == "Link") {
            record_.link_encap = takeWord(rest) == "encap:Ethernet" ? 1 : 0;
        } else if (word == "HWaddr") {
            record_.HWaddr = takeWord(rest);
        } else if (word == "inet") {
            record_.inet_addr = colonSeparatedValue(takeWord(rest));
        } else if (word == "inet6") {
            takeWord(rest);
            takeIpv6Address(takeWord(rest));
        } else {
            return false;
        }
        return true;
    }

    /// The slash stays with the address. Without one the whole word is the prefix length of an empty address.
    void takeIpv6Address(const std::string& word) {
        const auto prefix = word.find('/') + 1;
        record_.inet6_addr.emplace(word.substr(0, prefix), word.substr(prefix));
    }

    bool takeFlag(const std::string& word) {
        for (const FlagWord& flag : kFlagWords) {
            if (word == flag.word) {
                record_.*flag.field = true;
                return true;
            }
        }
        return false;
    }

    void takeValue(const std::string& word) {
        for (const ValueWord& value : kValueWords) {
            if (beginsWith(word, value.prefix)) {
                record_.*value.field = colonSeparatedValue(word);
                return;
            }
        }
    }

    IfconfigResult& record_;
};

// kept: a part of the name marks the loopback and the tunnels, which drops any other name that holds it.
bool isLeftOut(const std::string& ifname) {
    return holds(ifname, "sit") || holds(ifname, "lo");
}

}  // namespace

void parseIfconfig(std::istream& text,
                   const std::function<void(const std::string& ifname, const IfconfigResult& record)>& take) {
    LineReader lines(text);
    std::string line;
    std::string ifname;
    IfconfigResult record;
    while (lines.read(line)) {
        if (!line.empty()) {
            if (line.front() != ' ') {
                ifname = takeWord(line);
            }
            BlockParser(record).takeLine(line);
            continue;
        }
        if (record.link_encap != -1 && !isLeftOut(ifname)) {
            take(ifname, record);
        }
        record = IfconfigResult();
    }
}

}  // namespace kvl
