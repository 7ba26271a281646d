#ifndef KVL_PROVIDER_UPDATE_RAM_DISK_IMAGE_H
#define KVL_PROVIDER_UPDATE_RAM_DISK_IMAGE_H

#include <cstdint>
#include <optional>
#include <string>

namespace kvl::provider {

/// The initial RAM disk of the running kernel, and the former one that a rebuild leaves beside it.
///
/// While a rebuild runs, a note in a file says which file is the image that the machine started with. One that is left
/// over belongs to a rebuild that was broken off, or that failed: what has the image's name then isn't to be trusted.
class RamDiskImage {
public:
    /// @param kernel         as `uname -r` prints it
    /// @param noteDirectory  where the note lies
    RamDiskImage(const std::string& kernel, const std::string& noteDirectory);

    const std::string& path() const { return path_; }
    std::string formerPath() const { return path_ + ".org"; }

    /// The command that puts the former image back.
    std::string restoreCommand() const { return "mv -f " + formerPath() + " " + path_; }

    /// True if an earlier rebuild has left the good image under the former one's name.
    bool isBrokenOff() const;

    /// Bytes of the good image, wherever it is; none if there isn't one.
    std::optional<std::uint64_t> size() const;

    /// Bytes of what stands under the image's name; 0 without it.
    std::uint64_t presentSize() const;

    /// Notes that the file with the image's name is the good one. @return false if that can't be written
    bool note();

    /// Adds to the note what a rebuild that has failed leaves under the image's name. Whatever stands there later was
    /// made by somebody else, and is trusted.
    void noteFailure() const;

    /// Forgets the note, when the image can be trusted.
    void forgetNote() const;

    /// True if the file that was noted has the image's name.
    bool isUntouched() const;

    /// True if the file that was noted has the former image's name, and another, with something in it, the image's.
    bool isRebuilt() const;

    /// Puts the former image back, in place of what was written instead.
    /// @return empty on success, or why not
    std::string restore() const;

private:
    bool writeNote(const std::string& text) const;

    std::string path_;
    std::string noteFile_;
    std::string noted_;
    std::optional<std::string> left_;  // by a rebuild that has failed
};

}  // namespace kvl::provider

#endif
