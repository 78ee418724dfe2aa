// What a pattern asks about the unit before a place: anchors, and tests of one unit behind.
#pragma once

#include "regexp/units/unit_set.h"

#include <cstddef>
#include <vector>

class RE_Alphabet;
struct RE_Graph_Facts;

/// The classes of units that look alike from behind. No unit, at the subject's begin, is one of its own:
/// number 0.
class RE_Unit_Sides {
public:
    /// Has the alphabet tell the units apart, too.
    RE_Unit_Sides(const RE_Graph_Facts& facts, RE_Alphabet& alphabet);

    static constexpr std::size_t begin = 0;
    /// Of the units of a letter.
    std::size_t of(std::size_t letter) const { return sides[letter]; }
    std::size_t count() const { return examples.size(); }
    char16_t unitOf(std::size_t side) const { return examples[side]; }

private:
    void gather(const RE_Graph_Facts& facts);
    void add(RE_Unit_Set units);

    std::vector<RE_Unit_Set> asked;
    bool asksForBegin = false;
    std::vector<std::size_t> sides;  // of each letter
    std::vector<char16_t> examples{u'\0'};
};
