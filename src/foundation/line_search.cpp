#include "foundation/line_search.h"

#include "foundation/text.h"

namespace kvl {

bool anyLineHolds(std::istream& text, const std::string& part) {
    std::string line;
    while (std::getline(text, line)) {
        if (holds(line, part)) {
            return true;
        }
    }
    return false;
}

}  // namespace kvl
