// The ranges that a set of units consists of, as far as a few comparisons can tell them apart.
#pragma once

#include "regexp/units/unit_set.h"

#include <cstddef>

struct RE_Unit_Ranges {
    struct Range {
        char16_t low;
        char16_t high;
    };
    static constexpr std::size_t most = 1;

    /// Of the units before `end`.
    explicit RE_Unit_Ranges(const RE_Unit_Set& set, std::size_t end = RE_Unit_Set::unitCount);

    Range list[most];
    std::size_t count = 0;  ///< more than `most` when there are more
};

/// The units that a set leaves out, as far as they are few; or, with `outside` false, those that it holds.
struct RE_Units_Outside {
    static constexpr std::size_t most = 4;
    static constexpr std::size_t few = 2;  ///< are compared one after another

    explicit RE_Units_Outside(const RE_Unit_Set& set, bool outside = true);

    char16_t list[most];
    std::size_t count = 0;  ///< more than `most` when there are more
};
