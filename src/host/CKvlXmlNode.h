#ifndef KVL_HOST_CKVLXMLNODE_H
#define KVL_HOST_CKVLXMLNODE_H

#include <memory>
#include <string>

class CKvlXmlWrite;

/// One element of an XML tree. It owns its attributes and children and is a value: a copy and its original
/// never see each other's changes, so that each may be used by a thread of its own. No call blocks.
class __attribute__((visibility("default"))) CKvlXmlNode {
public:
    /// An element without attributes and children.
    explicit CKvlXmlNode(std::string tagName);

    CKvlXmlNode(const CKvlXmlNode& other);
    CKvlXmlNode& operator=(const CKvlXmlNode& other);
    virtual ~CKvlXmlNode();

    /// Changes the element's tag.
    void setTagName(std::string tagName);

    /// Appends an attribute. Attributes are written in the order of these calls.
    void addAttribute(std::string name, std::string value);

    /// Appends a copy of `child`. Children are written in the order of these calls.
    void addChildNode(const CKvlXmlNode& child);

private:
    friend class CKvlXmlWrite;
    struct Content;
    std::unique_ptr<Content> content_;
};

#endif
