// With which units a way through the graph can begin.
#pragma once

#include "regexp/memory.h"
#include "regexp/nodes/node.h"
#include "regexp/unit_set.h"

#include <cstddef>
#include <memory>
#include <unordered_set>
#include <vector>

class RE_String;

/// Gathers the units that the nodes reachable without consuming can consume first.
class RE_First_Units {
public:
    static constexpr std::size_t anyNumber = static_cast<std::size_t>(-1);

    /// False when nothing can be said, also when more than `mostNodes` would have to be looked at.
    bool gather(RE_Node* from, std::size_t mostNodes = anyNumber);

    std::shared_ptr<RE_Unit_Set> units = RE_Unit_Set::make();
    bool mayBeEmpty = false;  ///< the end of the pattern can be reached
    bool endsBody = false;    ///< so can the end of a closed body
    bool mayBeAtEnd = false;  ///< a test on the way holds at the end of the subject
    bool tested = false;      ///< on the way lies a node that may fail without consuming

private:
    void follow(RE_Node* node);
    void visit(RE_Node* node);
    bool visitTest(RE_Node* node);
    void followWays(RE_Node* node);
    bool visitConsuming(RE_Node* node);
    void visitOther(RE_Node* node);
    void addFirst(const RE_String& string);

    std::vector<RE_Node*, RE_Allocator<RE_Node*>> pending;
    std::unordered_set<RE_Node*> seen;
    bool known = true;
};
