// Names of groups, as they are written between angle brackets, and the spacing that may surround the parts
// of a construct.
//
// Pure functions of the text and the modes. All of them accept `at` == `length` and never read at or beyond
// `length`; indexes count code units.
#pragma once

#include "regexp/base/flags.h"

#include <cstddef>
#include <string>

struct RE_Name {
    std::u16string text;  ///< empty when there is no valid name
    std::size_t end;      ///< index after the closing >; where reading began, when there is no valid name
};

/// Reads a name and its `>` from `at` on: an ASCII letter, then letters, digits or underscores. Under free
/// spacing blanks and comments may surround it. Takes time in the length of the spacing, so a caller that
/// may ask about many places in one comment needs `RE_Name_Reader` of the replacement compiler.
RE_Name readName(const char16_t* text, std::size_t length, std::size_t at, RE_Flags flags);

/// Index of the first significant unit at or after `at`: past blanks (white space by the host's class) and
/// comments, which reach from `#` to the end of the line. The second form does so under free spacing only.
std::size_t skipFreeSpacing(const char16_t* text, std::size_t length, std::size_t at);
inline std::size_t skipSpacing(const char16_t* text, std::size_t length, std::size_t at, RE_Flags flags) {
    return (flags & RE_FLAG_FREE_SPACING) != 0 ? skipFreeSpacing(text, length, at) : at;
}

/// Index after the letters, digits and underscores from `at` on. A name has to begin with a letter, which
/// this does not check.
std::size_t skipNameUnits(const char16_t* text, std::size_t length, std::size_t at);
