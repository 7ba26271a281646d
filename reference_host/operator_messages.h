#ifndef KVL_REFERENCE_HOST_OPERATOR_MESSAGES_H
#define KVL_REFERENCE_HOST_OPERATOR_MESSAGES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kvl::host {

/// One row of operator_messages.tsv.
struct OperatorMessage {
    std::string_view id;
    std::size_t argumentCount;
    std::string_view text;  ///< With one "%s" for each argument.
};

/// @return the message with this identifier, or null if the table has none
const OperatorMessage* findOperatorMessage(std::string_view id);

/// @return `text` with each "%s" replaced by the next argument, or by nothing when the arguments run out
std::string filledText(std::string_view text, const std::vector<std::string>& arguments);

}  // namespace kvl::host

#endif
