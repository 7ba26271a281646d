#ifndef KVL_PROVIDER_OUTPUT_TEXT_BLOCK_H
#define KVL_PROVIDER_OUTPUT_TEXT_BLOCK_H

#include <string>
#include <vector>

namespace kvl::provider {

/// A heading, and below it rows of a name and its values, with all values in one column. What can't be printed is
/// shown as a blank, and an empty value as "-".
class TextBlock {
public:
    explicit TextBlock(const std::string& heading);

    void addRow(const std::string& name, const std::string& value);

    /// A row with its values below each other.
    void addRows(const std::string& name, const std::vector<std::string>& values);

    /// A row with its values beside each other, as many on a line as fit.
    void addWrappedRow(const std::string& name, const std::vector<std::string>& values);

    const std::string& text() const { return text_; }

private:
    std::string text_;
};

/// The text with a blank for each character that can't be printed.
std::string printable(std::string text);

/// The value as a row shows it: "-" if there is none.
std::string shownValue(const std::string& value);

/// The values with ", " between them.
std::string joined(const std::vector<std::string>& values);

}  // namespace kvl::provider

#endif
