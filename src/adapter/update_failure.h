#ifndef KVL_ADAPTER_UPDATE_FAILURE_H
#define KVL_ADAPTER_UPDATE_FAILURE_H

#include <string>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_trace.h"
#include "adapter/error_codes.h"

namespace kvl {

/// Sets a code. @return false
inline bool fail(AdapterError code) {
    CEmulexCommon::SetLastError(code);
    return false;
}

/// Sets a code and traces why. @return false
template <typename... Arguments>
bool fail(AdapterError code, const AdapterTrace& trace, const char* format, const Arguments&... arguments) {
    CEmulexCommon::SetLastError(code);
    trace.error(format, arguments...);
    return false;
}

/// Sets the code of a file that can't be opened and traces its path. @return false
inline bool failToOpen(const std::string& path, const AdapterTrace& trace) {
    return fail(kFileNotOpened, trace, "Failed to open file(%s).", path);
}

}  // namespace kvl

#endif
