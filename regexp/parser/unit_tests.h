// Which units an atom of one unit stands for: the rules of case that nodes and sets share.
#pragma once

#include "regexp/flags.h"
#include "regexp/nodes/units.h"
#include "regexp/parser/parser_context.h"
#include "regexp/parser/syntax.h"
#include "regexp/parser/unit_union.h"
#include "regexp/unit_set.h"

#include <cstddef>
#include <memory>
#include <utility>

/// How a range of units is tested.
enum class RE_Range_Test {
    exact,  ///< the unit itself
    lower,  ///< its lower-case form, against bounds in lower case
    both    ///< its lower-case form or its upper-case form
};

/// The bounds in order, and the test that the case of the units between them asks for.
struct RE_Range_Plan {
    char16_t low;
    char16_t high;
    RE_Range_Test test;
};

/// `low` may be greater than `high`: a reversed range is the same range.
RE_Range_Plan planRange(char16_t low, char16_t high, RE_Flags flags);

/// A class as a test and as the set of units for which the test holds.
struct RE_Named_Class {
    bool (*test)(char16_t) = nullptr;
    const RE_Unit_Set* units = nullptr;
};
/// The class behind an escape letter (d, s, w and their capitals); null for other letters.
RE_Named_Class namedClass(char16_t letter);

/// Gathers members into a table of units.
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

    std::size_t members() const { return count; }
    Member firstMember() const { return first; }
    /// The table. Called once.
    std::shared_ptr<const RE_Unit_Set> finish(bool negated) {
        return negated ? units.takeOthers() : units.take();
    }

private:
    void note(const Member& member);

    RE_Unit_Union units;
    std::size_t count = 0;
    Member first{};
};

/// A literal unit under these modes: under ignore case a unit that has case becomes its folding variant.
RE_Consumable* makeLiteral(RE_ParserContext& context, char16_t unit, RE_Flags flags);
/// A range, whose class follows from the case of the units in it. Equal bounds make a literal.
RE_Consumable* makeRange(RE_ParserContext& context, char16_t low, char16_t high, RE_Flags flags);
/// The node of a syntax item that consumes one unit.
RE_Consumable* makeUnitNode(RE_ParserContext& context, const RE_Syntax_Tree& tree, std::uint32_t index);
