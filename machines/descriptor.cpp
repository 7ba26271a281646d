#include "machines/descriptor.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace kvl::machines {

Descriptor memoryFile(const std::string& text) {
    Descriptor file(memfd_create("kvl", MFD_CLOEXEC));
    if (file.number() < 0) {
        throw std::system_error(errno, std::generic_category(), "memfd_create");
    }
    for (std::size_t written = 0; written < text.size();) {
        const ssize_t part = ::write(file.number(), text.data() + written, text.size() - written);
        if (part < 0) {
            throw std::system_error(errno, std::generic_category(), "write");
        }
        written += static_cast<std::size_t>(part);
    }
    return file;
}

std::string readAll(int descriptor) {
    std::string text;
    std::array<char, 4096> part{};
    for (;;) {
        const ssize_t count = ::read(descriptor, part.data(), part.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return text;
        }
        text.append(part.data(), static_cast<std::size_t>(count));
    }
}

}  // namespace kvl::machines
