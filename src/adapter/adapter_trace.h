#ifndef KVL_ADAPTER_ADAPTER_TRACE_H
#define KVL_ADAPTER_ADAPTER_TRACE_H

#include <string>

#include "host/CTraceUtility.h"

namespace kvl {

/// The trace lines of one adapter operation, under the module name that it was called with. The arguments of a format
/// are numbers and texts.
class AdapterTrace {
public:
    /// @param moduleName  must outlive this object
    explicit AdapterTrace(const std::string& moduleName) : module_(moduleName.c_str()) {}

    template <typename... Arguments>
    void flow(const char* format, const Arguments&... arguments) const {
        CTraceUtility::WriteDebug(module_, TRACE_DBG_FLOW, format, plain(arguments)...);
    }
    template <typename... Arguments>
    void error(const char* format, const Arguments&... arguments) const {
        CTraceUtility::WriteDebug(module_, TRACE_DBG_ERROR, format, plain(arguments)...);
    }
    template <typename... Arguments>
    void boundary(const char* format, const Arguments&... arguments) const {
        CTraceUtility::WriteDebug(module_, TRACE_DBG_BOUNDARY, format, plain(arguments)...);
    }
    template <typename... Arguments>
    void warning(const char* format, const Arguments&... arguments) const {
        CTraceUtility::WriteDebug(module_, TRACE_DBG_WARNING, format, plain(arguments)...);
    }

private:
    static const char* plain(const std::string& text) { return text.c_str(); }
    static const char* plain(const char* text) { return text; }
    static int plain(int number) { return number; }

    const char* module_;
};

}  // namespace kvl

#endif
