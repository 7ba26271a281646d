#include "foundation/operation_trace.h"

namespace kvl {

void OperationTrace::boundary(const char* marker, const std::string& tail) const {
    CTraceUtility::WriteDebug(module_, TRACE_DBG_BOUNDARY, "%s%s%s", marker, signature_, tail.c_str());
}

}  // namespace kvl
