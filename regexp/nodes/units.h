// Nodes that consume one unit, each decided by that unit alone.
//
// They can be joined by fail targets into a chain of alternatives that is tried at one position without
// leaving a choice behind.
//
// Invariant: `matchesUnit`, `addUnitsTo` and `table`, where there is one, agree on every unit. Passes replace
// nodes by sets that they read off them, so a unit that one of these gets wrong changes answers.
//
// Units are UTF-16 code units: a character outside of the BMP is two of them, each tested by itself.
#pragma once

#include "regexp/nodes/can_seek.h"
#include "regexp/seek/kernels.h"
#include "regexp/seek/literal_search.h"
#include "regexp/units/unit_set.h"

#include <memory>
#include <optional>

/// Base of the single-unit tests: everything follows from `matchesUnit`. Where the test fails matching
/// continues at the fail target, at the same position.
class CORVANE_REGEXP_EXPORT RE_Unit_Test : public RE_Consumable {
public:
    using RE_Consumable::RE_Consumable;

    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    bool isSingleUnit() const override { return true; }
    RE_Meaning meaning() const override;
    std::uint64_t width() const override { return 1; }
    /// Empty nodes on either side are looked through.
    bool leadsTo(RE_Node* target) override;
};

/// Seeks where it has no fail target: with one the node's own units do not say where matching can continue.
using RE_Unit_Seek = RE_Branch_Seek<RE_Can_Seek<RE_Unit_Test>>;

/// One literal unit, where case counts.
class CORVANE_REGEXP_EXPORT RE_Natural : public RE_Unit_Seek {
public:
    RE_Natural(RE_Graph_Context& context, std::uint32_t unit) : RE_Unit_Seek(context), ch(unit) {}

    bool matchesUnit(char16_t unit) const override { return unit == ch; }
    void addUnitsTo(RE_Unit_Set& set) const override { set.add(static_cast<char16_t>(ch)); }
    bool canJoinString(bool first, bool ignoreCase) const override;
    RE_Node* joinString(RE_Graph_Context& context) override;
    std::string label() const override;

    /// Wider than a unit, since nodes made by hand may hold what no unit can be: those match nothing.
    std::uint32_t ch;

protected:
    bool scans() const override { return true; }
    const char16_t* scan(const char16_t* p, RE_Search_Info& info) const override;
    const char16_t* scanBack(const char16_t* p, std::size_t count, RE_Search_Info& info) const override;
    /// What both kinds of literals require to become a part of a string: no other way on, none in unless it is
    /// the first, and a unit of text.
    bool mayJoin(bool first) const;
};

/// One literal unit, ignoring case: `ch` is its lower-case form, and it matches all units with that form.
class CORVANE_REGEXP_EXPORT RE_Natural_I : public RE_Natural {
public:
    RE_Natural_I(RE_Graph_Context& context, char16_t unit)
        : RE_Natural(context, RE_Case_Table::get().lower(unit)),
          upper(RE_Case_Table::get().upper(unit)),
          folded(static_cast<char16_t>(ch)),
          search(literal()) {}

    bool matchesUnit(char16_t unit) const override { return cases->lower(unit) == ch; }
    void addUnitsTo(RE_Unit_Set& set) const override;
    bool canJoinString(bool first, bool ignoreCase) const override;
    RE_Node* joinString(RE_Graph_Context& context) override;
    std::string label() const override;

    /// The upper-case form of the unit in the pattern. There may be further forms.
    std::uint32_t upper;

protected:
    const char16_t* scan(const char16_t* p, RE_Search_Info& info) const override;
    const char16_t* scanBack(const char16_t* p, std::size_t count, RE_Search_Info& info) const override;

private:
    /// The unit as a text, for the search that compares texts without case.
    RE_Literal literal() const { return {&folded, 1, true}; }

    const RE_Case_Table* cases = &RE_Case_Table::get();
    char16_t folded;
    RE_Literal_Search search;
};

/// Units within inclusive bounds. With the lower bound above the upper one it matches nothing.
class CORVANE_REGEXP_EXPORT RE_Range : public RE_Unit_Test {
public:
    RE_Range(RE_Graph_Context& context, char16_t first, char16_t last)
        : RE_Unit_Test(context), low(first), high(last) {}

    bool matchesUnit(char16_t unit) const override { return holds(unit); }
    void addUnitsTo(RE_Unit_Set& set) const override;
    std::string label() const override;

    std::uint32_t low;
    std::uint32_t high;

protected:
    bool holds(char16_t unit) const { return low <= unit && unit <= high; }
    /// For the forms that ignore case: the units whose lower-case form is within the bounds, and with
    /// `bothForms` those of which any form is.
    void addFoldedUnitsTo(RE_Unit_Set& set, bool bothForms) const;
};
/// The units of a range where case counts, when all of them are below 128: then no set has to be made.
inline std::optional<RE_Low_Units> lowUnitsOf(const RE_Consumable& unit) {
    const auto* const range =
        unit.kind == RE_Node_Kind::range ? static_cast<const RE_Range*>(&unit) : nullptr;
    if (range == nullptr || range->high >= RE_Low_Units::unitCount) {
        return std::nullopt;
    }
    RE_Low_Units low;
    low.addRange(static_cast<char16_t>(range->low), static_cast<char16_t>(range->high));
    return low;
}

/// A range within one case, ignoring case: the bounds are lower-case forms.
class CORVANE_REGEXP_EXPORT RE_Range_I : public RE_Range {
public:
    using RE_Range::RE_Range;
    bool matchesUnit(char16_t unit) const override { return holds(RE_Case_Table::get().lower(unit)); }
    void addUnitsTo(RE_Unit_Set& set) const override { addFoldedUnitsTo(set, false); }
    std::string label() const override;
};

/// A range that mixes cases or cased and caseless units, ignoring case: a unit is tested in both its forms, and in all
/// that fold as it does.
class CORVANE_REGEXP_EXPORT RE_Range_I2 : public RE_Range {
public:
    using RE_Range::RE_Range;
    bool matchesUnit(char16_t unit) const override;
    void addUnitsTo(RE_Unit_Set& set) const override { addFoldedUnitsTo(set, true); }
    std::string label() const override;
};

/// Base of the tests that have their units as a table. The item of a loop does not seek, so the scan is only
/// made for nodes that are not one.
class CORVANE_REGEXP_EXPORT RE_Class_Seek : public RE_Unit_Seek {
public:
    using RE_Unit_Seek::RE_Unit_Seek;
    void initSeek() override;

protected:
    bool scans() const override { return true; }
    const char16_t* scan(const char16_t* p, RE_Search_Info& info) const override;
    const char16_t* scanBack(const char16_t* p, std::size_t count, RE_Search_Info& info) const override;

private:
    /// Made by `initSeek`, when it is known which nodes are items.
    std::optional<RE_Class_Scan> sought;
};

/// A class named by an escape, such as the digits. Its table is shared by all patterns.
class CORVANE_REGEXP_EXPORT RE_Escaped_Set : public RE_Class_Seek {
public:
    using Test = bool (*)(char16_t);

    RE_Escaped_Set(RE_Graph_Context& context, char16_t letter, Test predicate, const RE_Unit_Set& members)
        : RE_Class_Seek(context), escape(letter), test(predicate), units(&members) {}

    bool matchesUnit(char16_t unit) const override { return units->contains(unit); }
    void addUnitsTo(RE_Unit_Set& set) const override { set.addAll(*units); }
    const RE_Unit_Set* table() const override { return units; }
    std::string label() const override;

    std::uint32_t escape;
    Test test;
    const RE_Unit_Set* units;  ///< the units for which `test` holds; lives as long as the process
};

/// Any set of units, as a table: a bracket expression, or alternatives of single units taken together. The
/// set is shared with other nodes of the pattern and never changed; the text is for labels.
class CORVANE_REGEXP_EXPORT RE_Unit_Class : public RE_Class_Seek {
public:
    RE_Unit_Class(RE_Graph_Context& context, std::shared_ptr<const RE_Unit_Set> units, std::string source)
        : RE_Class_Seek(context), set(std::move(units)), text(std::move(source)) {}

    bool matchesUnit(char16_t unit) const override { return set->contains(unit); }
    void addUnitsTo(RE_Unit_Set& units) const override { units.addAll(*set); }
    const RE_Unit_Set* table() const override { return set.get(); }
    std::size_t skipDistance(const char16_t* p, const char16_t* limit) const override;
    std::string label() const override { return "Match " + text; }

    std::shared_ptr<const RE_Unit_Set> set;
    std::string text;
};

/// Base of the two dots. They do not seek: the next position mostly matches.
class CORVANE_REGEXP_EXPORT RE_Dot : public RE_Unit_Test {
public:
    using RE_Unit_Test::RE_Unit_Test;
};

/// Any unit. It fails at the end of the subject only, so a fail chain ends with it.
class CORVANE_REGEXP_EXPORT RE_Dot_All : public RE_Dot {
public:
    using RE_Dot::RE_Dot;
    bool matchesUnit(char16_t) const override { return true; }
    void addUnitsTo(RE_Unit_Set& set) const override;
    bool matchesAnyChar() const override { return true; }
    std::size_t skipDistance(const char16_t* p, const char16_t* limit) const override;
    std::string label() const override { return "Match . (dotall)"; }
};

/// Any unit but the line feed, the only unit that separates lines.
class CORVANE_REGEXP_EXPORT RE_Dot_Line : public RE_Dot {
public:
    using RE_Dot::RE_Dot;
    bool matchesUnit(char16_t unit) const override { return unit != u'\n'; }
    void addUnitsTo(RE_Unit_Set& set) const override;
    std::string label() const override { return "Match . (dotexceptnewline)"; }
};
