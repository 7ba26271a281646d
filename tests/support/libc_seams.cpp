#include "tests/support/libc_seams.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <sys/types.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace kvl::test {

LibcSeams& libc() {
    static LibcSeams seams;
    return seams;
}

namespace {

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

}  // namespace

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
