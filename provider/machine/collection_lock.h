#ifndef KVL_PROVIDER_MACHINE_COLLECTION_LOCK_H
#define KVL_PROVIDER_MACHINE_COLLECTION_LOCK_H

#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>

#include "reference_host/file_descriptor.h"

namespace kvl::provider {

/// The file that a collection locks: one at a time for each user, since two would write to the same result files. It
/// lies in a directory that nobody else can enter, so that no other user can hold it: root's below /run, another user's
/// below /run/user or in /tmp.
std::string collectionLockFile();

/// The right to collect, for as long as the object lives.
class CollectionLock {
public:
    /// How the lock waits: `begin` is called once, with the process that holds the lock (0 if unknown), and `pause`
    /// between two attempts.
    struct Waiting {
        std::function<void(pid_t holder)> begin;
        std::function<void()> pause;
    };

    /// Takes the lock of a file, which is made with its directory if it isn't there.
    /// @param longestPauses  how many pauses to make before giving up
    /// @throws ProviderError if it is given up, or the file can't be used
    static CollectionLock take(const std::string& file, unsigned long longestPauses, const Waiting& waiting);

    /// The lock that the program which started this one holds and has handed down.
    /// @param number  the descriptor that it named
    /// @return nothing if that is no lock of this file
    static std::optional<CollectionLock> handedDown(const std::string& file, int number);

    /// Lets the programs that this process starts share the lock.
    /// @return the descriptor by which they have it
    int handDown() const;

    /// Has every command that is started from now on hold the lock too. It is free when this object goes, whatever
    /// still runs. But if this process dies first, the commands that it left running keep the lock.
    void shareWithCommands();

    /// Has those commands keep the lock after the end of this object, too.
    void leaveToCommands() { isShared_ = false; }

    CollectionLock(CollectionLock&&) = default;
    CollectionLock& operator=(CollectionLock&&) = default;
    ~CollectionLock();

private:
    explicit CollectionLock(host::FileDescriptor file, bool notes) : file_(std::move(file)), notes_(notes) {}

    host::FileDescriptor file_;
    bool notes_;
    bool isShared_ = false;
};

}  // namespace kvl::provider

#endif
