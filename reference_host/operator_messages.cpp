#include "reference_host/operator_messages.h"

namespace kvl::host {
namespace {

constexpr OperatorMessage kMessages[] = {
#include "operator_messages.inc"
};

}  // namespace

const OperatorMessage* findOperatorMessage(std::string_view id) {
    for (const OperatorMessage& message : kMessages) {
        if (message.id == id) {
            return &message;
        }
    }
    return nullptr;
}

std::string filledText(std::string_view text, const std::vector<std::string>& arguments) {
    constexpr std::string_view kPlace = "%s";
    std::string filled;
    std::size_t used = 0;
    for (std::size_t place = text.find(kPlace); place != std::string_view::npos; place = text.find(kPlace)) {
        filled += text.substr(0, place);
        if (used < arguments.size()) {
            filled += arguments[used++];
        }
        text.remove_prefix(place + kPlace.size());
    }
    filled += text;
    return filled;
}

}  // namespace kvl::host
