#include "regexp/passes/possessive_loops.h"

#include "regexp/analysis/first_units.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/tokens.h"

#include <algorithm>

namespace {

constexpr std::size_t mostNodesBehindLoop = 64;

// At a shorter end the next unit is one of the run. What follows fails there if it has to consume a unit, none of which
// is in the run; and if it can do without, it succeeds at the longest end already, unless something on the way looks at
// the position. A lazy run that may end the pattern at once is none of this.
bool neverGivesBack(RE_Graph_Context& context, const RE_Consume& loop) {
    RE_First_Units behind(context);
    if (!behind.avoids(*loop.units, loop.nextNode, mostNodesBehindLoop)) {
        return false;
    }
    return !(behind.mayBeEmpty || behind.endsBody) || !(behind.tested || loop.lazy);
}

/// Tells the token around a loop that gives nothing back of it.
void tellToken(RE_Node* node) {
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
        auto* const loop = nodeAs<RE_Consume>(node);
        if (loop != nullptr && !loop->possessive && neverGivesBack(context, *loop)) {
            loop->possessive = true;
            loop->couldNotHelp = true;
            loop->lazy = false;
        }
    }
    if (context.hasMade<RE_Start_Token>()) {
        std::ranges::for_each(nodes, tellToken);
    }
    return root;
}
