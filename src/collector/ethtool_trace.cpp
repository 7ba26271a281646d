#include "collector/CNetworkParameter.h"
#include "collector/parsing.h"
#include "foundation/operation_trace.h"
#include "foundation/text.h"

namespace {

using kvl::formatText;

std::string listOfUtilities(const std::vector<UtilityInfo>& utilities) {
    std::string list;
    for (const UtilityInfo& utility : utilities) {
        list += (list.empty() ? "" : ", ") + utility.name + "/" + utility.version;
    }
    return utilities.empty() ? "-" : list;
}

std::string identityLine(const EthtoolDriverInfo& info) {
    return formatText("ifname=%s, -i: businfo=%s, driver=%s, version=%s, firmver=%s, utility=(", info.ifname.c_str(),
                      info.businfo.c_str(), info.driver.c_str(), info.version.c_str(), info.firmver.c_str()) +
           listOfUtilities(info.utility) + ")";
}

std::string offloadLine(const EthtoolResult& r) {
    return formatText(
        "  -k: rcs=%d, tcs=%d, sg=%d, tso=%d, ufo=%d, gso=%d, gro=%d, lro=%d, rvo=%d, tvo=%d, nf=%d, rh=%d", r.rcs,
        r.tcs, r.sg, r.tso, r.ufo, r.gso, r.gro, r.lro, r.rvo, r.tvo, r.nf, r.rh);
}

std::string coalesceLine(const EthtoolResult& r) {
    return formatText("  -c: rx=%d, tx=%d, sbu=%d, si=%d, prl=%d, prh=%d, ru=%d, rf=%d, rui=%d, rfi=%d, tu=%d, tf=%d",
                      r.adaptive_rx, r.adaptive_tx, r.sbu, r.si, r.prl, r.prh, r.ru, r.rf, r.rui, r.rfi, r.tu, r.tf);
}

std::string lowAndHighLine(const EthtoolResult& r) {
    return formatText("      tui=%d, tfi=%d, rul=%d, rfl=%d, tul=%d, tfl=%d, ruh=%d, rfh=%d, tuh=%d, tfh=%d", r.tui,
                      r.tfi, r.rul, r.rfl, r.tul, r.tfl, r.ruh, r.rfh, r.tuh, r.tfh);
}

std::string ringLine(const EthtoolResult& r) {
    return formatText("  -g: Pre(rx=%d, mini=%d, jumbo=%d, tx=%d), Cur(rx=%d, mini=%d, jumbo=%d, tx=%d)", r.pre_rx,
                      r.pre_mini, r.pre_jumbo, r.pre_tx, r.cur_rx, r.cur_mini, r.cur_jumbo, r.cur_tx);
}

std::string pauseLine(const EthtoolResult& r) {
    return formatText("  -a: autonego=%d, rx=%d, tx=%d, PhysicalMacAddr=%s", r.autonego, r.pause_rx, r.pause_tx,
                      r.PhysicalMacAddr.c_str());
}

}  // namespace

void CNetworkParameter::LogEthtool(std::string /*ifname*/, EthtoolResult result) {
    const kvl::OperationTrace trace(module_name, "void CNetworkParameter::LogEthtool(std::string, EthtoolResult)");
    // kept: the record's own name is printed, which is empty if the command failed.
    for (const std::string& line : {identityLine(result.driver_info), offloadLine(result), coalesceLine(result),
                                    lowAndHighLine(result), ringLine(result), pauseLine(result)}) {
        trace.detail("%s", kvl::cutToDump(line).c_str());
    }
}
