#include "provider/report/report_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>

namespace kvl::provider {
namespace {

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
    LegacyCommands value;
};

constexpr std::array<NamedChoice, 2> kChoices = {{{"auto", LegacyCommands::kAuto}, {"never", LegacyCommands::kNever}}};

constexpr std::size_t kLongestVendor = 4;
constexpr int kLongestCommandLimit = 24 * 60 * 60;
constexpr std::size_t kLongestModule = 64;
constexpr const char* kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";
constexpr const char* kHexDigits = "0123456789abcdefABCDEF";

template <typename Table>
std::string namesIn(const Table& table) {
    std::string names;
    for (const auto& row : table) {
        names += (names.empty() ? "" : ",") + std::string(row.name);
    }
    return names;
}

/// Looks the names of a list up in a table. @return the rows in the table's order, each of them once
template <typename Table>
std::vector<const typename Table::value_type*> findRows(const char* option, const Table& table,
                                                        const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        const auto hasName = [&](const auto& row) { return row.name == name; };
        if (std::none_of(table.begin(), table.end(), hasName)) {
            throw CLI::ValidationError(std::string(option) + ": '" + name + "' is none of " + namesIn(table));
        }
    }
    std::vector<const typename Table::value_type*> rows;
    for (const auto& row : table) {
        if (std::find(names.begin(), names.end(), row.name) != names.end()) {
            rows.push_back(&row);
        }
    }
    return rows;
}

char lowerDigit(char digit) {
    return digit >= 'A' && digit <= 'F' ? static_cast<char>(digit - 'A' + 'a') : digit;
}

/// @return the identifier as lspci prints it
std::string checkedVendor(const std::string& given) {
    const bool prefixed = given.rfind("0x", 0) == 0 || given.rfind("0X", 0) == 0;
    const std::string digits = given.substr(prefixed ? 2 : 0);
    if (digits.empty() || digits.size() > kLongestVendor || digits.find_first_not_of(kHexDigits) != std::string::npos) {
        throw CLI::ValidationError(
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
        throw CLI::ValidationError(
            "--module takes a name of at most 64 letters, digits, '_', '.' and '-' that begins "
            "with a letter, a digit or '_', and not '" +
            module + "'");
    }
    return module;
}

void addVendorOptions(CLI::App& command, ReportOptions& options) {
    const auto takeVendors = [&options](const std::vector<std::string>& vendors) {
        for (const std::string& vendor : vendors) {
            options.vendors.push_back(checkedVendor(vendor));
        }
    };
    CLI::Option* vendor = command.add_option_function<std::vector<std::string>>(
        "--vendor", takeVendors, "Report the ports of this PCI vendor, such as 8086; may be repeated");
    vendor->type_name("ID")->allow_extra_args(false);
    command.add_flag("--all-vendors", "Report the ports of all vendors that are found (default)")->excludes(vendor);
}

void addContentOptions(CLI::App& command, ReportOptions& options) {
    const auto takeGroups = [&options](const std::vector<std::string>& names) {
        for (const Group* group : findRows("--skip", kGroups, names)) {
            options.skippedGroups.push_back(group->number);
        }
    };
    command
        .add_option_function<std::vector<std::string>>("--skip", takeGroups,
                                                       "Leave driver settings out: " + namesIn(kGroups))
        ->delimiter(',')
        ->type_name("LIST")
        ->allow_extra_args(false);
    const auto takeSections = [&options](const std::vector<std::string>& names) {
        options.sections = findRows("--section", kSections, names);
    };
    command
        .add_option_function<std::vector<std::string>>("--section", takeSections,
                                                       "Report these sections alone: " + namesIn(kSections))
        ->delimiter(',')
        ->type_name("LIST")
        ->allow_extra_args(false);
    const auto takeModule = [&options](const std::string& name) { options.module = checkedModule(name); };
    command
        .add_option_function<std::string>("--module", takeModule,
                                          "Name in trace lines and directory of vendor items (default: kvl)")
        ->type_name("NAME");
}

void addOutputOptions(CLI::App& command, ReportOptions& options) {
    const auto takeFile = [&options](const std::string& file) {
        if (file.empty()) {
            throw CLI::ValidationError("-o takes the name of a file");
        }
        options.outputFile = file;
    };
    command
        .add_option_function<std::string>("-o,--output", takeFile,
                                          "Write the report to this file, and one line on what it holds")
        ->type_name("FILE");
    const auto takeFormat = [&options](const std::string& name) {
        options.format = findRows("--format", kFormats, {name}).front()->value;
    };
    command.add_option_function<std::string>("--format", takeFormat, "'text' for eyes (default), 'xml' for programs")
        ->type_name("text|xml");
}

void addViewOptions(CLI::App& command, ReportOptions& options) {
    const auto takeChoice = [&options](const std::string& name) {
        options.legacyCommands = findRows("--legacy-commands", kChoices, {name}).front()->value;
    };
    command
        .add_option_function<std::string>("--legacy-commands", takeChoice,
                                          "Where this machine's commands print newer forms than the parser\n"
                                          "reads: run in a private view of it with the older ones (auto,\n"
                                          "default), or don't (never)")
        ->type_name("auto|never");
}

}  // namespace

void addReportOptions(CLI::App& command, ReportOptions& options) {
    for (const Section& section : kSections) {
        options.sections.push_back(&section);
    }
    addVendorOptions(command, options);
    addContentOptions(command, options);
    addOutputOptions(command, options);
    addViewOptions(command, options);
    command
        .add_option("--command-limit", options.commandLimitSeconds,
                    "Longest time of one command; one that takes longer is ended and named\n"
                    "(default: 20; 0 for none)")
        ->type_name("SECONDS")
        ->check(CLI::Range(0, kLongestCommandLimit).description(""));
    addRunOptions(command, options.run);
}

}  // namespace kvl::provider
