#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_SHELL_ASSIGNMENTS_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_SHELL_ASSIGNMENTS_H

#include <map>
#include <string>

namespace kvl::provider {

/// Reads the variables that a file sets when a shell sources it: NAME=VALUE at the beginning of a command, also after
/// "export", with quotes and comments as in a shell. The last assignment wins. Expansions ($NAME) and quotes that reach
/// over the end of a line are not followed: the value is what stands there.
std::map<std::string, std::string> shellAssignments(const std::string& file);

}  // namespace kvl::provider

#endif
