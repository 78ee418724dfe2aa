// Closed bodies: atomic groups, possessive loops, lookarounds, and the conditionals.
//
// A body is a sub-graph that a link of its node leads into. It has an end of its own and does not lead on
// to what follows the node. The search runs it like any other part, but drops its choices when it
// completes.
#include "regexp/base/within_size.h"
#include "regexp/nodes/anchors.h"
#include "regexp/nodes/dynamic.h"
#include "regexp/parser/graph_builder.h"

// Builds the body on `bodyLink` and returns `tail` and `scope` to what they were. Nothing outside changes
// while a body runs, so its memo scopes begin afresh. A look-behind must also end where it was entered,
// which the node in front of the end tests.
//
// `group` may be the repeat itself, for a possessive one: then the loop is built, as emitRepeat would close
// it again.
void RE_Graph_Builder::emitBody(std::uint32_t group, RE_Node** bodyLink, bool behind, RE_End_Of_Tree** end) {
    RE_Node** const outerTail = tail;
    const RE_Memo_Scope* const outerScope = scope;
    tail = bodyLink;
    scope = nullptr;
    ++bodyDepth;
    then([this, behind, end, outerTail, outerScope] {
        if (behind) {
            append(context.make<RE_End_Match>());
        }
        auto* const bodyEnd = context.make<RE_End_Of_Tree>(nullptr, true);
        append(bodyEnd);
        if (end != nullptr) {
            *end = bodyEnd;
        }
        tail = outerTail;
        scope = outerScope;
        --bodyDepth;
    });
    if (tree[group].kind == RE_Syntax_Kind::repeat) {
        emitLoop(group);
    } else {
        emitGroup(group);
    }
}

// Also for a possessive repetition, which is its loop in a closed body. How it ended is remembered only
// within another body, from where the same position is entered often, and only where it records nothing: an
// outcome has no tokens.
void RE_Graph_Builder::emitAtomic(std::uint32_t index) {
    auto* const atomic = context.make<RE_Atomic>();
    atomic->bodyMinimum = tree[index].least;
    atomic->bodyMaximum = tree[index].most;
    atomic->memoIndex = context.nextMemoRow();
    atomic->remembers = bodyDepth > 0 && !tree[index].captures;
    append(atomic);
    emitBody(index, &atomic->body, false);
}

// A negative look leaves no tokens whatever its body records, so its outcome can always be remembered.
RE_Lookaround_Assertion* RE_Graph_Builder::makeLook(std::uint32_t index) {
    const RE_Syntax& item = tree[index];
    auto* const look = context.make<RE_Lookaround_Assertion>(item.behind, item.negative);
    look->bodyMinimum = item.minimum;
    look->bodyMaximum = item.maximum;
    look->memoIndex = context.nextMemoRow();
    look->remembers = item.negative || !item.captures;
    return look;
}

// A negative assertion has no next node: where its body completes the path is dead, and where it fails
// matching continues at the fail target.
void RE_Graph_Builder::emitLook(std::uint32_t index) {
    RE_Lookaround_Assertion* const look = makeLook(index);
    *tail = look;
    tail = look->negative ? &look->failTarget : &look->nextNode;
    emitBody(index, &look->body, look->behind, &look->bodyEnd);
}

// The condition is a token, an expression or a lookaround. Only the last has a body to build first; then
// the branches wait until that is complete.
void RE_Graph_Builder::emitConditional(std::uint32_t index) {
    const RE_Syntax& item = tree[index];
    if (item.condition == RE_Syntax::none) {
        auto* const token = context.make<RE_Token_Assertion>(withinSize(item.number), nameOf(item));
        *tail = token;
        emitConditionalBranches(index, token, false);
        return;
    }
    const RE_Syntax& condition = tree[item.condition];
    if (condition.kind == RE_Syntax_Kind::evaluate) {
        using Shared = std::shared_ptr<const RE_Bool_Evaluator>;
        workFor(condition);
        auto* const answer =
            context.make<RE_Evaluate_Assertion>(std::get<Shared>(tree.dynamics[condition.payload]));
        workFor(item);
        *tail = answer;
        emitConditionalBranches(index, answer, false);
        return;
    }
    const RE_Pattern_Part whole = part;
    workFor(condition);
    RE_Lookaround_Assertion* const look = makeLook(item.condition);
    *tail = look;
    workFor(whole);
    then([this, index, look] { emitConditionalBranches(index, look, look->negative); });
    workFor(condition);
    emitBody(item.condition, &look->body, look->behind);
}

// The two links of the condition lead into the branches, exchanged for a negative one. Without a second
// branch a condition that does not hold leads past the conditional. Neither way is a choice: the condition
// decides and leaves no record.
void RE_Graph_Builder::emitConditionalBranches(std::uint32_t index, RE_Fail* condition, bool negative) {
    const RE_Syntax& item = tree[index];
    RE_Node* const join = context.make<RE_Null>();
    RE_Node** const holds = negative ? &condition->failTarget : &condition->nextNode;
    RE_Node** const holdsNot = negative ? &condition->nextNode : &condition->failTarget;
    const std::uint32_t second = tree[item.firstChild].nextSibling;
    then([this, join, holdsNot, second] {
        joinAt(join);
        tail = holdsNot;
        then([this, join] {
            joinAt(join);
            tail = &join->nextNode;
        });
        if (second != RE_Syntax::none) {
            emit(second);
        }
    });
    tail = holds;
    emit(item.firstChild);
}
