// Where the braces of expressions in a replacement close.
#pragma once

#include "regexp/base/flags.h"
#include "regexp/base/memory.h"

#include <array>
#include <cstddef>
#include <vector>

/// Finds the `}` that matches a `{`: parentheses, brackets and braces nest between them, a backslash makes
/// the next unit inert, and under free spacing `#` skips the rest of the line.
///
/// The first question computes the answers for all positions behind it from the end of the text backwards, so
/// that texts full of unmatched braces take linear time too. Brackets hold expressions here, not sets as in
/// patterns: what is inside them has to be paired as well. Costs 24 bytes for each unit behind the first
/// question.
class RE_Brace_Matcher {
public:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    RE_Brace_Matcher(const char16_t* units, std::size_t count, RE_Flags flags)
        : text(units), length(count), freeSpacing((flags & RE_FLAG_FREE_SPACING) != 0) {}

    /// Index of the `}` that closes a brace whose content starts at `content`, or `none`. Asked in ascending
    /// order.
    std::size_t closing(std::size_t content);

private:
    /// The index at which the first unpaired `)`, `]` or `}` at or after a position stands, past everything
    /// that is paired in between.
    using Closers = std::array<std::size_t, 3>;

    void computeFrom(std::size_t start);
    Closers closersAt(std::size_t at, std::size_t nextLine) const;
    const Closers& known(std::size_t at) const;

    const char16_t* text;
    std::size_t length;
    bool freeSpacing;
    std::size_t first = none;  ///< the position of the first element
    std::vector<Closers, RE_Allocator<Closers>> closers;
};
