#ifndef KVL_PROVIDER_UPDATE_REQUIREMENTS_H
#define KVL_PROVIDER_UPDATE_REQUIREMENTS_H

#include <cstdint>
#include <string>

namespace kvl::provider {

/// What an update needs of the machine. All of these throw ProviderError with what to do, and change nothing.

/// A command that the library calls by its name.
void requireCommand(const std::string& name);

/// @return the path of a command; empty if it isn't installed
std::string findCommand(const std::string& name);

/// Room on the disk for so many bytes, and a margin.
/// @param directory  where; the nearest directory above counts if it isn't there
void requireRoom(const std::string& directory, std::uint64_t bytes);

/// That a directory doesn't lie in another one, which is about to be deleted with all that is in it.
/// @param directory  is there
/// @param deleted    needn't be there
void requireOutside(const std::string& directory, const std::string& deleted);

/// A directory that is this user's own and that nobody else can put anything into, since what lies in it is run or
/// deleted.
void requireOwnDirectory(const std::string& directory);

}  // namespace kvl::provider

#endif
