#ifndef KVL_TESTS_PROVIDER_DOCUMENTS_DOCUMENT_H
#define KVL_TESTS_PROVIDER_DOCUMENTS_DOCUMENT_H

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kvl::test {

/// A table of a document, with its cells as they are written.
struct DocumentTable {
    std::string heading;  ///< the nearest one above
    std::vector<std::string> titles;
    std::vector<std::vector<std::string>> rows;

    bool has(const std::string& title) const;
    /// Throws std::out_of_range if the table has no such column.
    const std::string& cell(std::size_t row, const std::string& title) const;
};

/// A Markdown document of docs/, as far as it promises what the program prints.
struct Document {
    std::vector<DocumentTable> tables;
    std::vector<std::vector<std::string>> blocks;  ///< the lines of each code block
};

/// @param name  of the file, such as "updates.md"
Document readDocument(const std::string& name);

/// The table below a heading whose first column has this title. Throws std::out_of_range if there is none.
const DocumentTable& tableBelow(const Document& document, const std::string& heading, const std::string& title);

/// The texts of a cell in code marks that are sentences, which is those with a blank.
std::vector<std::string> sentencesIn(const std::string& cell);

/// All texts of a cell in code marks that hold no blank.
std::vector<std::string> wordsIn(const std::string& cell);

/// The decimal numbers of a cell.
std::set<int> numbersIn(const std::string& cell);

/// Turns documented sentences into regular expressions of the whole text that is printed. Capital words such as DIR
/// and CAUSE stand for what differs from case to case, "..." for any words. A sentence that begins with "..." goes on
/// from anywhere in the first one of its cell; the first one of a cell, from the end of any sentence above.
class SentencePatterns {
public:
    /// @param causes  what CAUSE stands for: the sentences of the document
    explicit SentencePatterns(const std::vector<std::string>& causes = {});

    /// @param above  the sentences of the rows above
    std::vector<std::string> of(const std::string& cell, const std::vector<std::string>& above = {}) const;

private:
    std::string patternOf(const std::string& sentence) const;
    std::string meaningOf(const std::string& word) const;

    std::string causes_;
};

/// A name for a test, out of the words of a text.
std::string testName(const std::string& text);

}  // namespace kvl::test

#endif
