#ifndef KVL_REFERENCE_HOST_XML_NODE_CONTENT_H
#define KVL_REFERENCE_HOST_XML_NODE_CONTENT_H

#include <pugixml.hpp>

#include "host/CKvlXmlNode.h"

/// A node is a tree of its own, with its element as the only child of the document. A child that is added is copied: a
/// report has five levels, so each of its elements is copied five times at most.
struct CKvlXmlNode::Content {
    pugi::xml_document tree;

    pugi::xml_node element() const { return tree.first_child(); }
};

#endif
