#ifndef KVL_HOST_CSTRINGUTIL_H
#define KVL_HOST_CSTRINGUTIL_H

#include <list>
#include <string>

/// Text services of the loading process. A text is a plain byte string; no call throws or blocks. The library calls on
/// the thread that called it.
class __attribute__((visibility("default"))) CStringUtil {
public:
    /// Replaces every occurrence of `search` in `text`, in place. An empty `replacement` removes them.
    static void strReplace(std::string& text, const std::string& search, const std::string& replacement);

    /// @return the decimal text of `value`
    static std::string NumberToTString(long value);

    /// @return `text`, unchanged
    static std::string StringToTstring(std::string text);

    /// @return the value of the leading decimal digits of `text`, whatever follows them; 0 without any
    static long TStringToNumber(std::string text);

    /// @return `text` with its letters in upper case
    static std::string StringToUpperCase(std::string text);

    /// Cuts a text at each separator.
    /// @param text       stays as it is
    /// @param separator  one character
    /// @return the fields in order, without the separators; the whole text if it holds none
    static std::list<std::string> Split(std::string& text, const std::string& separator);
};

#endif
