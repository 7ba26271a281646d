#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_trace.h"
#include "foundation/exit_status.h"
#include "foundation/file_state.h"
#include "foundation/operation_trace.h"
#include "host/CStringUtil.h"

namespace {

constexpr const char* kRedirection = " > ";
constexpr int kLooks = 10;
constexpr int kFailed = -1;

/// Waits for a result file to have content, ten seconds at most.
bool waitForOutput(const std::string& resultFile) {
    for (int look = 0; look < kLooks; ++look) {
        if (kvl::hasContent(resultFile)) {
            return true;
        }
        sleep(1);
    }
    return false;
}

/// @param status  what `system` returned for the line
int judgeOutput(const std::string& line, int status) {
    const auto redirection = line.find(kRedirection);
    if (redirection == std::string::npos) {
        return status;
    }
    return waitForOutput(line.substr(redirection + std::string(kRedirection).size())) ? 0 : kFailed;
}

}  // namespace

int CEmulexCommon::ExecCommand_(std::string command, std::string moduleName) {
    const kvl::OperationTrace operation(moduleName, "static int CEmulexCommon::ExecCommand_(std::string, std::string)");
    const kvl::AdapterTrace trace(moduleName);
    // kept: the quotes inside the line go with those around it, so that a path with a blank falls apart.
    std::string line = "\"" + command + "\"";
    CStringUtil::strReplace(line, "\"", "");
    trace.flow("CEmulexCommon::ExecCommand_() [START]");
    operation.detail("ExecCommand_(%s)", line.c_str());

    const int status = std::system(line.c_str());
    int result = kFailed;
    if (kvl::exitedWithFailure(status)) {
        operation.error("[%s] command failed! (%d)", line.c_str(), errno);
    } else {
        result = judgeOutput(line, status);
        operation.leaveResult(result);
    }
    trace.flow("CEmulexCommon::ExecCommand_() [END]");
    return result;
}
