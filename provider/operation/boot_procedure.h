#ifndef KVL_PROVIDER_OPERATION_BOOT_PROCEDURE_H
#define KVL_PROVIDER_OPERATION_BOOT_PROCEDURE_H

#include <string>
#include <vector>

#include "provider/operation/procedure.h"

namespace kvl::provider {

/// Follows one of the library's boot file procedures. These leave hardly any code, so what went wrong is read from
/// their trace.
class BootProcedure : public Procedure {
public:
    BootProcedure(AdapterSession& session, std::vector<ProcedureStep> steps);

    /// Which command failed and how, with what it printed last, as in "'dracut' ended with 1, saying 'no space'"; empty
    /// if none did.
    std::string failedCommand() const;

    /// True if this file could not be opened.
    bool isUnopened(const std::string& path) const;

    void takeTrace(TRACE_DBG_LEVEL level, const std::string& text) override;

private:
    AdapterSession& session_;
    std::string failed_;
    std::vector<std::string> unopened_;
};

}  // namespace kvl::provider

#endif
