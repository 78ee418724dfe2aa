// The letters of a pattern: classes of units that it does not tell apart.
#pragma once

#include "regexp/units/unit_set.h"

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <vector>

class RE_Consumable;
struct RE_Graph_Facts;

using RE_Letters = std::bitset<256>;

class RE_Alphabet {
public:
    /// Takes in the units that a pattern consumes, until there are too many letters.
    void learn(const RE_Graph_Facts& facts);
    /// Tells the units of a set from the others. `chooseExamples` is due afterwards.
    void split(const RE_Unit_Set& set);
    void chooseExamples();

    /// False when there were too many.
    bool isComplete() const { return examples.size() <= RE_Letters().size(); }
    std::size_t size() const { return examples.size(); }
    RE_Letters all() const;
    RE_Letters lettersOf(const RE_Consumable& unit) const;
    RE_Letters lettersOf(char16_t unit, bool ignoreCase) const;
    std::size_t letterOf(char16_t unit) const { return letters[unit]; }
    RE_Unit_Set unitsOf(const RE_Letters& those) const;
    /// A unit of this letter, one that can be printed where there is one.
    char16_t unitOf(std::size_t letter) const { return examples[letter]; }

private:
    static constexpr std::size_t blockUnits = 64;
    static constexpr std::size_t blocks = RE_Unit_Set::unitCount / blockUnits;
    static constexpr std::uint16_t several = 0xFFFF;  // letters in one block

    template <class Visit>
    void forEachPiece(const RE_Unit_Set& set, Visit visit) const;
    void relabel(std::size_t first, std::size_t count, std::uint16_t letter);
    void offerExample(char16_t unit);
    RE_Letters lettersOf(const RE_Unit_Set& set) const;

    std::vector<std::uint16_t> letters;                 // of each unit
    std::array<std::uint16_t, blocks> letterOfBlock{};  // where all its units have the same
    std::vector<char16_t> examples;
};
