#ifndef KVL_TESTS_SUPPORT_LIBC_SEAMS_H
#define KVL_TESTS_SUPPORT_LIBC_SEAMS_H

#include <functional>
#include <string>
#include <vector>

namespace kvl::test {

/// The calls of libc that the test program supplies itself. The library finds these first.
struct LibcSeams {
    /// How often `sleep` was called; each call must ask for one second.
    int sleeps = 0;
    /// Called at each `sleep` with its number, 1 for the first.
    std::function<void(int)> onSleep;
    /// Takes the place of `system`; none: libc's.
    std::function<int(const char*)> system;
    /// How many calls of `pipe` fail from now on.
    int failingPipes = 0;
    /// How many calls of `fork` fail from now on.
    int failingForks = 0;
    /// How many calls of `fdopen` fail from now on.
    int failingStreams = 0;
    /// Has the library's calls of `close`, `fsync` and `unlink` recorded, only of this process.
    bool recordsFileCalls = false;
    /// Those calls, each as "CALL PATH".
    std::vector<std::string> fileCalls;
    /// Files that this process still had open when the library deleted them.
    std::vector<std::string> deletedWhileOpen;
    /// What `if_nameindex` gives; the index of an entry is its place, from 1.
    std::vector<std::string> interfaces;
    /// Places in `interfaces`, from 0, whose entry has the index 0, or has no name; -1: none.
    int placeWithoutIndex = -1;
    int placeWithoutName = -1;
    /// `if_nameindex` gives null.
    bool noInterfaceIndex = false;
    /// Arrays of `if_nameindex` that were not given back.
    int heldInterfaceArrays = 0;
};

LibcSeams& libc();

/// How often the library, its forked children included, closed a descriptor that was not open, since the program's
/// start, by `close` or as a stream's by `fclose`. Closing a standard descriptor doesn't count: a child closes them
/// whether they are open or not.
int strayCloses();

}  // namespace kvl::test

#endif
