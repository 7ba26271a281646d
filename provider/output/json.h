#ifndef KVL_PROVIDER_OUTPUT_JSON_H
#define KVL_PROVIDER_OUTPUT_JSON_H

#include <nlohmann/json.hpp>
#include <string>

namespace kvl::provider {

/// A document for programs, whose members keep their order.
using Json = nlohmann::ordered_json;

/// The text of a document. What the tool prints needn't be UTF-8, which documents are, so what isn't is replaced.
std::string jsonText(const Json& document);

/// @return null for an empty text
Json orNull(const std::string& text);

}  // namespace kvl::provider

#endif
