#include "provider/machine/translation/bonding_file.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "provider/machine/translation/text_lines.h"

namespace kvl::provider {
namespace {

constexpr const char* kSlave = "Slave Interface:";
constexpr const char* kPermanentAddress = "Permanent HW addr:";
constexpr const char* kArpTargets = "ARP IP target/s";

/// Appends a line of targets, in pieces that the library's line holds.
void addTargets(std::vector<TextLine>& lines, const TextLine& line) {
    const auto colon = line.text.find(':');
    if (!line.ended || line.text.size() <= kLongestLine || colon >= kLongestLine) {
        lines.push_back(line);
        return;
    }
    const std::string key = line.text.substr(0, colon + 1);
    std::string piece = key;
    for (auto begin = colon + 1; begin <= line.text.size();) {
        const auto end = std::min(line.text.find(',', begin), line.text.size());
        const std::string target = " " + trimmed(line.text.substr(begin, end - begin));
        if (piece != key && piece.size() + 1 + target.size() > kLongestLine) {
            lines.push_back({piece});
            piece = key;
        }
        piece += (piece == key ? "" : ",") + target;
        begin = end + 1;
    }
    lines.push_back({piece});
}

/// The lines of a file, in which each slave gets what it lacks as soon as its lines are over.
class File {
public:
    void add(const TextLine& line) {
        if (startsWith(line.text, kSlave)) {
            endSlave();
            // A line that was cut holds a part of the name, perhaps: the library passes over it.
            lacksAddress_ = line.ended;
        } else if (startsWith(line.text, kPermanentAddress)) {
            lacksAddress_ = false;
        }
        if (startsWith(line.text, kArpTargets)) {
            addTargets(lines_, line);
        } else {
            lines_.push_back(line);
        }
        if (!line.text.empty()) {
            lastFilled_ = lines_.size();
        }
    }

    std::string text() {
        endSlave();
        return textOf(lines_);
    }

private:
    void endSlave() {
        if (lacksAddress_) {
            lines_[lastFilled_ - 1].ended = true;
            lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(lastFilled_), {kPermanentAddress});
        }
        lacksAddress_ = false;
    }

    std::vector<TextLine> lines_;
    std::size_t lastFilled_ = 0;  ///< number of lines up to the last that is not empty
    bool lacksAddress_ = false;
};

}  // namespace

std::string translateBondingFile(const std::string& file) {
    File translated;
    for (const TextLine& line : linesOf(file)) {
        translated.add(line);
    }
    return translated.text();
}

}  // namespace kvl::provider
