// The numbered warnings in words: what a host shows to the author of a pattern.
#pragma once

#include "regexp/eval/warning.h"
#include "regexp/base/export.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

struct RE_Warning_Description {
    const char* name;      ///< for programs: lower case, with hyphens; never changes
    const char* sentence;  ///< for people, in English
};

/// Numbers that are not in use are described too.
CORVANE_REGEXP_EXPORT const RE_Warning_Description& describe(RE_Warning warning);

/// The part of the text that a warning is about, in code units, and what would better stand there, where that
/// is plain.
struct RE_Warning_Span {
    std::size_t start;
    std::size_t length;
    std::optional<std::u16string> correction;  ///< in place of the part; may be empty
};

/// `where` is the index at which the warning was raised in `text`.
CORVANE_REGEXP_EXPORT RE_Warning_Span locateWarning(RE_Warning warning, std::u16string_view text,
                                                    std::size_t where);
