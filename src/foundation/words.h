#ifndef KVL_FOUNDATION_WORDS_H
#define KVL_FOUNDATION_WORDS_H

#include <istream>
#include <string>
#include <vector>

namespace kvl {

/// Reads the words of a listing, which white space separates.
/// @return them in order, without one that ends at the end of the text
std::vector<std::string> readWords(std::istream& text);

}  // namespace kvl

#endif
