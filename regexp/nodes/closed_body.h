// Nodes that match a sub-graph as a closed sub-search: atomic groups and lookaround.
//
// `match` opens a frame in the search state and `next()` leads into the body; the match loop runs the body
// like any other node and calls `bodyEnded` when it has completed or failed. No choice inside the body
// survives that, and no native stack is used however deeply bodies nest.
//
// How a body ends at a position can be remembered where it depends on nothing else: that it failed always,
// within the lifetime of a failure; that it completed only where `remembers` is set, since an outcome holds
// no tokens.
#pragma once

#include "regexp/nodes/can_seek.h"
#include "regexp/units/unit_set.h"

class RE_End_Of_Tree;

/// Keeps what its body matched first: the choices of the body are dropped when it completes. Also the form of
/// possessive loops over more than a unit.
class CORVANE_REGEXP_EXPORT RE_Atomic : public RE_Node {
public:
    using RE_Node::RE_Node;
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    RE_Node* next() const override { return body; }
    RE_Node* bodyEnded(bool completed, std::size_t& pos, RE_Search_Info& info) const override;
    void visitLinks(RE_Link_Visitor& visitor) override;
    void combineLengths() override;
    RE_Meaning meaning() const override;
    std::string label() const override { return "Atomic group"; }

    RE_Node* body = nullptr;
    bool remembers = false;  ///< where a completed body ended depends on its start only, and is needed often
    // In units, from the measured syntax: the links of the body do not tell where it ends.
    std::uint64_t bodyMinimum = 0;  ///< units the body consumes
    std::uint64_t bodyMaximum = unboundedLength;
};

/// Lookahead and look-behind. Where the body matches matching continues at `nextNode`, where it does not at
/// the fail target, in both cases at the position of the assertion. So a negative assertion continues at its
/// fail target and has no next node, unless it is a condition. Consumes nothing.
///
/// A look-behind's body must end at the assertion. Its starts are tried from the nearest to the farthest.
class CORVANE_REGEXP_EXPORT RE_Lookaround_Assertion : public RE_Branch_Seek<RE_Can_Seek<RE_Consumable>> {
public:
    RE_Lookaround_Assertion(RE_Graph_Context& context, bool looksBehind, bool isNegative)
        : RE_Branch_Seek<RE_Can_Seek<RE_Consumable>>(context), behind(looksBehind), negative(isNegative) {}

    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    RE_Node* next() const override { return body; }
    RE_Node* bodyEnded(bool completed, std::size_t& pos, RE_Search_Info& info) const override;
    void visitLinks(RE_Link_Visitor& visitor) override;
    RE_Meaning meaning() const override;
    std::string label() const override { return behind ? "Lookaround Behind" : "Lookaround Ahead"; }

    bool behind;
    bool negative;  ///< tokens that its body captured are taken back when the body completes
    RE_Node* body = nullptr;
    bool remembers = false;         ///< of a body that completed nothing is left but that it did
    std::uint64_t bodyMinimum = 0;  ///< bounds of what a look-behind body consumes
    std::uint64_t bodyMaximum = unboundedLength;

    RE_End_Of_Tree* bodyEnd = nullptr;  ///< of a lookaround that is no condition
    /// Looks ahead, has to hold, and ends the pattern: what the body consumes follows every match.
    bool isLast = false;

    /// Where the row of tests that the body consists of ends; null when the body is more than such a row.
    const RE_Node* glanceEnd = nullptr;
    std::uint64_t glanceWidth = 0;  ///< units that the tests consume at the least; of a look-behind, exactly
    /// Of a body that tests one unit: those that it matches; null where that is `glanceUnit`, or no such body.
    const RE_Unit_Set* glanceUnits = nullptr;
    static constexpr std::uint32_t noUnit = static_cast<std::uint32_t>(-1);
    std::uint32_t glanceUnit = noUnit;

    /// Whether the body matches, for one that is a row of tests: without a frame, a record or a step of its
    /// own. Reads nothing outside of the subject.
    bool glance(const char16_t* p, RE_Search_Info& info) const {
        if (glanceUnits == nullptr && glanceUnit == noUnit) {
            return glanceAtRow(info.indexOf(p), info);
        }
        if (behind ? info.atBegin(p) : info.atEnd(p)) {
            return false;
        }
        const char16_t unit = behind ? p[-1] : *p;
        return glanceUnits != nullptr ? glanceUnits->contains(unit) : unit == glanceUnit;
    }

    /// The test that decides it, when the row of tests is a single test of a unit; else null. Such an
    /// assertion means a test of the neighbouring unit, as an anchor does.
    const RE_Consumable* onlyTest() const;

private:
    /// The same by visiting the tests, which continue at each other's next node.
    bool glanceAtRow(std::size_t pos, RE_Search_Info& info) const;
    /// Opens the body of a look-behind at its nearest candidate start. False when there is none.
    bool openBehind(std::size_t& pos, RE_Search_Info& info) const;
    /// Moves the frame's candidate back to a start at which the body can begin. False when there is none
    /// left.
    bool findStart(RE_Body_Frame& frame, std::size_t& pos, RE_Search_Info& info) const;
    /// After a failure: the body again, from an earlier start, or null.
    RE_Node* tryEarlierStart(std::size_t& pos, RE_Search_Info& info) const;
};
