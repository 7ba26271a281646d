#include "reference_host/system_log.h"

#include <syslog.h>

#include <cstdlib>

#include "reference_host/formatted_text.h"
#include "reference_host/install_path.h"

namespace kvl::host {
namespace {

bool isFailure(const std::string& message) {
    const std::string id = message.substr(0, message.find(':'));
    return id.size() >= 2 && id.compare(id.size() - 2, 2, "_F") == 0;
}

}  // namespace

void writeSystemLog(const std::string& message) {
    const char* wanted = std::getenv("KVL_SYSTEM_LOG");
    if ((wanted != nullptr && std::string(wanted) == "no") || isInstallationTemporary()) {
        return;
    }
    syslog(LOG_USER | (isFailure(message) ? LOG_ERR : LOG_NOTICE), "%s", onOneLine(message).c_str());
}

}  // namespace kvl::host
