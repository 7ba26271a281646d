#include "provider/adapters/adapter_words.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <regex>
#include <stdexcept>

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
    "'.', '_', '/' and '-'",
};

constexpr Form kVersionForm = {
    "[0-9A-Za-z][0-9A-Za-z._+~-]{0,63}",
    "a version begins with a letter or a digit and holds letters, digits, '.', '_', '+', '~' and '-', at most 64",
};

constexpr Form kDriverForm = {
    "[0-9A-Za-z_][0-9A-Za-z_-]{0,63}",
    "a driver is the name of a kernel module: letters, digits, '_' and '-', at most 64",
};

void addWord(CLI::App& command, const std::string& name, const Form& form, std::string& word,
             const std::string& description) {
    const auto take = [form, &word](const std::string& given) {
        if (!std::regex_match(given, std::regex(form.pattern))) {
            throw CLI::ValidationError(std::string(form.sentence) + "; '" + given + "' isn't");
        }
        word = given;
    };
    command.add_option_function<std::string>(name, take, description)->required()->type_name("");
}

std::string kindNames() {
    std::string names;
    for (const ModuleKind& kind : kModuleKinds) {
        names += (names.empty() ? "" : "|") + std::string(kind.name);
    }
    return names;
}

const ModuleKind* checkedKind(const std::string& given) {
    for (const ModuleKind& kind : kModuleKinds) {
        if (given == kind.name) {
            return &kind;
        }
    }
    throw CLI::ValidationError("--kind: '" + given + "' is none of " + kindNames());
}

}  // namespace

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
            "PCI location of a port: bus:device.function in hexadecimal, such as 0b:00.1");
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

void addKind(CLI::App& command, const ModuleKind*& kind, const std::string& description) {
    const auto take = [&kind](const std::string& given) { kind = checkedKind(given); };
    command.add_option_function<std::string>("--kind", take, description)->required()->type_name(kindNames());
}

}  // namespace kvl::provider
