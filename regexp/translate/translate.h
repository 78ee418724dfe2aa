// Ordinary text turned into pattern text, and white space made plain.
//
// For text that is put together with other pattern text by hand. A program that builds patterns uses
// regexp/builder, which quotes for every neighbourhood; `escape` quotes for one outside of free spacing.
#pragma once

#include "regexp/base/export.h"

#include <string>
#include <string_view>

/// Functions of their arguments alone. Safe to call from any thread; the first call of each compiles a
/// pattern and may throw `std::bad_alloc`, as may all. Texts are UTF-16, taken unit by unit; the arguments
/// are not kept.
class CORVANE_REGEXP_EXPORT RE_Translate {
public:
    /// A pattern that matches exactly this text where case counts and spacing is not free: each of
    /// $^.\+[](){}|-*? gets a backslash.
    static std::u16string escape(std::u16string_view text);
    /// A pattern for a wildcard in which * matches any text and ? any unit; everything else is literal. It
    /// is not anchored, and its dots match line feeds only where the modes of the pattern say so.
    static std::u16string translateWildcard(std::u16string_view text);
    /// The same text with a space in place of each unit of white space (by the host's class) and each NUL,
    /// so of the same length.
    static std::u16string makeWhitespaceSpaces(std::u16string_view text);
};
