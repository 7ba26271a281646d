#include "tests/provider/update/made_archive.h"

#include <zip.h>

#include <memory>
#include <stdexcept>

namespace kvl::test {
namespace {

constexpr unsigned kModeShift = 16;

void need(bool isDone, const std::string& what) {
    if (!isDone) {
        throw std::runtime_error("making an archive: " + what);
    }
}

void add(zip_t* archive, const MadeEntry& entry) {
    zip_source_t* content = zip_source_buffer(archive, entry.content.data(), entry.content.size(), 0);
    need(content != nullptr, "content of " + entry.path);
    const zip_int64_t added = zip_file_add(archive, entry.path.c_str(), content, ZIP_FL_ENC_UTF_8);
    need(added >= 0, entry.path);
    const auto index = static_cast<zip_uint64_t>(added);
    need(zip_file_set_external_attributes(archive, index, 0, ZIP_OPSYS_UNIX, entry.mode << kModeShift) == 0, "mode");
    need(zip_set_file_compression(archive, index, ZIP_CM_STORE, 0) == 0, "storing");
    need(!entry.isLocked || zip_file_set_encryption(archive, index, ZIP_EM_TRAD_PKWARE, "password") == 0, "password");
}

}  // namespace

void makeArchive(const std::string& path, const std::vector<MadeEntry>& entries) {
    int error = 0;
    std::unique_ptr<zip_t, decltype(&zip_discard)> archive(zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error),
                                                           &zip_discard);
    need(archive != nullptr, path);
    for (const MadeEntry& entry : entries) {
        add(archive.get(), entry);
    }
    const bool isClosed = zip_close(archive.get()) == 0;
    need(isClosed, isClosed ? "" : zip_strerror(archive.get()));
    static_cast<void>(archive.release());
}

}  // namespace kvl::test
