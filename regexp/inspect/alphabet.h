// The letters of a pattern: classes of units that it does not tell apart.
#pragma once

#include "regexp/unit_set.h"

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <vector>

class RE_Consumable;
struct RE_Graph_Facts;

using RE_Letters = std::bitset<256>;

class RE_Alphabet {
public:
    /// Takes in a pattern, until there are too many letters.
    void learn(const RE_Graph_Facts& facts);

    /// False when there were too many.
    bool isComplete() const { return examples.size() <= RE_Letters().size(); }
    std::size_t size() const { return examples.size(); }
    RE_Letters all() const;
    RE_Letters lettersOf(const RE_Consumable& unit) const;
    RE_Letters lettersOf(char16_t unit, bool ignoreCase) const;
    /// A unit of this letter, one that can be printed where there is one.
    char16_t unitOf(std::size_t letter) const { return examples[letter]; }

private:
    void split(const RE_Unit_Set& set);
    void chooseExamples();
    RE_Letters lettersOf(const RE_Unit_Set& set) const;

    std::vector<std::uint16_t> letterOf;  // of each unit
    std::vector<char16_t> examples;
};
