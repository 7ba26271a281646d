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

void InterfaceNames::add(const std::set<std::string>& names) {
    known_.insert(names.begin(), names.end());
    for (const std::string& name : names) {
        const bool needsStandIn = !isPlainWord(name) || realNames_.count(name) > 0;
        if (needsStandIn && standIns_.count(name) == 0) {
            const std::string standIn = freeStandIn(name);
            standIns_[name] = standIn;
            realNames_[standIn] = name;
        }
    }
}

/// The name with a sign for each byte that is not plain; a number follows where that is taken. An alias keeps the name
/// that its interface has for the library.
std::string InterfaceNames::freeStandIn(const std::string& name) const {
    const auto colon = std::min(name.size(), name.find(':'));
    std::string shape = forLibrary(name.substr(0, colon)) + name.substr(colon);
    std::replace_if(
        shape.begin(), shape.end(), [](char character) { return !isNameByte(character); }, kReplacement);
    if (!isPlainWord(shape)) {
        shape.front() = kReplacement;
    }
    std::string standIn = shape;
    for (int number = 1; known_.count(standIn) > 0 || realNames_.count(standIn) > 0; ++number) {
        standIn = shape + kReplacement + std::to_string(number);
    }
    return standIn;
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
