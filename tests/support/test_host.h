#ifndef KVL_TESTS_SUPPORT_TEST_HOST_H
#define KVL_TESTS_SUPPORT_TEST_HOST_H

#include <functional>
#include <string>
#include <vector>

namespace kvl::test {

using Lines = std::vector<std::string>;

/// The host that the tests load the library with. Its trace and its Sleep are records; the other services are those of
/// the reference host.
class TestHost {
public:
    static void forget();

    /// Every debug trace line as "LEVEL TEXT". The error number after "command failed!" depends on what ran before,
    /// so it reads "(errno)".
    static Lines trace();
    /// The lines with the error numbers that were traced.
    static Lines exactTrace();
    /// Every debug trace line as "MODULE LEVEL TEXT".
    static Lines moduleTrace();
    /// Every numbered operator message as "MODULE ID", followed by each of its arguments after a blank.
    static Lines operatorMessages();
    /// The modules that traced, each once.
    static Lines modules();
    /// What the host's Sleep was asked for, in milliseconds.
    static std::vector<unsigned long> sleeps();
    /// The paths that `DeleteFileA` was called with; the calls go on to the file system.
    static Lines deletions();
    /// The paths that `RemoveDirectoryA` was called with; the calls go on to the file system.
    static Lines removals();
    /// Has `DeleteFileA` call this with the path after each call, until the next `forget`.
    static void onDeletion(std::function<void(const char*)> call);
    /// Has the host's Sleep call this, once for each call, until the next `forget`.
    static void onSleep(std::function<void()> call);
    /// Has each debug trace line call this, as "LEVEL TEXT", until the next `forget`.
    static void onTrace(std::function<void(const std::string&)> call);
};

}  // namespace kvl::test

#endif
