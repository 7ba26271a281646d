#ifndef KVL_MACHINES_PROGRAMS_H
#define KVL_MACHINES_PROGRAMS_H

#include <unistd.h>

#include <sstream>
#include <string>

namespace kvl::machines {

/// The path of a program that the caller may execute.
/// @param directories  where it is looked for, with ':' between them, as in PATH
/// @return empty if it is in none of them
inline std::string findProgram(const std::string& name, const std::string& directories) {
    std::istringstream list(directories);
    for (std::string directory; std::getline(list, directory, ':');) {
        std::string path = directory + "/" + name;
        if (!directory.empty() && access(path.c_str(), X_OK) == 0) {
            return path;
        }
    }
    return "";
}

}  // namespace kvl::machines

#endif
