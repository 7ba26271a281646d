#include "provider/machine/translation/vlan_table.h"

#include "provider/machine/translation/text_lines.h"

namespace kvl::provider {
namespace {

constexpr const char* kDigits = "0123456789";

/// @return where the bar before the VLAN's number stands; npos in a line that is no row. A bar can be part of a name,
/// too
std::string::size_type barOf(const std::string& line) {
    for (auto bar = line.find("| "); bar != std::string::npos; bar = line.find("| ", bar + 1)) {
        const auto end = line.find_first_not_of(kDigits, bar + 2);
        if (end != std::string::npos && end > bar + 2 && line.compare(end, 4, "  | ") == 0) {
            return bar;
        }
    }
    return std::string::npos;
}

}  // namespace

std::string translateVlanTable(const std::string& file) {
    return translateLines(file, [](const std::string& line) {
        const auto bar = barOf(line);
        const bool touches = bar != std::string::npos && bar > 0 && line[bar - 1] != ' ' && line[bar - 1] != '\t';
        return touches ? line.substr(0, bar) + " " + line.substr(bar) : line;
    });
}

}  // namespace kvl::provider
