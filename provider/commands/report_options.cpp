#include "provider/commands/report_options.h"

#include <algorithm>
#include <array>

#include "provider/commands/options.h"

namespace kvl::provider {
namespace {

using Places = std::vector<std::size_t>;

/// A section of the report, with its name on the command line.
struct Section {
    const char* name;
    AddSection add;
};

constexpr std::array<Section, 4> kSections = {{
    {"common", &CLanXmlWriter::SetCommonInfo},
    {"physical", &CLanXmlWriter::SetPhysicalInfo},
    {"team", &CLanXmlWriter::SetTeamInfo},
    {"vlan", &CLanXmlWriter::SetVirtualInfo},
}};

struct Group {
    const char* name;
    int number;
};

constexpr std::array<Group, 5> kGroups = {{
    {"offload", 0},
    {"pause", 1},
    {"ring", 2},
    {"coalesce", 3},
    {"vendor-items", 4},
}};

struct NamedFormat {
    const char* name;
    Format value;
};

constexpr std::array<NamedFormat, 2> kFormats = {{{"text", Format::kText}, {"xml", Format::kXml}}};

struct NamedChoice {
    const char* name;
    bool value;
};

constexpr std::array<NamedChoice, 2> kChoices = {{{"auto", true}, {"never", false}}};

constexpr const char* kHeldLockOption = "--held-lock";
constexpr const char* kPlaceInViewOption = "--place-in-view";

constexpr std::size_t kLongestVendor = 4;
constexpr std::size_t kLongestModule = 64;
constexpr const char* kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";
constexpr const char* kHexDigits = "0123456789abcdefABCDEF";

char lowerDigit(char digit) {
    return digit >= 'A' && digit <= 'F' ? static_cast<char>(digit - 'A' + 'a') : digit;
}

/// @return the identifier as lspci prints it
std::string checkedVendor(const std::string& given) {
    const bool prefixed = given.rfind("0x", 0) == 0 || given.rfind("0X", 0) == 0;
    const std::string digits = given.substr(prefixed ? 2 : 0);
    if (digits.empty() || digits.size() > kLongestVendor || digits.find_first_not_of(kHexDigits) != std::string::npos) {
        refuseUsage(
            "--vendor takes a PCI vendor ID of one to four hexadecimal digits, such as 8086, and "
            "not '" +
            given + "'");
    }
    std::string vendor = std::string(kLongestVendor - digits.size(), '0') + digits;
    std::transform(vendor.begin(), vendor.end(), vendor.begin(), lowerDigit);
    return vendor;
}

/// The module names a directory of the vendor items, so it must be one plain name.
std::string checkedModule(const std::string& module) {
    const bool plain = !module.empty() && module.size() <= kLongestModule &&
                       module.find_first_not_of(std::string(kLetters) + ".-") == std::string::npos;
    if (!plain || module.find_first_of(kLetters) != 0) {
        refuseUsage(
            "--module takes a name of at most 64 letters, digits, '_', '.' and '-' that begins "
            "with a letter, a digit or '_', and not '" +
            module + "'");
    }
    return module;
}

void addVendorOptions(CLI::App& command, ReportOptions& options) {
    const auto receive = [&options](const std::string& given) { options.lan.vendors.push_back(checkedVendor(given)); };
    CLI::Option* vendor = addRepeatable(command, "--vendor", receive,
                                        "Report the ports of this PCI vendor, such as 8086; may be repeated", "ID");
    forbidTogether(*addFlag(command, "--all-vendors", "Report the ports of all vendors that are found (default)"),
                   *vendor);
}

void addContentOptions(CLI::App& command, LanSelection& lan) {
    const auto skip = [&lan](const Places& places) {
        for (const std::size_t place : places) {
            lan.skippedGroups.push_back(kGroups[place].number);
        }
    };
    addListOf(command, "--skip", namesOf(kGroups), skip, "Leave driver settings out: " + listed(namesOf(kGroups), ","));
    const auto choose = [&lan](const Places& places) {
        lan.sections.clear();
        for (const std::size_t place : places) {
            lan.sections.push_back(kSections[place].add);
        }
    };
    addListOf(command, "--section", namesOf(kSections), choose,
              "Report these sections alone: " + listed(namesOf(kSections), ","));
    addText(
        command, "--module", [&lan](const std::string& given) { lan.module = checkedModule(given); },
        "Name in trace lines and directory of vendor items (default: kvl)", "NAME");
}

void addOutputOptions(CLI::App& command, ReportOptions& options) {
    const auto receiveFile = [&options](const std::string& file) {
        if (file.empty()) {
            refuseUsage("-o takes the name of a file");
        }
        options.outputFile = file;
    };
    addText(command, "-o,--output", receiveFile, "Write the report to this file, and one line on what it holds",
            "FILE");
    const auto receiveFormat = [&options](std::size_t place) { options.format = kFormats[place].value; };
    addOneOf(command, "--format", namesOf(kFormats), ",", receiveFormat,
             "'text' for eyes (default), 'xml' for programs");
}

void addViewOptions(CLI::App& command, ReportOptions& options) {
    const auto receive = [&options](std::size_t place) { options.translates = kChoices[place].value; };
    addOneOf(command, "--translate", namesOf(kChoices), ",", receive,
             "Hand the parser what the machine prints in the form that it\n"
             "reads (auto, default), or as it is (never)");
}

}  // namespace

void addReportOptions(CLI::App& command, ReportOptions& options) {
    for (const Section& section : kSections) {
        options.lan.sections.push_back(section.add);
    }
    addVendorOptions(command, options);
    addContentOptions(command, options.lan);
    addOutputOptions(command, options);
    addViewOptions(command, options);
    addSeconds(command, "--command-limit", options.commandLimitSeconds,
               "Longest time of one command; one that takes longer is ended and named\n"
               "(default: 20; 0 for none)");
    addRunOptions(command, options.run);
    addHiddenNumber(command, kHeldLockOption, options.heldLock);
    addHiddenText(command, kPlaceInViewOption, options.placeInView);
}

std::vector<std::string> argumentsInView(std::vector<std::string> arguments, int heldLock,
                                         const std::string& placeInView) {
    arguments.insert(arguments.end(), {kHeldLockOption, std::to_string(heldLock)});
    if (!placeInView.empty()) {
        arguments.insert(arguments.end(), {kPlaceInViewOption, placeInView});
    }
    return arguments;
}

}  // namespace kvl::provider
