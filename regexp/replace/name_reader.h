// Names between angle brackets in a replacement.
#pragma once

#include "regexp/base/flags.h"
#include "regexp/base/memory.h"
#include "regexp/parser/names.h"

#include <cstddef>
#include <vector>

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
