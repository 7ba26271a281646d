#ifndef KVL_PROVIDER_OUTPUT_TEXT_TABLE_H
#define KVL_PROVIDER_OUTPUT_TEXT_TABLE_H

#include <string>
#include <vector>

namespace kvl::provider {

/// Rows below each other with their columns aligned. What can't be printed is shown as a blank, and an empty value as
/// "-".
class TextTable {
public:
    using Row = std::vector<std::string>;

    explicit TextTable(const Row& titles) { addRow(titles); }

    /// @param row  as long as the titles
    void addRow(const Row& row);

    std::string text() const;

private:
    std::vector<Row> rows_;
};

}  // namespace kvl::provider

#endif
