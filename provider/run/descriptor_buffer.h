#ifndef KVL_PROVIDER_RUN_DESCRIPTOR_BUFFER_H
#define KVL_PROVIDER_RUN_DESCRIPTOR_BUFFER_H

#include <streambuf>
#include <string_view>

namespace kvl::provider {

/// Writes all of a text. @return false if the descriptor doesn't take it
bool writeAll(int descriptor, std::string_view text);

/// A stream's buffer that keeps nothing back: what comes is written to a descriptor at once.
class DescriptorBuffer : public std::streambuf {
public:
    /// @param descriptor  stays the caller's
    explicit DescriptorBuffer(int descriptor) : descriptor_(descriptor) {}

protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;

private:
    const int descriptor_;
};

}  // namespace kvl::provider

#endif
