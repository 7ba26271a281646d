#include <cstdlib>
#include <fstream>
#include <locale>

#include "foundation/CCommon_Information.h"
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

bool isLetterOrDigit(char character) {
    return std::isalnum(character, std::locale::classic());
}

/// Walks the boot loader's configuration file.
class BootConfiguration {
public:
    BootConfiguration(const std::string& path, const std::string& moduleName)
        : file_(path), module_(moduleName.c_str()) {}

    bool isOpen() const { return file_.is_open(); }

    /// Walks to the title line of the default entry.
    /// @return false if there is none
    bool findDefaultTitle(std::string& line);

    /// Walks to the next line that names a RAM disk, be it in this entry or in a later one.
    /// @param ramDisk  receives the name without the "/" in front
    /// @return false if there is none
    bool findRamDisk(std::string& ramDisk);

private:
    bool readDefaultNumber(std::string line, int& number) const;
    bool isEntryLine(const std::string& line, const char* word) const;

    std::ifstream file_;
    const char* module_;
};

bool BootConfiguration::findDefaultTitle(std::string& line) {
    int defaultNumber = -1;
    int titles = 0;
    while (std::getline(file_, line)) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        // kept: a title above the default line isn't counted.
        if (defaultNumber == -1) {
            if (kvl::holds(line, "default=") && !readDefaultNumber(line, defaultNumber)) {
                return false;
            }
        } else if (isEntryLine(line, "title") && titles++ == defaultNumber) {
            return true;
        }
    }
    return false;
}

bool BootConfiguration::readDefaultNumber(std::string line, int& number) const {
    // kept: the number stands behind the line's first "=", whatever that belongs to.
    CCommon_Information::MyStrTok(&line, '=');
    char* end = nullptr;
    number = static_cast<int>(std::strtoul(line.c_str(), &end, 10));
    CTraceUtility::WriteDebug(module_, TRACE_DBG_FLOW, "iDefault=%d", number);
    if (end == line.c_str()) {
        CTraceUtility::WriteDebug(module_, TRACE_DBG_ERROR, "Failed to get default number.");
        return false;
    }
    return true;
}

bool BootConfiguration::findRamDisk(std::string& ramDisk) {
    const std::string word = "initrd";
    for (std::string line; std::getline(file_, line);) {
        // kept: neither a comment nor the next title ends or hides the search.
        if (!isEntryLine(line, word.c_str())) {
            continue;
        }
        auto start = line.find(word) + word.size();
        while (start < line.size() && !isLetterOrDigit(line[start])) {
            ++start;
        }
        ramDisk = kvl::upTo(line.substr(start), ' ');
        return true;
    }
    return false;
}

/// @return true if the line holds the word, and neither letter nor digit in front of it
bool BootConfiguration::isEntryLine(const std::string& line, const char* word) const {
    const auto found = line.find(word);
    if (found == std::string::npos) {
        return false;
    }
    CTraceUtility::WriteDebug(module_, TRACE_DBG_FLOW, "found %s line(%s)", word, line.c_str());
    for (std::string::size_type place = 0; place < found; ++place) {
        if (isLetterOrDigit(line[place])) {
            return false;
        }
    }
    return true;
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
    BootConfiguration configuration(path, moduleName);
    if (!configuration.isOpen()) {
        CTraceUtility::WriteDebug(module, TRACE_DBG_ERROR, "File open error.(%s)", path);
        return kUnknownRamDisk;
    }
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
