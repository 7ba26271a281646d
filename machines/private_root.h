#ifndef KVL_MACHINES_PRIVATE_ROOT_H
#define KVL_MACHINES_PRIVATE_ROOT_H

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "machines/descriptor.h"

namespace kvl::machines {

/// A private root could not be made, or an operation needs one and there is none. The text says what to do.
class PrivateRootError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A file or directory of the outer machine that is seen inside, at its own path.
struct Bind {
    std::string path;
    bool writable = false;
};

struct PrivateRootOptions {
    std::vector<Bind> binds;
    /// Variables beside PATH, LC_ALL and HOME. Nothing of the outer environment is inherited.
    std::map<std::string, std::string> environment;
    /// Directory that becomes / and keeps its state between runs, made if it isn't there. Empty: / is an empty file
    /// system in memory, gone with the last process.
    std::string keptRoot;
    /// Recording (see machines/README.md) that is laid down before the program starts. Empty: none.
    std::string recording;
    /// Open descriptor that the command lines without a recording are written to, one a line, when the program has
    /// ended; needs a recording. -1: nowhere.
    int missingReport = -1;
    std::string workingDirectory = "/";
};

/// A root file system of its own, made with bubblewrap, for running programs that call commands and read files by
/// absolute path. Inside there are the outer machine's libraries (read-only), dash as /bin/sh, a few ordinary tools
/// (busybox), /dev, /tmp, the provider's temporary directory, and nothing else but the binds: every other command is a
/// missing program until it is laid down. /proc is an ordinary directory; the real one is /.proc. There is no network,
/// no capability, and no way to the files of the outer machine but the binds.
///
/// Needs no privilege, and gives none: the program runs as the caller.
class PrivateRoot {
public:
    /// Throws PrivateRootError if bubblewrap, dash or busybox is missing, or a bind or the recording isn't there.
    explicit PrivateRoot(PrivateRootOptions options);

    /// The bubblewrap command that runs the program: its path, then its arguments. It names descriptors of this object
    /// and so works in this process alone, and as long as this object lives.
    std::vector<std::string> commandLine(const std::vector<std::string>& program) const;

    /// Runs the program inside, with the caller's standard streams, and waits for its end.
    /// Returns its exit status, or 128 and the signal that ended it.
    /// Throws PrivateRootError if the private root could not be made or the program is not in it.
    int run(const std::vector<std::string>& program) const;

    /// Replaces the calling process by the program inside. Returns only by throwing PrivateRootError.
    [[noreturn]] void exec(const std::vector<std::string>& program) const;

private:
    struct DataFile {
        std::string path;
        unsigned mode;
        Descriptor content;
    };

    void addLibraries(std::vector<std::string>& arguments) const;
    void addLayout(std::vector<std::string>& arguments) const;
    void addLink(std::vector<std::string>& arguments, const std::string& path, const std::string& target) const;
    void addCallersWishes(std::vector<std::string>& arguments) const;
    void handDescriptorsOn() const;
    bool isKept(const std::string& path) const;

    PrivateRootOptions options_;
    std::string bubblewrap_;
    std::string shell_;
    std::string tools_;
    std::vector<DataFile> dataFiles_;
};

/// True for a directory that was / of a private root, and holds its state.
bool isKeptRoot(const std::string& directory);

/// True in a process that runs inside a private root.
bool insidePrivateRoot();

/// Makes /proc/PID name the calling process, and does the same for each of its later forks. The sanitizers' run-time
/// looks there; nothing else needs it. To be called inside, once.
void linkOwnProcess();

}  // namespace kvl::machines

#endif
