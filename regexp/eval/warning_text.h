// The numbered warnings in words: what a host shows to the author of a pattern. Nothing in the engine
// depends on it.
//
// Both functions are pure and may be called on any thread.
#pragma once

#include "regexp/base/export.h"
#include "regexp/eval/warning.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

struct RE_Warning_Description {
    const char* name;      ///< for programs: lower case, with hyphens; never changes
    const char* sentence;  ///< for people, in English
};

/// The words for a warning; they live for ever. Numbers that are not in use are described, too, as no
/// warning. Does not throw.
CORVANE_REGEXP_EXPORT const RE_Warning_Description& describe(RE_Warning warning);

/// The part of the text that a warning is about, in code units, and what should probably be there instead,
/// where that is plain. `start + length` is never beyond the text.
struct RE_Warning_Span {
    std::size_t start;
    std::size_t length;
    std::optional<std::u16string> correction;  ///< in place of the part; may be empty
};

/// `where` is the index at which the warning was raised in `text`, which is the whole text that was
/// compiled. A best guess for people: it reads the text by rules simpler than those of the parser. Throws
/// `std::bad_alloc`.
CORVANE_REGEXP_EXPORT RE_Warning_Span locateWarning(RE_Warning warning, std::u16string_view text,
                                                    std::size_t where);
