#include "reference_host/install_path.h"

#include <cstdlib>

namespace kvl::host {

std::string installPath() {
    const char* configured = std::getenv("KVL_INSTALL_PATH");
    std::string path = configured != nullptr && *configured != '\0' ? configured : "/opt/tarvenn/kvl";
    path.erase(path.find_last_not_of('/') + 1);
    return path;
}

}  // namespace kvl::host
