#include "provider/machine/translation/ifcfg_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <optional>
#include <vector>

#include "provider/machine/translation/shell_assignments.h"
#include "provider/machine/translation/text_lines.h"

namespace kvl::provider {
namespace {

using Value = std::optional<std::string>;
using Variables = std::map<std::string, std::string>;

Value valueOf(const Variables& variables, const std::string& name) {
    const auto found = variables.find(name);
    return found == variables.end() ? Value() : found->second;
}

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return text;
}

constexpr std::array<const char*, 5> kFalseWords = {"no", "false", "n", "f", "0"};

Value plainOnboot(const Value& value) {
    const std::string word = lower(value.value_or("yes"));
    const bool isFalse = std::find(kFalseWords.begin(), kFalseWords.end(), word) != kFalseWords.end();
    return isFalse ? "no" : "yes";
}

Value plainBootproto(const Value& value) {
    return value == "dhcp" || value == "bootp" ? "dhcp" : "none";
}

/// An address stays as it is written; anything that can be none would only be quoted again, so it is left out.
Value plainAddress(const Value& value) {
    const auto isPlain = [](unsigned char character) {
        return std::isalnum(character) != 0 ||
               std::string(":.-%_").find(static_cast<char>(character)) != std::string::npos;
    };
    if (!value || value->empty() || !std::all_of(value->begin(), value->end(), isPlain)) {
        return std::nullopt;
    }
    return value;
}

bool readsOnboot(const Value& value) {
    return value && (value == "yes" || plainOnboot(value) == "no");
}

bool readsBootproto(const Value& value) {
    return value && value != "bootp";
}

bool readsAddress(const Value& value) {
    return value.value_or("") == plainAddress(value).value_or("");
}

/// A key that the library reads.
struct Key {
    const char* name;
    Value (*plain)(const Value& value);  ///< what the shell has, in the form for the library
    bool (*reads)(const Value& value);   ///< the library takes the shell's value as the shell does
};

using Keys = std::vector<Key>;

const Keys& ifcfgKeys() {
    static const Keys keys = {
        {"ONBOOT", plainOnboot, readsOnboot},           {"BOOTPROTO", plainBootproto, readsBootproto},
        {"HWADDR", plainAddress, readsAddress},         {"MACADDR", plainAddress, readsAddress},
        {"IPV6_DEFAULTGW", plainAddress, readsAddress},
    };
    return keys;
}

const Keys& networkKeys() {
    static const Keys keys = {{"IPV6_DEFAULTGW", plainAddress, readsAddress}};
    return keys;
}

bool holdsKey(const std::string& line, const Key& key) {
    return line.find(std::string(key.name) + "=") != std::string::npos;
}

/// @return the value that the library finds
Value readByLibrary(const std::vector<TextLine>& lines, const Key& key) {
    for (const TextLine& line : lines) {
        std::string text = line.text.substr(0, kLongestLine);
        if (holdsKey(text, key)) {
            text.erase(std::remove(text.begin(), text.end(), '"'), text.end());
            const std::string::size_type begin = std::string(key.name).size() + 1;
            return begin < text.size() ? text.substr(begin) : "";
        }
    }
    return std::nullopt;
}

std::string translate(const std::string& file, const Keys& keys) {
    std::vector<TextLine> lines = linesOf(file);
    const Variables variables = shellAssignments(file);
    const bool isReadRight = std::all_of(keys.begin(), keys.end(), [&lines, &variables](const Key& key) {
        const Value value = valueOf(variables, key.name);
        return key.reads(value) && readByLibrary(lines, key).value_or("") == value.value_or("");
    });
    if (isReadRight) {
        return textOf(lines);
    }
    const auto isOfKey = [&keys](const TextLine& line) {
        return std::any_of(keys.begin(), keys.end(), [&line](const Key& key) { return holdsKey(line.text, key); });
    };
    lines.erase(std::remove_if(lines.begin(), lines.end(), isOfKey), lines.end());
    for (TextLine& line : lines) {
        line.ended = true;
    }
    for (const Key& key : keys) {
        if (const Value plain = key.plain(valueOf(variables, key.name))) {
            lines.push_back({std::string(key.name) + "=" + *plain});
        }
    }
    return textOf(lines);
}

}  // namespace

std::string translateIfcfg(const std::string& file) {
    return translate(file, ifcfgKeys());
}

std::string translateNetworkFile(const std::string& file) {
    return translate(file, networkKeys());
}

IfcfgOwner ownerOf(const std::string& file) {
    const Variables variables = shellAssignments(file);
    return {valueOf(variables, "DEVICE").value_or(""), valueOf(variables, "HWADDR").value_or("")};
}

}  // namespace kvl::provider
