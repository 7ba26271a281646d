#ifndef KVL_TESTS_MACHINES_RECORDING_TEXT_H
#define KVL_TESTS_MACHINES_RECORDING_TEXT_H

#include <string>
#include <vector>

namespace kvl::test {

bool beginsWith(const std::string& text, const std::string& start);

std::vector<std::string> linesOf(const std::string& text);

/// What follows the first occurrence of the key, up to the end of that line.
std::string valueBehind(const std::string& key, const std::string& text);

}  // namespace kvl::test

#endif
