#include "foundation/words.h"

namespace kvl {

std::vector<std::string> readWords(std::istream& text) {
    std::vector<std::string> words;
    std::string word;
    // kept: a word that the text ends with, without a line feed, doesn't count.
    while (text >> word && !text.eof()) {
        words.push_back(word);
    }
    return words;
}

}  // namespace kvl
