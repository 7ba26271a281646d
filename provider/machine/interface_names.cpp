#include "provider/machine/interface_names.h"

#include <algorithm>
#include <string_view>

#include "provider/machine/plain_command.h"

namespace kvl::provider {
namespace {

constexpr char kReplacement = '_';
constexpr std::string_view kBlanks = " \t\r\n";

bool isNameByte(char character) {
    constexpr std::string_view kBetweenNames = ",/";
    return character == '-' ||
           (isPlainWord(std::string(1, character)) && kBetweenNames.find(character) == kBetweenNames.npos);
}

bool holds(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

/// @return true if the library would drop an interface of this role by its name, or take it for one of another role
bool isMisread(const std::string& name, InterfaceRole role) {
    const bool isDropped = holds(name, "lo") || holds(name, "sit");
    switch (role) {
        case InterfaceRole::kPort:
            return isDropped || name.rfind("eth", 0) != 0 || holds(name, ".");
        case InterfaceRole::kBond:
        case InterfaceRole::kVlan:
            return isDropped || (holds(name, "eth") && !holds(name, "."));
        case InterfaceRole::kOther:
            return false;
    }
    return false;
}

const char* stemOf(InterfaceRole role) {
    return role == InterfaceRole::kPort ? "eth" : role == InterfaceRole::kBond ? "bond" : "vlan";
}

/// @return the stem with the lowest number that gives a free name
std::string firstFree(const std::string& stem, const std::function<bool(const std::string&)>& isFree) {
    int number = 0;
    while (!isFree(stem + std::to_string(number))) {
        ++number;
    }
    return stem + std::to_string(number);
}

/// The part of a word that the table may hold: all of it, or the interface in front of the colon of an alias.
std::string nameIn(const std::map<std::string, std::string>& table, const std::string& word) {
    return table.count(word) > 0 ? word : word.substr(0, word.find(':'));
}

std::string translated(const std::map<std::string, std::string>& table, const std::string& word) {
    const std::string name = nameIn(table, word);
    const auto found = table.find(name);
    return (found == table.end() ? name : found->second) + word.substr(name.size());
}

}  // namespace

void InterfaceNames::add(const std::map<std::string, InterfaceRole>& interfaces) {
    for (const auto& entry : interfaces) {
        known_.insert(entry.first);
    }
    for (const auto& [name, role] : interfaces) {
        const bool needsStandIn = !isPlainWord(name) || realNames_.count(name) > 0 || isMisread(name, role);
        if (needsStandIn && standIns_.count(name) == 0) {
            const std::string standIn = standInFor(name, role);
            standIns_[name] = standIn;
            realNames_[standIn] = name;
        }
    }
}

bool InterfaceNames::isFree(const std::string& name) const {
    return known_.count(name) == 0 && realNames_.count(name) == 0;
}

/// An alias keeps the name that its interface has for the library.
std::string InterfaceNames::standInFor(const std::string& name, InterfaceRole role) const {
    if (isMisread(name, role)) {
        return firstFree(stemOf(role), [this](const std::string& candidate) { return isFree(candidate); });
    }
    const auto colon = std::min(name.size(), name.find(':'));
    std::string shape = forLibrary(name.substr(0, colon)) + name.substr(colon);
    std::replace_if(
        shape.begin(), shape.end(), [](char character) { return !isNameByte(character); }, kReplacement);
    if (!isPlainWord(shape)) {
        shape.front() = kReplacement;
    }
    return isFree(shape)
               ? shape
               : firstFree(shape + kReplacement, [this](const std::string& candidate) { return isFree(candidate); });
}

std::string InterfaceNames::forLibrary(const std::string& name) const {
    return translated(standIns_, name);
}

std::string InterfaceNames::forMachine(const std::string& name) const {
    return translated(realNames_, name);
}

std::string InterfaceNames::textForLibrary(const std::string& text) const {
    std::string result;
    for (std::string::size_type begin = 0; begin < text.size();) {
        const auto wordBegin = std::min(text.size(), text.find_first_not_of(kBlanks, begin));
        const auto wordEnd = std::min(text.size(), text.find_first_of(kBlanks, wordBegin));
        result += text.substr(begin, wordBegin - begin) + forLibrary(text.substr(wordBegin, wordEnd - wordBegin));
        begin = wordEnd;
    }
    return result;
}

std::string InterfaceNames::textForPeople(const std::string& text,
                                          const std::function<std::string(const std::string&)>& shown) const {
    if (empty()) {
        return text;
    }
    std::string result;
    for (auto begin = text.begin(); begin != text.end();) {
        const auto wordBegin = std::find_if(begin, text.end(), isNameByte);
        const auto wordEnd = std::find_if_not(wordBegin, text.end(), isNameByte);
        const std::string word(wordBegin, wordEnd);
        const std::string name = nameIn(realNames_, word);
        result.append(begin, wordBegin);
        result += (realNames_.count(name) > 0 ? shown(forMachine(name)) : name) + word.substr(name.size());
        begin = wordEnd;
    }
    return result;
}

}  // namespace kvl::provider
