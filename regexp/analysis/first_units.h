// With which units a way through the graph can begin.
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

/// Looks at the units that the nodes reachable without consuming can consume first. Used once.
class RE_First_Units {
public:
    static constexpr std::size_t anyNumber = static_cast<std::size_t>(-1);

    explicit RE_First_Units(RE_Graph_Context& parserContext)
        : pending(&parserContext.scratch), gathered(parserContext.sets), walk(parserContext.nextWalk()) {
        pending.reserve(usualNodes);
    }

    /// Gathers them. False when nothing can be said, also when more than `mostNodes` would have to be looked at.
    bool gather(RE_Node* from, std::size_t mostNodes = anyNumber);
    /// Gathers no more of them than a choice between branches asks for. What may be there besides is left to the caller.
    bool gatherStart(RE_Branch_Start& into, RE_Node* from, std::size_t mostNodes);
    /// Whether none of them is in the set. Gathers nothing, and is over as soon as one is found.
    bool avoids(const RE_Unit_Set& set, RE_Node* from, std::size_t mostNodes);

    std::shared_ptr<const RE_Unit_Set> units;  ///< what was gathered: a set of their own, or that of a node
    bool mayBeEmpty = false;                   ///< the end of the pattern can be reached
    bool endsBody = false;                     ///< so can the end of a closed body
    bool mayBeAtEnd = false;                   ///< a test on the way holds at the end of the subject
    bool tested = false;                       ///< some way depends on a test that consumes nothing

private:
    static constexpr std::size_t usualNodes = 16;

    bool run(RE_Node* from, std::size_t mostNodes);
    void follow(RE_Node* node);
    struct Reader;  ///< of what the nodes mean
    /// Goes on past a node that consumes nothing and may fail.
    void followTested(RE_Node* next, RE_Node* otherwise = nullptr);
    void addAccepted(char16_t unit) { addUnit(unit); }
    void addAccepted(const RE_Unit_Set& set) { addSet(set); }
    void addAccepted(const RE_Consumable& test) { addConsumable(test); }
    void addUnit(char16_t unit);
    void addSet(const RE_Unit_Set& set);
    void addConsumable(const RE_Consumable& unit);
    void addFirst(const RE_String& string);

    RE_Scratch_List<RE_Node*> pending;
    RE_Unit_Union gathered;
    std::uint32_t walk;
    std::size_t seen = 0;
    const RE_Unit_Set* avoided = nullptr;  ///< null while units are gathered
    RE_Branch_Start* start = nullptr;      ///< in place of the units themselves
    bool known = true;
};
