// A pattern in English, one line for each part, inner parts indented. For people who read a pattern that
// somebody else wrote: `cvregexp explain` prints it.
#pragma once

#include "regexp/base/export.h"
#include "regexp/base/flags.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class RE_Context;

/// The lengths are those of the whole match, in code units, as far as the pattern alone decides them.
struct RE_Outline {
    static constexpr std::uint64_t unbounded = static_cast<std::uint64_t>(-1);

    /// A line of the text, with the part of the pattern that it is about, in code units; of none that is empty.
    struct Line {
        std::size_t depth;
        std::string words;  ///< UTF-8
        std::size_t start;
        std::size_t length;
    };

    std::string text;  ///< UTF-8; the lines, each indented by two blanks for each level, but not without end
    std::vector<Line> lines;
    std::uint64_t least = 0;  ///< units that a match has at the least
    std::uint64_t most = 0;   ///< and at the most
};

/// Reads the pattern as a tree does that is compiled with the same arguments, and warns as it does. `context`
/// is not null and is used during the call only.
CORVANE_REGEXP_EXPORT RE_Outline outlinePattern(const char16_t* pattern, std::size_t length, RE_Flags flags,
                                                RE_Context* context);
