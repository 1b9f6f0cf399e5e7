#pragma once

#include <QChar>

// Upper-casing of one 16-bit code unit, as keyword keys and the lexer compare words. It
// never changes a word's length, so positions in a line keep their meaning.
namespace CaseFold {

inline char16_t Upper(char16_t c) {
    if (c < 0x80)
        return (c >= u'a' && c <= u'z') ? static_cast<char16_t>(c - 32) : c;
    return QChar(c).toUpper().unicode();
}

constexpr bool IsAsciiLetter(char16_t c) {
    return (c | 0x20) >= u'a' && (c | 0x20) <= u'z';
}

constexpr bool IsAsciiDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

} // namespace CaseFold
