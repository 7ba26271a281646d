#include "host/CFileUtility.h"

#include <fnmatch.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>
#include <vector>

#include "reference_host/install_path.h"

namespace {

namespace fs = std::filesystem;

// The entries of a directory without "." and ".."; none for a directory that can't be read.
std::vector<fs::directory_entry> entriesOf(const std::string& directory) {
    std::vector<fs::directory_entry> entries;
    std::error_code error;
    for (fs::directory_iterator entry(directory, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        entries.push_back(*entry);
    }
    return entries;
}

bool endsWith(const std::string& text, const std::string& ending) {
    return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

bool matches(const std::string& name, const std::string& pattern) {
    return name == pattern || ::fnmatch(pattern.c_str(), name.c_str(), FNM_NOESCAPE) == 0;
}

}  // namespace

std::string CFileUtility::GetInstallPath(int /*kind*/) {
    return kvl::host::installPath();
}

bool CFileUtility::CreateFolder(std::string path) {
    std::error_code error;
    fs::create_directories(path, error);
    return fs::is_directory(path, error);
}

bool CFileUtility::IsFileExist(std::string path) {
    std::error_code error;
    return fs::exists(path, error);
}

void CFileUtility::SearchFile(std::string directory, std::string pattern, std::list<std::string>* found,
                              bool /*flag*/) {
    if (found == nullptr) {
        return;
    }
    found->clear();
    for (const fs::directory_entry& entry : entriesOf(directory)) {
        std::error_code error;
        const std::string name = entry.path().filename().string();
        if (matches(name, pattern) && !entry.is_directory(error)) {
            found->push_back(name);
        }
    }
    found->sort();
}

void CFileUtility::DeleteAllFileByExtendName(std::string directory, std::string extension) {
    if (directory.empty() || extension.empty()) {
        return;
    }
    for (const fs::directory_entry& entry : entriesOf(directory)) {
        if (endsWith(entry.path().filename().string(), "." + extension)) {
            ::unlink(entry.path().c_str());  // a link itself, and never a directory
        }
    }
}
