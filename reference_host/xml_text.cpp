#include "reference_host/xml_text.h"

#include <utf8.h>

#include <cstdint>
#include <iterator>

namespace kvl::host {
namespace {

constexpr std::uint32_t kReplacementCharacter = 0xfffd;

struct CharacterRange {
    std::uint32_t first;
    std::uint32_t last;
};

// The productions Char, NameStartChar and NameChar of XML 1.0, Fifth Edition. NameChar adds to NameStartChar.
constexpr CharacterRange kCharacters[] = {
    {0x9, 0xa}, {0xd, 0xd}, {0x20, 0xd7ff}, {0xe000, 0xfffd}, {0x10000, 0x10ffff},
};
constexpr CharacterRange kNameStartCharacters[] = {
    {':', ':'},       {'A', 'Z'},       {'_', '_'},       {'a', 'z'},         {0xc0, 0xd6},     {0xd8, 0xf6},
    {0xf8, 0x2ff},    {0x370, 0x37d},   {0x37f, 0x1fff},  {0x200c, 0x200d},   {0x2070, 0x218f}, {0x2c00, 0x2fef},
    {0x3001, 0xd7ff}, {0xf900, 0xfdcf}, {0xfdf0, 0xfffd}, {0x10000, 0xeffff},
};
constexpr CharacterRange kFurtherNameCharacters[] = {
    {'-', '.'}, {'0', '9'}, {0xb7, 0xb7}, {0x300, 0x36f}, {0x203f, 0x2040},
};

template <std::size_t kCount>
bool isIn(const CharacterRange (&ranges)[kCount], std::uint32_t character) {
    for (const CharacterRange& range : ranges) {
        if (character >= range.first && character <= range.last) {
            return true;
        }
    }
    return false;
}

std::string validUtf8(const std::string& text, std::uint32_t replacement) {
    std::string valid;
    utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(valid), replacement);
    return valid;
}

}  // namespace

std::string xmlText(const std::string& text) {
    const std::string valid = validUtf8(text, kReplacementCharacter);
    std::string result;
    for (auto next = valid.begin(); next != valid.end();) {
        const std::uint32_t character = utf8::unchecked::next(next);
        utf8::unchecked::append(isIn(kCharacters, character) ? character : kReplacementCharacter,
                                std::back_inserter(result));
    }
    return result;
}

std::string xmlName(const std::string& name) {
    const std::string valid = validUtf8(name, '_');
    std::string result;
    for (auto next = valid.begin(); next != valid.end();) {
        const std::uint32_t character = utf8::unchecked::next(next);
        const bool isAllowed =
            isIn(kNameStartCharacters, character) || (!result.empty() && isIn(kFurtherNameCharacters, character));
        utf8::unchecked::append(isAllowed ? character : '_', std::back_inserter(result));
    }
    return result.empty() ? "_" : result;
}

}  // namespace kvl::host
