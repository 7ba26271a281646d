#include "provider/machine/translation/ipv6_routes.h"

#include <arpa/inet.h>

#include <cstddef>
#include <optional>
#include <vector>

#include "provider/machine/translation/text_lines.h"

namespace kvl::provider {
namespace {

constexpr const char* kEverywhere = "::/0";
constexpr const char* kOnLink = "::";

/// Destination, next hop, flags, metric, references, use, interface.
constexpr std::size_t kColumns = 7;

bool isAddress(const std::string& text) {
    in6_addr address{};
    return inet_pton(AF_INET6, text.c_str(), &address) == 1;
}

bool isPrefix(const std::string& text) {
    const auto slash = text.find('/');
    return slash != std::string::npos && isAddress(text.substr(0, slash));
}

std::optional<std::string> translateLine(const std::string& line) {
    const std::vector<std::string> words = wordsOf(line);
    if (words.size() < 3 || !isPrefix(words[0])) {
        return line;
    }
    const std::string& nextHop = words[1];
    const std::string& flags = words[2];
    const bool isDefaultGateway = words[0] == kEverywhere && isAddress(nextHop) && flags.find('!') == std::string::npos;
    if (nextHop != kOnLink && !isDefaultGateway) {
        return std::nullopt;
    }
    return line;
}

}  // namespace

std::string translateIpv6Routes(const std::string& output) {
    return translateLines(output, translateLine);
}

std::string ipv6RoutesOf(const std::set<std::string>& interfaces, const std::string& output) {
    return translateLines(output, [&interfaces](const std::string& line) -> std::optional<std::string> {
        const std::vector<std::string> words = wordsOf(line);
        const bool isRoute = words.size() >= kColumns && isPrefix(words[0]);
        if (isRoute && interfaces.count(words[kColumns - 1]) == 0) {
            return std::nullopt;
        }
        return line;
    });
}

}  // namespace kvl::provider
