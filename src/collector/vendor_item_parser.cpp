#include "collector/vendor_item_parser.h"

namespace kvl {

namespace {

constexpr const char* kEmptyOnPurpose = "#EMP";

}  // namespace

std::string parseVendorItem(std::istream& text) {
    std::string value;
    std::getline(text, value);
    return value;
}

void applyVendorItem(const std::string& item, std::string& field) {
    if (!item.empty()) {
        field = item == kEmptyOnPurpose ? "" : item;
    }
}

}  // namespace kvl
