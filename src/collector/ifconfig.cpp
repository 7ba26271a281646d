#include <array>

#include "collector/CNetworkParameter.h"
#include "collector/parsing.h"
#include "foundation/CTextFileParser.h"
#include "foundation/line_reader.h"
#include "foundation/operation_trace.h"
#include "foundation/text.h"

using kvl::beginsWith;
using kvl::holds;

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
    BlockParser(CNetworkParameter& collector, IfconfigResult& record) : collector_(collector), record_(record) {}

    void takeLine(std::string rest) {
        for (std::string word = collector_.GetNextStr(rest); !word.empty(); word = collector_.GetNextStr(rest)) {
            if (!takeWordWithFollower(word, rest) && !takeFlag(word)) {
                takeValue(word);
            }
        }
    }

private:
    bool takeWordWithFollower(const std::string& word, std::string& rest) {
        if (word == "Link") {
            record_.link_encap = collector_.GetNextStr(rest) == "encap:Ethernet" ? 1 : 0;
        } else if (word == "HWaddr") {
            record_.HWaddr = collector_.GetNextStr(rest);
        } else if (word == "inet") {
            record_.inet_addr = collector_.GetColonSeparatedValue(collector_.GetNextStr(rest));
        } else if (word == "inet6") {
            collector_.GetNextStr(rest);
            takeIpv6Address(collector_.GetNextStr(rest));
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
                record_.*value.field = collector_.GetColonSeparatedValue(word);
                return;
            }
        }
    }

    CNetworkParameter& collector_;
    IfconfigResult& record_;
};

// kept: the loopback and the tunnels are told by a part of the name, which drops any other name that holds it.
bool isLeftOut(const std::string& ifname) {
    return holds(ifname, "sit") || holds(ifname, "lo");
}

/// @return 1 if the key's value is `expected`, 0 for another value, -1 without the key or the file
int compareIniValue(const std::string& file, const char* key, const char* expected) {
    std::string value;
    if (!CTextFileParser::GetIniFileValue(file, key, value)) {
        return -1;
    }
    return value == expected ? 1 : 0;
}

std::string listOfAddresses(const IfconfigResult& record) {
    std::string list;
    for (const auto& [address, prefix] : record.inet6_addr) {
        list += address + "/" + prefix + ",";  // kept: two slashes, as the address ends in one
    }
    return list.substr(0, list.empty() ? 0 : list.size() - 1);
}

}  // namespace

bool CNetworkParameter::GetNetworkConfigurations() {
    const kvl::OperationTrace trace(module_name, "bool CNetworkParameter::GetNetworkConfigurations()");
    trace.enter();
    ifconfig_map.clear();
    if (ExecCommand("/sbin/ifconfig -a") < 0) {
        return false;
    }
    ParseIfconfigResult();
    RemoveResultFile();
    trace.leave();
    return true;
}

bool CNetworkParameter::ParseIfconfigResult() {
    kvl::LineReader lines(result_file);
    std::string line;
    std::string ifname;
    IfconfigResult record;
    while (lines.read(line)) {
        if (!line.empty()) {
            if (line.front() != ' ') {
                ifname = GetNextStr(line);
            }
            BlockParser(*this, record).takeLine(line);
            continue;
        }
        if (record.link_encap != -1 && !isLeftOut(ifname)) {
            GetIfconfigFile(ifname, &record);
            record.kernel_release = kernel_release;
            LogIfconfig(ifname, record);
            ifconfig_map.emplace(ifname, record);
        }
        record = IfconfigResult();
    }
    return true;
}

bool CNetworkParameter::GetIfconfigFile(std::string ifname, IfconfigResult* result) {
    const std::string file = kvl::kIfcfgPrefix + ifname;
    result->BOOTPROTO = compareIniValue(file, "BOOTPROTO", "dhcp");
    result->ONBOOT = compareIniValue(file, "ONBOOT", "yes");
    return true;
}

IfconfigResult* CNetworkParameter::GetIfconfigData(std::string ifname) {
    const kvl::OperationTrace trace(module_name, "IfconfigResult* CNetworkParameter::GetIfconfigData(std::string)");
    const auto found = ifconfig_map.find(ifname);
    if (found == ifconfig_map.end()) {
        trace.detail("-- %s has no ifconfig data", ifname.c_str());
        return nullptr;
    }
    return &found->second;
}

void CNetworkParameter::LogIfconfig(std::string ifname, IfconfigResult result) {
    const kvl::OperationTrace trace(module_name, "void CNetworkParameter::LogIfconfig(std::string, IfconfigResult)");
    // kept: an encapsulation that was never seen reads as Ethernet here.
    const std::string link =
        kvl::formatText("ifname=%s, Link encap=%s, HWaddr=%s, inet addr=%s, Bcast=%s, Mask=%s", ifname.c_str(),
                        result.link_encap != 0 ? "Ethernet" : "lo", result.HWaddr.c_str(), result.inet_addr.c_str(),
                        result.Bcast.c_str(), result.Mask.c_str());
    trace.detail("%s", kvl::cutToDump(link).c_str());
    const std::string settings =
        kvl::formatText("  inet6 addr=%s, Scope=%s, UP=%s, MTU=%s, Metric=%s, BOOTPROTO=%d, ONBOOT=%d",
                        listOfAddresses(result).c_str(), result.Scope.c_str(), result.up ? "Enabled" : "Disabled",
                        result.MTU.c_str(), result.Metric.c_str(), result.BOOTPROTO, result.ONBOOT);
    trace.detail("%s", kvl::cutToDump(settings).c_str());
}
