#ifndef KVL_PROVIDER_MACHINE_OWN_DIRECTORY_H
#define KVL_PROVIDER_MACHINE_OWN_DIRECTORY_H

#include <string>

namespace kvl::provider {

/// Makes the directories above a path that are missing. Others may read them, whatever this process keeps to itself.
/// @return the errno of the first that could not be made; 0 if there was none
int makeParents(const std::string& path);

/// Refuses a path on which another user could put something else: every directory above it belongs to this user or to
/// root, and others can't write there, unless it keeps each user's entries apart as /tmp does. Links are followed and
/// held to the same. What isn't there is no reason to refuse.
/// @param role  what the path is for, such as "result directory"
/// @throws ProviderError with what to do
void needSafeParents(const std::string& path, const std::string& role);

/// Ensures that a directory is there and safe: made if it can be, a directory and no link, this user's own, closed
/// to everybody else, and with safe parents.
/// @throws ProviderError otherwise, with what to do
void needOwnDirectory(const std::string& directory, const std::string& role);

}  // namespace kvl::provider

#endif
