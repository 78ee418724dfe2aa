// The checks, one function for what a class needs and two for where nodes lead. Compiled in the developer
// build only.
#include "regexp/passes/check_graph.h"

#ifdef CORVANE_CHECK_GRAPH

#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/collection.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/counters.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/links.h"
#include "regexp/nodes/trivial.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace {

/// Whether matching can continue after the node. Ends and the helpers of counters need no way on, and a
/// dispatch has its ways in a list of its own.
bool leadsOn(RE_Node* node) {
    if (nodeAs<RE_End_Of_Tree>(node) != nullptr || nodeAs<RE_Counter_Popper>(node) != nullptr ||
        nodeAs<RE_Lazy_Decrementer>(node) != nullptr || nodeAs<RE_Dispatch>(node) != nullptr) {
        return true;
    }
    return node->nextNode != nullptr || node->failNode() != nullptr;
}

/// Whether the links and bounds are there that the class of the node relies on without looking. A fixed
/// counter is a split, too, so it comes first: it leaves by its done node and has no alternative.
bool isComplete(RE_Node* node) {
    if (auto* fixed = nodeAs<RE_Fixed_Counter>(node)) {
        return fixed->doneNode != nullptr;
    }
    if (auto* split = nodeAs<RE_Split>(node)) {
        // Poppers and decrementers derive from the split but are no choice.
        const bool helper = node->isCounter && !node->isStateCounter();
        return helper || split->alternative != nullptr;
    }
    if (auto* dispatch = nodeAs<RE_Dispatch>(node)) {
        // A dispatch with one way would be that way.
        return dispatch->ways.size() > 1 && std::ranges::count(dispatch->ways, nullptr) == 0;
    }
    if (auto* start = nodeAs<RE_Start_Counter>(node)) {
        return start->popper != nullptr && start->counter != nullptr;
    }
    if (auto* atomic = nodeAs<RE_Atomic>(node)) {
        return atomic->body != nullptr;
    }
    if (auto* look = nodeAs<RE_Lookaround_Assertion>(node)) {
        return look->body != nullptr;
    }
    if (auto* consume = nodeAs<RE_Consume>(node)) {
        return consume->item != nullptr && consume->item->isSingleUnit() &&
               consume->minimum <= consume->maximum;
    }
    return true;
}

bool leadsToSkippable(RE_Node* node) {
    bool found = false;
    forEachLink(*node,
                [&found](RE_Node* target, RE_Link) { found = found || throughSkippable(target) != target; });
    return found;
}

}  // namespace

void checkGraph(RE_Node* root, bool bypassesSkippable) {
    for (RE_Node* node : RE_Collection::reachable(root)) {
        const bool mayBeItem = nodeAs<RE_Consumable>(node) != nullptr;
        if (!isComplete(node) || !(mayBeItem || leadsOn(node)) ||
            (bypassesSkippable && leadsToSkippable(node))) {
            throw std::logic_error("broken graph at node " + std::to_string(node->nodeId) + ": " +
                                   node->label());
        }
    }
}

#else

void checkGraph(RE_Node*, bool) {}

#endif
