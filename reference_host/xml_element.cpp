#include "reference_host/xml_element.h"

#include <atomic>
#include <iterator>

namespace kvl::host {
namespace {

std::atomic<std::size_t> copiedParts{0};

void moveTo(std::vector<std::shared_ptr<XmlElement>>& target, std::vector<std::shared_ptr<XmlElement>>& source) {
    target.insert(target.end(), std::make_move_iterator(source.begin()), std::make_move_iterator(source.end()));
    source.clear();
}

}  // namespace

XmlElement::~XmlElement() {
    // Members that destroy each other would need a stack as deep as the tree.
    std::vector<std::shared_ptr<XmlElement>> pending;
    moveTo(pending, children);
    while (!pending.empty()) {
        const std::shared_ptr<XmlElement> element = std::move(pending.back());
        pending.pop_back();
        if (element.use_count() == 1) {
            std::atomic_thread_fence(std::memory_order_acquire);
            moveTo(pending, element->children);
        }
    }
}

XmlElement& ownElement(std::shared_ptr<XmlElement>& holder) {
    if (holder.use_count() == 1) {
        // Another thread may have given up its copy just now; what it read there comes before this change.
        std::atomic_thread_fence(std::memory_order_acquire);
    } else {
        copiedParts += 1 + holder->attributes.size() + holder->children.size();
        holder = std::make_shared<XmlElement>(*holder);
    }
    return *holder;
}

std::size_t copiedXmlParts() {
    return copiedParts;
}

}  // namespace kvl::host
