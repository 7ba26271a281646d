#include "tests/reference_host/scratch_directory.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace kvl::test {
namespace fs = std::filesystem;

ScratchDirectory::ScratchDirectory() : path_(fs::read_symlink("/proc/self/exe").string() + "-XXXXXX") {
    if (::mkdtemp(path_.data()) == nullptr) {
        throw std::runtime_error("no scratch directory " + path_);
    }
    fs::permissions(path_, static_cast<fs::perms>(0755));
}

ScratchDirectory::~ScratchDirectory() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::vector<std::string> ScratchDirectory::entries() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(path_)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> linesOf(const std::string& path) {
    std::istringstream text(contentOf(path));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        lines.push_back(line);
    }
    return lines;
}

void lay(const std::string& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    file.close();
    if (!file) {
        throw std::runtime_error("can't write " + path);
    }
}

void layDirectory(const std::string& path) {
    fs::create_directories(path);
}

mode_t permissionsOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

}  // namespace kvl::test
