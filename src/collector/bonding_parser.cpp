#include "collector/bonding_parser.h"

#include <array>

#include "collector/cutters.h"
#include "collector/parsing.h"
#include "foundation/line_reader.h"
#include "foundation/text.h"
#include "host/CStringUtil.h"

namespace kvl {

namespace {

constexpr const char* kSlaveLine = "Slave Interface:";
constexpr const char* kPermanentAddressLine = "Permanent HW addr:";

void takeMode(BondingConfig& config, const std::string& value) {
    config.Mode = value;
}

void takePrimarySlave(BondingConfig& config, const std::string& value) {
    config.PrimarySlave = upTo(value, ' ');
}

void takeStatus(BondingConfig& config, const std::string& value) {
    config.MiiStatus = value == "up" ? 1 : 0;
}

template <int BondingConfig::*kField>
void takeNumber(BondingConfig& config, const std::string& value) {
    config.*kField = toNumber(value);
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

/// Reads on to a slave's permanent address and skips everything else. A slave without one takes the next slave's
/// address, and that slave is lost.
/// @return false if the end of the file came first
bool readPermanentAddress(LineReader& lines, SlaveInterface& slave) {
    std::string line;
    while (lines.read(line)) {
        if (beginsWith(line, kPermanentAddressLine)) {
            slave.HWaddr = CStringUtil::StringToUpperCase(colonSeparatedValue(line));
            return true;
        }
    }
    return false;
}

}  // namespace

BondingConfig parseBond(std::istream& text) {
    BondingConfig config;
    LineReader lines(text);
    std::string line;
    while (lines.read(line)) {
        if (beginsWith(line, kSlaveLine)) {
            SlaveInterface slave;
            slave.name = colonSeparatedValue(line);
            if (readPermanentAddress(lines, slave)) {
                config.slaves.push_back(slave);
            }
            continue;
        }
        for (const BondLine& row : kBondLines) {
            if (beginsWith(line, row.key)) {
                row.take(config, colonSeparatedValue(line));
                break;
            }
        }
    }
    return config;
}

}  // namespace kvl
