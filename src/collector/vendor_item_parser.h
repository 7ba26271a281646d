#ifndef KVL_COLLECTOR_VENDOR_ITEM_PARSER_H
#define KVL_COLLECTOR_VENDOR_ITEM_PARSER_H

#include <istream>
#include <string>

namespace kvl {

/// Parses the file of a vendor's item. @return its first line, of any length
std::string parseVendorItem(std::istream& text);

/// Applies a vendor's item to what a command printed: the item wins, an empty one says nothing, and "#EMP" means that
/// the field is to be empty.
void applyVendorItem(const std::string& item, std::string& field);

}  // namespace kvl

#endif
