#include "reference_host/xml_document.h"

#include <algorithm>
#include <cstddef>
#include <pugixml.hpp>
#include <unordered_map>
#include <vector>

#include "reference_host/xml_text.h"

namespace kvl::host {
namespace {

// The blanks before a line grow with its depth, so those of a deep chain would outgrow the document by far.
constexpr std::size_t kDeepestIndentation = 100;

struct PendingElement {
    const XmlElement* element;
    pugi::xml_node node;
    std::size_t depth;
};

class FileWriter : public pugi::xml_writer {
public:
    explicit FileWriter(AtomicFile& file) : file_(file) {}
    void write(const void* data, std::size_t size) override { file_.write(data, size); }

private:
    AtomicFile& file_;
};

bool appendDeclaration(pugi::xml_document& document) {
    pugi::xml_node declaration = document.append_child(pugi::node_declaration);
    return declaration.append_attribute("version").set_value("1.0") &&
           declaration.append_attribute("encoding").set_value("UTF-8");
}

bool appendAttributes(const XmlElement& element, pugi::xml_node node) {
    std::unordered_map<std::string, pugi::xml_attribute> known;
    for (const auto& [name, value] : element.attributes) {
        const std::string fitName = xmlName(name);
        pugi::xml_attribute& attribute = known[fitName];
        if (!attribute) {
            attribute = node.append_attribute(fitName.c_str());
        }
        if (!attribute.set_value(xmlText(value).c_str())) {
            return false;
        }
    }
    return true;
}

pugi::xml_node appendElement(const XmlElement& element, pugi::xml_node parent) {
    pugi::xml_node node = parent.append_child(xmlName(element.tag).c_str());
    return appendAttributes(element, node) ? node : pugi::xml_node();
}

// The depth of the tree that it appended, or 0 if memory ran out.
std::size_t appendTree(const XmlElement& root, pugi::xml_document& document) {
    std::vector<PendingElement> pending{{&root, appendElement(root, document), 1}};
    std::size_t deepest = 0;
    while (!pending.empty()) {
        const PendingElement parent = pending.back();
        pending.pop_back();
        if (!parent.node) {
            return 0;
        }
        deepest = std::max(deepest, parent.depth);
        for (const auto& child : parent.element->children) {
            pending.push_back({child.get(), appendElement(*child, parent.node), parent.depth + 1});
        }
    }
    return deepest;
}

}  // namespace

bool writeDocument(const XmlElement& root, AtomicFile& file) {
    pugi::xml_document document;
    const std::size_t depth = appendDeclaration(document) ? appendTree(root, document) : 0;
    if (depth == 0) {
        return false;
    }
    FileWriter writer(file);
    document.save(writer, "  ", depth <= kDeepestIndentation ? pugi::format_default : pugi::format_raw,
                  pugi::encoding_utf8);
    return file.isGood();
}

}  // namespace kvl::host
