// Which bracket closes which, found in one pass over the pattern.
#pragma once

#include "regexp/flags.h"
#include "regexp/memory.h"

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <vector>

/// Pairs the parentheses and the sets of a pattern. A backslash makes the next unit inert; inside a set only
/// `\` and `]` count, inside a comment group only parentheses; under free spacing comments do not count.
/// Unpaired openings have no closing index.
class RE_Brackets {
public:
    static constexpr std::uint32_t none = static_cast<std::uint32_t>(-1);

    RE_Brackets(const char16_t* text, std::size_t length, RE_Flags flags, std::pmr::memory_resource* memory);

    /// Index of the unit that closes the `(` or `[` at `opening`, or `none`.
    std::uint32_t closing(std::size_t opening) const { return closings[opening]; }
    /// Index of the first unescaped `}` at or after `from`, or `none`. Cheap when asked in ascending order.
    std::uint32_t nextBrace(std::size_t from);

private:
    struct Open {
        std::uint32_t position;
        bool freeSpacingAfter;  ///< whether free spacing is on once this group has closed
        bool comment;           ///< of a comment, or within one
    };

    void pair(RE_Flags flags);
    bool inComment() const { return !open.empty() && open.back().comment; }
    std::size_t openGroup(std::size_t at);
    std::size_t closeGroup(std::size_t at);
    std::size_t skipSet(std::size_t at);
    std::size_t skipComment(std::size_t at) const;

    const char16_t* text;
    std::size_t length;
    std::pmr::vector<std::uint32_t> closings;
    std::pmr::vector<Open> open;
    bool freeSpacing = false;
    bool setsExhausted = false;  ///< no further `]` closes anything
    std::size_t braceFrom = 0;
    std::uint32_t brace = none;
    bool braceKnown = false;
};
