#ifndef KVL_REFERENCE_HOST_XML_DOCUMENT_H
#define KVL_REFERENCE_HOST_XML_DOCUMENT_H

#include <pugixml.hpp>

#include "reference_host/atomic_file.h"

namespace kvl::host {

/// Writes an element and all below it as an XML 1.0 document in UTF-8, indented by two blanks a level; a tree deeper
/// than any reader would follow is written without line breaks.
/// @return true if the file took the whole document
bool writeDocument(const pugi::xml_node& root, AtomicFile& file);

}  // namespace kvl::host

#endif
