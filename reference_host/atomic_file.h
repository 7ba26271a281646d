#ifndef KVL_REFERENCE_HOST_ATOMIC_FILE_H
#define KVL_REFERENCE_HOST_ATOMIC_FILE_H

#include <sys/types.h>

#include <cstddef>
#include <string>

#include "reference_host/file_descriptor.h"

namespace kvl::host {

/// Writes a file so that its name stands for the old content or for the whole new content at any moment, also
/// when the process is killed or the disk is full. The content goes to a temporary file in the same directory
/// (".kvl-<pid>-<number>.tmp"), which commit() makes safe on the disk and renames. Without a commit() that
/// succeeds, the temporary file is removed and the target is as it was. A file that takes the place of another has the
/// permissions of that one, and its owner if this process may give files away.
class AtomicFile {
public:
    /// What commit() does with a target that exists already.
    enum class Existing { kReplace, kKeep };

    /// Opens the temporary file.
    /// @param path  the target: a new or a regular file. A link to a regular file stays, and the file is replaced;
    ///              anything else, such as a device, is refused.
    /// @param mode  permission bits of a new file, less those of the process's umask
    explicit AtomicFile(const std::string& path, mode_t mode = 0666);
    ~AtomicFile();

    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// @return false if the temporary file couldn't be made, or a step failed; everything that follows fails too
    bool isGood() const { return good_; }

    /// Appends bytes. @return true if all of them were taken
    bool write(const void* data, std::size_t size);

    /// Sets exactly these permission bits, whatever the umask. @return true on success
    bool setPermissions(mode_t mode);

    /// Puts the file into its place; nothing can follow it.
    /// @param existing  kKeep fails if the target exists
    /// @return true on success; on failure the target is as it was
    bool commit(Existing existing = Existing::kReplace);

private:
    void open(mode_t mode);
    void takeAfterTarget();
    bool rename(Existing existing);
    void discard();

    std::string target_;
    std::string temporary_;
    FileDescriptor file_;
    bool good_ = false;
};

}  // namespace kvl::host

#endif
