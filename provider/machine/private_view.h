#ifndef KVL_PROVIDER_MACHINE_PRIVATE_VIEW_H
#define KVL_PROVIDER_MACHINE_PRIVATE_VIEW_H

#include <string>
#include <vector>

#include "provider/machine/legacy_commands.h"

namespace kvl::provider {

/// The options of bubblewrap that make a private view of this machine: everything is at its own place, but /sbin is
/// a directory of links in which the supplied commands stand, and the result directory is an empty one of the user's
/// own. What is written into directories that the view doesn't make itself is written to the machine.
std::vector<std::string> privateViewOptions(const SuppliedCommands& supplied);

/// The options that show the directory of a file that is to be written, wherever it is, at a place of the view's own.
/// @param file  empty: none
std::vector<std::string> outputOptions(const std::string& file);

/// Where the program in the view finds the file that it is to write.
/// @param file  as the program outside names it; empty: none
std::string placeInView(const std::string& file);

/// Runs this same program in a private view, passes the signals that would end this process on to it, and waits.
/// @param arguments   for the program in the view
/// @param outputFile  the file that it writes; empty if it writes none
/// @return its exit code, or 128 and the signal that ended it
/// @throws ProviderError if the view can't be made, with what to do
int runInPrivateView(const SuppliedCommands& supplied, const std::vector<std::string>& arguments,
                     const std::string& outputFile);

}  // namespace kvl::provider

#endif
