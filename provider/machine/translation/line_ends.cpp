#include "provider/machine/translation/line_ends.h"

#include "provider/machine/translation/text_lines.h"

namespace kvl::provider {

std::string withoutCarriageReturns(const std::string& output) {
    return textOf(linesOf(output));
}

}  // namespace kvl::provider
