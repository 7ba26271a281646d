#ifndef KVL_PROVIDER_LIBRARY_TRACE_TABLE_H
#define KVL_PROVIDER_LIBRARY_TRACE_TABLE_H

#include <string>
#include <string_view>

#include "host/CTraceUtility.h"

namespace kvl::provider {

/// What a line of the library's trace reports. The library gives hardly any codes for what goes wrong, and none for how
/// far it has come, but its trace lines are part of its contract.
enum class TraceEvent {
    kNone,

    // The command runners of the collector and of the adapter operations. The value is the command line or its result.
    kCommandBegins,
    kCommandFails,
    kCommandEnds,

    // Steps of the update procedures.
    kFolderDeletion,
    kUnpacking,
    kAdapterLookup,
    kFirmwareChoice,
    kScriptSearch,
    kUpdaterStart,
    kOverrideLines,
    kDepmodStart,
    kImageRebuild,

    kCause,          ///< Why a step failed. The detail is a sentence's end that says it.
    kFileNotOpened,  ///< The value is the path.

    // Commands of the boot file procedures that failed. The value is how.
    kDepmodFailure,
    kMoveFailure,
    kDracutFailure,

    // The check of the management tool's settings. The detail is the path of the settings file.
    kSettingsLine,  ///< The value is the line that was read.
    kSettingFound,  ///< The value begins with the setting's key.
    kSettingRight,
    kSettingWrong,
    kSettingsFailure,  ///< The file is not as a silent install left it.
    kPackageFound,
    kPackagesUnknown,
};

/// How a trace line looks that reports an event.
struct TraceRow {
    TraceEvent event;
    TRACE_DBG_LEVEL level;
    std::string_view begins;
    std::string_view ends;  ///< What stands after the value; empty where the value goes on to the line's end.
    std::string_view detail;
};

/// The only place in kvl that knows texts of the library's trace. No two rows match the same line.
struct TraceTable {
    const TraceRow* first;
    const TraceRow* last;

    const TraceRow* begin() const { return first; }
    const TraceRow* end() const { return last; }
};

TraceTable traceTable();

/// What one trace line reports.
struct TracedEvent {
    TraceEvent event = TraceEvent::kNone;
    std::string value;        ///< What stands between the row's beginning and its end.
    std::string_view detail;  ///< The row's own.
};

TracedEvent readTraceLine(TRACE_DBG_LEVEL level, std::string_view text);

/// How a command of the boot file procedures has ended, in words.
/// @param failure  an event of those that report its failure
/// @return as in "'dracut' ended with 1"
std::string describeBootFailure(const TracedEvent& failure);

}  // namespace kvl::provider

#endif
