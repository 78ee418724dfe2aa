// Where the brackets of a reference end: tables by position, filled in one pass from the end of the text
// backwards.
//
// A `$` may be followed by an opening bracket at every unit, and looking for the end of each from scratch
// would take time quadratic in a hostile text. Each answer follows from the answers for later positions, so
// one backward pass gives them all. The pass is made by the first query and covers what follows it: most
// replacements have no such reference and cost nothing. Queries come in ascending order, as the reader
// moves from left to right.
//
// Positions are code units. Tables take memory of the host and throw `std::bad_alloc`.
#pragma once

#include "regexp/base/flags.h"
#include "regexp/base/memory.h"
#include "regexp/parser/names.h"

#include <array>
#include <cstddef>
#include <vector>

/// Finds the `}` that matches a `{`: parentheses, brackets and braces nest between them, a backslash makes
/// the next unit inert, and under free spacing `#` skips the rest of the line.
///
/// Brackets hold expressions here, not sets as in patterns: what is inside them has to be paired as well,
/// and one that is not leaves the brace unmatched. Costs three indexes for each unit after the first query.
class RE_Brace_Matcher {
public:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    RE_Brace_Matcher(const char16_t* units, std::size_t count, RE_Flags flags)
        : text(units), length(count), freeSpacing((flags & RE_FLAG_FREE_SPACING) != 0) {}

    /// Index of the `}` that closes a brace whose content starts at `content`, or `none`.
    std::size_t closing(std::size_t content);

private:
    /// The indexes of the first unpaired `)`, `]` and `}` at or after a position, past everything that is
    /// paired in between.
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

/// Reads names as the parser of patterns does (`readName`), with the same answers. Under free spacing a
/// comment in the brackets may hide any number of further brackets, which all lead to the same place after
/// it. So the table has where spacing ends for all positions, and a place without a name is looked at once.
/// Without free spacing there is no table.
class RE_Name_Reader {
public:
    RE_Name_Reader(const char16_t* units, std::size_t count, RE_Flags flags)
        : text(units), length(count), freeSpacing((flags & RE_FLAG_FREE_SPACING) != 0) {}

    /// The name that starts at `content`, the index after the opening bracket; its text is empty when there
    /// is none.
    RE_Name read(std::size_t content);

private:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    std::size_t skipSpacing(std::size_t at);
    void computeFrom(std::size_t start);

    const char16_t* text;
    std::size_t length;
    bool freeSpacing;
    std::size_t first = none;                                     ///< the position of the first element
    std::vector<std::size_t, RE_Allocator<std::size_t>> skipped;  ///< the index after blanks and comments
    std::size_t nameless = none;  ///< the last place after a comment or blanks without a name
};
