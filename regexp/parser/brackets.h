// Which bracket closes which, found in one pass over the pattern.
#pragma once

#include "regexp/eval/warning.h"
#include "regexp/flags.h"
#include "regexp/memory.h"
#include "regexp/scratch_memory.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// What a list of mode letters says. `end` is the index of the unit that ended it.
struct RE_Modes {
    RE_Flags flags = 0;
    std::size_t end = 0;
    RE_Warning problem = RE_WARNING_NONE;  ///< found at `end`
};

/// Reads mode letters from `at`, changing `flags`. The list ends well at a `:` or `)` after at least one
/// letter.
RE_Modes readModes(const char16_t* text, std::size_t length, std::size_t at, RE_Flags flags);

/// By unit: whether it stands for itself wherever it is read as an item, unless spacing is free. Others do.
inline constexpr auto plainLowUnits = [] {
    constexpr std::u16string_view special = u"()[\\|.^$*+?{";
    std::array<bool, 128> plain{};
    for (std::size_t i = 0; i < plain.size(); ++i) {
        plain[i] = special.find(static_cast<char16_t>(i)) == special.npos;
    }
    return plain;
}();
inline bool isPlainUnit(char16_t unit) {
    return unit >= plainLowUnits.size() || plainLowUnits[unit];
}

/// Pairs the parentheses and the sets of a pattern. A backslash makes the next unit inert; inside a set only
/// `\` and `]` count, inside a comment group only parentheses; under free spacing comments do not count, which
/// in an expression is decided where it begins.
/// Unpaired openings have no closing index.
class RE_Brackets {
public:
    static constexpr std::uint32_t none = static_cast<std::uint32_t>(-1);

    RE_Brackets(const char16_t* text, std::size_t length, RE_Flags flags, RE_Scratch_Memory* memory);

    /// Index of the unit that closes the `(` or `[` at `opening`, or `none`.
    std::uint32_t closing(std::size_t opening) const { return closings[opening]; }
    /// Index of the first `}` at or after `from` that is neither escaped nor, with these modes, in a comment; or
    /// `none`. Cheap when asked in ascending order.
    std::uint32_t nextBrace(std::size_t from, RE_Flags flags);
    /// How many units are not plain, outside of sets.
    std::size_t marks() const { return specialUnits; }

private:
    struct Open {
        std::uint32_t position;
        bool freeSpacingAfter;  ///< whether free spacing is on once this group has closed
        bool comment;           ///< of a comment, or within one
        bool expression;        ///< of an expression or a dynamic text, or within one
    };

    struct Brace {
        std::size_t from = none;  ///< none stands between here and there
        std::uint32_t at = 0;
    };

    void pair(RE_Flags flags);
    bool inComment() const { return !open.empty() && open.back().comment; }
    bool inExpression() const { return !open.empty() && open.back().expression; }
    std::size_t openGroup(std::size_t at);
    std::size_t closeGroup(std::size_t at);
    std::size_t skipSet(std::size_t at);
    std::size_t skipComment(std::size_t at) const;

    const char16_t* text;
    std::size_t length;
    RE_Scratch_List<std::uint32_t> closings;
    RE_Scratch_List<Open> open;
    std::size_t specialUnits = 0;
    bool freeSpacing = false;
    bool setsExhausted = false;   ///< no further `]` closes anything
    std::array<Brace, 2> braces;  ///< the last answers: without comments and with them
};
