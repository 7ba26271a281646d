#include "foundation/file_state.h"

#include <sys/stat.h>

#include <fstream>

namespace kvl {

bool canOpen(const std::string& path) {
    return std::ifstream(path).is_open();
}

bool isThere(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

bool hasContent(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && status.st_size != 0;
}

}  // namespace kvl
