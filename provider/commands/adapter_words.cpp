#include "provider/commands/adapter_words.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <regex>
#include <stdexcept>
#include <vector>

namespace kvl::provider {
namespace {

/// A kind of word: what it looks like, for the program and for the operator.
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

void checkWord(const std::string& name, const Form& form, const std::string& given) {
    if (given.empty()) {
        throw CLI::ValidationError(name + " is required: " + form.sentence);
    }
    if (!std::regex_match(given, std::regex(form.pattern))) {
        throw CLI::ValidationError(std::string(form.sentence) + "; '" + given + "' isn't");
    }
}

/// The parser calls back also where the word is missing, even for commands that were not chosen.
bool isAsked(const CLI::App& command) {
    return command.count() > 0 && command.get_help_ptr()->count() == 0;
}

std::string asGiven(const std::string& word) {
    return word;
}

void addWord(CLI::App& command, const std::string& name, const Form& form, std::string& word,
             const std::string& description, std::string (*spell)(const std::string&) = asGiven) {
    const auto take = [&command, name, form, &word, spell](const std::string& given) {
        if (isAsked(command)) {
            checkWord(name, form, given);
            word = spell(given);
        }
    };
    command.add_option_function<std::string>(name, take, description)->required()->type_name("")->force_callback();
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

/// Kinds of which a command takes some.
using Kinds = std::vector<const ModuleKind*>;

std::string namesOf(const Kinds& kinds) {
    std::string names;
    for (const ModuleKind* kind : kinds) {
        names += (names.empty() ? "" : "|") + std::string(kind->name);
    }
    return names;
}

const ModuleKind* checkedKind(const Kinds& kinds, const std::string& given) {
    for (const ModuleKind* kind : kinds) {
        if (given == kind->name) {
            return kind;
        }
    }
    throw CLI::ValidationError("--kind: '" + given + "' is none of " + namesOf(kinds));
}

void addKindOf(CLI::App& command, const Kinds& kinds, const ModuleKind*& kind) {
    const auto take = [kinds, &kind](const std::string& given) { kind = checkedKind(kinds, given); };
    command.add_option_function<std::string>("--kind", take, "The module")->required()->type_name(namesOf(kinds));
}

}  // namespace

bool isPlainPath(const std::string& path) {
    return path.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._+-") ==
           std::string::npos;
}

bool isPlainAddress(const std::string& address) {
    return address.find_first_not_of("0123456789ABCDEFabcdef:-") == std::string::npos;
}

const ModuleKind& moduleKind(EMULEX_MODULE_KIND value) {
    const auto* found = std::find_if(std::begin(kModuleKinds), std::end(kModuleKinds),
                                     [value](const ModuleKind& kind) { return kind.value == value; });
    if (found == std::end(kModuleKinds)) {
        throw std::logic_error("a kind of module that no adapter tells the version of");
    }
    return *found;
}

void addDevice(CLI::App& command, std::string& device) {
    addWord(command, "DEVICE", kDeviceForm, device,
            "PCI location of a port: bus:device.function in hexadecimal, such as 0b:00.1", plainDevice);
}

void addVersion(CLI::App& command, const std::string& name, std::string& version, const std::string& description) {
    addWord(command, name, kVersionForm, version, description);
}

void addDriver(CLI::App& command, std::string& driver) {
    addWord(command, "DRIVER", kDriverForm, driver, "Name of a kernel module, such as lpfc");
}

CLI::Option* addFamily(CLI::App& command, std::string& family, const std::string& description) {
    const auto take = [&family](const std::string& given) {
        if (given != kCna && given != kFc) {
            throw CLI::ValidationError("--family: '" + given + "' is none of cna|fc");
        }
        family = given;
    };
    return command.add_option_function<std::string>("--family", take, description)->type_name("cna|fc");
}

void addKind(CLI::App& command, const ModuleKind*& kind) {
    Kinds kinds;
    for (const ModuleKind& row : kModuleKinds) {
        kinds.push_back(&row);
    }
    addKindOf(command, kinds, kind);
}

void addComparableKind(CLI::App& command, const ModuleKind*& kind) {
    Kinds kinds;
    for (const ModuleKind& row : kModuleKinds) {
        if (row.value != EMULEX_MODULE_BOOT_BIOS) {
            kinds.push_back(&row);
        }
    }
    addKindOf(command, kinds, kind);
}

}  // namespace kvl::provider
