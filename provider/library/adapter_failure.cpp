#include "provider/library/adapter_failure.h"

#include <array>
#include <cctype>

#include "adapter/CEmulexCommon.h"
#include "adapter/error_codes.h"

namespace kvl::provider {
namespace {

struct Advice {
    AdapterError number;
    const char* text;
};

constexpr std::array<Advice, 18> kAdvice = {{
    {kNoDumpDirectory, "see what 'hbacmd GetDumpDirectory ADDRESS' prints for the port's address"},
    {kNoDumpFile, "see whether 'hbacmd dump ADDRESS' writes a file into its dump directory"},
    {kDumpNotCached, "see whether tmp/EMULEX/cache below the install directory can be written and the disk has room"},
    {kUnknownModuleKind, "ask for another kind"},
    {kNoVersion, "--refresh makes a new dump; an adapter without this module has no version of it"},
    {kNoTool, "install the OneCommand Manager, which brings /usr/sbin/ocmanager/hbacmd"},
    {kBadDeviceId, "give bus:device.function in hexadecimal, as 'kvl adapters' shows it"},
    {kNoSuchAdapter, "'kvl adapters' lists the adapters with their locations"},
    {kNoAdapters, "see whether the adapters' driver is loaded, and what 'hbacmd listhbas' prints"},
    {kFileNotOpened, "see whether the files in tmp/EMULEX below the install directory can be read"},
    {kDownloadFailed, "see what the tool printed, whether its services run and the adapter answers"},
    {kNotUnpacked, "see whether the module's archive is whole and 'unzip' is installed"},
    {kNoAddress, "see what 'hbacmd listhbas' prints of the adapter, and whether the family is the right one"},
    {kUnpackFolderNotDeleted, "remove the folder by hand, and see why it can't be deleted"},
    {kWrongModuleContent, "see whether the module is for this family of adapters"},
    {kUpdateFailed, "see what the updater printed"},
    {kNoCacheDirectory,
     "see whether tmp/EMULEX/cache below the install directory can be made; as root, remove what stands in its way"},
    {kNoTemporaryDirectory,
     "see whether tmp/EMULEX/temp below the install directory can be made; as root, remove what stands in its way"},
}};

constexpr const char* kGeneralAdvice = "run the command again with -v, which shows each step";

std::string adviceFor(unsigned long number) {
    for (const Advice& row : kAdvice) {
        if (row.number == number) {
            return row.text;
        }
    }
    return kGeneralAdvice;
}

/// The meanings begin sentences of their own; here they follow the program's name.
std::string withoutCapital(std::string text) {
    if (!text.empty()) {
        text.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(text.front())));
    }
    return text;
}

Failure failureBesideCodes(const char* name, const std::string& meaning, const char* next) {
    return {CEmulexCommon::GetLastErrorToChractor(), name, meaning, next};
}

}  // namespace

Failure lastFailure() {
    const unsigned long number = CEmulexCommon::GetLastError();
    const AdapterErrorRow* row = findAdapterError(number);
    if (row == nullptr) {
        return failureBesideCodes("unknown", "the library tells no reason", kGeneralAdvice);
    }
    return {CEmulexCommon::GetLastErrorToChractor(), row->name, withoutCapital(row->meaning), adviceFor(number)};
}

Failure failureOf(AdapterError code) {
    CEmulexCommon::SetLastError(code);
    return lastFailure();
}

Failure toolFailure(const std::string& meaning) {
    // A code that is there belongs to an earlier try.
    CEmulexCommon::SetLastError(0);
    return failureBesideCodes("tool-failed", meaning,
                              "run that command by hand, and see whether its services run and the adapters answer");
}

Failure formFailure(const std::string& meaning) {
    CEmulexCommon::SetLastError(0);
    return failureBesideCodes("unexpected-form", meaning,
                              "see what 'hbacmd listhbas' prints: tmp/EMULEX/temp/Listhbas.txt below the install "
                              "directory holds it");
}

Failure ownFailure(const char* name, const std::string& meaning, const std::string& next) {
    return {"", name, meaning, next};
}

std::string describe(const Failure& failure) {
    const std::string number = failure.number.empty() ? "" : " (error " + failure.number + ")";
    return failure.meaning + number + (failure.next.empty() ? "" : ": " + failure.next);
}

}  // namespace kvl::provider
