#ifndef KVL_REFERENCE_HOST_SYSTEM_LOG_H
#define KVL_REFERENCE_HOST_SYSTEM_LOG_H

#include <string>

namespace kvl::host {

/// Writes an operator message to the system log, unless the environment variable KVL_SYSTEM_LOG is "no": as an error if
/// the identifier that it begins with ends in "_F", as a notice otherwise.
/// @param message  the identifier, ": " and the text; one line is made of it
void writeSystemLog(const std::string& message);

}  // namespace kvl::host

#endif
