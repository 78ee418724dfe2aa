// Decides for each run whether any end but its longest could lead to a match.
//
// A lazy run that passes the test becomes a greedy one: at every end but the last the next unit belongs to
// the run, so both orders would arrive at the same single end.
#include "regexp/passes/possessive_loops.h"

#include "regexp/analysis/first_units.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/tokens.h"

#include <algorithm>

namespace {

// Beyond this the first units after a loop count as unknown and the loop stays as it is. Patterns may have as
// many loops as nodes: without a bound the pass would be quadratic.
constexpr std::size_t mostNodesAfterLoop = 64;

// At an end before the longest the next unit is one of the run.
//
// Where the rest has to consume a unit, that unit is none of the run, so the rest fails at every such end.
// Where the rest can also do without one it succeeds at the longest end, which a greedy run tries first,
// provided that nothing on the way tests the position; then no shorter end is ever tried. A lazy run tries
// the shortest end first and would succeed there, so it qualifies only in the first case.
bool mayBePossessive(RE_Graph_Context& context, const RE_Consume& loop) {
    RE_First_Units rest(context);
    if (!rest.avoids(*loop.units, loop.nextNode, mostNodesAfterLoop)) {
        return false;
    }
    return !(rest.mayBeEmpty || rest.endsBody) || !(rest.tested || loop.lazy);
}

/// Lets a token that wraps a possessive loop run the loop itself: start, loop and end in one visit. The kinds
/// are compared, as the counting forms of these nodes have to be visited one by one.
void linkTokenToRun(RE_Node* node) {
    auto* const start = nodeAs<RE_Start_Token>(node);
    const auto* const loop = start != nullptr ? nodeAs<RE_Consume>(start->nextNode) : nullptr;
    if (loop == nullptr || !loop->possessive || loop->lazy || loop->kind != RE_Node_Kind::run) {
        return;
    }
    const auto* const end = nodeAs<RE_End_Token>(loop->nextNode);
    if (end != nullptr && end->number == start->number && end->kind == RE_Node_Kind::endToken) {
        start->run = loop;
    }
}

}  // namespace

RE_Node* makeLoopsPossessive(RE_Graph_Context& context, RE_Node* root) {
    if (context.facts->hasDynamicNodes || !context.hasMade<RE_Consume>()) {
        return root;
    }
    const RE_Collection::Nodes& nodes = context.nodes(root);
    for (RE_Node* node : nodes) {
        context.meter.spend();
        auto* const loop = nodeAs<RE_Consume>(node);
        if (loop != nullptr && !loop->possessive && mayBePossessive(context, *loop)) {
            loop->possessive = true;
            // For people who ask why the engine does not backtrack here: one that is possessive as written has
            // another reason.
            loop->couldNotHelp = true;
            loop->lazy = false;
        }
    }
    if (context.hasMade<RE_Start_Token>()) {
        std::ranges::for_each(nodes, linkTokenToRun);
    }
    return root;
}
