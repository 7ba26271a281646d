#include "provider/run/descriptor_buffer.h"

#include <unistd.h>

#include <cerrno>

namespace kvl::provider {

bool writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(descriptor, text.data(), text.size());
        if (count < 0 && errno != EINTR) {
            return false;
        }
        text.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    return true;
}

DescriptorBuffer::int_type DescriptorBuffer::overflow(int_type character) {
    const char byte = traits_type::to_char_type(character);
    const bool isEnd = traits_type::eq_int_type(character, traits_type::eof());
    return isEnd || writeAll(descriptor_, {&byte, 1}) ? traits_type::not_eof(character) : traits_type::eof();
}

std::streamsize DescriptorBuffer::xsputn(const char* text, std::streamsize size) {
    return writeAll(descriptor_, {text, static_cast<std::size_t>(size)}) ? size : 0;
}

}  // namespace kvl::provider
