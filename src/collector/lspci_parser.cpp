#include "collector/lspci_parser.h"

#include <array>

#include "collector/cutters.h"
#include "foundation/line_reader.h"

namespace kvl {

namespace {

// lspci -m prints quoted fields; an odd number counts the double quotes up to the one that opens a field.
constexpr int kVendorField = 3;
constexpr int kDeviceField = 5;
constexpr std::array<int, 4> kIdFields = {kVendorField, kDeviceField, 7, 9};

std::string quotedField(const std::string& line, int field) {
    return fieldAfter('"', field, line);
}

}  // namespace

std::string parsePciIds(std::istream& text) {
    std::string line;
    LineReader(text).read(line);
    std::string ids;
    for (const int field : kIdFields) {
        ids += quotedField(line, field) + " ";
    }
    ids.pop_back();
    return ids;
}

std::string parsePciDescription(std::istream& text, const std::string& location) {
    std::string line;
    if (!LinesBeginningKey(text, location).next(line)) {
        return "";
    }
    return quotedField(line, kVendorField) + " " + quotedField(line, kDeviceField);
}

}  // namespace kvl
