// What nodes do unless their class says otherwise, and the fail chains of unit tests.
//
// By default a node matches everywhere, consumes nothing, leaves no choice and leads to its next node.
#include "regexp/graph/node.h"

#include "regexp/nodes/graph_context.h"
#include "regexp/state/search_info.h"
#include "regexp/units/unit_set.h"

RE_Node::RE_Node(RE_Graph_Context& context) : nodeId(context.nextNodeId()) {}

RE_Node::RE_Node(RE_Graph_Context& context, const RE_Node& other)
    : nodeId(context.nextNodeId()),
      nextNode(other.nextNode),
      minLength(other.minLength),
      maxLength(other.maxLength),
      maxBounded(other.maxBounded) {}

RE_Node::RE_Node(RE_Graph_Context& context, RE_Node& predecessor, RE_Node* successor)
    : nodeId(context.nextNodeId()), nextNode(successor) {
    predecessor.nextNode = this;
}

bool RE_Node::match(const char16_t*, std::size_t&, RE_Search_Info&) const {
    return true;
}

RE_Node* RE_Node::resume(const RE_Backtrack_Record& record, std::size_t& pos, RE_Search_Info& info) const {
    pos = info.indexOf(record.position);
    return alternativeNode();
}

RE_Node* RE_Node::bodyEnded(bool, std::size_t&, RE_Search_Info&) const {
    return nullptr;
}

void RE_Node::visitLinks(RE_Link_Visitor& visitor) {
    visitor.link(nextNode, RE_Link::next);
}

// Without knowledge every position is a candidate: the first one forward, the last one backward.
const char16_t* RE_Node::seek(const char16_t* p, RE_Search_Info&) const {
    return p;
}

const char16_t* RE_Node::rSeek(const char16_t* p, std::size_t count, RE_Search_Info&) const {
    return p + count;
}

// A branching node may match where its other way can, so what it finds by itself is no answer for the table.
RE_Seek_Key RE_Node::seekKey(bool throughBranches) const {
    return RE_Seek_Key(isBranching() && !throughBranches ? nullptr : this);
}

void RE_Fail::visitLinks(RE_Link_Visitor& visitor) {
    RE_Node::visitLinks(visitor);
    visitor.link(failTarget, RE_Link::fail);
}

// Slow but right for any class: tests all 65,536 units.
void RE_Consumable::addUnitsTo(RE_Unit_Set& set) const {
    set.addWhere([this](char16_t unit) { return matchesUnit(unit); });
}

std::size_t RE_Consumable::skipDistance(const char16_t* p, const char16_t* limit) const {
    const char16_t* end = p;
    while (end < limit && matchesUnit(*end)) {
        ++end;
    }
    return static_cast<std::size_t>(end - p);
}

// Nothing is tried after a test that matches every unit: it fails at the end of the subject only, where no
// other test of a unit can match. Nodes that other ways reach stay as they are, with the rest of their chain.
bool RE_Consumable::absorbFailNode() {
    if (sharedTarget) {
        return false;
    }
    for (RE_Consumable* node = this; node != nullptr && !node->sharedTarget;) {
        if (node->matchesAnyChar()) {
            node->failTarget = nullptr;
        }
        node = nodeAs<RE_Consumable>(node->failTarget);
    }
    return true;
}
