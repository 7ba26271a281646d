#ifndef KVL_PROVIDER_LIBRARY_WORKING_TREE_H
#define KVL_PROVIDER_LIBRARY_WORKING_TREE_H

#include <string>

namespace kvl::provider {

/// The directory below which the library keeps what it knows of the adapters.
std::string adapterTree();

/// The list of the adapters there, which this program has the tool write.
std::string adapterListFile();

/// What the tool has told last of the directory in which it keeps its dumps.
std::string dumpDirectoryFile();

/// @return true if the tree holds a dump of the port, so that its versions are had without the tool
bool isCached(const std::string& device, const std::string& family);

/// Makes the tree and sees to it that it is safe: the user's own and closed to other writers, since the tool writes
/// into it, often as root, and its paths go through a shell.
/// @throws AdapterFailure if it can't be made, ProviderError if it isn't safe, with what to do
void needAdapterTree();

}  // namespace kvl::provider

#endif
