// Builds loops out of splits, counters and pass guards, or copies of a body where those are few.
//
// The shapes, with exits at the right (a lazy loop exchanges the two links of each choice):
//
//     x*        Split --> [Start Pass] --> x --> [End Pass] --> (back to the Split)              exit: alternative
//     x+        x --> Split --> (back to x)                                                      exit: alternative
//     x?        Split --> x --> join                                                             exit: alternative
//     x{n,m}    Start Counters --> Fixed Counter --> x --> (back);  done: Limit Counter --> x    exit: alternative
//
// Guards are there only where the body can match the empty text. Trap: the scope of a choice is taken when
// the choice is made, so each function changes `scope` in the same order in which a match meets the nodes.
#include "regexp/base/within_size.h"
#include "regexp/nodes/consume.h"
#include "regexp/parser/graph_builder.h"
#include "regexp/parser/unit_tests.h"

#include <algorithm>

namespace {

/// The links of a choice that lead into the loop and out of it. The next node is the one tried first.
RE_Node*& intoLoop(RE_Split& choice, bool lazy) {
    return lazy ? choice.alternative : choice.nextNode;
}
RE_Node*& outOfLoop(RE_Split& choice, bool lazy) {
    return lazy ? choice.nextNode : choice.alternative;
}

/// How many nodes a loop over one unit is built of before it becomes a run, besides the unit. Only for
/// numbering: see `emitRun`. Must agree with the functions below that would build the loop.
struct LoopNodes {
    std::uint64_t beforeUnit;
    std::uint64_t afterUnit;
};

LoopNodes nodesOfLoop(const RE_Repeat_Plan& plan, bool lazy) {
    const bool endless = plan.maximum == RE_Syntax::noMaximum;
    if (!plan.counted) {
        const bool star = endless && plan.minimum == 0;
        return {star ? 1U : 2U, endless && !star ? 1U : 0U};
    }
    const std::uint64_t required = plan.minimum > 0 ? 3 : 0;
    const std::uint64_t limited = plan.maximum == plan.minimum ? 0 : (lazy ? 4 : 3);
    return {2 + required + (endless ? 1 : limited), 0};
}

/// The entry that opens a level of the counter. Its popper drops the level when backtracking passes the
/// entry.
RE_Start_Counter* makeStartCounter(RE_ParserContext& context, RE_Counter* counter,
                                   const RE_Memo_Scope* scope) {
    auto* const start = context.make<RE_Start_Counter>();
    start->counter = counter;
    auto* const popper = context.make<RE_Counter_Popper>(counter);
    popper->guarded = true;
    start->popper = popper;
    start->memoScope = scope;
    return start;
}

}  // namespace

// Each possessive loop is its greedy loop in a closed body.
void RE_Graph_Builder::emitRepeat(std::uint32_t index) {
    if (tree[index].qualifier == RE_Qualifier::possessive) {
        emitAtomic(index);
    } else {
        emitLoop(index);
    }
}

// Decides by the plan alone, which measuring has seen as well. A loop that makes no pass is nothing, one
// that makes exactly one is its body.
void RE_Graph_Builder::emitLoop(std::uint32_t index) {
    const RE_Repeat_Plan plan = planRepeat(tree, index, context.options().inlineThreshold());
    const bool endless = plan.maximum == RE_Syntax::noMaximum;
    if (plan.maximum == 0) {
        return;
    }
    if (plan.minimum == 1 && plan.maximum == 1) {
        emit(tree[index].firstChild);
        return;
    }
    if (context.joinsRuns && !plan.unrolled && tree.consumesOneUnit(tree[index].firstChild)) {
        emitRun(index, plan);
        return;
    }
    const Loop loop = openLoop(index, plan);
    if (plan.unrolled) {
        emitCopies(loop, plan);
    } else if (plan.counted) {
        emitCounted(loop, plan);
    } else if (!endless) {
        emitOptional(loop);
    } else if (plan.minimum == 0) {
        emitStar(loop);
    } else {
        emitPlus(loop);
    }
}

// Makes the node that the pass for loops over one unit would make of the loop, at once. The pass still
// gives it its number and its row (`isOpen`). The numbers and the row that the nodes of the loop would have
// got are left out, so that most nodes have the same number whether runs are made here or by the pass.
void RE_Graph_Builder::emitRun(std::uint32_t index, const RE_Repeat_Plan& plan) {
    const bool exact = plan.minimum == plan.maximum;
    const bool lazy = tree[index].qualifier == RE_Qualifier::lazy && !exact;
    const LoopNodes nodes = nodesOfLoop(plan, lazy);
    context.nodeCount += nodes.beforeUnit;
    workFor(tree[tree[index].firstChild]);
    RE_Consumable* const unit = makeUnitNode(context, tree, tree[index].firstChild);
    workFor(tree[index]);
    context.nodeCount += nodes.afterUnit;
    context.facts->memoRows += exact ? 0 : 1;
    const auto order = lazy ? RE_Consume::Order::lazy : RE_Consume::Order::greedy;
    auto* const run = context.make<RE_Consume>(unit, plan.minimum, plan.maximum, order);
    --context.nodeCount;
    run->isOpen = true;
    run->memoScope = scope;
    append(run);
}

// Gathers what the shapes need. A guarded loop gets a register, in which the word of its current pass is
// kept.
RE_Graph_Builder::Loop RE_Graph_Builder::openLoop(std::uint32_t index, const RE_Repeat_Plan& plan) {
    const RE_Syntax& item = tree[index];
    Loop loop{};
    loop.body = item.firstChild;
    loop.lazy = item.qualifier == RE_Qualifier::lazy;
    loop.guarded = plan.guarded;
    loop.empty = planEmptyPasses(tree, index, plan, context.facts->hasDynamicNodes);
    loop.pass = plan.guarded ? context.facts->passRegisters++ : 0;
    loop.outerScope = scope;
    return loop;
}

// The start of a pass notes how an empty pass is to be judged. There may be several starts, required and
// optional ones, but one end.
void RE_Graph_Builder::enterPass(const Loop& loop, bool required) {
    if (loop.guarded) {
        const RE_Pass kind =
            !required ? RE_Pass::optional : (loop.empty.endLoop ? RE_Pass::lastWhenEmpty : RE_Pass::required);
        append(context.make<RE_Start_Pass>(loop.pass, kind, withinSize(loop.empty.exactUnits)));
    }
}

// The scope is that of the loop's surroundings again before the end is made. Where an empty required pass
// leads to the exit, that has to exist by then.
void RE_Graph_Builder::leavePass(const Loop& loop) {
    scope = loop.outerScope;
    if (loop.guarded) {
        auto* const end = context.make<RE_End_Pass>(loop.pass);
        end->failTarget = loop.empty.endLoop ? loop.exit : nullptr;
        append(end);
    }
}

// Within the body the future depends on whether the pass has consumed anything yet.
void RE_Graph_Builder::enterBodyScope(const Loop& loop) {
    if (loop.guarded) {
        scope = innerScope(RE_Memo_Scope::Kind::pass, nullptr, loop.pass);
    }
}

// A choice between the body and nothing; both ways meet at the join.
void RE_Graph_Builder::emitOptional(Loop loop) {
    auto* const split = makeChoice<RE_Split>();
    append(split);
    RE_Node* const join = context.make<RE_Null>();
    outOfLoop(*split, loop.lazy) = join;
    tail = &intoLoop(*split, loop.lazy);
    enterPass(loop, false);
    enterBodyScope(loop);
    then([this, loop, join] {
        leavePass(loop);
        joinAt(join);
        tail = &join->nextNode;
    });
    emit(loop.body);
}

// The split is entry and end of each pass, so the loop is one state of the memo at each position, however
// many passes have led there.
void RE_Graph_Builder::emitStar(Loop loop) {
    auto* const split = makeChoice<RE_Split>();
    append(split);
    tail = &intoLoop(*split, loop.lazy);
    enterPass(loop, false);
    enterBodyScope(loop);
    then([this, loop, split] {
        leavePass(loop);
        joinAt(split);
        tail = &outOfLoop(*split, loop.lazy);
    });
    emit(loop.body);
}

// One body, with the split after it. The first pass is required and enters in front of `head`; all others
// come from the split and are optional, so they start a pass of their own before they join.
void RE_Graph_Builder::emitPlus(Loop loop) {
    loop.exit = context.make<RE_Null>();
    enterPass(loop, true);
    RE_Node* const head = context.make<RE_Null>();
    append(head);
    enterBodyScope(loop);
    then([this, loop, head] {
        leavePass(loop);
        auto* const split = makeChoice<RE_Split>();
        append(split);
        outOfLoop(*split, loop.lazy) = loop.exit;
        tail = &intoLoop(*split, loop.lazy);
        enterPass(loop, false);
        joinAt(head);
        tail = &loop.exit->nextNode;
    });
    emit(loop.body);
}

// The required passes are counted by a fixed counter, the optional ones by one of their own (or, without an
// upper bound, chosen by a split). Both lead into one body, which leads back to the fixed counter; once
// that is exhausted it leads on to the other at every arrival.
//
// Where an empty required pass is the last of them, it leads to the optional ones by a level of the fixed
// counter that opens exhausted: the body leads back to the fixed counter, which must not count required
// passes again.
//
// The scope of the body is, from the outside in: the fixed counter, the optional one, the pass. The choice
// of an optional pass depends on its own count as well, which `makeOptionalCounter` sees to.
void RE_Graph_Builder::emitCounted(Loop loop, const RE_Repeat_Plan& plan) {
    loop.exit = context.make<RE_Null>();
    const bool endless = plan.maximum == RE_Syntax::noMaximum;
    RE_Fixed_Counter* const fixed = plan.minimum > 0 ? makeFixedCounter(plan.minimum) : nullptr;
    RE_Split* optional = nullptr;
    if (endless) {
        optional = makeChoice<RE_Split>();
    } else if (plan.maximum > plan.minimum) {
        optional = makeOptionalCounter(plan.maximum - plan.minimum, loop.lazy);
    }
    RE_Node* const body = context.make<RE_Null>();
    RE_Node* const head = fixed != nullptr ? static_cast<RE_Node*>(fixed) : optional;
    joinAt(head);
    if (fixed != nullptr) {
        fixed->passesPerUnit = loop.empty.perUnit;
        fixed->passesAtEnd = loop.empty.atEnd;
        fixed->doneNode = optional != nullptr ? static_cast<RE_Node*>(optional) : loop.exit;
        tail = &fixed->nextNode;
        enterPass(loop, true);
        joinAt(body);
        scope = innerScope(RE_Memo_Scope::Kind::counter, fixed, 0);
    }
    if (optional != nullptr) {
        outOfLoop(*optional, loop.lazy) = loop.exit;
        tail = &intoLoop(*optional, loop.lazy);
        enterPass(loop, false);
        joinAt(body);
        scope = endless ? scope : innerScope(RE_Memo_Scope::Kind::counter, optional, 0);
    }
    RE_Node* const exit = loop.exit;
    if (loop.empty.optionalFollow && fixed != nullptr && optional != nullptr) {
        RE_Start_Counter* const exhausted = makeStartCounter(context, fixed, loop.outerScope);
        exhausted->count = fixed->limit + 1;
        exhausted->nextNode = optional;
        loop.exit = exhausted;
    }
    enterBodyScope(loop);
    tail = &body->nextNode;
    then([this, loop, head, exit] {
        leavePass(loop);
        joinAt(head);
        tail = &exit->nextNode;
    });
    emit(loop.body);
}

// Entries come first in the graph, before both counters, so that every level is open when the body runs.
void RE_Graph_Builder::appendStartCounter(RE_Counter* counter) {
    append(makeStartCounter(context, counter, scope));
}

// Its limit is the highest count at which a pass may still begin. No choice: its record only undoes the
// count, so it has no row.
RE_Fixed_Counter* RE_Graph_Builder::makeFixedCounter(std::uint64_t passes) {
    auto* const fixed = context.make<RE_Fixed_Counter>(passes - 1);
    fixed->guarded = true;
    fixed->memoScope = scope;
    appendStartCounter(fixed);
    return fixed;
}

// The choice of an optional pass depends on the passes made so far, so the counter is part of its own
// scope. The entry in front of it is not: it opens the count.
RE_Split* RE_Graph_Builder::makeOptionalCounter(std::uint64_t passes, bool lazy) {
    const RE_Memo_Scope* const outer = scope;
    RE_Counter* counter = nullptr;
    if (lazy) {
        auto* const lazyCounter = makeChoice<RE_Lazy_Counter>(passes);
        auto* const decrementer = context.make<RE_Lazy_Decrementer>(lazyCounter);
        decrementer->guarded = true;
        lazyCounter->decrementer = decrementer;
        counter = lazyCounter;
    } else {
        counter = makeChoice<RE_Limit_Counter>(passes);
    }
    appendStartCounter(counter);
    counter->memoScope = innerScope(RE_Memo_Scope::Kind::counter, counter, 0);
    scope = outer;
    return counter;
}

// The required copies, one after another; with an open end the last one is a loop, `x{3,}` being `xxx+`.
// One copy a step: the native stack does not grow with their number.
void RE_Graph_Builder::emitCopies(Loop loop, RE_Repeat_Plan plan) {
    const bool endless = plan.maximum == RE_Syntax::noMaximum;
    if (endless && plan.minimum == 1) {
        emitPlus(loop);
    } else if (plan.minimum > 0) {
        --plan.minimum;
        plan.maximum -= endless ? 0 : 1;
        then([this, loop, plan] { emitCopies(loop, plan); });
        emit(loop.body);
    } else if (plan.maximum > 0) {
        loop.exit = context.make<RE_Null>();
        emitOptionalCopies(loop, plan.maximum);
    }
}

// Each copy follows a split whose other link leads out. All exits meet at one node.
void RE_Graph_Builder::emitOptionalCopies(const Loop& loop, std::uint64_t count) {
    if (count == 0) {
        joinAt(loop.exit);
        tail = &loop.exit->nextNode;
        return;
    }
    auto* const split = makeChoice<RE_Split>();
    append(split);
    outOfLoop(*split, loop.lazy) = loop.exit;
    tail = &intoLoop(*split, loop.lazy);
    then([this, loop, count] { emitOptionalCopies(loop, count - 1); });
    emit(loop.body);
}
