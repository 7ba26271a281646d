#ifndef KVL_PROVIDER_UPDATE_MODULE_ARCHIVE_H
#define KVL_PROVIDER_UPDATE_MODULE_ARCHIVE_H

#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include "provider/operation/step.h"

namespace kvl::provider {

/// An update module as it lies on the disk: a directory with an archive.
struct UpdateModule {
    std::string directory;             ///< absolute
    std::list<std::string> files;      ///< what lies in it, by name
    std::string archive;               ///< the first name that holds ".zip", which is the one that the library unpacks
    std::vector<std::string> entries;  ///< what the archive holds, by path
    std::uint64_t unpackedSize = 0;    ///< bytes

    std::string archivePath() const { return directory + "/" + archive; }
};

/// Looks into a module without changing anything, and reads its archive through, so that a damaged one is found before
/// anything is done.
/// @param directory  absolute
/// @throws ProviderError if there is no such directory, AdapterFailure if it holds no archive, or one that is damaged,
///         empty, locked with a password, or holds links or paths that lead out of it
UpdateModule lookIntoModule(const std::string& directory);

/// The entries that stand at the top of the archive and match a pattern of the shell.
std::vector<std::string> topEntries(const UpdateModule& module, const char* pattern);

/// The steps by which the library unpacks a module.
/// @param scratch  the directory that it unpacks into, which it deletes first
Steps unpackingSteps(const UpdateModule& module, const std::string& scratch);

/// @return true if the archive holds this path
bool holdsEntry(const UpdateModule& module, const std::string& path);

}  // namespace kvl::provider

#endif
