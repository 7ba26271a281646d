#include "tests/provider/machine/translation/translation_case.h"

namespace kvl::test {
namespace {

constexpr const char* kPause = "/usr/sbin/ethtool -a eth0";
constexpr const char* kRing = "/usr/sbin/ethtool -g eth0";
constexpr const char* kCoalesce = "/usr/sbin/ethtool -c eth0";
constexpr const char* kOffload = "/usr/sbin/ethtool -k eth0";

const std::string kCoalesceOfRhel6 =
    "Coalesce parameters for eth0:\n"
    "Adaptive RX: off  TX: off\n"
    "stats-block-usecs: 0\n"
    "sample-interval: 0\n"
    "pkt-rate-low: 0\n"
    "pkt-rate-high: 0\n"
    "\n"
    "rx-usecs: 3\n"
    "rx-frames: 0\n"
    "rx-usecs-irq: 0\n"
    "rx-frames-irq: 0\n"
    "\n"
    "tx-usecs: 0\n"
    "tx-frames: 0\n"
    "tx-usecs-irq: 0\n"
    "tx-frames-irq: 0\n"
    "\n"
    "rx-usecs-low: 0\n"
    "rx-frame-low: 0\n"
    "tx-usecs-low: 0\n"
    "tx-frame-low: 0\n"
    "\n"
    "rx-usecs-high: 0\n"
    "rx-frame-high: 0\n"
    "tx-usecs-high: 0\n"
    "tx-frame-high: 0\n"
    "\n";

const std::string kFeaturesOfRhel6 =
    "Features for eth0:\n"
    "rx-checksumming: on\n"
    "tx-checksumming: on\n"
    "\ttx-checksum-ipv4: off [fixed]\n"
    "scatter-gather: on\n"
    "tcp-segmentation-offload: on\n"
    "udp-fragmentation-offload: off [fixed]\n"
    "generic-segmentation-offload: on\n"
    "generic-receive-offload: on\n"
    "large-receive-offload: off [requested on]\n"
    "rx-vlan-offload: on\n"
    "tx-vlan-offload: on [fixed]\n"
    "ntuple-filters: off [fixed]\n"
    "receive-hashing: off [fixed]\n"
    "rx-vlan-filter: on [fixed]\n";

const std::string kRingOfRhel6 =
    "Ring parameters for eth0:\n"
    "Pre-set maximums:\n"
    "RX:\t\t4096\n"
    "RX Mini:\t0\n"
    "RX Jumbo:\t0\n"
    "TX:\t\t4096\n"
    "Current hardware settings:\n"
    "RX:\t\t256\n"
    "RX Mini:\t0\n"
    "RX Jumbo:\t0\n"
    "TX:\t\t256\n"
    "\n";

}  // namespace

std::vector<TranslationCase> ethtoolCases() {
    return {
        {"pause: ethtool 6 to 6.1 prints tabs", kPause,
         "Pause parameters for eth0:\n"
         "Autonegotiate:\ton\n"
         "RX:\t\ton\n"
         "TX:\t\toff\n"
         "\n",
         "Pause parameters for eth0:\n"
         "Autonegotiate: on\n"
         "RX:  on\n"
         "TX:  off\n"
         "\n"},
        {"pause: ethtool 5.9 has what was negotiated, too", kPause,
         "Pause parameters for ens1:\n"
         "Autonegotiate:\ton\n"
         "RX:\t\toff\n"
         "TX:\t\toff\n"
         "RX negotiated: on\n"
         "TX negotiated: on\n"
         "\n",
         "Pause parameters for ens1:\n"
         "Autonegotiate: on\n"
         "RX:  off\n"
         "TX:  off\n"
         "RX negotiated: on\n"
         "TX negotiated: on\n"
         "\n"},
        {"pause: a switch that the driver does not report", kPause,
         "Pause parameters for eth0:\n"
         "Autonegotiate:\tn/a\n"
         "RX:\t\ton\n"
         "TX:\t\ton\n",
         "Pause parameters for eth0:\n"
         "RX:  on\n"
         "TX:  on\n"},
        {"pause: carriage returns at line ends", kPause,
         "Pause parameters for eth0:\r\nAutonegotiate:\ton\r\nRX:\t\ton\r\nTX:\t\ton\r\n\r\n",
         "Pause parameters for eth0:\nAutonegotiate: on\nRX:  on\nTX:  on\n\n"},
        {"pause: blanks, as the library reads them", kPause,
         "Pause parameters for eth0:\nAutonegotiate: on\nRX:             on\nTX:             off\n\n",
         "Pause parameters for eth0:\nAutonegotiate: on\nRX:             on\nTX:             off\n\n"},
        {"pause: a key without a colon, of a damaged recording", kPause,
         "Pause parameters for eth0:\nAutonegotiate\nRX:\t\ton\n", "Pause parameters for eth0:\nRX:  on\n"},

        {"ring: ethtool 6.1 over netlink", kRing,
         "Ring parameters for eth0:\n"
         "Pre-set maximums:\n"
         "RX:\t\t4096\n"
         "RX Mini:\tn/a\n"
         "RX Jumbo:\tn/a\n"
         "TX:\t\t4096\n"
         "Current hardware settings:\n"
         "RX:\t\t256\n"
         "RX Mini:\tn/a\n"
         "RX Jumbo:\tn/a\n"
         "TX:\t\t256\n"
         "RX Buf Len:\t\tn/a\n"
         "CQE Size:\t\tn/a\n"
         "TX Push:\toff\n"
         "TCP data split:\tn/a\n",
         "Ring parameters for eth0:\n"
         "Pre-set maximums:\n"
         "RX:\t\t4096\n"
         "TX:\t\t4096\n"
         "Current hardware settings:\n"
         "RX:\t\t256\n"
         "TX:\t\t256\n"
         "RX Buf Len:\t\tn/a\n"
         "CQE Size:\t\tn/a\n"
         "TX Push:\toff\n"
         "TCP data split:\tn/a\n"},
        {"ring: ethtool of RHEL 6", kRing, kRingOfRhel6, kRingOfRhel6},

        {"coalesce: ethtool 6.1 over netlink", kCoalesce,
         "Coalesce parameters for eth2:\n"
         "Adaptive RX: n/a  TX: n/a\n"
         "stats-block-usecs: n/a\n"
         "sample-interval: n/a\n"
         "pkt-rate-low: n/a\n"
         "pkt-rate-high: n/a\n"
         "\n"
         "rx-usecs: 3\n"
         "rx-frames: n/a\n"
         "rx-usecs-irq: n/a\n"
         "rx-frames-irq: n/a\n"
         "\n"
         "tx-usecs: n/a\n"
         "tx-frames: n/a\n"
         "tx-usecs-irq: n/a\n"
         "tx-frames-irq: n/a\n"
         "\n"
         "rx-usecs-low: n/a\n"
         "rx-frame-low: n/a\n"
         "tx-usecs-low: n/a\n"
         "tx-frame-low: n/a\n"
         "\n"
         "rx-usecs-high: n/a\n"
         "rx-frame-high: n/a\n"
         "tx-usecs-high: n/a\n"
         "tx-frame-high: n/a\n"
         "\n"
         "CQE mode RX: n/a  TX: n/a\n"
         "\n",
         "Coalesce parameters for eth2:\n"
         "\n"
         "rx-usecs: 3\n"
         "\n"
         "\n"
         "\n"
         "\n"
         "CQE mode RX: n/a  TX: n/a\n"
         "\n"},
        {"coalesce: ethtool 6.1 over ioctl names frames", kCoalesce,
         "Coalesce parameters for eth2:\n"
         "Adaptive RX: off  TX: off\n"
         "rx-usecs-low: 0\n"
         "rx-frames-low: 11\n"
         "tx-usecs-low: 0\n"
         "tx-frames-low: 12\n"
         "\n"
         "rx-usecs-high: 0\n"
         "rx-frames-high: 13\n"
         "tx-usecs-high: 0\n"
         "tx-frames-high: 14\n"
         "\n",
         "Coalesce parameters for eth2:\n"
         "Adaptive RX: off  TX: off\n"
         "rx-usecs-low: 0\n"
         "rx-frame-low: 11\n"
         "tx-usecs-low: 0\n"
         "tx-frame-low: 12\n"
         "\n"
         "rx-usecs-high: 0\n"
         "rx-frame-high: 13\n"
         "tx-usecs-high: 0\n"
         "tx-frame-high: 14\n"
         "\n"},
        {"coalesce: other spelling and no value", kCoalesce, "rx-frames-low: n/a\nrx-usecs: 3\n", "rx-usecs: 3\n"},
        {"coalesce: tabs before values", kCoalesce,
         "Adaptive RX: on  TX: off\nrx-usecs:\t8\nrx-frames:\tn/a\nCQE mode RX: n/a  TX: n/a\n",
         "Adaptive RX: on  TX: off\nrx-usecs:\t8\nCQE mode RX: n/a  TX: n/a\n"},
        {"coalesce: tabs before the adaptive switches", kCoalesce, "Adaptive RX:\ton\tTX:\ton\n",
         "Adaptive RX: on TX: on\n"},
        {"coalesce: adaptive RX alone stays as it is", kCoalesce, "Adaptive RX: on  TX: n/a\nrx-usecs: 3\n",
         "Adaptive RX: on  TX: n/a\nrx-usecs: 3\n"},
        {"coalesce: an adaptive line without its second half", kCoalesce, "Adaptive RX: on\nrx-usecs: 3\n",
         "rx-usecs: 3\n"},
        {"coalesce: ethtool of RHEL 6", kCoalesce, kCoalesceOfRhel6, kCoalesceOfRhel6},

        {"offload: ethtool 6 of RHEL 5", kOffload,
         "Offload parameters for eth0:\n"
         "rx-checksumming: on\n"
         "tx-checksumming: on\n"
         "scatter-gather: on\n"
         "tcp segmentation offload: on\n"
         "udp fragmentation offload: off\n"
         "generic segmentation offload: on\n"
         "generic-receive-offload: off\n",
         "Offload parameters for eth0:\n"
         "rx-checksumming: on\n"
         "tx-checksumming: on\n"
         "scatter-gather: on\n"
         "tcp-segmentation-offload: on\n"
         "udp-fragmentation-offload: off\n"
         "generic-segmentation-offload: on\n"
         "generic-receive-offload: off\n"},
        {"offload: every switch with blanks in its name", kOffload,
         "rx checksumming: on\ntx checksumming: off\nscatter gather: on\ngeneric receive offload: on\n"
         "large receive offload: off\nrx vlan offload: on\ntx vlan offload: on\nntuple filters: off\n"
         "receive hashing: on\n",
         "rx-checksumming: on\ntx-checksumming: off\nscatter-gather: on\ngeneric-receive-offload: on\n"
         "large-receive-offload: off\nrx-vlan-offload: on\ntx-vlan-offload: on\nntuple-filters: off\n"
         "receive-hashing: on\n"},
        {"offload: ethtool 3 and newer", kOffload, kFeaturesOfRhel6, kFeaturesOfRhel6},
        {"offload: a longer name is another switch", kOffload, "rx-vlan-offload-all: on\nrx-vlan-offload: off\n",
         "rx-vlan-offload: off\n"},
        {"offload: no switch, no value", kOffload, "scatter-gather: n/a\nreceive-hashing\nrx-all: off\n",
         "rx-all: off\n"},
    };
}

}  // namespace kvl::test
