#include <charconv>
#include <limits>
#include <optional>
#include <string>
#include <system_error>

#include "host/HostFunctions.h"
#include "reference_host/ini_cache.h"

namespace {

// The number at the start of the text, whatever follows it: 0 without one, and the nearest int for a number that
// doesn't fit.
int leadingNumber(const std::string& text) {
    const char* start = text.data();
    const char* end = start + text.size();
    if (end - start >= 2 && start[0] == '+' && start[1] != '-') {
        ++start;
    }
    int number = 0;
    if (std::from_chars(start, end, number).ec == std::errc::result_out_of_range) {
        number = *start == '-' ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
    }
    return number;
}

}  // namespace

int GetPrivateProfileIntA(const char* section, const char* key, int defaultValue, const char* path) {
    const std::optional<std::string> text = kvl::host::iniCache().value(section, key, path);
    return text ? leadingNumber(*text) : defaultValue;
}
