#include "provider/machine/translation/setting_line.h"

#include <vector>

#include "provider/machine/translation/text_lines.h"

namespace kvl::provider {
namespace {

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

}  // namespace

std::optional<SettingLine> readSetting(const std::string& line) {
    const auto colon = line.find(':');
    if (colon == std::string::npos) {
        return std::nullopt;
    }
    return SettingLine{line.substr(0, colon), trimmed(line.substr(colon + 1))};
}

bool isSwitch(const std::string& value) {
    const std::vector<std::string> words = wordsOf(value);
    return !words.empty() && (words.front() == "on" || words.front() == "off");
}

bool isNumber(const std::string& value) {
    const std::string::size_type sign = startsWith(value, "-") ? 1 : 0;
    return value.size() > sign && isDigit(value[sign]);
}

std::string withBlanksBeforeValue(const std::string& line) {
    std::string translated = withoutTrailingBlanks(line);
    for (auto position = line.find(':') + 1; position < translated.size(); ++position) {
        if (translated[position] == '\t') {
            translated[position] = ' ';
        } else if (translated[position] != ' ') {
            break;
        }
    }
    return translated;
}

}  // namespace kvl::provider
