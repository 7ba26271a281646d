#include "provider/update/module_archive.h"

#include <fnmatch.h>
#include <sys/stat.h>
#include <zip.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>

#include "adapter/error_codes.h"
#include "provider/library/adapter_failure.h"
#include "provider/library/adapter_kinds.h"
#include "provider/output/text_block.h"

namespace kvl::provider {
namespace {

namespace fs = std::filesystem;

constexpr const char* kArchiveMark = ".zip";
constexpr std::size_t kPieceSize = 65536;
constexpr const char* kAbove = "..";
constexpr unsigned kModeShift = 16;  // a Unix file's mode, in an archive's attributes

using Archive = std::unique_ptr<zip_t, decltype(&zip_discard)>;
using ArchivedFile = std::unique_ptr<zip_file_t, decltype(&zip_fclose)>;

[[noreturn]] void refuse(const std::string& why) {
    Failure failure = failureOf(kNotUnpacked);
    failure.meaning += ": " + why;
    failure.next = "get the module again from its maker";
    throw AdapterFailure(failure);
}

std::list<std::string> namesIn(const std::string& directory) {
    std::error_code error;
    std::list<std::string> names;
    for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error)) {
        names.push_back(entry->path().filename().string());
    }
    if (error) {
        throw ProviderError("the module's directory " + directory + " can't be read: " + error.message());
    }
    names.sort();
    return names;
}

std::string archiveAmong(const std::list<std::string>& names, const std::string& directory) {
    const auto found = std::find_if(names.begin(), names.end(), [](const std::string& name) {
        return name.find(kArchiveMark) != std::string::npos;
    });
    if (found == names.end()) {
        refuse(directory + " holds no .zip file");
    }
    if (!isPlainPath(*found)) {
        refuse("the name of the archive '" + printable(*found) + "' holds characters that a shell takes differently");
    }
    return *found;
}

Archive openArchive(const std::string& path) {
    int code = 0;
    Archive archive(zip_open(path.c_str(), ZIP_RDONLY | ZIP_CHECKCONS, &code), &zip_discard);
    if (!archive) {
        zip_error_t error;
        zip_error_init_with_code(&error, code);
        const std::string why = zip_error_strerror(&error);
        zip_error_fini(&error);
        refuse(path + ": " + why);
    }
    return archive;
}

bool staysInside(const std::string& name) {
    const fs::path path(name);
    return !path.empty() && !path.is_absolute() && std::find(path.begin(), path.end(), kAbove) == path.end();
}

/// The deletion of an unpacked module would fail at a link that leads nowhere.
bool isLink(zip_t* archive, zip_uint64_t index) {
    zip_uint8_t system = 0;
    zip_uint32_t attributes = 0;
    const bool isKnown = zip_file_get_external_attributes(archive, index, 0, &system, &attributes) == 0;
    return isKnown && system == ZIP_OPSYS_UNIX && S_ISLNK(attributes >> kModeShift);
}

/// Reads a file of the archive through, which compares its checksum.
void readThrough(zip_t* archive, zip_uint64_t index, const std::string& name) {
    const ArchivedFile file(zip_fopen_index(archive, index, 0), &zip_fclose);
    std::array<char, kPieceSize> piece{};
    zip_int64_t count = file ? 1 : -1;
    while (count > 0) {
        count = zip_fread(file.get(), piece.data(), piece.size());
    }
    if (count < 0) {
        refuse(name + " in the archive is damaged, or locked with a password");
    }
}

void readArchive(UpdateModule& module) {
    const Archive archive = openArchive(module.archivePath());
    const zip_int64_t count = zip_get_num_entries(archive.get(), 0);
    if (count <= 0) {
        refuse(module.archive + " is empty");
    }
    for (zip_uint64_t index = 0; index < static_cast<zip_uint64_t>(count); ++index) {
        zip_stat_t status;
        if (zip_stat_index(archive.get(), index, 0, &status) != 0) {
            refuse("an entry of " + module.archive + " can't be read");
        }
        const std::string name = status.name;
        if (!staysInside(name) || isLink(archive.get(), index)) {
            refuse(printable(name) + " in the archive is a link, or leads out of it");
        }
        readThrough(archive.get(), index, name);
        module.entries.push_back(fs::path(name).lexically_normal().string());
        module.unpackedSize += status.size;
    }
}

}  // namespace

UpdateModule lookIntoModule(const std::string& directory) {
    UpdateModule module;
    module.directory = directory;
    module.files = namesIn(directory);
    module.archive = archiveAmong(module.files, directory);
    readArchive(module);
    return module;
}

std::vector<std::string> topEntries(const UpdateModule& module, const char* pattern) {
    std::vector<std::string> found;
    std::copy_if(module.entries.begin(), module.entries.end(), std::back_inserter(found), [pattern](const auto& name) {
        return fnmatch(pattern, name.c_str(), FNM_PATHNAME | FNM_NOESCAPE) == 0;
    });
    return found;
}

Steps unpackingSteps(const UpdateModule& module, const std::string& scratch) {
    return {{{"delete " + scratch + " and make it anew"},
             TraceEvent::kFolderDeletion,
             "making " + scratch + " anew",
             Change::kNothing,
             ""},
            {{"unzip -o \"" + module.archivePath() + "\" -d \"" + scratch + "\""},
             TraceEvent::kUnpacking,
             "unpacking " + module.archive,
             Change::kNothing,
             ""}};
}

bool holdsEntry(const UpdateModule& module, const std::string& path) {
    return std::find(module.entries.begin(), module.entries.end(), path) != module.entries.end();
}

}  // namespace kvl::provider
