#ifndef KVL_REFERENCE_HOST_XML_ELEMENT_H
#define KVL_REFERENCE_HOST_XML_ELEMENT_H

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/CKvlXmlNode.h"

namespace kvl::host {

/// What nodes share. An element that more than one node or parent holds is never changed: whoever wants to change it
/// takes a copy of this one level first, so that a copy of a tree costs no more than a pointer.
struct XmlElement {
    explicit XmlElement(std::string elementTag) : tag(std::move(elementTag)) {}
    XmlElement(const XmlElement& other) = default;
    XmlElement& operator=(const XmlElement& other) = delete;

    /// Takes down trees of any depth.
    ~XmlElement();

    std::string tag;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<std::shared_ptr<XmlElement>> children;
};

/// @return the element that `holder` holds, for changes; a copy takes its place first if others hold it too
XmlElement& ownElement(std::shared_ptr<XmlElement>& holder);

/// @return how many elements, attributes and links to children this process has copied to keep shared trees unchanged
std::size_t copiedXmlParts();

}  // namespace kvl::host

struct CKvlXmlNode::Content {
    std::shared_ptr<kvl::host::XmlElement> element;
};

#endif
