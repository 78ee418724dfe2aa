// Names of groups, as they stand between angle brackets.
#pragma once

#include "regexp/base/flags.h"

#include <cstddef>
#include <string>

struct RE_Name {
    std::u16string text;  ///< empty when there is no valid name
    std::size_t end;      ///< index behind the closing >
};

/// Reads a name and its `>` from `at` on: an ASCII letter, then letters, digits or underscores. Under free
/// spacing blanks and comments may stand around it.
RE_Name readName(const char16_t* text, std::size_t length, std::size_t at, RE_Flags flags);

/// Index of the first significant unit at or after `at`: under free spacing blanks and comments are skipped.
std::size_t skipFreeSpacing(const char16_t* text, std::size_t length, std::size_t at);
inline std::size_t skipSpacing(const char16_t* text, std::size_t length, std::size_t at, RE_Flags flags) {
    return (flags & RE_FLAG_FREE_SPACING) != 0 ? skipFreeSpacing(text, length, at) : at;
}

/// Index behind the letters, digits and underscores from `at` on.
std::size_t skipNameUnits(const char16_t* text, std::size_t length, std::size_t at);
