#ifndef KVL_PROVIDER_LIBRARY_SILENT_INSTALL_H
#define KVL_PROVIDER_LIBRARY_SILENT_INSTALL_H

#include <string>
#include <vector>

#include "host/CTraceUtility.h"

namespace kvl::provider {

/// Why the management tool is not as a silent install left it.
enum class SilentInstallFault { kNone, kWrongLine, kMissingLines, kPackage, kFileNotOpened, kPackagesUnknown };

struct SilentInstallFinding {
    SilentInstallFault fault = SilentInstallFault::kNone;
    std::string file;                   ///< that is wrong or could not be opened
    std::string line;                   ///< the wrong one, as it stands in the file
    std::vector<std::string> expected;  ///< the lines that belong there
};

/// Learns from the trace what the library's check of a silent install has found: its answer alone doesn't say.
class SilentInstallFollower {
public:
    void follow(TRACE_DBG_LEVEL level, const std::string& text);

    const SilentInstallFinding& finding() const { return finding_; }

private:
    void noteMissingLines(const std::string& path);

    SilentInstallFinding finding_;
    std::string line_;                // that was read last
    std::string key_;                 // of a setting, which was found in it
    std::vector<std::string> right_;  // keys of the right lines
};

}  // namespace kvl::provider

#endif
