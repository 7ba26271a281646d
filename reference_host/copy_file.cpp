#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "host/HostFunctions.h"
#include "reference_host/atomic_file.h"
#include "reference_host/file_descriptor.h"

namespace {

using kvl::host::AtomicFile;
using kvl::host::FileDescriptor;

constexpr mode_t kPermissionBits = 0777;

bool copyContent(int source, AtomicFile& target) {
    std::array<char, 65536> buffer{};
    for (;;) {
        const ssize_t count = ::read(source, buffer.data(), buffer.size());
        if (count == 0) {
            return true;
        }
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 || !target.write(buffer.data(), static_cast<std::size_t>(count))) {
            return false;
        }
    }
}

bool copyFile(const char* source, const char* target, AtomicFile::Existing existing) {
    // Without O_NONBLOCK the opening of a named pipe would wait for a writer.
    const FileDescriptor file(::open(source, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return false;
    }
    AtomicFile copy(target, S_IRUSR | S_IWUSR);
    return copyContent(file.number(), copy) && copy.setPermissions(status.st_mode & kPermissionBits) &&
           copy.commit(existing);
}

}  // namespace

int CopyFileA(const char* source, const char* target, int failIfExists) {
    if (source == nullptr || target == nullptr) {
        return 0;
    }
    const auto existing = failIfExists != 0 ? AtomicFile::Existing::kKeep : AtomicFile::Existing::kReplace;
    return copyFile(source, target, existing) ? 1 : 0;
}
