#ifndef KVL_PROVIDER_LIBRARY_TOOL_CHECK_WATCH_H
#define KVL_PROVIDER_LIBRARY_TOOL_CHECK_WATCH_H

#include <string>
#include <vector>

#include "provider/run/adapter_session.h"

namespace kvl::provider {

/// What keeps the management tool from being as a silent install left it.
enum class ToolCheckReason { kNone, kWrongLine, kMissingLines, kPackage, kFileNotOpened, kRpmFailed };

struct ToolCheckFinding {
    ToolCheckReason reason = ToolCheckReason::kNone;
    std::string file;                   ///< that is wrong or could not be opened
    std::string line;                   ///< the wrong one, as it stands in the file
    std::vector<std::string> expected;  ///< the lines that belong there
};

/// Learns the reason from the library's trace, whose lines are part of its contract: the answer alone doesn't tell.
class ToolCheckWatch : public ProcedureWatch {
public:
    void takeTrace(TRACE_DBG_LEVEL level, const std::string& text) override;
    void takePause(unsigned long) override {}

    const ToolCheckFinding& finding() const { return finding_; }

private:
    void takeFlow(const std::string& text);
    void takeError(const std::string& text);

    ToolCheckFinding finding_;
    std::string line_;                // that was read last
    std::string key_;                 // of a setting, which was found in it
    std::vector<std::string> right_;  // keys of the right lines
};

}  // namespace kvl::provider

#endif
