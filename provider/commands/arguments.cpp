#include "provider/commands/arguments.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cstdio>
#include <filesystem>
#include <regex>
#include <vector>

#include "adapter/update_families.h"
#include "provider/commands/options.h"
#include "provider/output/text_block.h"

namespace kvl::provider {
namespace {

/// What an argument looks like, for the program and for the operator.
struct Form {
    const char* pattern;
    const char* sentence;
};

constexpr Form kDeviceForm = {
    "[0-9A-Fa-f]{1,2}:[0-9A-Fa-f]{1,2}\\.[0-9A-Fa-f]{1,2}(-[0-9A-Za-z._/-]{0,64})?",
    "a device is bus:device.function in hexadecimal, such as 0b:00.1, and may go on with '-' and letters, digits, "
    "'.', '_', '/' and '-', at most 64",
};

constexpr Form kVersionForm = {
    "[0-9A-Za-z][0-9A-Za-z._+~-]{0,63}",
    "a version begins with a letter or a digit and holds letters, digits, '.', '_', '+', '~' and '-', at most 64",
};

constexpr Form kDriverForm = {
    "[0-9A-Za-z_][0-9A-Za-z_-]{0,63}",
    "a driver is the name of a kernel module: letters, digits, '_' and '-', at most 64",
};

void checkForm(const std::string& name, const Form& form, const std::string& given) {
    if (given.empty()) {
        refuseUsage(name + " is required: " + form.sentence);
    }
    if (!std::regex_match(given, std::regex(form.pattern))) {
        refuseUsage(std::string(form.sentence) + "; '" + given + "' isn't");
    }
}

/// The parser calls back also where the argument is missing, even for commands that were not chosen.
bool isAsked(const CLI::App& command) {
    return command.count() > 0 && command.get_help_ptr()->count() == 0;
}

std::string asGiven(const std::string& argument) {
    return argument;
}

void addPositional(CLI::App& command, const std::string& name, const Form& form, std::string& argument,
                   const std::string& description, std::string (*spell)(const std::string&) = asGiven) {
    const auto receive = [&command, name, form, &argument, spell](const std::string& given) {
        if (isAsked(command)) {
            checkForm(name, form, given);
            argument = spell(given);
        }
    };
    addText(command, name, receive, description, "")->required()->force_callback();
}

/// The one spelling under which a port's versions are kept, without a tail.
/// @param device  of the form of a device
std::string plainDevice(const std::string& device) {
    unsigned bus = 0;
    unsigned slot = 0;
    unsigned function = 0;
    std::sscanf(device.c_str(), "%x:%x.%x", &bus, &slot, &function);
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%02x:%02x.%x", bus, slot, function);
    return text.data();
}

void addKindOf(CLI::App& command, const std::vector<const ModuleKind*>& kinds, const ModuleKind*& kind) {
    Names names;
    for (const ModuleKind* row : kinds) {
        names.emplace_back(row->name);
    }
    const auto receive = [kinds, &kind](std::size_t place) { kind = kinds[place]; };
    addOneOf(command, "--kind", names, "|", receive, "The module")->required();
}

CLI::Option* addFamilyOption(CLI::App& command, std::string& family, const std::string& description) {
    const auto receive = [&family](std::size_t place) { family = place == 0 ? kCna : kFc; };
    return addOneOf(command, "--family", {kCna, kFc}, "|", receive, description);
}

std::string plainDirectory(const std::string& option, const std::string& given) {
    const std::string path = given.empty() ? "" : std::filesystem::absolute(given).lexically_normal().string();
    if (path.empty() || !isPlainPath(path)) {
        refuseUsage(option +
                    ": a directory's whole path holds letters, digits and '/._+-' alone, since the commands of an "
                    "update go through a shell; '" +
                    printable(path) + "' doesn't");
    }
    return path.size() > 1 && path.back() == '/' ? path.substr(0, path.size() - 1) : path;
}

CLI::Option* addDirectory(CLI::App& command, const std::string& option, std::string& directory,
                          const std::string& description) {
    const auto receive = [option, &directory](const std::string& given) { directory = plainDirectory(option, given); };
    return addText(command, option, receive, description, "DIR");
}

std::string uniqueNames() {
    Names names;
    for (const UpdateFamily& family : kUpdateFamilies) {
        names.push_back(std::string(family.uniqueName) + (family.isBeginning ? "..." : ""));
    }
    return listed(names, ", ");
}

}  // namespace

void addDevice(CLI::App& command, std::string& device) {
    addPositional(command, "DEVICE", kDeviceForm, device,
                  "PCI location of a port: bus:device.function in hexadecimal, such as 0b:00.1", plainDevice);
}

void addVersion(CLI::App& command, const std::string& name, std::string& version, const std::string& description) {
    addPositional(command, name, kVersionForm, version, description);
}

void addDriver(CLI::App& command, std::string& driver) {
    addPositional(command, "DRIVER", kDriverForm, driver, "Name of a kernel module, such as lpfc");
}

void addFamily(CLI::App& command, std::string& family, const std::string& description) {
    addFamilyOption(command, family, description);
}

void addRequiredFamily(CLI::App& command, std::string& family, const std::string& description) {
    addFamilyOption(command, family, description)->required();
}

void addKind(CLI::App& command, const ModuleKind*& kind) {
    std::vector<const ModuleKind*> kinds;
    for (const ModuleKind& row : kModuleKinds) {
        kinds.push_back(&row);
    }
    addKindOf(command, kinds, kind);
}

void addComparableKind(CLI::App& command, const ModuleKind*& kind) {
    std::vector<const ModuleKind*> kinds;
    for (const ModuleKind& row : kModuleKinds) {
        if (row.value != EMULEX_MODULE_BOOT_BIOS) {
            kinds.push_back(&row);
        }
    }
    addKindOf(command, kinds, kind);
}

void addModule(CLI::App& command, std::string& directory) {
    addDirectory(command, "--module", directory, "Directory of the update module, which holds its .zip")->required();
}

void addUniqueName(CLI::App& command, std::string& name) {
    const auto receive = [&name](const std::string& given) {
        if (findUpdateFamily(given) == nullptr || !isPlainPath(given)) {
            refuseUsage("--unique-name: '" + printable(given) + "' is none of " + uniqueNames());
        }
        name = given;
    };
    addText(command, "--unique-name", receive, "Family of the adapter: " + uniqueNames(), "NAME")->required();
}

void addScratch(CLI::App& command, std::string& directory) {
    addDirectory(command, "--scratch", directory, "Directory to unpack in, for a machine whose own has no room");
}

}  // namespace kvl::provider
