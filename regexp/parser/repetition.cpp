// Builds loops out of splits, counters and pass guards, or copies of a body where those are few.
#include "regexp/nodes/consume.h"
#include "regexp/parser/graph_builder.h"
#include "regexp/parser/unit_tests.h"

#include <algorithm>

namespace {

/// The links of a choice that lead into the loop and out of it.
RE_Node*& intoLoop(RE_Split& choice, bool lazy) {
    return lazy ? choice.alternative : choice.nextNode;
}
RE_Node*& outOfLoop(RE_Split& choice, bool lazy) {
    return lazy ? choice.nextNode : choice.alternative;
}

/// How many nodes a loop over one unit is built of, besides the unit.
struct LoopNodes {
    std::uint64_t beforeUnit;
    std::uint64_t behindUnit;
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

void RE_Graph_Builder::emitRepeat(std::uint32_t index) {
    if (tree[index].qualifier == RE_Qualifier::possessive) {
        emitAtomic(index);
    } else {
        emitLoop(index);
    }
}

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

// The node that the pass for loops over one unit would make of the loop, made at once. Its number and its row it gets
// from the pass, and those that the nodes of the loop would have got are left out.
void RE_Graph_Builder::emitRun(std::uint32_t index, const RE_Repeat_Plan& plan) {
    const bool exact = plan.minimum == plan.maximum;
    const bool lazy = tree[index].qualifier == RE_Qualifier::lazy && !exact;
    const LoopNodes nodes = nodesOfLoop(plan, lazy);
    context.nodeCount += nodes.beforeUnit;
    RE_Consumable* const unit = makeUnitNode(context, tree, tree[index].firstChild);
    context.nodeCount += nodes.behindUnit;
    context.facts->memoRows += exact ? 0 : 1;
    const auto order = lazy ? RE_Consume::Order::lazy : RE_Consume::Order::greedy;
    auto* const run = context.make<RE_Consume>(unit, plan.minimum, plan.maximum, order);
    --context.nodeCount;
    run->isOpen = true;
    run->memoScope = scope;
    append(run);
}

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

void RE_Graph_Builder::enterPass(const Loop& loop, bool required) {
    if (loop.guarded) {
        const RE_Pass kind =
            !required ? RE_Pass::optional : (loop.empty.endLoop ? RE_Pass::lastWhenEmpty : RE_Pass::required);
        append(context.make<RE_Start_Pass>(loop.pass, kind, loop.empty.exactUnits));
    }
}

void RE_Graph_Builder::leavePass(const Loop& loop) {
    scope = loop.outerScope;
    if (loop.guarded) {
        auto* const end = context.make<RE_End_Pass>(loop.pass);
        end->failTarget = loop.empty.endLoop ? loop.exit : nullptr;
        append(end);
    }
}

void RE_Graph_Builder::enterBodyScope(const Loop& loop) {
    if (loop.guarded) {
        scope = innerScope(RE_Memo_Scope::Kind::pass, nullptr, loop.pass);
    }
}

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

// One body, with the split behind it.
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
// upper bound, chosen by a split). Both lead into one body, which leads back to the fixed counter; once that
// is exhausted it hands on to the other at every arrival. Where an empty required pass is the last of them, it leads to
// the optional ones by a level of the fixed counter that opens exhausted.
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

void RE_Graph_Builder::appendStartCounter(RE_Counter* counter) {
    append(makeStartCounter(context, counter, scope));
}

RE_Fixed_Counter* RE_Graph_Builder::makeFixedCounter(std::uint64_t passes) {
    auto* const fixed = context.make<RE_Fixed_Counter>(passes - 1);
    fixed->guarded = true;
    fixed->memoScope = scope;
    appendStartCounter(fixed);
    return fixed;
}

// The choice of an optional pass depends on the passes made so far.
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

// The required copies, one after another; with an open end the last one is a loop.
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

// Each copy stands behind a split whose other way leads out.
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
