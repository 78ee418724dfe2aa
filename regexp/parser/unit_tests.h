// Atoms of one unit: which units they match, as a node and as a set.
//
// The rules of case are here, once, for nodes and sets alike: `a`, `[a]` and `[a-a]` must match the same
// units under every mode. The word "test" is that of `RE_Unit_Test`, a node that tests one unit.
#pragma once

#include "regexp/base/flags.h"
#include "regexp/nodes/unit_union.h"
#include "regexp/nodes/units.h"
#include "regexp/parser/parser_context.h"
#include "regexp/parser/syntax.h"
#include "regexp/units/unit_set.h"

#include <cstddef>
#include <memory>
#include <utility>

/// How a range of units is tested. Lower-case and upper-case forms are those of the host's simple mapping,
/// unit by unit.
enum class RE_Range_Test {
    exact,  ///< the unit itself
    lower,  ///< its lower-case form, against bounds in lower case
    both    ///< each of its forms: its own two, and all units with the same lower-case form
};

/// The bounds in ascending order, already mapped for the test, and the test that the case of the units
/// between them requires.
struct RE_Range_Plan {
    char16_t low;
    char16_t high;
    RE_Range_Test test;
};

/// Plans the test for a range, both ends included. `low` may be greater than `high`: a reversed range is
/// the same range. Takes the same time for long ranges as for short ones.
RE_Range_Plan planRange(char16_t low, char16_t high, RE_Flags flags);

/// A class as a test and as the set of units for which the test holds. The set belongs to the process and
/// lives for ever. Both are null for a letter that names no class.
struct RE_Named_Class {
    bool (*test)(char16_t) = nullptr;
    const RE_Unit_Set* units = nullptr;
};
/// The class that an escape letter names: d, s, w, or the complement by their capitals. Case modes do not
/// matter.
RE_Named_Class namedClass(char16_t letter);

/// Gathers the members of a bracket expression into a table of units. Members are folded as they are added,
/// each under the modes given for it; negation is of the whole and comes last.
class RE_Unit_Test_Set {
public:
    struct Member {
        bool isClass;
        char16_t low;  ///< first unit, or the letter of the class
        char16_t high;
    };

    explicit RE_Unit_Test_Set(RE_Set_Pool& pool) : units(pool) {}

    static bool namesClass(char16_t letter) { return namedClass(letter).test != nullptr; }

    void addRange(char16_t low, char16_t high, RE_Flags flags);
    void addClass(char16_t letter);

    /// How many members were added, equal ones included. A set of one member needs no table: the caller
    /// makes it a plain atom, from `firstMember`, which has the bounds as written.
    std::size_t members() const { return count; }
    Member firstMember() const { return first; }
    /// The table, or that of all other units. Called once, as it moves the units out.
    std::shared_ptr<const RE_Unit_Set> finish(bool negated) {
        return negated ? units.takeOthers() : units.take();
    }

private:
    void note(const Member& member);

    RE_Unit_Union units;
    std::size_t count = 0;
    Member first{};
};

/// The other units of the set, as a set of their own.
std::shared_ptr<const RE_Unit_Set> withoutLineFeed(RE_Set_Pool& pool, const RE_Unit_Set& units);

// The nodes below belong to the context and have no next node yet.

/// A literal unit under these modes: where case does not count, a unit that has case becomes its folding
/// variant.
RE_Consumable* makeLiteral(RE_ParserContext& context, char16_t unit, RE_Flags flags);
/// A range, whose node class follows from the case of the units in it. Equal bounds make a literal.
RE_Consumable* makeRange(RE_ParserContext& context, char16_t low, char16_t high, RE_Flags flags);
/// The node of a syntax item that consumes one unit (`RE_Syntax::isUnit`), under the modes of the item.
RE_Consumable* makeUnitNode(RE_ParserContext& context, const RE_Syntax_Tree& tree, std::uint32_t index);
