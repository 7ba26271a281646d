#ifndef KVL_REFERENCE_HOST_TRACE_LOG_H
#define KVL_REFERENCE_HOST_TRACE_LOG_H

#include <string>

#include "host/CTraceUtility.h"

namespace kvl::host {

/// Where the debug trace goes and what it takes.
struct TraceSettings {
    std::string file;     ///< The trace file.
    unsigned levels = 0;  ///< The TRACE_DBG_LEVEL bits that the file takes.
};

/// Reads KVL_TRACE_FILE (else "log/kvl.log" in the install directory) and KVL_TRACE_LEVELS, a decimal number
/// (else errors and warnings).
TraceSettings traceSettingsOfEnvironment();

/// Reads the environment again. The process does so by itself at its first line.
void reloadTraceSettings();

/// @return true if a line of this level has a reader: the file takes it or an observer watches. A line without one
/// needn't be formatted.
bool wantsLevel(TRACE_DBG_LEVEL level);

/// Hands a debug line to the observer, and to the file if the file takes its level.
void recordDebugLine(const std::string& module, TRACE_DBG_LEVEL level, const std::string& text) noexcept;

/// Writes an operator message to the file, whatever levels that takes.
void recordOperatorMessage(const std::string& module, const std::string& text) noexcept;

}  // namespace kvl::host

#endif
