#ifndef KVL_TESTS_REFERENCE_HOST_SCRATCH_DIRECTORY_H
#define KVL_TESTS_REFERENCE_HOST_SCRATCH_DIRECTORY_H

#include <sys/types.h>

#include <string>
#include <vector>

namespace kvl::test {

/// A new directory beside the test program, removed with all its content at the end.
class ScratchDirectory {
public:
    ScratchDirectory();
    ~ScratchDirectory();

    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    const std::string& path() const { return path_; }

    /// @return the path of an entry
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

    /// @return the names of all entries, sorted
    std::vector<std::string> entries() const;

private:
    std::string path_;
};

std::string contentOf(const std::string& path);
std::vector<std::string> linesOf(const std::string& path);
void lay(const std::string& path, const std::string& content);
void layDirectory(const std::string& path);
mode_t permissionsOf(const std::string& path);

}  // namespace kvl::test

#endif
