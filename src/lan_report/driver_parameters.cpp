#include <array>
#include <cstddef>

#include "foundation/operation_trace.h"
#include "lan_report/CLanXmlWriter.h"

namespace {

using AddElement = void (CLanXmlWriter::*)(CKvlXmlNode&, std::string, int);
constexpr AddElement kOnOff = &CLanXmlWriter::AddXmlElementOnOff;
constexpr AddElement kNumber = &CLanXmlWriter::AddXmlElement;

/// An element of the block.
struct DriverParameter {
    int option;        ///< the ethtool group that must not be switched off
    const char* name;  ///< as whatever reads the report knows it
    int EthtoolResult::*field;
    AddElement add;
};

// The order is that of the report. kept: "stats-block-usercs", the singular "rx-frame-low", and low and high in turn.
constexpr std::array<DriverParameter, 45> kDriverParameters = {{
    {0, "rx-checksumming", &EthtoolResult::rcs, kOnOff},
    {0, "tx-checksumming", &EthtoolResult::tcs, kOnOff},
    {0, "scatter-gather", &EthtoolResult::sg, kOnOff},
    {0, "tcp-segmentation-offload", &EthtoolResult::tso, kOnOff},
    {0, "udp-fragmentation-offload", &EthtoolResult::ufo, kOnOff},
    {0, "generic-segmentation-offload", &EthtoolResult::gso, kOnOff},
    {0, "generic-receive-offload", &EthtoolResult::gro, kOnOff},
    {0, "large-receive-offload", &EthtoolResult::lro, kOnOff},
    {0, "rx-vlan-offload", &EthtoolResult::rvo, kOnOff},
    {0, "tx-vlan-offload", &EthtoolResult::tvo, kOnOff},
    {0, "ntuple-filters", &EthtoolResult::nf, kOnOff},
    {0, "receive-hashing", &EthtoolResult::rh, kOnOff},
    {1, "Pause parameters Autonegotiate", &EthtoolResult::autonego, kOnOff},
    {1, "Pause parameters RX", &EthtoolResult::pause_rx, kOnOff},
    {1, "Pause parameters TX", &EthtoolResult::pause_tx, kOnOff},
    {2, "Ring parameters Pre-set maximums RX", &EthtoolResult::pre_rx, kNumber},
    {2, "Ring parameters Pre-set maximums RX Mini", &EthtoolResult::pre_mini, kNumber},
    {2, "Ring parameters Pre-set maximums RX Jumbo", &EthtoolResult::pre_jumbo, kNumber},
    {2, "Ring parameters Pre-set maximums TX", &EthtoolResult::pre_tx, kNumber},
    {2, "Ring parameters Current hardware settings RX", &EthtoolResult::cur_rx, kNumber},
    {2, "Ring parameters Current hardware settings RX Mini", &EthtoolResult::cur_mini, kNumber},
    {2, "Ring parameters Current hardware settings RX Jumbo", &EthtoolResult::cur_jumbo, kNumber},
    {2, "Ring parameters Current hardware settings TX", &EthtoolResult::cur_tx, kNumber},
    {3, "Coalesce parameters Adaptive RX", &EthtoolResult::adaptive_rx, kOnOff},
    {3, "Coalesce parameters Adaptive TX", &EthtoolResult::adaptive_tx, kOnOff},
    {3, "Coalesce parameters stats-block-usercs", &EthtoolResult::sbu, kNumber},
    {3, "Coalesce parameters sample-interval", &EthtoolResult::si, kNumber},
    {3, "Coalesce parameters pkt-rate-low", &EthtoolResult::prl, kNumber},
    {3, "Coalesce parameters pkt-rate-high", &EthtoolResult::prh, kNumber},
    {3, "Coalesce parameters rx-usecs", &EthtoolResult::ru, kNumber},
    {3, "Coalesce parameters rx-frames", &EthtoolResult::rf, kNumber},
    {3, "Coalesce parameters rx-usecs-irq", &EthtoolResult::rui, kNumber},
    {3, "Coalesce parameters rx-frames-irq", &EthtoolResult::rfi, kNumber},
    {3, "Coalesce parameters tx-usecs", &EthtoolResult::tu, kNumber},
    {3, "Coalesce parameters tx-frames", &EthtoolResult::tf, kNumber},
    {3, "Coalesce parameters tx-usecs-irq", &EthtoolResult::tui, kNumber},
    {3, "Coalesce parameters tx-frames-irq", &EthtoolResult::tfi, kNumber},
    {3, "Coalesce parameters rx-usecs-low", &EthtoolResult::rul, kNumber},
    {3, "Coalesce parameters rx-usecs-high", &EthtoolResult::ruh, kNumber},
    {3, "Coalesce parameters rx-frame-low", &EthtoolResult::rfl, kNumber},
    {3, "Coalesce parameters rx-frame-high", &EthtoolResult::rfh, kNumber},
    {3, "Coalesce parameters tx-usecs-low", &EthtoolResult::tul, kNumber},
    {3, "Coalesce parameters tx-usecs-high", &EthtoolResult::tuh, kNumber},
    {3, "Coalesce parameters tx-frame-low", &EthtoolResult::tfl, kNumber},
    {3, "Coalesce parameters tx-frame-high", &EthtoolResult::tfh, kNumber},
}};

}  // namespace

void CLanXmlWriter::SetXmlDriverParameters(std::string ifname, CKvlXmlNode& node) {
    const kvl::OperationTrace trace(m_moduleName,
                                    "void CLanXmlWriter::SetXmlDriverParameters(std::string, CKvlXmlNode&)");
    trace.enter();  // kept: without the name, and no line on leaving
    const IfconfigResult* ifconfig = m_pNetworkParameter->GetIfconfigData(ifname);
    AddXmlElement(node, "mtu", ifconfig != nullptr ? ifconfig->MTU : "");
    const EthtoolResult* found = m_pNetworkParameter->GetEthtoolData(ifname);
    const EthtoolResult ethtool = found != nullptr ? *found : EthtoolResult();
    for (const DriverParameter& parameter : kDriverParameters) {
        if (m_pNetworkParameter->GetEthtoolOptionConf(parameter.option) != 0) {
            (this->*parameter.add)(node, parameter.name, ethtool.*parameter.field);
        }
    }
}
