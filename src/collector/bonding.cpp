#include <array>
#include <fstream>

#include "collector/CNetworkParameter.h"
#include "collector/parsing.h"
#include "foundation/line_reader.h"
#include "foundation/operation_trace.h"
#include "foundation/text.h"
#include "host/CStringUtil.h"

using kvl::beginsWith;

namespace {

constexpr const char* kBondingDirectory = "/proc/net/bonding";
constexpr const char* kSlaveLine = "Slave Interface:";
constexpr const char* kPermanentAddressLine = "Permanent HW addr:";

void takeMode(BondingConfig& config, const std::string& value) {
    config.Mode = value;
}

void takePrimarySlave(BondingConfig& config, const std::string& value) {
    config.PrimarySlave = kvl::upTo(value, ' ');
}

void takeStatus(BondingConfig& config, const std::string& value) {
    config.MiiStatus = value == "up" ? 1 : 0;
}

template <int BondingConfig::*kField>
void takeNumber(BondingConfig& config, const std::string& value) {
    config.*kField = kvl::toNumber(value);
}

void takeArpTargets(BondingConfig& config, const std::string& value) {
    std::string::size_type begin = 0;
    for (bool last = false; !last;) {
        const auto comma = value.find(',', begin);
        last = comma == std::string::npos;
        std::string piece = value.substr(begin, comma - begin);
        CStringUtil::strReplace(piece, " ", "");
        config.arp_ip.push_back(piece);
        begin = comma + 1;
    }
}

struct BondLine {
    const char* key;
    void (*take)(BondingConfig&, const std::string& value);
};

constexpr std::array<BondLine, 8> kBondLines = {{
    {"Bonding Mode:", takeMode},
    {"Primary Slave:", takePrimarySlave},
    {"MII Status:", takeStatus},
    {"MII Polling Interval", takeNumber<&BondingConfig::pi>},
    {"Up Delay", takeNumber<&BondingConfig::ud>},
    {"Down Delay", takeNumber<&BondingConfig::dd>},
    {"ARP Polling Interval", takeNumber<&BondingConfig::arp_pi>},
    {"ARP IP target/s", takeArpTargets},
}};

/// Reads on to a slave's permanent address, over everything else. A slave without one takes the next slave's, which
/// is lost by that.
/// @return false if the end of the file came first
bool readPermanentAddress(CNetworkParameter& collector, kvl::LineReader& lines, SlaveInterface& slave) {
    std::string line;
    while (lines.read(line)) {
        if (beginsWith(line, kPermanentAddressLine)) {
            slave.HWaddr = CStringUtil::StringToUpperCase(collector.GetColonSeparatedValue(line));
            return true;
        }
    }
    return false;
}

std::string arpLine(const BondingConfig& config) {
    std::string line = kvl::formatText("  ARP (pi=%d, ip=", config.arp_pi);
    for (const std::string& address : config.arp_ip) {
        line += address + ", ";
    }
    // kept: without addresses the last ", " is the one behind the interval.
    line.erase(line.rfind(", "), 2);
    return line + ")";
}

}  // namespace

bool CNetworkParameter::GetBondingIfList(strarray_t& bonds) {
    const kvl::OperationTrace trace(module_name, "bool CNetworkParameter::GetBondingIfList(strarray_t&)");
    trace.enter();
    bonds.clear();
    if (!isFileExist(kBondingDirectory) || ExecCommand("/bin/ls %s", kBondingDirectory) < 0) {
        return false;
    }
    std::ifstream file(result_file);
    std::string name;
    while (file >> name && !file.eof()) {
        bonds.push_back(name);
        trace.detail("bonding_list.push_back(%s)", name.c_str());
    }
    file.close();
    RemoveResultFile();
    trace.leave();
    return true;
}

bool CNetworkParameter::GetBondingConfifurations() {
    const kvl::OperationTrace trace(module_name, "bool CNetworkParameter::GetBondingConfifurations()");
    trace.enter();
    bonding_map.clear();
    strarray_t bonds;
    GetBondingIfList(bonds);
    for (const std::string& bond : bonds) {
        if (ExecCommand("/bin/cat %s/%s", kBondingDirectory, bond.c_str()) < 0) {
            return false;
        }
        ParseBondingResult(bond);
        RemoveResultFile();
    }
    trace.leave();
    return true;
}

bool CNetworkParameter::ParseBondingResult(std::string ifname) {
    BondingConfig config;
    kvl::LineReader lines(result_file);
    std::string line;
    while (lines.read(line)) {
        if (beginsWith(line, kSlaveLine)) {
            SlaveInterface slave;
            slave.name = GetColonSeparatedValue(line);
            if (readPermanentAddress(*this, lines, slave)) {
                config.slaves.push_back(slave);
            }
            continue;
        }
        for (const BondLine& row : kBondLines) {
            if (beginsWith(line, row.key)) {
                row.take(config, GetColonSeparatedValue(line));
                break;
            }
        }
    }
    LogBondingConf(ifname, config);
    bonding_map.emplace(ifname, config);
    return true;
}

BondingConfig* CNetworkParameter::GetBondingData(std::string ifname) {
    const kvl::OperationTrace trace(module_name, "BondingConfig* CNetworkParameter::GetBondingData(std::string)");
    const auto found = bonding_map.find(ifname);
    if (found == bonding_map.end()) {
        trace.detail("-- %s has no bonding data", ifname.c_str());
        return nullptr;
    }
    return &found->second;
}

void CNetworkParameter::LogBondingConf(std::string ifname, BondingConfig config) {
    const kvl::OperationTrace trace(module_name, "void CNetworkParameter::LogBondingConf(std::string, BondingConfig)");
    const auto dump = [&trace](const std::string& line) { trace.detail("%s", kvl::cutToDump(line).c_str()); };
    // kept: a status that was never seen reads as up here.
    dump(kvl::formatText("ifname=%s, Mode=%s, PrimarySlave=%s, MiiStatus=%s (pi=%d, ud=%d, dd=%d)", ifname.c_str(),
                         config.Mode.c_str(), config.PrimarySlave.c_str(), config.MiiStatus != 0 ? "up" : "down",
                         config.pi, config.ud, config.dd));
    if (config.MiiStatus == 0 && config.arp_pi != -1) {
        dump(arpLine(config));
    }
    for (const SlaveInterface& slave : config.slaves) {
        dump(kvl::formatText("  Slave Interface=%s, HWaddr=%s", slave.name.c_str(), slave.HWaddr.c_str()));
    }
}
