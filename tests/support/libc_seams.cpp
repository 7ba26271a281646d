#include "tests/support/libc_seams.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>

namespace kvl::test {

LibcSeams& libc() {
    static LibcSeams seams;
    return seams;
}

namespace {

/// A test opens few files: of the descriptors only the first are looked at.
constexpr int kLookedAtDescriptors = 256;

template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// The sanitizers' run-time opens pipes too; a failure is meant for the library alone.
bool isInLibrary(const void* caller) {
    Dl_info where{};
    return dladdr(caller, &where) != 0 && std::strstr(where.dli_fname, "libkvl_DllCommon") != nullptr;
}

bool takeFailure(int& left, const void* caller) {
    if (left == 0 || !isInLibrary(caller)) {
        return false;
    }
    --left;
    errno = EAGAIN;
    return true;
}

/// A count that forked children share.
std::atomic<int>* sharedCount() {
    void* memory = mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? nullptr : new (memory) std::atomic<int>(0);
}

std::atomic<int>* const strayCloseCount = sharedCount();

bool isStandard(int descriptor) {
    return descriptor >= STDIN_FILENO && descriptor <= STDERR_FILENO;
}

/// Leaves errno alone, which the library traces.
bool isOpenHere(const char* path) {
    const int keptErrno = errno;
    bool isOpen = false;
    struct stat wanted {};
    if (stat(path, &wanted) == 0) {
        for (int descriptor = 0; descriptor < kLookedAtDescriptors && !isOpen; ++descriptor) {
            struct stat found {};
            isOpen = fstat(descriptor, &found) == 0 && found.st_dev == wanted.st_dev && found.st_ino == wanted.st_ino;
        }
    }
    errno = keptErrno;
    return isOpen;
}

std::string pathOf(int descriptor) {
    std::error_code none;
    return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor), none).string();
}

bool isRecorded(const void* caller) {
    return libc().recordsFileCalls && isInLibrary(caller);
}

}  // namespace

int strayCloses() {
    return strayCloseCount->load();
}

}  // namespace kvl::test

using kvl::test::libc;

extern "C" {

unsigned int sleep(unsigned int seconds) {
    EXPECT_EQ(seconds, 1U);
    ++libc().sleeps;
    if (libc().onSleep) {
        libc().onSleep(libc().sleeps);
    }
    return 0;
}

int system(const char* command) {
    return libc().system ? libc().system(command) : kvl::test::next<int(const char*)>("system")(command);
}

int pipe(int ends[2]) noexcept {
    return kvl::test::takeFailure(libc().failingPipes, __builtin_return_address(0))
               ? -1
               : kvl::test::next<int(int*)>("pipe")(ends);
}

pid_t fork() noexcept {
    return kvl::test::takeFailure(libc().failingForks, __builtin_return_address(0))
               ? -1
               : kvl::test::next<pid_t()>("fork")();
}

std::FILE* fdopen(int descriptor, const char* mode) noexcept {
    return kvl::test::takeFailure(libc().failingStreams, __builtin_return_address(0))
               ? nullptr
               : kvl::test::next<std::FILE*(int, const char*)>("fdopen")(descriptor, mode);
}

int fclose(std::FILE* stream) {
    // Whoever calls: a smart pointer's deleter may be the test program's own copy.
    const int result = kvl::test::next<int(std::FILE*)>("fclose")(stream);
    if (result == EOF && errno == EBADF) {
        ++*kvl::test::strayCloseCount;
    }
    return result;
}

int close(int descriptor) {
    if (kvl::test::isRecorded(__builtin_return_address(0))) {
        libc().fileCalls.push_back("close " + kvl::test::pathOf(descriptor));
    }
    // A child of a process with threads comes here too, so what follows allocates nothing.
    const int result = static_cast<int>(syscall(SYS_close, descriptor));
    const int error = errno;
    if (result != 0 && error == EBADF && !kvl::test::isStandard(descriptor) &&
        kvl::test::isInLibrary(__builtin_return_address(0))) {
        ++*kvl::test::strayCloseCount;
    }
    errno = error;
    return result;
}

/// Writes nothing through: the files of the tests live in memory.
int fsync(int descriptor) {
    if (kvl::test::isRecorded(__builtin_return_address(0))) {
        libc().fileCalls.push_back("fsync " + kvl::test::pathOf(descriptor));
    }
    return 0;
}

int unlink(const char* path) noexcept {
    if (kvl::test::isRecorded(__builtin_return_address(0))) {
        libc().fileCalls.push_back("unlink " + std::string(path));
    }
    if (kvl::test::isInLibrary(__builtin_return_address(0)) && kvl::test::isOpenHere(path)) {
        libc().deletedWhileOpen.emplace_back(path);
    }
    return kvl::test::next<int(const char*)>("unlink")(path);
}

struct if_nameindex* if_nameindex() noexcept {
    if (libc().noInterfaceIndex) {
        return nullptr;
    }
    const auto& names = libc().interfaces;
    auto* entries = static_cast<struct if_nameindex*>(std::calloc(names.size() + 1, sizeof(struct if_nameindex)));
    for (std::size_t place = 0; place < names.size(); ++place) {
        const int here = static_cast<int>(place);
        entries[place].if_index = here == libc().placeWithoutIndex ? 0 : static_cast<unsigned int>(place + 1);
        entries[place].if_name = here == libc().placeWithoutName ? nullptr : strdup(names[place].c_str());
    }
    ++libc().heldInterfaceArrays;
    return entries;
}

void if_freenameindex(struct if_nameindex* entries) noexcept {
    for (std::size_t place = 0; place < libc().interfaces.size(); ++place) {
        std::free(entries[place].if_name);
    }
    std::free(entries);
    --libc().heldInterfaceArrays;
}
}
