#include <unistd.h>

#include "host/HostFunctions.h"

int DeleteFileA(const char* path) {
    return path != nullptr && ::unlink(path) == 0 ? 1 : 0;
}
