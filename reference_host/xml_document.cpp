#include "reference_host/xml_document.h"

#include <algorithm>
#include <cstddef>

namespace kvl::host {
namespace {

// The blanks before a line grow with its depth, so those of a deep chain would outgrow the document by far.
constexpr int kDeepestIndentation = 100;

class FileWriter : public pugi::xml_writer {
public:
    explicit FileWriter(AtomicFile& file) : file_(file) {}
    void write(const void* data, std::size_t size) override { file_.write(data, size); }

private:
    AtomicFile& file_;
};

/// Finds the depth of a tree.
class DepthWalker : public pugi::xml_tree_walker {
public:
    bool for_each(pugi::xml_node&) override {
        deepest_ = std::max(deepest_, depth());
        return true;
    }

    int deepest() const { return deepest_; }

private:
    int deepest_ = 0;
};

bool appendDeclaration(pugi::xml_document& document) {
    pugi::xml_node declaration = document.append_child(pugi::node_declaration);
    return declaration.append_attribute("version").set_value("1.0") &&
           declaration.append_attribute("encoding").set_value("UTF-8");
}

}  // namespace

bool writeDocument(const pugi::xml_node& root, AtomicFile& file) {
    pugi::xml_document document;
    if (!appendDeclaration(document) || !document.append_copy(root)) {
        return false;
    }
    DepthWalker walker;
    document.traverse(walker);
    FileWriter writer(file);
    document.save(writer, "  ", walker.deepest() < kDeepestIndentation ? pugi::format_default : pugi::format_raw,
                  pugi::encoding_utf8);
    return file.isGood();
}

}  // namespace kvl::host
