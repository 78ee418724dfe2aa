// What a pattern says that means something else in other engines. For people who bring their habits along; nothing in the
// engine depends on it.
#pragma once

#include "regexp/base/export.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A part of a text, in code units, with what it means here and, where that is plain, what means here what it means elsewhere.
struct RE_Hint {
    std::size_t start;
    std::size_t length;
    std::string_view sentence;                 ///< in English; lives for ever
    std::optional<std::u16string> correction;  ///< in place of the part
};

/// The hints about a pattern, by their places, none overlapping another. Reads the text by rules simpler than those of the
/// parser: a best guess for people. Pure; safe on any thread. Throws `std::bad_alloc`.
CORVANE_REGEXP_EXPORT std::vector<RE_Hint> hintsOfPattern(std::u16string_view pattern);

/// The same about a replacement.
CORVANE_REGEXP_EXPORT std::vector<RE_Hint> hintsOfReplacement(std::u16string_view replacement);

/// The text with the corrections of the hints made.
CORVANE_REGEXP_EXPORT std::u16string reFollowHints(std::u16string_view text,
                                                   const std::vector<RE_Hint>& hints);
