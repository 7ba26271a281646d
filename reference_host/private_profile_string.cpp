#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>

#include "host/HostFunctions.h"
#include "reference_host/ini_cache.h"

void GetPrivateProfileStringA(const char* section, const char* key, const char* defaultValue, char* buffer,
                              unsigned long size, const char* path) {
    if (buffer == nullptr || size == 0) {
        return;
    }
    const std::string fallback = defaultValue != nullptr ? defaultValue : "";
    const std::string text = kvl::host::iniCache().value(section, key, path).value_or(fallback);
    const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
    std::copy_n(text.data(), length, buffer);
    buffer[length] = '\0';
}
