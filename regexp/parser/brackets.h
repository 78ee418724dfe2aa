// What has to be known about a pattern before it is read: which bracket closes which.
//
// One pass over the pattern pairs all brackets, so that the grammar never looks ahead for an end, and an
// opening bracket without an end costs no scan of its own. Mode letters are read here as well as by the
// grammar, because free spacing decides whether a bracket is part of a comment: both must agree on the
// modes at every unit, or the grammar would meet a bracket that this pass paired otherwise.
#pragma once

#include "regexp/base/compile_meter.h"
#include "regexp/base/flags.h"
#include "regexp/base/memory.h"
#include "regexp/base/scratch_memory.h"
#include "regexp/eval/warning.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// What a list of inline mode letters says, as in (?i-s). `end` is the index of the unit that ended it.
struct RE_Modes {
    RE_Flags flags = 0;
    std::size_t end = 0;
    RE_Warning problem = RE_WARNING_NONE;  ///< found at `end`
};

/// Reads mode letters from `at` on; letters before a minus are added to `flags`, letters after it removed.
/// The list is valid when a `:` or `)` follows at least one letter; otherwise `problem` says why not, and
/// `flags` of the result must not be used. `end` may be `length`.
RE_Modes readModes(const char16_t* text, std::size_t length, std::size_t at, RE_Flags flags);

/// By unit below 128: whether it always matches itself where an item is read, unless spacing is free. All
/// higher units do. A closing `]` or `}` is plain: alone it means nothing. What is added to the syntax has
/// to be special here, or the grammar swallows it in a stretch of literals.
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

/// Pairs the parentheses and the sets of a pattern, in linear time. A backslash makes the next unit inert;
/// inside a set only `\` and `]` count, inside a comment group only parentheses; under free spacing
/// comments do not count. Within an expression of the host that is decided by the mode at its beginning, as
/// its text has no modes of its own.
///
/// Openings without a partner have no closing index; closings without one appear nowhere. Positions are
/// code units.
class RE_Brackets {
public:
    static constexpr std::uint32_t none = static_cast<std::uint32_t>(-1);

    RE_Brackets(const char16_t* text, std::size_t length, RE_Flags flags, RE_Scratch_Memory* memory,
                RE_Compile_Meter& meter);

    /// Index of the unit that closes the `(` or `[` at `opening`, or `none`. For any other index the answer
    /// is `none`.
    std::uint32_t closing(std::size_t opening) const { return closings[opening]; }
    /// Index of the first `}` at or after `from` that is neither escaped nor, with these modes, in a
    /// comment; or `none`. Queries in ascending order take linear time together, as the last answer serves
    /// every position up to it.
    std::uint32_t nextBrace(std::size_t from, RE_Flags flags);
    /// How many units are not plain, outside of sets, and close nothing: an estimate of the items that the pattern has.
    std::size_t marks() const { return specialUnits; }

private:
    struct Open {
        std::uint32_t position;
        bool freeSpacingAfter;  ///< whether free spacing is on once this group has closed
        bool comment;           ///< of a comment, or within one
        bool expression;        ///< of an expression or a dynamic text, or within one
    };

    /// A remembered answer: no other brace lies in [from, at).
    struct Brace {
        std::size_t from = none;  ///< beyond every position until the first query
        std::uint32_t at = 0;
    };

    void pair(RE_Flags flags, RE_Compile_Meter& meter);
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
    bool freeSpacing = false;     ///< while pairing: at the unit that is looked at
    bool setsExhausted = false;   ///< no further `]` closes anything
    std::array<Brace, 2> braces;  ///< the last answers: without comments and with them
};
