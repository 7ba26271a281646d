#ifndef KVL_ADAPTER_SILENT_SETTINGS_PARSER_H
#define KVL_ADAPTER_SILENT_SETTINGS_PARSER_H

#include <functional>
#include <istream>
#include <string>

#include "adapter/silent_settings.h"

namespace kvl {

/// What the parser of a settings file meets on its way, in this order for one line. All of them are set.
struct SilentSettingsEvents {
    std::function<void(const std::string& line)> line;
    /// One more blank was removed; receives the rest of the line.
    std::function<void(const std::string& line)> blankDeleted;
    /// The line without blanks holds a setting's key.
    std::function<void(const Setting& setting, const std::string& line)> found;
    /// That line is, or is not, the one that a silent install leaves.
    std::function<void(const Setting& setting, const std::string& line, bool isSilent)> compared;
};

/// Parses a configuration file of the management tool up to the last line that was outstanding, or to the first wrong
/// one. Blanks in a line don't count; lines have any length.
/// @return true if as many lines were right as there are settings, one that occurs twice counted twice
bool isSilentInstall(std::istream& text, const SettingsFile& file, const SilentSettingsEvents& events);

}  // namespace kvl

#endif
