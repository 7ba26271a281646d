#ifndef KVL_TESTS_SUPPORT_XML_TEXT_H
#define KVL_TESTS_SUPPORT_XML_TEXT_H

#include <string>

#include "host/CKvlXmlNode.h"

namespace kvl::test {

/// The document that a tree is written as.
std::string xmlText(const CKvlXmlNode& node);

/// A parameter element as it is written: indentation, name and value as they stand in the document.
std::string attr(int depth, const std::string& name, const std::string& value);

}  // namespace kvl::test

#endif
