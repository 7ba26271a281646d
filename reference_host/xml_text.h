#ifndef KVL_REFERENCE_HOST_XML_TEXT_H
#define KVL_REFERENCE_HOST_XML_TEXT_H

#include <string>

namespace kvl::host {

/// @return `text` as UTF-8 that an XML 1.0 document can hold: U+FFFD stands for each byte that isn't UTF-8 and for
/// each character that XML excludes
std::string xmlText(const std::string& text);

/// @return `name` as the name of an element or attribute: "_" stands for each character that can't be at its place,
/// and for an empty name
std::string xmlName(const std::string& name);

}  // namespace kvl::host

#endif
