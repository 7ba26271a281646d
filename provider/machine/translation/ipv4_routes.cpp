#include "provider/machine/translation/ipv4_routes.h"

#include <arpa/inet.h>

#include <optional>

#include "provider/machine/translation/text_lines.h"

namespace kvl::provider {
namespace {

constexpr const char* kDefault = "default";
constexpr const char* kAnywhere = "0.0.0.0";

/// The columns of a line.
struct Route {
    std::string destination;
    std::string gateway;
    std::string mask;
    std::string flags;
    std::string interface;
};

constexpr std::size_t kColumns = 8;

std::optional<Route> readRoute(const std::string& line) {
    const std::vector<std::string> words = wordsOf(line);
    if (words.size() < kColumns) {
        return std::nullopt;
    }
    return Route{words[0], words[1], words[2], words[3], words[7]};
}

bool isAddress(const std::string& text) {
    in_addr address{};
    return inet_pton(AF_INET, text.c_str(), &address) == 1;
}

bool goesEverywhere(const Route& route) {
    return (route.destination == kDefault || route.destination == kAnywhere) && route.mask == kAnywhere &&
           route.flags.find('!') == std::string::npos;
}

bool hasGatewayAddress(const Route& route) {
    return route.gateway != kAnywhere && isAddress(route.gateway);
}

bool hasGatewayName(const Route& route) {
    return route.flags.find('G') != std::string::npos && !isAddress(route.gateway) && route.gateway != "*" &&
           route.gateway != "-";
}

std::string withDestination(const std::string& line, const std::string& destination) {
    return destination + line.substr(line.find_first_of(" \t"));
}

std::optional<std::string> translateLine(const std::string& line) {
    const bool saysDefault = startsWith(line, std::string(kDefault) + " ");
    const bool saysAnywhere = startsWith(line, std::string(kAnywhere) + " ");
    if (!saysDefault && !saysAnywhere) {
        return line;
    }
    const auto route = readRoute(line);
    const bool isRead = route && goesEverywhere(*route) && hasGatewayAddress(*route);
    return isRead == saysDefault ? line : withDestination(line, isRead ? kDefault : kAnywhere);
}

}  // namespace

std::string translateIpv4Routes(const std::string& output) {
    return translateLines(output, translateLine);
}

std::vector<NamedGateway> gatewaysWithoutAddress(const std::string& output) {
    std::vector<NamedGateway> gateways;
    for (const TextLine& line : linesOf(output)) {
        const auto route = readRoute(line.text);
        if (route && goesEverywhere(*route) && hasGatewayName(*route)) {
            gateways.push_back({route->interface, route->gateway});
        }
    }
    return gateways;
}

}  // namespace kvl::provider
