// Tables.
#pragma once

#include "regexp/flags.h"
#include "regexp/memory.h"
#include "regexp/parser/names.h"

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

/// Reads names as the parser of patterns does. Under free spacing a comment in the brackets may hide any
/// number of further brackets, which all lead to the same place behind it; so the first question computes
/// where blanks and comments end for all positions behind it, and a place without a name is looked at once.
class RE_Name_Reader {
public:
    RE_Name_Reader(const char16_t* units, std::size_t count, RE_Flags flags)
        : text(units), length(count), freeSpacing((flags & RE_FLAG_FREE_SPACING) != 0) {}

    /// The name that starts at `content`, the index behind the opening bracket. Asked in ascending order.
    RE_Name read(std::size_t content);

private:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    std::size_t skipSpacing(std::size_t at);
    void computeFrom(std::size_t start);

    const char16_t* text;
    std::size_t length;
    bool freeSpacing;
    std::size_t first = none;                                     ///< the position of the first element
    std::vector<std::size_t, RE_Allocator<std::size_t>> skipped;  ///< the index behind blanks and comments
    std::size_t nameless = none;  ///< the last place behind a comment or blanks without a name
};
