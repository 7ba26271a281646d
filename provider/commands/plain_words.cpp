#include "provider/commands/plain_words.h"

#include <CLI/CLI.hpp>
#include <filesystem>

#include "adapter/update_families.h"
#include "provider/commands/adapter_words.h"
#include "provider/output/text_block.h"

namespace kvl::provider {
namespace {

std::string plainDirectory(const std::string& option, const std::string& given) {
    const std::string path = given.empty() ? "" : std::filesystem::absolute(given).lexically_normal().string();
    if (path.empty() || !isPlainPath(path)) {
        throw CLI::ValidationError(option +
                                   ": a directory's whole path holds letters, digits and '/._+-' alone, since the "
                                   "commands of an update go through a shell; '" +
                                   printable(path) + "' doesn't");
    }
    return path.size() > 1 && path.back() == '/' ? path.substr(0, path.size() - 1) : path;
}

void addDirectory(CLI::App& command, const std::string& option, std::string& directory, const std::string& description,
                  bool isRequired) {
    const auto take = [option, &directory](const std::string& given) { directory = plainDirectory(option, given); };
    command.add_option_function<std::string>(option, take, description)->required(isRequired)->type_name("DIR");
}

std::string familyNames() {
    std::string names;
    for (const UpdateFamily& family : kUpdateFamilies) {
        names += (names.empty() ? "" : ", ") + std::string(family.uniqueName) + (family.isBeginning ? "..." : "");
    }
    return names;
}

}  // namespace

void addModule(CLI::App& command, std::string& directory) {
    addDirectory(command, "--module", directory, "Directory of the update module, which holds its .zip", true);
}

void addUniqueName(CLI::App& command, std::string& name) {
    const auto take = [&name](const std::string& given) {
        if (findUpdateFamily(given) == nullptr || !isPlainPath(given)) {
            throw CLI::ValidationError("--unique-name: '" + printable(given) + "' is none of " + familyNames());
        }
        name = given;
    };
    command.add_option_function<std::string>("--unique-name", take, "Family of the adapter: " + familyNames())
        ->required()
        ->type_name("NAME");
}

void addScratch(CLI::App& command, std::string& directory) {
    addDirectory(command, "--scratch", directory, "Directory to unpack in, for a machine whose own has no room", false);
}

}  // namespace kvl::provider
