#include "provider/output/text_block.h"

#include <algorithm>

namespace kvl::provider {
namespace {

constexpr std::size_t kIndent = 2;
constexpr std::size_t kNameWidth = 18;
constexpr std::size_t kWidth = 100;

bool isControl(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7f;
}

}  // namespace

TextBlock::TextBlock(const std::string& heading) : text_(printable(heading) + "\n") {}

void TextBlock::addRow(const std::string& name, const std::string& value) {
    std::string line = std::string(kIndent, ' ') + name;
    line.resize(std::max(line.size() + 1, kIndent + kNameWidth), ' ');
    text_ += line + shownValue(printable(value)) + "\n";
}

void TextBlock::addRows(const std::string& name, const std::vector<std::string>& values) {
    if (values.empty()) {
        addRow(name, "");
    }
    for (std::size_t index = 0; index < values.size(); ++index) {
        addRow(index == 0 ? name : "", values[index]);
    }
}

void TextBlock::addWrappedRow(const std::string& name, const std::vector<std::string>& values) {
    std::vector<std::string> lines;
    for (const std::string& value : values) {
        const bool fits = !lines.empty() && kIndent + kNameWidth + lines.back().size() + 2 + value.size() < kWidth;
        if (fits) {
            lines.back() += ", " + value;
        } else {
            lines.push_back(value);
        }
    }
    for (std::size_t index = 0; index + 1 < lines.size(); ++index) {
        lines[index] += ",";
    }
    addRows(name, lines);
}

std::string printable(std::string text) {
    std::replace_if(text.begin(), text.end(), isControl, ' ');
    return text;
}

std::string shownValue(const std::string& value) {
    return value.find_first_not_of(' ') == std::string::npos ? "-" : value;
}

std::string joined(const std::vector<std::string>& values) {
    std::string text;
    for (const std::string& value : values) {
        text += (text.empty() ? "" : ", ") + value;
    }
    return text;
}

}  // namespace kvl::provider
