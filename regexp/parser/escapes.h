// Escapes that stand for one character, shared by patterns, sets and replacements.
#pragma once

#include "regexp/eval/warning.h"

#include <cstddef>

struct RE_Escape {
    char32_t value;   ///< the character; above 0xFFFF it takes two units
    std::size_t end;  ///< index behind the escape
    RE_Warning problem = RE_WARNING_NONE;
    std::size_t where = 0;  ///< index of the unit the problem is about
};

/// Reads the escape whose backslash stands at `at` (< `length`). One that has a problem is the escaped unit
/// itself, and what follows that is not read: the braces of a malformed number are text.
RE_Escape readEscape(const char16_t* text, std::size_t length, std::size_t at);

inline bool isAsciiDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}
inline bool isAsciiLetter(char16_t unit) {
    return (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z';
}
