#ifndef KVL_ADAPTER_ADAPTER_TRACE_H
#define KVL_ADAPTER_ADAPTER_TRACE_H

#include <string>

#include "host/CTraceUtility.h"

namespace kvl {

/// The trace lines of one adapter operation, under the module name that it was called with. The arguments of a format
/// are numbers and texts; a format without arguments is a text as it is.
class AdapterTrace {
public:
    /// @param moduleName  must outlive this object
    explicit AdapterTrace(const std::string& moduleName) : module_(moduleName.c_str()) {}

    template <typename... Arguments>
    void flow(const char* format, const Arguments&... arguments) const {
        write(TRACE_DBG_FLOW, format, arguments...);
    }
    template <typename... Arguments>
    void error(const char* format, const Arguments&... arguments) const {
        write(TRACE_DBG_ERROR, format, arguments...);
    }
    template <typename... Arguments>
    void boundary(const char* format, const Arguments&... arguments) const {
        write(TRACE_DBG_BOUNDARY, format, arguments...);
    }
    template <typename... Arguments>
    void warning(const char* format, const Arguments&... arguments) const {
        write(TRACE_DBG_WARNING, format, arguments...);
    }

private:
    template <typename... Arguments>
    void write(TRACE_DBG_LEVEL level, const char* format, const Arguments&... arguments) const {
        if constexpr (sizeof...(arguments) == 0) {
            CTraceUtility::WriteDebug(module_, level, "%s", format);
        } else {
            CTraceUtility::WriteDebug(module_, level, format, plain(arguments)...);
        }
    }
    static const char* plain(const std::string& text) { return text.c_str(); }
    static const char* plain(const char* text) { return text; }
    static int plain(int number) { return number; }

    const char* module_;
};

}  // namespace kvl

#endif
