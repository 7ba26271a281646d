#include <algorithm>
#include <array>
#include <optional>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_trace.h"
#include "adapter/error_codes.h"
#include "adapter/working_tree.h"
#include "host/CStringUtil.h"

using kvl::AdapterTrace;

namespace {

constexpr const char* kFieldSeparator = ".";
constexpr long kFieldDots = 3;
constexpr const char* kDigits = "0123456789";

using Fields = std::list<std::string>;

/// The outcome of a comparison; nothing for a version of the wrong form.
using Comparison = std::optional<int>;

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

/// @return 1 if the second number is the greater, -1 if it is the lesser, and sets the code of a difference then
int compareNumbers(long first, long second) {
    if (first == second) {
        return 0;
    }
    CEmulexCommon::SetLastError(kvl::kVersionsDiffer);
    return first > second ? -1 : 1;
}

// ---- Four fields ----

/// Checks a version of four fields: digits, and a tail after the digits of the last.
bool isFourNumbers(const std::string& version) {
    const auto other = std::find_if(version.begin(), version.end(),
                                    [](char character) { return character != '.' && !isDigit(character); });
    if (other == version.end()) {
        return true;
    }
    return std::count(version.begin(), other, '.') == kFieldDots && isDigit(*(other - 1));
}

Comparison compareFourFields(std::string version1, std::string version2, const AdapterTrace& /*trace*/) {
    const Fields fields1 = CStringUtil::Split(version1, kFieldSeparator);
    const Fields fields2 = CStringUtil::Split(version2, kFieldSeparator);
    if (fields1.size() != kFieldDots + 1 || fields2.size() != kFieldDots + 1 || !isFourNumbers(version1) ||
        !isFourNumbers(version2)) {
        return std::nullopt;
    }
    int result = 0;
    for (auto field1 = fields1.begin(), field2 = fields2.begin(); result == 0 && field1 != fields1.end();
         ++field1, ++field2) {
        result = compareNumbers(CStringUtil::TStringToNumber(*field1), CStringUtil::TStringToNumber(*field2));
    }
    return result;
}

// ---- Two fields, as in 2.72a2 ----

struct FirmwareVersion {
    long seg1 = 0;
    long seg2 = 0;
    std::string seg3;
    long seg4 = 0;
};

bool isTwoFields(std::string version) {
    return CStringUtil::Split(version, kFieldSeparator).size() == 2 &&
           std::count(version.begin(), version.end(), '.') == 1;
}

/// @return nothing if the second field isn't a number, other characters, and a number
std::optional<FirmwareVersion> parseFirmware(std::string version) {
    const Fields fields = CStringUtil::Split(version, kFieldSeparator);
    const std::string& second = fields.back();
    const auto letters = second.find_first_not_of(kDigits);
    if (letters == 0 || letters == std::string::npos) {
        return std::nullopt;
    }
    const auto number = second.find_first_of(kDigits, letters + 1);
    if (number == std::string::npos) {
        return std::nullopt;
    }
    FirmwareVersion parsed;
    parsed.seg1 = CStringUtil::TStringToNumber(fields.front());
    parsed.seg2 = CStringUtil::TStringToNumber(second.substr(0, letters));
    parsed.seg3 = second.substr(letters, number - letters);
    parsed.seg4 = CStringUtil::TStringToNumber(second.substr(number));
    return parsed;
}

std::optional<FirmwareVersion> parseAndTrace(const std::string& version, const char* format,
                                             const AdapterTrace& trace) {
    std::optional<FirmwareVersion> parsed = parseFirmware(version);
    if (parsed) {
        trace.flow(format, static_cast<int>(parsed->seg1), static_cast<int>(parsed->seg2), parsed->seg3,
                   static_cast<int>(parsed->seg4));
    }
    return parsed;
}

Comparison compareFirmware(std::string version1, std::string version2, const AdapterTrace& trace) {
    if (!isTwoFields(version1) || !isTwoFields(version2)) {
        return std::nullopt;
    }
    const auto first = parseAndTrace(version1, "Version1 Seg1 = (%d), seg2 =(%d), seg3=(%s), seg4=(%d)", trace);
    if (!first) {
        return std::nullopt;
    }
    const auto second = parseAndTrace(version2, "Version2 Seg1 = (%d), seg2 =(%d), seg3=(%s), seg4=(%d)", trace);
    if (!second) {
        return std::nullopt;
    }
    if (const int result = compareNumbers(first->seg1, second->seg1)) {
        return result;
    }
    if (const int result = compareNumbers(first->seg2, second->seg2)) {
        return result;
    }
    // kept: not reduced to 1 or -1, and without a code.
    if (const int result = second->seg3.compare(first->seg3)) {
        return result;
    }
    return compareNumbers(first->seg4, second->seg4);
}

// ---- Choice of the form ----

Comparison compareNothing(std::string /*version1*/, std::string /*version2*/, const AdapterTrace& /*trace*/) {
    return 0;
}

using Comparer = Comparison (*)(std::string, std::string, const AdapterTrace&);

Comparer comparerOf(EMULEX_MODULE_KIND kind, const std::string& moduleName) {
    switch (kind) {
        case EMULEX_MODULE_FIRMWARE:
            return kvl::isFc(moduleName) ? compareFirmware : compareFourFields;
        case EMULEX_MODULE_DRIVER:
        case EMULEX_MODULE_OCM:
        case EMULEX_MODULE_UNVERSIONED:
        case EMULEX_MODULE_COMPARE_ONLY:
            return compareFourFields;
        case EMULEX_MODULE_BOOT_BIOS:
            break;
    }
    return compareNothing;
}

void reportBadVersion(const std::string& moduleName) {
    CEmulexCommon::SetLastError(kvl::kBadVersion);
    const char* message = kvl::isCna(moduleName) ? "MSGID_EMULEX_0020_F" : "MSGID_EMULEX_FC_0019_F";
    CTraceUtility::WriteTrace(moduleName.c_str(), message, CEmulexCommon::GetLastErrorToChractor().c_str());
}

}  // namespace

int CEmulexCommon::CheckVendorVersion(std::string version1, std::string version2, EMULEX_MODULE_KIND kind,
                                      std::string moduleName) {
    const AdapterTrace trace(moduleName);
    trace.boundary("CEmulexCommon::CheckVendorVersion() [Start]");
    trace.flow("Version1=[%s],Version2=[%s]", version1, version2);
    const Comparison comparison = comparerOf(kind, moduleName)(version1, version2, trace);
    if (comparison) {
        trace.boundary("Return=[%d]", *comparison);
    } else {
        reportBadVersion(moduleName);
        trace.error("Return=[%d]", 0);
    }
    trace.boundary("CEmulexCommon::CheckVendorVersion() [END]");
    return comparison.value_or(0);
}
