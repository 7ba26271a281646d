#include "provider/operation/record.h"

#include <cstring>

#include "host/CTraceUtility.h"

namespace kvl::provider {

void OperationRecord::begun(const std::string& with) const {
    boundary("[START]");
    CTraceUtility::WriteDebug(subject_.module.c_str(), TRACE_DBG_FLOW, "%s", with.c_str());
    message("MSGID_KVL_UPDATE_BEGUN_I", with);
}

void OperationRecord::done(const std::string& how) const {
    message("MSGID_KVL_UPDATE_DONE_I", how);
    boundary("[END]");
}

void OperationRecord::skipped(const std::string& why) const {
    message("MSGID_KVL_UPDATE_SKIPPED_I", why);
}

void OperationRecord::failed(const std::string& why) const {
    CTraceUtility::WriteDebug(subject_.module.c_str(), TRACE_DBG_ERROR, "%s", why.c_str());
    message("MSGID_KVL_UPDATE_FAILED_F", why);
    boundary("[END]");
}

void OperationRecord::signalled(int signal) const {
    if (signal != 0) {
        message("MSGID_KVL_UPDATE_SIGNAL_I", strsignal(signal));
    }
}

void OperationRecord::message(const char* id, const std::string& text) const {
    CTraceUtility::WriteTrace(subject_.module.c_str(), id, subject_.name.c_str(), text.c_str());
}

void OperationRecord::boundary(const char* marker) const {
    CTraceUtility::WriteDebug(subject_.module.c_str(), TRACE_DBG_BOUNDARY, "kvl update of %s %s", subject_.name.c_str(),
                              marker);
}

}  // namespace kvl::provider
