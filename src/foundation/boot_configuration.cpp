#include "foundation/boot_configuration.h"

#include <cstdlib>
#include <locale>

#include "foundation/text.h"

namespace kvl {

namespace {

bool isLetterOrDigit(char character) {
    return std::isalnum(character, std::locale::classic());
}

}  // namespace

bool BootConfiguration::findDefaultTitle(std::string& line) {
    int defaultNumber = -1;
    int titles = 0;
    while (std::getline(text_, line)) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        // kept: a title above the default line isn't counted.
        if (defaultNumber == -1) {
            if (holds(line, "default=") && !readDefaultNumber(line, defaultNumber)) {
                return false;
            }
        } else if (isEntryLine(line, "title") && titles++ == defaultNumber) {
            return true;
        }
    }
    return false;
}

bool BootConfiguration::readDefaultNumber(std::string line, int& number) const {
    // kept: the number stands after the line's first "=", whatever that belongs to.
    takeToken(line, '=');
    char* end = nullptr;
    number = static_cast<int>(std::strtoul(line.c_str(), &end, 10));
    events_.defaultNumber(number);
    if (end == line.c_str()) {
        events_.noDefaultNumber();
        return false;
    }
    return true;
}

bool BootConfiguration::findRamDisk(std::string& ramDisk) {
    const std::string word = "initrd";
    for (std::string line; std::getline(text_, line);) {
        // kept: neither a comment nor the next title ends or hides the search.
        if (!isEntryLine(line, word.c_str())) {
            continue;
        }
        auto start = line.find(word) + word.size();
        while (start < line.size() && !isLetterOrDigit(line[start])) {
            ++start;
        }
        ramDisk = upTo(line.substr(start), ' ');
        return true;
    }
    return false;
}

/// @return true if the line holds the word, and neither letter nor digit in front of it
bool BootConfiguration::isEntryLine(const std::string& line, const char* word) const {
    const auto found = line.find(word);
    if (found == std::string::npos) {
        return false;
    }
    events_.found(word, line);
    for (std::string::size_type place = 0; place < found; ++place) {
        if (isLetterOrDigit(line[place])) {
            return false;
        }
    }
    return true;
}

}  // namespace kvl
