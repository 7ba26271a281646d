#include "provider/output/driver_text.h"

#include <array>
#include <string>
#include <vector>

#include "provider/output/report_document.h"

namespace kvl::provider {
namespace {

constexpr const char* kRingMaximum = "Ring parameters Pre-set maximums ";
constexpr const char* kRingCurrent = "Ring parameters Current hardware settings ";
constexpr const char* kPause = "Pause parameters ";
constexpr const char* kCoalesce = "Coalesce parameters ";
constexpr const char* kMtu = "mtu";

// What all names of a group begin with; the offload settings have no such beginning.
constexpr std::array<const char*, 4> kGroups = {kPause, kRingMaximum, kRingCurrent, kCoalesce};

struct Setting {
    std::string name;  ///< without the group's beginning
    std::string value;
};

using Settings = std::vector<Setting>;

bool beginsWith(const std::string& text, const std::string& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

bool isOffload(const std::string& name) {
    for (const char* group : kGroups) {
        if (beginsWith(name, group)) {
            return false;
        }
    }
    return name != kMtu;
}

template <typename IsMember>
Settings settingsOf(const pugi::xml_node& driver, std::size_t beginning, IsMember isMember) {
    Settings settings;
    for (const pugi::xml_node& element : driver.children("attr")) {
        const std::string name = element.attribute("name").value();
        if (isMember(name)) {
            settings.push_back({name.substr(beginning), element.attribute("value").value()});
        }
    }
    return settings;
}

Settings groupOf(const pugi::xml_node& driver, const std::string& group) {
    return settingsOf(driver, group.size(), [&](const std::string& name) { return beginsWith(name, group); });
}

/// The names of the settings that have this value.
std::vector<std::string> namesWith(const Settings& settings, const std::string& value) {
    std::vector<std::string> names;
    for (const Setting& setting : settings) {
        if (setting.value == value) {
            names.push_back(setting.name);
        }
    }
    return names;
}

/// "name value" of each setting that has a value, but for one value.
std::vector<std::string> pairs(const Settings& settings, const std::string& leftOut = "") {
    std::vector<std::string> texts;
    for (const Setting& setting : settings) {
        if (!setting.value.empty() && setting.value != leftOut) {
            texts.push_back(setting.name + " " + setting.value);
        }
    }
    return texts;
}

void addNames(TextBlock& block, const std::string& name, const std::vector<std::string>& names) {
    if (!names.empty()) {
        block.addWrappedRow(name, names);
    }
}

void addOffload(TextBlock& block, const pugi::xml_node& driver) {
    const Settings settings = settingsOf(driver, 0, isOffload);
    const auto on = namesWith(settings, "on");
    const auto off = namesWith(settings, "off");
    addNames(block, "Offload on", on);
    addNames(block, "Offload off", off);
    if (!settings.empty() && on.empty() && off.empty()) {
        block.addRow("Offload", "");
    }
}

void addPause(TextBlock& block, const pugi::xml_node& driver) {
    const Settings settings = groupOf(driver, kPause);
    if (!settings.empty()) {
        block.addWrappedRow("Pause", pairs(settings));
    }
}

/// "RX 256 of 4096" for each ring of which something is known.
std::vector<std::string> rings(const Settings& current, const Settings& maximums) {
    std::vector<std::string> texts;
    for (std::size_t index = 0; index < current.size() && index < maximums.size(); ++index) {
        const std::string& maximum = maximums[index].value;
        if (!current[index].value.empty() || !maximum.empty()) {
            texts.push_back(current[index].name + " " + shownValue(current[index].value) + " of " +
                            shownValue(maximum));
        }
    }
    return texts;
}

void addRing(TextBlock& block, const pugi::xml_node& driver) {
    const Settings current = groupOf(driver, kRingCurrent);
    if (!current.empty()) {
        block.addWrappedRow("Ring", rings(current, groupOf(driver, kRingMaximum)));
    }
}

/// Most of these settings are zero on most machines. So zeros share one word, or a row where some have no value at all.
void addCoalesce(TextBlock& block, const pugi::xml_node& driver) {
    const Settings settings = groupOf(driver, kCoalesce);
    const auto zeros = namesWith(settings, "0");
    auto others = pairs(settings, "0");
    if (!zeros.empty() && !others.empty() && zeros.size() + others.size() == settings.size()) {
        others.emplace_back("all others 0");
        block.addWrappedRow("Coalesce", others);
        return;
    }
    addNames(block, "Coalesce", others);
    addNames(block, "Coalesce 0", zeros);
    if (!settings.empty() && zeros.empty() && others.empty()) {
        block.addRow("Coalesce", "");
    }
}

}  // namespace

void addDriverRows(TextBlock& block, const pugi::xml_node& driver) {
    block.addRow("MTU", parameter(driver, kMtu));
    addOffload(block, driver);
    addPause(block, driver);
    addRing(block, driver);
    addCoalesce(block, driver);
}

}  // namespace kvl::provider
