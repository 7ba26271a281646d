#include "provider/output/json.h"

namespace kvl::provider {
namespace {

constexpr int kIndent = 2;

}  // namespace

std::string jsonText(const Json& document) {
    return document.dump(kIndent, ' ', false, Json::error_handler_t::replace) + "\n";
}

Json orNull(const std::string& text) {
    return text.empty() ? Json() : Json(text);
}

}  // namespace kvl::provider
