// Escapes that denote one character, shared by patterns, sets and replacements.
//
// Everything here is a pure function of the text: it knows no modes, reports no warning and allocates
// nothing. Callers report the problem, since only they know whether an escape is read for good or looked at
// in advance.
#pragma once

#include "regexp/eval/warning.h"

#include <cstddef>

struct RE_Escape {
    char32_t value;   ///< the character; above 0xFFFF it takes two units
    std::size_t end;  ///< index after the escape
    RE_Warning problem = RE_WARNING_NONE;
    std::size_t where = 0;  ///< index of the unit the problem is about
};

/// Reads the escape whose backslash is at `at` (< `length`). An escape with a problem denotes the escaped
/// unit itself and ends after that: the braces of a malformed number are left to the caller as text. Always
/// consumes at least one unit.
RE_Escape readEscape(const char16_t* text, std::size_t length, std::size_t at);

/// Digits and letters of the syntax are ASCII, whatever classes the host defines for the subject.
inline bool isAsciiDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}
inline bool isAsciiLetter(char16_t unit) {
    return (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z';
}
