#include "host/CKvlXmlNode.h"

#include "reference_host/xml_node_content.h"
#include "reference_host/xml_text.h"

using kvl::host::xmlName;
using kvl::host::xmlText;

CKvlXmlNode::CKvlXmlNode(std::string tagName) : content_(std::make_unique<Content>()) {
    content_->tree.append_child(xmlName(tagName).c_str());
}

CKvlXmlNode::CKvlXmlNode(const CKvlXmlNode& other) : content_(std::make_unique<Content>()) {
    content_->tree.reset(other.content_->tree);
}

CKvlXmlNode& CKvlXmlNode::operator=(const CKvlXmlNode& other) {
    if (this != &other) {
        content_->tree.reset(other.content_->tree);
    }
    return *this;
}

CKvlXmlNode::~CKvlXmlNode() = default;

void CKvlXmlNode::setTagName(std::string tagName) {
    content_->element().set_name(xmlName(tagName).c_str());
}

/// An element has a name once: the later value holds at the earlier place.
void CKvlXmlNode::addAttribute(std::string name, std::string value) {
    const std::string fitName = xmlName(name);
    pugi::xml_attribute attribute = content_->element().attribute(fitName.c_str());
    if (!attribute) {
        attribute = content_->element().append_attribute(fitName.c_str());
    }
    attribute.set_value(xmlText(value).c_str());
}

void CKvlXmlNode::addChildNode(const CKvlXmlNode& child) {
    if (this == &child) {
        addChildNode(CKvlXmlNode(child));
        return;
    }
    content_->element().append_copy(child.content_->element());
}
