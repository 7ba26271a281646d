#include "provider/update/override_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "provider/output/text_block.h"
#include "provider/provider_error.h"

namespace kvl::provider {
namespace {

[[noreturn]] void refuse(const std::string& sentence) {
    throw ProviderError(sentence);
}

std::vector<std::string> linesIn(const char* path) {
    std::vector<std::string> lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

void requireAccess(const char* path) {
    struct stat status {};
    if (stat(path, &status) != 0) {
        return;  // it will be made
    }
    if (!S_ISREG(status.st_mode)) {
        refuse(std::string(path) + " is no file: remove it");
    }
    if (access(path, R_OK | W_OK) != 0) {
        refuse(std::string(path) + " can't be read and written: " + std::strerror(errno));
    }
}

}  // namespace

std::vector<std::string> missingLines(const DriverOverride& file) {
    const std::vector<std::string> present = linesIn(file.path);
    std::vector<std::string> missing;
    for (const char* line : file.lines) {
        if (std::find(present.begin(), present.end(), line) == present.end()) {
            missing.push_back(std::string("'") + line + "'");
        }
    }
    return missing;
}

void requireOverrideFile(const DriverOverride& file) {
    requireAccess(file.path);
    const std::vector<std::string> missing = missingLines(file);
    if (missing.empty()) {
        return;
    }
    for (const std::string& line : linesIn(file.path)) {
        if (line.find(file.search) != std::string::npos) {
            refuse(std::string(file.path) + " has the line '" + printable(line) + "' and lacks " + joined(missing) +
                   ", and nothing is added to a file that names '" + file.search +
                   "': take that line out, or add the others by hand");
        }
    }
}

}  // namespace kvl::provider
