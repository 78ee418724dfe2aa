// Ordinary text turned into pattern text, and white space made plain.
#pragma once

#include "regexp/base/export.h"

#include <string>
#include <string_view>

/// Safe to call from any thread.
class CORVANE_REGEXP_EXPORT RE_Translate {
public:
    /// A pattern that matches exactly this text: each of $^.\+[](){}|-*? gets a backslash.
    static std::u16string escape(std::u16string_view text);
    /// A pattern for a wildcard in which * stands for any text and ? for any unit. It is not anchored.
    static std::u16string translateWildcard(std::u16string_view text);
    /// The same text with a space in place of each unit of white space and each NUL.
    static std::u16string makeWhitespaceSpaces(std::u16string_view text);
};
