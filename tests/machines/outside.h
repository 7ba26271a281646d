#ifndef KVL_TESTS_MACHINES_OUTSIDE_H
#define KVL_TESTS_MACHINES_OUTSIDE_H

#include <map>
#include <string>

#include "machines/private_root.h"

namespace kvl::test {

/// A new directory in the tests' build folder, removed at the end.
class ScratchDirectory {
public:
    ScratchDirectory();
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    const std::string& path() const { return path_; }

    /// Path of a file in it.
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

    /// Writes a file in it, makes the directories above it, and returns its path.
    std::string write(const std::string& name, const std::string& text) const;

private:
    std::string path_;
};

/// What a program left.
struct Outcome {
    int status = -1;
    std::string output;
    std::string errors;
};

/// Runs a shell script in a private root with these options.
Outcome runInside(machines::PrivateRootOptions options, const std::string& script);

/// Runs a shell script on this machine.
Outcome runOutside(const std::string& script);

std::string readFile(const std::string& path);

/// Every file below a directory, by its path in it.
std::map<std::string, std::string> readTree(const std::string& directory);

}  // namespace kvl::test

#endif
