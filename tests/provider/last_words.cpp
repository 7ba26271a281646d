#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

/// Loaded in front of libc by tests of a program that is killed: it dies when it is about to write a text that the
/// environment names, before anything else happens.
extern "C" ssize_t write(int descriptor, const void* data, size_t size) {
    const char* last = getenv("KVL_LAST_WORDS");
    if (last != nullptr && memmem(data, size, last, strlen(last)) != nullptr) {
        raise(SIGKILL);
    }
    return syscall(SYS_write, descriptor, data, size);
}
