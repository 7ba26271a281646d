#include <unistd.h>

#include "host/HostFunctions.h"

int RemoveDirectoryA(const char* path) {
    return path != nullptr && ::rmdir(path) == 0 ? 1 : 0;
}
