#include "adapter/silent_settings_parser.h"

#include "foundation/text.h"

namespace kvl {

namespace {

std::string withoutBlanks(std::string line, const SilentSettingsEvents& events) {
    for (auto blank = line.find(' '); blank != std::string::npos; blank = line.find(' ', blank)) {
        line.erase(blank, 1);
        events.blankDeleted(line);
    }
    return line;
}

/// Compares a line with each setting whose key it holds.
/// @param outstanding  counted down for each that is right
/// @return false at the first that isn't
bool checkLine(const std::string& line, const SettingsFile& file, std::size_t& outstanding,
               const SilentSettingsEvents& events) {
    for (const Setting& setting : file) {
        if (!holds(line, setting.key)) {
            continue;
        }
        events.found(setting, line);
        const bool isSilent = line == setting.line;
        if (isSilent) {
            --outstanding;
        }
        events.compared(setting, line, isSilent);
        if (!isSilent) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool isSilentInstall(std::istream& text, const SettingsFile& file, const SilentSettingsEvents& events) {
    std::size_t outstanding = file.count;
    std::string line;
    while (outstanding > 0 && std::getline(text, line)) {
        events.line(line);
        if (!checkLine(withoutBlanks(line, events), file, outstanding, events)) {
            return false;
        }
    }
    return outstanding == 0;
}

}  // namespace kvl
