#include "host/CKvlXmlNode.h"

#include <utility>

#include "reference_host/xml_element.h"

using kvl::host::ownElement;
using kvl::host::XmlElement;

CKvlXmlNode::CKvlXmlNode(std::string tagName)
    : content_(std::make_unique<Content>(Content{std::make_shared<XmlElement>(std::move(tagName))})) {}

CKvlXmlNode::CKvlXmlNode(const CKvlXmlNode& other) : content_(std::make_unique<Content>(*other.content_)) {}

CKvlXmlNode& CKvlXmlNode::operator=(const CKvlXmlNode& other) {
    content_->element = other.content_->element;
    return *this;
}

CKvlXmlNode::~CKvlXmlNode() = default;

void CKvlXmlNode::setTagName(std::string tagName) {
    ownElement(content_->element).tag = std::move(tagName);
}

void CKvlXmlNode::addAttribute(std::string name, std::string value) {
    ownElement(content_->element).attributes.emplace_back(std::move(name), std::move(value));
}

void CKvlXmlNode::addChildNode(const CKvlXmlNode& child) {
    // Held first: a node that becomes a child of itself is changed as a copy.
    std::shared_ptr<XmlElement> element = child.content_->element;
    ownElement(content_->element).children.push_back(std::move(element));
}
