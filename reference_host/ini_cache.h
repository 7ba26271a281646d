#ifndef KVL_REFERENCE_HOST_INI_CACHE_H
#define KVL_REFERENCE_HOST_INI_CACHE_H

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace kvl::host {

/// The values of INI files. Callers ask for the thousands of keys of one file one by one, so the last few files are
/// kept in parsed form for as long as they are unchanged on the disk. For any number of threads.
class IniCache {
public:
    IniCache();
    ~IniCache();

    IniCache(const IniCache&) = delete;
    IniCache& operator=(const IniCache&) = delete;

    /// @return the value of `key` in the `[section]` of the file, both without regard to case, without the blanks and
    /// the one pair of quotes around it; nothing if the file, the section or the key is missing. The first of several
    /// lines with the key counts.
    std::optional<std::string> value(const char* section, const char* key, const char* path);

    /// @return how often a file was read and parsed
    std::size_t loadCount() const;

private:
    struct File;

    File* current(const std::string& path);
    File* load(const std::string& path);

    mutable std::mutex mutex_;
    std::list<File> files_;  // the latest first
    std::size_t loadCount_ = 0;
};

/// The cache of this process.
IniCache& iniCache();

}  // namespace kvl::host

#endif
