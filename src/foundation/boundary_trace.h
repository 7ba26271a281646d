#ifndef KVL_FOUNDATION_BOUNDARY_TRACE_H
#define KVL_FOUNDATION_BOUNDARY_TRACE_H

#include <string>

#include "host/CTraceUtility.h"

namespace kvl {

/// The boundary lines of a static operation that writes both on every path: its name with " [START]" when this object
/// is made and with " [END]" when it goes, at level 4.
class BoundaryTrace {
public:
    /// @param moduleName  must outlive this object
    /// @param operation   class and operation
    BoundaryTrace(const std::string& moduleName, const char* operation)
        : module_(moduleName.c_str()), operation_(operation) {
        CTraceUtility::WriteDebug(module_, TRACE_DBG_BOUNDARY, "%s [START]", operation_);
    }
    ~BoundaryTrace() { CTraceUtility::WriteDebug(module_, TRACE_DBG_BOUNDARY, "%s [END]", operation_); }

    BoundaryTrace(const BoundaryTrace&) = delete;
    BoundaryTrace& operator=(const BoundaryTrace&) = delete;

private:
    const char* module_;
    const char* operation_;
};

}  // namespace kvl

#endif
