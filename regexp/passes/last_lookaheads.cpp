// Recognises lookaheads that have to hold and after which nothing is consumed or tested before the pattern ends.
#include "regexp/passes/last_lookaheads.h"

#include "regexp/graph/meaning.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/trivial.h"

namespace {

/// The node that follows those that only record, or null after too many of them.
const RE_Node* pastRecords(const RE_Node* node) {
    constexpr int most = 64;
    for (int i = 0; i < most && node != nullptr; ++i) {
        const RE_Meaning meaning = node->meaning();
        if (const auto* const nothing = std::get_if<RE_Meanings::Nothing>(&meaning)) {
            node = nothing->next;
        } else if (const auto* const mark = std::get_if<RE_Meanings::Mark>(&meaning)) {
            node = mark->next;
        } else {
            return node;
        }
    }
    return nullptr;
}

bool endsPattern(const RE_Node* node) {
    const auto* const end = nodeAs<RE_End_Of_Tree>(pastRecords(node));
    return end != nullptr && !end->endsBody && end->continuation == nullptr;
}

}  // namespace

RE_Node* findLastLookaheads(RE_Graph_Context& context, RE_Node* root) {
    if (!context.hasMade<RE_Lookaround_Assertion>()) {
        return root;
    }
    for (RE_Node* node : context.nodes(root)) {
        auto* const look = nodeAs<RE_Lookaround_Assertion>(node);
        const bool mayBeLast =
            look != nullptr && !look->behind && !look->negative && look->failTarget == nullptr;
        if (mayBeLast && look->bodyEnd != nullptr && endsPattern(look->nextNode)) {
            look->isLast = look->bodyEnd->endsLast = true;
        }
    }
    return root;
}
