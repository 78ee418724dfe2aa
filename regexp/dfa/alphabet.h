// What a pattern tells apart. Letters are classes of units that are alike to all of its nodes; sides are classes of units
// that are alike to whatever tests the unit before a position.
#pragma once

#include "regexp/units/unit_set.h"

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

class RE_Compile_Meter;
class RE_Consumable;
class RE_Node;
struct RE_Graph_Facts;

/// The literals of a node, from what it means: one of them is what it matches. None where it is no node of literals.
struct RE_Node_Literals {
    std::vector<std::u16string_view> texts;
    bool ignoreCase = false;

    std::size_t units() const {
        std::size_t all = 0;
        for (const std::u16string_view text : texts) {
            all += text.size();
        }
        return all;
    }
};

RE_Node_Literals literalsOf(const RE_Node* node);

using RE_Letters = std::bitset<256>;

class RE_Alphabet {
public:
    /// Takes in the units that a pattern consumes, until there are too many letters.
    void learn(const RE_Graph_Facts& facts, RE_Compile_Meter& meter);
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

/// The classes of units that look alike to what follows them: anchors, and tests of one unit behind. No unit, at the subject's begin, is one of its own:
/// number 0.
class RE_Unit_Sides {
public:
    /// Has the alphabet tell the units apart, too.
    RE_Unit_Sides(const RE_Graph_Facts& facts, RE_Alphabet& alphabet, RE_Compile_Meter& meter);

    static constexpr std::size_t begin = 0;
    /// False where there are too many to be told apart; nothing else may be queried then.
    bool isComplete() const { return complete; }
    /// Of the units of a letter.
    std::size_t of(std::size_t letter) const { return sides[letter]; }
    std::size_t count() const { return examples.size(); }
    char16_t unitOf(std::size_t side) const { return examples[side]; }

private:
    void gather(const RE_Graph_Facts& facts, RE_Compile_Meter& meter);
    void add(RE_Unit_Set units);

    std::vector<RE_Unit_Set> asked;
    bool complete = true;
    bool asksForBegin = false;
    std::vector<std::size_t> sides;  // of each letter
    std::vector<char16_t> examples{u'\0'};
};
