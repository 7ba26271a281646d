#include "collector/udev_rules_parser.h"

#include "foundation/columns.h"
#include "foundation/line_reader.h"
#include "foundation/text.h"
#include "host/CStringUtil.h"

namespace kvl {

namespace {

constexpr std::string::size_type kMacLength = 17;

std::string addressOfRule(const std::string& column) {
    // kept: where the marker is missing its position wraps around, and the address begins at position 2.
    const auto address = column.find("==\"") + 3;
    return normalizedMac(cut(column, address, kMacLength));
}

}  // namespace

std::string normalizedMac(std::string mac) {
    CStringUtil::strReplace(mac, "\"", "");
    return CStringUtil::StringToUpperCase(mac);
}

void parseUdevRules(std::istream& text, const std::string& ifname, int addressColumn,
                    const std::function<void(const std::string& mac)>& take) {
    LinesContainingKey lines(text, "NAME=\"" + ifname + "\"");
    std::string line;
    while (lines.next(line)) {
        std::string column;
        takeColumn(line, addressColumn, column);
        take(addressOfRule(column));
    }
}

}  // namespace kvl
