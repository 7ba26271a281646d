#ifndef KVL_FOUNDATION_BOOT_CONFIGURATION_H
#define KVL_FOUNDATION_BOOT_CONFIGURATION_H

#include <functional>
#include <istream>
#include <string>
#include <utility>

namespace kvl {

/// What a walk through a boot loader's configuration meets on its way, in this order for one line.
struct BootConfigurationEvents {
    /// A default line was read; 0 for one without a number.
    std::function<void(int number)> defaultNumber = [](int) {};
    /// The default line has no number.
    std::function<void()> noDefaultNumber = [] {};
    /// A line holds a word that is looked for, whatever comes before it.
    std::function<void(const char* word, const std::string& line)> found = [](const char*, const std::string&) {};
};

/// Walks the text of a boot loader's configuration file, grub.conf, once from its start.
class BootConfiguration {
public:
    /// @param text  must outlive this object
    explicit BootConfiguration(std::istream& text, BootConfigurationEvents events = {})
        : text_(text), events_(std::move(events)) {}

    /// Walks to the title line of the default entry.
    /// @return false if there is none
    bool findDefaultTitle(std::string& line);

    /// Walks to the next line that names a RAM disk, in this entry or in a later one.
    /// @param ramDisk  receives the name without the "/" in front
    /// @return false if there is none
    bool findRamDisk(std::string& ramDisk);

private:
    bool readDefaultNumber(std::string line, int& number) const;
    bool isEntryLine(const std::string& line, const char* word) const;

    std::istream& text_;
    BootConfigurationEvents events_;
};

}  // namespace kvl

#endif
