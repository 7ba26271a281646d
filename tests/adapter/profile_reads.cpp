#include "tests/adapter/profile_reads.h"

#include <algorithm>

#include "host/HostFunctions.h"
#include "reference_host/ini_cache.h"

namespace kvl::test {

ProfileReads& profile() {
    static ProfileReads reads;
    return reads;
}

}  // namespace kvl::test

void GetPrivateProfileStringA(const char* section, const char* key, const char* defaultValue, char* buffer,
                              unsigned long size, const char* path) {
    auto& profile = kvl::test::profile();
    profile.defaultText = defaultValue;
    profile.size = size;
    profile.lastKey = key;
    ++profile.count;
    if (profile.limit == 0) {
        profile.reads.push_back(std::string(path) + " [" + section + "] " + key);
    } else if (profile.count > profile.limit) {
        throw kvl::test::EnoughReads();
    }
    const std::string text = kvl::host::iniCache().value(section, key, path).value_or(defaultValue);
    const auto length = std::min<std::size_t>(text.size(), size - 1);
    std::copy_n(text.data(), length, buffer);
    buffer[length] = '\0';
}
