#ifndef KVL_TESTS_PROVIDER_UPDATE_MADE_ARCHIVE_H
#define KVL_TESTS_PROVIDER_UPDATE_MADE_ARCHIVE_H

#include <string>
#include <vector>

namespace kvl::test {

/// An entry of an archive that a test makes.
struct MadeEntry {
    std::string path;
    std::string content;
    unsigned mode = 0100644;  ///< as `stat` reports it, with the type
    bool isLocked = false;    ///< with a password
};

/// Makes a zip archive whose files are stored as they are, however odd; no archiver would make some of them.
void makeArchive(const std::string& path, const std::vector<MadeEntry>& entries);

}  // namespace kvl::test

#endif
