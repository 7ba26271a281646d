#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "archive_path.h"

namespace {

// Classes and functions.
constexpr const char* kServices[] = {
    "CTraceUtility",
    "CStringUtil",
    "CFileUtility",
    "CMutexUtil",
    "CNecessaryComponentInfo",
    "CKvlXmlNode",
    "CKvlXmlWrite",
    "DeleteFileA",
    "RemoveDirectoryA",
    "CopyFileA",
    "GetPrivateProfileIntA",
    "GetPrivateProfileStringA",
    "Sleep",
};

using Symbols = std::map<std::string, std::vector<std::string>>;

// The symbols that an object file of the archive offers to others, by object file; those that every file of a
// program may define, such as inline functions, are left out.
Symbols offeredSymbols() {
    const std::string command = std::string("nm -C --defined-only --extern-only '") + kReferenceHostArchive + "'";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> output(::popen(command.c_str(), "r"), ::pclose);
    std::string text;
    std::array<char, 4096> buffer{};
    while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), output.get()) != nullptr) {
        text += buffer.data();
    }

    Symbols symbols;
    std::string object;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        constexpr std::size_t kTypeColumn = 17;
        constexpr std::size_t kNameColumn = 19;
        if (!line.empty() && line.back() == ':') {
            object = line;
        } else if (line.size() > kNameColumn && std::string("TDBR").find(line[kTypeColumn]) != std::string::npos) {
            symbols[object].push_back(line.substr(kNameColumn));
        }
    }
    return symbols;
}

bool startsWith(const std::string& text, const std::string& start) {
    return text.rfind(start, 0) == 0;
}

// The service that a symbol belongs to, such as "Sleep(unsigned long)" or "vtable for CKvlXmlNode"; an empty text
// for none.
std::string serviceOf(const std::string& symbol) {
    const std::size_t tableOf = symbol.find(" for ");
    const std::string name = tableOf == std::string::npos ? symbol : symbol.substr(tableOf + 5);
    for (const std::string service : kServices) {
        if (name == service || startsWith(name, service + "::") || startsWith(name, service + "(")) {
            return service;
        }
    }
    return {};
}

bool isOfTheCompiler(const std::string& symbol) {
    return startsWith(symbol, "__");
}

TEST(Archive, HoldsEachServiceInOneObjectFile) {
    std::map<std::string, std::set<std::string>> objects;
    for (const auto& [object, symbols] : offeredSymbols()) {
        for (const std::string& symbol : symbols) {
            objects[serviceOf(symbol)].insert(object);
        }
    }
    for (const char* service : kServices) {
        EXPECT_EQ(objects[service].size(), 1U) << service;
    }
}

TEST(Archive, OffersNothingElseInTheObjectFileOfAService) {
    for (const auto& [object, symbols] : offeredSymbols()) {
        std::set<std::string> services;
        for (const std::string& symbol : symbols) {
            if (!isOfTheCompiler(symbol)) {
                services.insert(serviceOf(symbol));
            }
        }
        EXPECT_EQ(services.size(), 1U) << object;
    }
}

}  // namespace
