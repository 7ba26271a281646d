#include <fstream>

#include "foundation/CCommon_Information.h"
#include "foundation/boot_configuration.h"
#include "foundation/boundary_trace.h"
#include "foundation/text.h"
#include "host/CTraceUtility.h"

namespace {

constexpr int kEfiBoot = 1;
constexpr int kOtherBoot = 2;
constexpr const char* kEfiDirectory = "/sys/firmware/efi";
constexpr const char* kEfiBootConfiguration = "/boot/efi/EFI/redhat/grub.conf";
constexpr const char* kBootConfiguration = "/boot/grub/grub.conf";

constexpr int kRunningKernelsRamDisk = 0;
constexpr int kOtherRamDisk = 1;
constexpr int kUnknownRamDisk = 255;

constexpr int kExpectedDriver = 0;
constexpr int kUnjudgedDriver = 1;
constexpr int kDriverBesideOtherRamDisk = 256;

constexpr std::string::size_type kPackageCommandLimit = 255;
constexpr std::string::size_type kDriverCommandLimit = 4127;

/// The trace lines of a walk through the boot loader's configuration.
/// @param module  must outlive them
kvl::BootConfigurationEvents traced(const char* module) {
    kvl::BootConfigurationEvents events;
    events.defaultNumber = [module](int number) {
        CTraceUtility::WriteDebug(module, TRACE_DBG_FLOW, "iDefault=%d", number);
    };
    events.noDefaultNumber = [module] {
        CTraceUtility::WriteDebug(module, TRACE_DBG_ERROR, "Failed to get default number.");
    };
    events.found = [module](const char* word, const std::string& line) {
        CTraceUtility::WriteDebug(module, TRACE_DBG_FLOW, "found %s line(%s)", word, line.c_str());
    };
    return events;
}

int judgeRamDisk(const std::string& ramDisk, const std::string& kernel, const char* module) {
    const std::string initrd = "initrd-" + kernel + ".img";
    const std::string initramfs = "initramfs-" + kernel + ".img";
    CTraceUtility::WriteDebug(module, TRACE_DBG_FLOW, "tsInitRamName(%s), tcBufInitrd(%s), tcBufInitramfs(%s)",
                              ramDisk.c_str(), initrd.c_str(), initramfs.c_str());
    return ramDisk == initrd || ramDisk == initramfs ? kRunningKernelsRamDisk : kOtherRamDisk;
}

}  // namespace

int CCommon_Information::CheckBootEnvironment() {
    return MyPathFileExists(kEfiDirectory) ? kEfiBoot : kOtherBoot;
}

std::string CCommon_Information::GetKernelVersion() {
    return GetResultLine("uname -r");
}

std::string CCommon_Information::GetRPMInfo(const std::string& package) {
    // kept: a longer command is cut and run.
    return GetResultLine(kvl::formatText("rpm -q %s", package.c_str()).substr(0, kPackageCommandLimit));
}

std::string CCommon_Information::GetArchitectureInfo(const std::string& moduleName) {
    const kvl::BoundaryTrace trace(moduleName, "CCommon_Information::GetArchitectureInfo");
    return GetResultLine("uname -m");
}

int CCommon_Information::CheckRAMDISK(const std::string& moduleName) {
    const kvl::BoundaryTrace trace(moduleName, "CCommon_Information::CheckRAMDISK");
    const char* const module = moduleName.c_str();
    const std::string kernel = GetKernelVersion();
    if (kernel.empty()) {
        CTraceUtility::WriteDebug(module, TRACE_DBG_ERROR, "GetKernelVersion() error.");
        return kUnknownRamDisk;
    }
    const char* const path = CheckBootEnvironment() == kEfiBoot ? kEfiBootConfiguration : kBootConfiguration;
    std::ifstream file(path);
    if (!file.is_open()) {
        CTraceUtility::WriteDebug(module, TRACE_DBG_ERROR, "File open error.(%s)", path);
        return kUnknownRamDisk;
    }
    kvl::BootConfiguration configuration(file, traced(module));
    std::string title;
    if (!configuration.findDefaultTitle(title)) {
        return kUnknownRamDisk;
    }
    CTraceUtility::WriteDebug(module, TRACE_DBG_FLOW, "target title line(%s)", title.c_str());
    std::string ramDisk;
    if (!configuration.findRamDisk(ramDisk)) {
        return kUnknownRamDisk;
    }
    return judgeRamDisk(ramDisk, kernel, module);
}

int CCommon_Information::DriverFileCheck(const std::string& version, const std::string& driver,
                                         const std::string& moduleName) {
    // kept: a longer command is cut and run.
    const std::string command = kvl::formatText("modinfo -F version %s", driver.c_str()).substr(0, kDriverCommandLimit);
    const std::string installed = GetResultLine(command);
    if (version.empty() || installed.empty()) {
        return kUnjudgedDriver;
    }
    if (installed == version) {
        return kExpectedDriver;
    }
    return CheckRAMDISK(moduleName) == kOtherRamDisk ? kDriverBesideOtherRamDisk : kUnjudgedDriver;
}
