#include "provider/output/text_table.h"

#include <algorithm>

#include "provider/output/text_block.h"

namespace kvl::provider {
namespace {

constexpr std::size_t kGap = 2;

}  // namespace

void TextTable::addRow(const Row& row) {
    Row shown;
    for (const std::string& value : row) {
        shown.push_back(shownValue(printable(value)));
    }
    rows_.push_back(shown);
}

std::string TextTable::text() const {
    std::vector<std::size_t> widths(rows_.front().size());
    for (const Row& row : rows_) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    std::string text;
    for (const Row& row : rows_) {
        for (std::size_t column = 0; column + 1 < row.size(); ++column) {
            text += row[column] + std::string(widths[column] + kGap - row[column].size(), ' ');
        }
        text += row.back() + "\n";
    }
    return text;
}

}  // namespace kvl::provider
