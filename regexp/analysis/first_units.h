// With which units a way through the graph can begin.
//
// Three questions have one walk: which units are these (start finders), in which columns of a dispatch they
// are, and whether a set holds none of them (possessive loops).
//
// Invariant: the answer is never too small. A unit with which a match can begin is in it; one that a test
// further on rules out may be in it, too. Where that cannot be guaranteed nothing is said.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/graph/node.h"
#include "regexp/nodes/graph_context.h"
#include "regexp/nodes/unit_union.h"
#include "regexp/units/unit_set.h"

#include <cstddef>
#include <memory>
#include <vector>

class RE_String;
struct RE_Branch_Start;

/// Looks at the units that the nodes reachable without consuming can consume first. Used once: the number of
/// its walk marks the nodes, and a second walk would find them visited.
///
/// The flags tell what may be there besides a unit. They are set by all three questions, but only complete
/// when the answer was true.
class RE_First_Units {
public:
    static constexpr std::size_t anyNumber = static_cast<std::size_t>(-1);

    explicit RE_First_Units(RE_Graph_Context& parserContext)
        : meter(parserContext.meter),
          pending(&parserContext.scratch),
          gathered(parserContext.sets),
          walk(parserContext.nextWalk()) {
        pending.reserve(usualNodes);
    }

    /// Gathers them into `units`. False when nothing can be said, also when more than `mostNodes` would have
    /// to be looked at.
    bool gather(RE_Node* from, std::size_t mostNodes = anyNumber);
    /// Gathers them as columns of a dispatch, which is all that a choice between branches needs. What the flags say is
    /// left to the caller to add.
    bool gatherStart(RE_Branch_Start& into, RE_Node* from, std::size_t mostNodes);
    /// Whether none of them is in the set. Gathers nothing, and is over as soon as one is found; false also
    /// when nothing can be said.
    bool avoids(const RE_Unit_Set& set, RE_Node* from, std::size_t mostNodes);

    std::shared_ptr<const RE_Unit_Set> units;  ///< what was gathered: a set of their own, or that of a node
    bool mayBeEmpty = false;                   ///< the end of the pattern can be reached
    bool endsBody = false;                     ///< so can the end of a closed body
    bool mayBeAtEnd = false;                   ///< a test on the way holds at the end of the subject
    bool tested = false;                       ///< some way depends on a test that consumes nothing

private:
    static constexpr std::size_t usualNodes = 16;

    /// The walk. False when the answer is not known, or, for `avoids`, is no.
    bool run(RE_Node* from, std::size_t mostNodes);
    /// Puts a node on the list of those to be read, unless it is null or has been there before.
    void follow(RE_Node* node);
    struct Reader;  ///< of what the nodes mean
    /// Goes on past a node that consumes nothing and may fail.
    void followTested(RE_Node* next, RE_Node* otherwise = nullptr);
    // One name for the three forms in which a test of the next unit tells what it accepts.
    void addAccepted(char16_t unit) { addUnit(unit); }
    void addAccepted(const RE_Unit_Set& set) { addSet(set); }
    void addAccepted(const RE_Consumable& test) { addConsumable(test); }
    // These three serve the question that was put: they gather, mark a column, or compare with the set to
    // avoid.
    void addUnit(char16_t unit);
    void addSet(const RE_Unit_Set& set);
    void addConsumable(const RE_Consumable& unit);
    void addFirst(const RE_String& string);

    RE_Compile_Meter& meter;
    RE_Scratch_List<RE_Node*> pending;
    RE_Unit_Union gathered;
    std::uint32_t walk;
    std::size_t seen = 0;
    const RE_Unit_Set* avoided = nullptr;  ///< null while units are gathered
    RE_Branch_Start* start = nullptr;      ///< in place of the units themselves
    bool known = true;
};
