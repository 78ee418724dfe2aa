// Nodes that every match passes.
#pragma once

#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/links.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/trivial.h"
#include "regexp/nodes/graph_context.h"

#include <vector>

/// Calls `visit` (RE_Node* target) with each node that matching may come to behind this one, outside of lookarounds. False
/// where the pattern may be over, and where units are consumed that nobody knows.
template <class Visit>
bool forEachStep(RE_Node& node, Visit visit) {
    constexpr RE_Class_Bits rows = RE_Asked_Classes::bit<RE_String>() | RE_Asked_Classes::bit<RE_Consume>() |
                                   RE_Asked_Classes::bit<RE_Literal_Set>();
    if ((node.classes & rows) != 0) {
        visit(node.nextNode);
    } else if (auto* atomic = nodeAs<RE_Atomic>(&node)) {
        visit(atomic->body);
        visit(atomic->nextNode);
    } else if (auto* end = nodeAs<RE_End_Of_Tree>(&node)) {
        return end->endsBody;
    } else if (nodeAs<RE_Match_Token>(&node) != nullptr || node.isEnd()) {
        return false;
    } else {
        forEachWay(node, visit);
    }
    return true;
}

/// Keeps those of the nodes that all ways lead through from the root to where `forEachStep` says false. Where no way leads
/// that far all are kept.
void keepBottlenecks(RE_Graph_Context& context, RE_Node* root, RE_Scratch_List<RE_Node*>& nodes);
