// Recognises the shapes that the parser gives to loops over one unit, and puts an `RE_Consume` in the place
// of each.
//
// S(X, Y) stands for a split that tries X first and then Y, and U for a test of a single unit. The shapes are
//
//   U*, U?   S(U, exit), with U leading back to S, or on to the exit
//   U+       U leading to S(U, exit)
//   U{m,n}   a start counter for each counter, a fixed counter for the required passes, a split or counter
//            for the optional ones
//
// with the ways of the split exchanged for lazy loops. The parser makes most runs by itself. The shapes remain
// where somebody observes the stages, where `dropRepeatedChoices` leaves them, where another pass has made one
// unit test of the body, and with nodes made by hand.
//
// Invariant: a node is replaced by redirecting every link to it. The unit test itself is kept as the item of
// the run.
#include "regexp/passes/dot_star.h"

#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/counters.h"
#include "regexp/nodes/links.h"
#include "regexp/nodes/trivial.h"
#include "regexp/passes/null_nodes.h"

#include <optional>
#include <vector>

namespace {

/// What a loop over one unit does, read off its nodes. Bounds are numbers of units.
struct Unit_Loop {
    RE_Consumable* item;
    std::uint64_t minimum;
    std::uint64_t maximum;
    bool lazy;
    RE_Node* exit;
    const RE_Memo_Scope* scope;
    const RE_Node* head;  ///< a node that was made for the loop
};

/// The unit test at `node`, if it can be the item of a run, else null. One with a fail target cannot: where
/// it fails matching continues elsewhere than at the loop's exit.
RE_Consumable* loopItem(RE_Node* node) {
    auto* const unit = nodeAs<RE_Consumable>(throughSkippable(node));
    return unit != nullptr && unit->isSingleUnit() && !unit->hasFailNode() ? unit : nullptr;
}

bool sameNode(RE_Node* from, RE_Node* to) {
    return throughSkippable(from) == throughSkippable(to);
}

/// Which way of a loop's choice leads to the item: false for the first one (greedy), true for the second
/// (lazy), and nothing where neither does, as the choice then belongs to something else.
std::optional<bool> laziness(RE_Split& choice, RE_Consumable* item) {
    if (loopItem(choice.nextNode) == item) {
        return false;
    }
    if (loopItem(choice.alternative) == item) {
        return true;
    }
    return std::nullopt;
}

class Rewriter {
public:
    Rewriter(RE_Graph_Context& parserContext, RE_Node* graphRoot) : context(parserContext), root(graphRoot) {}

    RE_Node* run() {
        // Not where the host is called: tried again, X may call it again, and how often is part of the
        // answer.
        if (!context.facts->hasDynamicNodes && context.hasMade<RE_Split>()) {
            dropRepeatedChoices();
        }
        root = removeNullNodes(context, root);
        if (context.hasMade<RE_Split, RE_Start_Counter, RE_Consume>()) {
            // Before the possessive ones, which look for runs.
            replaceWhere([this](RE_Node* node) { return loopNode(node); });
        }
        if (context.hasMade<RE_Atomic>()) {
            replaceWhere([this](RE_Node* node) { return possessiveNode(node); });
        }
        return root;
    }

private:
    /// Nodes that others take the place of, and what redirects links to these. A replaced node is marked with
    /// the walk and notes the index of its replacement, so that a look-up takes constant time without a map.
    struct Replacements {
        Replacements(std::uint32_t walkNumber, RE_Scratch_Memory* memory) : walk(walkNumber), all(memory) {}
        void add(RE_Node* node, RE_Node* with) {
            node->walk = walk;
            node->walkNote = static_cast<std::uint32_t>(all.size());
            all.push_back(with);
        }
        RE_Node* of(RE_Node* node) const {
            return node != nullptr && node->walk == walk ? all[node->walkNote] : node;
        }
        // An item link stays: in a loop of the shape U+ the unit is both what is replaced and the item of the
        // run.
        void redirect(RE_Node& node) const {
            forEachLink(node, [this](RE_Node*& target, RE_Link kind) {
                target = kind == RE_Link::item ? target : of(target);
            });
        }

        std::uint32_t walk;
        RE_Scratch_List<RE_Node*> all;
    };

    // S(X, T(X, Y)): S reaches T at the position at which X failed after S, in the same state, so X fails
    // again. S may as well be T. The ways of S are exchanged so that S leads to T when it is bypassed as an
    // empty node.
    void dropRepeatedChoices() {
        for (RE_Node* node : context.nodes(root)) {
            context.meter.spend();
            if (auto* const run = nodeAs<RE_Consume>(node)) {
                dropRepeatedRun(*run);
            }
            auto* const split = nodeAs<RE_Split>(node);
            RE_Node* const first = split != nullptr && !split->isCounter
                                       ? firstWay(throughSkippable(split->alternative), split)
                                       : nullptr;
            if (first != nullptr && sameNode(first, split->nextNode)) {
                std::swap(split->nextNode, split->alternative);
                split->skippable = true;
                context.hasSkippable = true;
            }
        }
    }

    // The same for a first choice that is hidden in a run. U+ is U leading to S(U, exit); where its exit is
    // T(U+, Y) the choice S adds nothing, so the run becomes the bare U leading to T, which the pass then
    // finds to be U*. An example is (?:a+)*.
    void dropRepeatedRun(RE_Consume& run) {
        const bool plus = run.minimum == 1 && run.maximum == RE_Consume::noMaximum && !run.lazy;
        auto* const second = plus ? nodeAs<RE_Split>(throughSkippable(run.nextNode)) : nullptr;
        if (second != nullptr && !second->isCounter && !second->skippable &&
            sameNode(second->nextNode, &run)) {
            run.item->isItem = false;
            run.item->nextNode = second;
            run.nextNode = run.item;
            run.skippable = true;
            context.hasSkippable = true;
        }
    }

    /// The way that a choice tries first, where another split's alternative leads to it; null when it is no
    /// choice. A lazy run without required units is S(exit, U), so it tries its exit first; but only where it
    /// would have been a split, since a counter tries its exit at the limit as well.
    static RE_Node* firstWay(RE_Node* node, const RE_Split* outer) {
        if (const auto* run = nodeAs<RE_Consume>(node)) {
            const bool wasSplit = run->maximum == 1 || run->maximum == RE_Consume::noMaximum;
            return run->lazy && run->minimum == 0 && wasSplit ? run->nextNode : nullptr;
        }
        const auto* const split = nodeAs<RE_Split>(node);
        return split != nullptr && split != outer && !split->isCounter && !split->skippable ? split->nextNode
                                                                                            : nullptr;
    }

    /// Asks `replacementOf` for each node and makes all links to the node lead to what it returned, if that
    /// is not null. New nodes lead to old ones, some of which are replaced in turn: their links are
    /// redirected, too.
    template <class Replacement>
    void replaceWhere(Replacement replacementOf) {
        const RE_Collection::Nodes& nodes = context.nodes(root);
        Replacements replaced(context.nextWalk(), &context.scratch);
        for (RE_Node* node : nodes) {
            context.meter.spend();
            if (RE_Node* with = replacementOf(node)) {
                replaced.add(node, with);
            }
        }
        if (replaced.all.empty()) {
            return;
        }
        for (RE_Node* node : nodes) {
            replaced.redirect(*node);
        }
        for (RE_Node* with : replaced.all) {
            replaced.redirect(*with);
        }
        root = replaced.of(root);
        context.linksChanged();
    }

    /// The run that takes the place of the loop that begins at the node, or null. A loop U+ begins at its
    /// unit, which the way in and the way back both lead to.
    RE_Node* loopNode(RE_Node* node) {
        std::optional<Unit_Loop> loop;
        if (auto* run = nodeAs<RE_Consume>(node)) {
            number(*run);
        } else if (auto* start = nodeAs<RE_Start_Counter>(node)) {
            loop = countedLoop(*start);
        } else if (auto* split = nodeAs<RE_Split>(node); split != nullptr && !split->isCounter) {
            loop = splitLoop(*split);
        } else if (auto* unit = node->sharedTarget ? loopItem(node) : nullptr;
                   unit == node && unit != nullptr) {
            loop = plusLoop(*unit);
        }
        return loop ? makeConsume(*loop) : nullptr;
    }

    // The parser leaves the numbering of its runs to this place, at which the runs that it did not make are
    // numbered, too. So graphs have the same numbers, whether runs are made early or late.
    void number(RE_Consume& run) {
        if (run.isOpen) {
            run.isOpen = false;
            run.nodeId = context.nextNodeId();
            context.renumbers = true;
        }
    }

    // S(U, exit) with U leading back to S is U*; with U leading to the exit it is U?. A unit that something
    // else leads to is left alone: the other way would enter the loop in its middle.
    std::optional<Unit_Loop> splitLoop(RE_Split& split) {
        for (const bool lazy : {false, true}) {
            RE_Node* const exit = lazy ? split.nextNode : split.alternative;
            RE_Consumable* const item = loopItem(lazy ? split.alternative : split.nextNode);
            if (item == nullptr || item->sharedTarget) {
                continue;
            }
            const bool star = item->leadsTo(&split);
            if (star || item->leadsTo(exit)) {
                const std::uint64_t most = star ? RE_Consume::noMaximum : 1;
                return Unit_Loop{item, 0, most, lazy, exit, split.memoScope, &split};
            }
        }
        return std::nullopt;
    }

    // U, which more than one way leads to, leading to S(U, exit), which nothing else leads to, is U+.
    std::optional<Unit_Loop> plusLoop(RE_Consumable& unit) {
        auto* const split = nodeAs<RE_Split>(throughSkippable(unit.nextNode));
        if (split == nullptr || split->isCounter || split->sharedTarget) {
            return std::nullopt;
        }
        const std::optional<bool> lazy = laziness(*split, &unit);
        if (!lazy) {
            return std::nullopt;
        }
        RE_Node* const exit = *lazy ? split->nextNode : split->alternative;
        return Unit_Loop{&unit, 1, RE_Consume::noMaximum, *lazy, exit, split->memoScope, split};
    }

    // The start counters of the required and of the optional passes, in this order, either of which may be
    // missing.
    std::optional<Unit_Loop> countedLoop(RE_Start_Counter& first) {
        RE_Node* head = throughSkippable(first.nextNode);
        if (head->isStartCounter()) {
            head = throughSkippable(head->nextNode);
        }
        auto* const fixed = nodeAs<RE_Fixed_Counter>(head);
        if (head != first.counter) {
            return std::nullopt;
        }
        if (fixed == nullptr) {
            return optionalPasses(*static_cast<RE_Split*>(head), nullptr, head, 0, first.memoScope);
        }
        RE_Consumable* const item = loopItem(fixed->nextNode);
        if (item == nullptr || !item->leadsTo(fixed)) {
            return std::nullopt;
        }
        RE_Node* const done = throughSkippable(fixed->doneNode);
        if (auto* choice = nodeAs<RE_Split>(done)) {
            if (auto loop = optionalPasses(*choice, item, fixed, fixed->limit + 1, first.memoScope)) {
                return loop;
            }
        }
        return Unit_Loop{item,  fixed->limit + 1, fixed->limit + 1, false, fixed->doneNode, first.memoScope,
                         &first};
    }

    /// The loop whose optional passes are chosen at `choice` and begin anew at `head`. With `item` null there
    /// are no required passes and the item is read off the choice. Nothing where the ways do not lead in a
    /// circle.
    std::optional<Unit_Loop> optionalPasses(RE_Split& choice, RE_Consumable* item, RE_Node* head,
                                            std::uint64_t minimum, const RE_Memo_Scope* scope) {
        if (item == nullptr) {
            const bool lazily = nodeAs<RE_Lazy_Counter>(&choice) != nullptr;
            item = loopItem(lazily ? choice.alternative : choice.nextNode);
        }
        const std::optional<bool> lazy = item != nullptr ? laziness(choice, item) : std::nullopt;
        if (!lazy || !item->leadsTo(head)) {
            return std::nullopt;
        }
        auto* const counter = nodeAs<RE_State_Counter>(&choice);
        // The counter of the optional passes counts from 0: its limit comes on top of the required ones.
        const std::uint64_t maximum = counter != nullptr ? minimum + counter->limit : RE_Consume::noMaximum;
        return Unit_Loop{item,  minimum, maximum, *lazy, *lazy ? choice.nextNode : choice.alternative,
                         scope, &choice};
    }

    /// Makes the run. Its item leads nowhere from then on, so that no walk gets past the run through it.
    RE_Node* makeConsume(const Unit_Loop& loop) {
        const auto order = loop.lazy ? RE_Consume::Order::lazy : RE_Consume::Order::greedy;
        auto* const consume = context.make<RE_Consume>(loop.item, loop.minimum, loop.maximum, order);
        context.standsFor(consume, loop.head);
        consume->nextNode = loop.exit;
        consume->memoScope = loop.scope;
        loop.item->nextNode = nullptr;
        return consume;
    }

    /// The run that is all of an atomic group, made possessive, or null. The group keeps the first end that
    /// its body reaches, and a possessive run takes just that end: the longest, or the shortest if the run is
    /// lazy.
    RE_Node* possessiveNode(RE_Node* node) {
        auto* const atomic = nodeAs<RE_Atomic>(node);
        auto* const consume =
            atomic != nullptr ? nodeAs<RE_Consume>(throughSkippable(atomic->body)) : nullptr;
        if (consume == nullptr || nodeAs<RE_End_Of_Tree>(throughSkippable(consume->nextNode)) == nullptr) {
            return nullptr;
        }
        consume->possessive = true;
        consume->nextNode = atomic->nextNode;
        return consume;
    }

    RE_Graph_Context& context;
    RE_Node* root;
};

}  // namespace

RE_Node* rewriteDotStar(RE_Graph_Context& context, RE_Node* root) {
    return Rewriter(context, root).run();
}
