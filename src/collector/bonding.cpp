#include <fstream>

#include "collector/CNetworkParameter.h"
#include "collector/bonding_parser.h"
#include "collector/parsing.h"
#include "foundation/operation_trace.h"
#include "foundation/text.h"
#include "foundation/words.h"

namespace {

constexpr const char* kBondingDirectory = "/proc/net/bonding";

std::string arpLine(const BondingConfig& config) {
    std::string line = kvl::formatText("  ARP (pi=%d, ip=", config.arp_pi);
    for (const std::string& address : config.arp_ip) {
        line += address + ", ";
    }
    // kept: without addresses the last ", " is the one after the interval.
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
    std::ifstream listing(result_file);
    for (const std::string& name : kvl::readWords(listing)) {
        bonds.push_back(name);
        trace.detail("bonding_list.push_back(%s)", name.c_str());
    }
    listing.close();
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
    std::ifstream output(result_file);
    const BondingConfig config = kvl::parseBond(output);
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
