#ifndef KVL_FOUNDATION_CTEXTFILEPARSER_H
#define KVL_FOUNDATION_CTEXTFILEPARSER_H

#include <string>

/// Lookups in result files and configuration files. Every lookup opens the file, reads it from the start and closes
/// it again; nothing is kept.
///
/// A blank is only the character " ": a tab is an ordinary character. A line is at most 255 characters, without its
/// line feed. No line is trimmed and no character starts a comment. Nothing is traced and nothing is thrown: an
/// unreadable file and a missing key look the same.
///
/// Any thread may call. A call blocks until the file has been read; nothing limits that, so a pipe that nobody writes
/// to blocks for good.
class __attribute__((visibility("default"))) CTextFileParser {
public:
    CTextFileParser();
    virtual ~CTextFileParser();

    /// Finds a line by its first word, which runs to the first blank. The last line takes part without a line feed.
    /// @param occurrence  1 for the first such line
    /// @param result      the whole line; untouched if the file can't be opened or `occurrence` is below 1, empty
    ///                    if there is no such line
    /// @return true if found
    static bool GetLineBeginningKey(std::string file, std::string key, int occurrence, std::string& result);

    /// Finds a column of the line that `GetLineBeginningKey` finds.
    /// @param column  1 for the first
    /// @param result  the column; empty on failure
    /// @return true if found
    static bool GetColumnBeginningKey(std::string file, std::string key, int occurrence, int column,
                                      std::string& result);

    /// Finds a line that holds a key as `isKeyExist` finds it. A last line without a line feed is never looked at.
    /// @param occurrence  1 for the first such line; a line counts once however often the key stands in it
    /// @param result      the whole line; untouched if the file can't be opened, empty if there is no such line
    /// @return true if found
    static bool GetLineContainsKey(std::string file, std::string key, int occurrence, std::string& result);

    /// The same for the first such line.
    static bool GetLineContainsKey(std::string file, std::string key, std::string& result);

    /// Cuts a column out of a line. A run of blanks separates once; one leading blank hides the first word, two or
    /// more don't.
    /// @param column  1 for the first, which is empty for a line that starts with a blank
    /// @param result  the column, empty after a trailing blank; empty on failure
    /// @return true if there is such a column
    static bool GetStrInFixedPosition(std::string line, int column, std::string& result);

    /// Cuts a column out of a line of a file.
    /// @param lineNumber  1 for the first line; below 1 the line is empty; past the end it is what follows
    ///                    the last line feed
    /// @param result      the column; untouched if the file can't be opened
    /// @return true if there is such a column
    static bool GetStrInFixedPosition(std::string file, int lineNumber, int column, std::string& result);

    /// Looks for a key that ends at a blank or at the end of the line; what comes before it doesn't matter.
    /// @return its position in `line`, or -1
    static int isKeyExist(std::string key, std::string line);

    /// Reads the value of the first line that holds the key and "=" side by side.
    /// @param result  the line without double quotes, cut at the length of key and "=" from its start, wherever the
    ///                key stands; empty on failure
    /// @return true if there is such a line
    static bool GetIniFileValue(std::string file, std::string key, std::string& result);
};

#endif
