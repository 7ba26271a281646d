#include <array>
#include <cstdlib>
#include <fstream>
#include <string>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_trace.h"
#include "adapter/driver_overrides.h"
#include "adapter/update_failure.h"
#include "foundation/CCommon_Information.h"
#include "foundation/boundary_trace.h"
#include "foundation/line_search.h"
#include "foundation/shell_child.h"
#include "foundation/text.h"

using kvl::AdapterTrace;
using kvl::DriverOverride;

namespace {

constexpr const char* kDepmodCommand = "depmod -a";

/// A command that replaces the initial RAM disk of the running kernel, and how its failure is traced.
struct ImageCommand {
    const char* command;
    const char* failure;
};

// kept: with two blanks each.
constexpr std::array<ImageCommand, 2> kImageCommands = {{
    {"mv -f  /boot/initramfs-`uname -r`.img  /boot/initramfs-`uname -r`.img.org", "mv -f command error.(%d,%d)"},
    {"dracut /boot/initramfs-`uname -r`.img", "dracut command error.(%d,%d)"},
}};

/// @return false if the lines are missing and the file can't be opened
bool addOverride(const DriverOverride& row, const AdapterTrace& trace) {
    std::ifstream configuration(row.path);
    if (kvl::anyLineHolds(configuration, row.search)) {
        return true;
    }
    configuration.close();
    std::ofstream file(row.path, std::ios::app);
    if (!file.is_open()) {
        return kvl::failToOpen(row.path, trace);
    }
    file << '\n' << row.lines[0] << '\n' << row.lines[1] << '\n';
    return true;
}

bool runDepmod(const AdapterTrace& trace) {
    trace.flow("Execute depmod command by _tsystem method [%s]", kDepmodCommand);
    const int status = std::system(kDepmodCommand);
    if (status != 0) {
        trace.error("depmod -a error.(%d)", status);
        return false;
    }
    trace.flow("depmod -a ok.");
    return true;
}

bool runImageCommand(const ImageCommand& image, const AdapterTrace& trace) {
    unsigned long exitCode = 0;
    const unsigned long result =
        CCommon_Information::ExecForeignModule(image.command, "", "", &exitCode, kvl::kNoTimeout);
    if (result == kvl::kFailed || exitCode != 0) {
        // kept: a detail, not an error.
        trace.flow(image.failure, static_cast<int>(result), static_cast<int>(exitCode));
        return false;
    }
    return true;
}

}  // namespace

bool CEmulexCommon::DepmodExecute(bool be2netOverride, bool lpfcOverride, bool be2iscsiOverride,
                                  std::string moduleName) {
    const kvl::BoundaryTrace boundaries(moduleName, "CEmulexCommon::DepmodExecute()");
    const AdapterTrace trace(moduleName);
    const std::array<bool, kvl::kDriverOverrides.size()> isWanted = {be2netOverride, lpfcOverride, be2iscsiOverride};
    bool anyWanted = false;
    bool areAdded = true;
    for (std::size_t row = 0; row < kvl::kDriverOverrides.size(); ++row) {
        if (isWanted[row]) {
            anyWanted = true;
            areAdded = addOverride(kvl::kDriverOverrides[row], trace) && areAdded;
        }
    }
    return !anyWanted || (runDepmod(trace) && areAdded);
}

bool CEmulexCommon::DracutExcute(std::string moduleName) {
    const kvl::BoundaryTrace boundaries(moduleName, "CEmulexCommon::DracutExcute()");
    const AdapterTrace trace(moduleName);
    const std::string release = CCommon_Information::GetResultLine("cat /etc/redhat-release");
    if (release.empty()) {
        trace.flow("cat /etc/redhat-releas command error.");  // kept: without the last letter
    }
    if (!kvl::holds(release, "release 6")) {  // kept: a release 60 would do
        return true;
    }
    for (const ImageCommand& image : kImageCommands) {
        // kept: where the second one fails, the image stays under its new name.
        if (!runImageCommand(image, trace)) {
            return false;
        }
    }
    return true;
}
