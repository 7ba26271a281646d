#include "provider/library/adapter_tool.h"

#include <fcntl.h>
#include <unistd.h>

#include "adapter/CEmulexCommon.h"
#include "provider/commands/adapter_words.h"
#include "provider/library/adapter_failure.h"

namespace kvl::provider {

std::string needTool() {
    CEmulexCommon::SetLastError(0);
    std::string tool;
    if (!CEmulexCommon::GetOCMManagerInstallPath(&tool, kCna)) {
        throw AdapterFailure(lastFailure());
    }
    if (faccessat(AT_FDCWD, tool.c_str(), X_OK, AT_EACCESS) != 0) {
        throw AdapterFailure(ownFailure("tool-not-executable", tool + " can't be executed",
                                        "as root, see its mode, or install the OneCommand Manager anew"));
    }
    return tool;
}

}  // namespace kvl::provider
