#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_SETTING_LINE_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_SETTING_LINE_H

#include <optional>
#include <string>

namespace kvl::provider {

/// A line "NAME: VALUE" of ethtool.
struct SettingLine {
    std::string name;
    std::string value;  ///< without the blanks and tabs around it
};

/// @return the setting in the line; nothing without a colon
std::optional<SettingLine> readSetting(const std::string& line);

/// @return true if the value is a switch: its first word is "on" or "off"
bool isSwitch(const std::string& value);

/// @return true if the value begins with a number
bool isNumber(const std::string& value);

/// @return the line with blanks for the tabs after its colon, and without blanks and tabs at its end: the library takes
///         a tab for the beginning of a value
std::string withBlanksBeforeValue(const std::string& line);

}  // namespace kvl::provider

#endif
