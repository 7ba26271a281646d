#include "provider/run/collection_display.h"

#include <algorithm>
#include <array>

#include "provider/library/collected_command.h"

namespace kvl::provider {
namespace {

constexpr int kLongestWait = 10;  // seconds that the library gives a command's output

struct LevelName {
    TRACE_DBG_LEVEL level;
    const char* name;
};

// Padded to one width.
constexpr std::array<LevelName, 5> kLevelNames = {{
    {TRACE_DBG_FLOW, "flow    "},
    {TRACE_DBG_ERROR, "error   "},
    {TRACE_DBG_BOUNDARY, "boundary"},
    {TRACE_DBG_WARNING, "warning "},
    {TRACE_DBG_NOTICE, "notice  "},
}};

std::string nameOf(TRACE_DBG_LEVEL level) {
    for (const LevelName& row : kLevelNames) {
        if (row.level == level) {
            return row.name;
        }
    }
    return std::to_string(static_cast<int>(level));
}

}  // namespace

CollectionDisplay::CollectionDisplay(Mode mode, std::ostream& output, std::size_t width)
    : mode_(mode), output_(output), line_(output, width) {}

void CollectionDisplay::showTrace(TRACE_DBG_LEVEL level, const std::string& text) {
    if (mode_ == Mode::kTrace) {
        output_ << nameOf(level) << "  " << text << '\n';
    }
}

void CollectionDisplay::showCommand(const std::string& command) {
    waited_ = 0;
    if (mode_ == Mode::kProgress) {
        line_.show(place(describeCommand(command).subject) + command);
    }
}

void CollectionDisplay::showWait(const std::string& command) {
    ++waited_;
    if (mode_ == Mode::kProgress) {
        line_.show(std::to_string(waited_) + " of " + std::to_string(kLongestWait) + " s  no output yet from " +
                   command);
    }
}

void CollectionDisplay::showPause(unsigned long milliseconds) {
    if (mode_ == Mode::kProgress) {
        line_.show("pausing for " + std::to_string(milliseconds) + " ms");
    }
}

/// Where the walk over the interfaces is, such as "eth1 (2 of 4): "; empty for a command about something else.
std::string CollectionDisplay::place(const std::string& interface) const {
    const auto found = std::find(interfaces_.begin(), interfaces_.end(), interface);
    if (found == interfaces_.end()) {
        return "";
    }
    return interface + " (" + std::to_string(found - interfaces_.begin() + 1) + " of " +
           std::to_string(interfaces_.size()) + "): ";
}

}  // namespace kvl::provider
