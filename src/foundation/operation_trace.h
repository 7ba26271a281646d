#ifndef KVL_FOUNDATION_OPERATION_TRACE_H
#define KVL_FOUNDATION_OPERATION_TRACE_H

#include <string>

#include "host/CTraceUtility.h"

namespace kvl {

/// The trace lines of one operation: "[ENTER] " and "[LEAVE] " with the operation's
/// signature at level 4, and notes that carry the signature in front.
class OperationTrace {
public:
    /// @param moduleName  must outlive this object
    /// @param signature   the operation's full signature as the language prints it, without "%"
    OperationTrace(const std::string& moduleName, const char* signature)
        : module_(moduleName.c_str()), signature_(signature) {}

    void enter() const { boundary("[ENTER] ", ""); }
    /// With one blank and a value after the signature.
    void enter(const std::string& value) const { boundary("[ENTER] ", " " + value); }
    void leave() const { boundary("[LEAVE] ", ""); }
    /// With one blank and a value after the signature.
    void leave(const std::string& value) const { boundary("[LEAVE] ", " " + value); }
    /// With ", rc=" and the number after the signature.
    void leaveResult(int result) const { boundary("[LEAVE] ", ", rc=" + std::to_string(result)); }

    /// A line at level 1: the signature, one blank, and the format filled with the arguments. A format without
    /// arguments is a text as it is.
    template <typename... Arguments>
    void detail(const char* format, Arguments... arguments) const {
        write(TRACE_DBG_FLOW, format, arguments...);
    }

    /// The same at level 2.
    template <typename... Arguments>
    void error(const char* format, Arguments... arguments) const {
        write(TRACE_DBG_ERROR, format, arguments...);
    }

    /// A line at level 32: the format filled with the arguments, without the signature.
    template <typename... Arguments>
    void notice(const char* format, Arguments... arguments) const {
        if constexpr (sizeof...(arguments) == 0) {
            CTraceUtility::WriteDebug(module_, TRACE_DBG_NOTICE, "%s", format);
        } else {
            CTraceUtility::WriteDebug(module_, TRACE_DBG_NOTICE, format, arguments...);
        }
    }

private:
    template <typename... Arguments>
    void write(TRACE_DBG_LEVEL level, const char* format, Arguments... arguments) const {
        const std::string line = behindSignature(format);
        if constexpr (sizeof...(arguments) == 0) {
            CTraceUtility::WriteDebug(module_, level, "%s", line.c_str());
        } else {
            CTraceUtility::WriteDebug(module_, level, line.c_str(), arguments...);
        }
    }
    void boundary(const char* marker, const std::string& tail) const;
    std::string behindSignature(const char* format) const { return std::string(signature_) + " " + format; }

    const char* module_;
    const char* signature_;
};

}  // namespace kvl

#endif
