#ifndef KVL_REFERENCE_HOST_XML_DOCUMENT_H
#define KVL_REFERENCE_HOST_XML_DOCUMENT_H

#include "reference_host/atomic_file.h"
#include "reference_host/xml_element.h"

namespace kvl::host {

/// Writes `root` and all below it as an XML 1.0 document in UTF-8, indented by two blanks a level; a tree deeper
/// than any reader would follow is written without line breaks. Texts and names that XML can't hold are made fit,
/// and where an element has two attributes of one name, the later value holds at the earlier place.
/// @return true if the file took the whole document
bool writeDocument(const XmlElement& root, AtomicFile& file);

}  // namespace kvl::host

#endif
