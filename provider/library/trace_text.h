#ifndef KVL_PROVIDER_LIBRARY_TRACE_TEXT_H
#define KVL_PROVIDER_LIBRARY_TRACE_TEXT_H

#include <string_view>

namespace kvl::provider {

/// @return true if a line of the library's trace begins so
inline bool beginsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

}  // namespace kvl::provider

#endif
