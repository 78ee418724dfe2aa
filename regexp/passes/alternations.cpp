// The pass for alternations: gathers the splits of one choice, joins neighbouring literals, and puts a
// dispatch in front of what is left.
//
// Invariant: the branches of a choice keep their order, and no branch is dropped that could match. Literals
// are joined only with their neighbours, as a branch between them would otherwise be tried too late or too
// early.
//
// Only splits that the parser made are touched (`guarded`): others are kept from endless repetition by the
// records that they leave, which a new node would leave out.
#include "regexp/passes/alternations.h"

#include "regexp/analysis/branch_literals.h"
#include "regexp/analysis/first_units.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/split.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/units.h"
#include "regexp/passes/null_nodes.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace {

// A branch whose first units take longer to find than this counts as one that can begin with anything. So the
// pass is linear in the pattern even where branches share long empty stretches.
constexpr std::size_t mostNodesOfBranch = 64;

/// The node as a choice between two ways that does nothing else: no counter, and not bypassed already. Else
/// null.
RE_Split* plainSplit(RE_Node* node) {
    auto* const split = nodeAs<RE_Split>(node);
    const bool plain = split != nullptr && !split->isCounter && split->guarded && !split->skippable;
    return plain ? split : nullptr;
}

/// The split at `node` if it can be taken as a part of the choice of a split that leads to it, else null. A
/// split that several nodes lead to cannot: from the others it would be entered in the middle of the choice.
RE_Split* innerSplit(RE_Node* node) {
    RE_Split* const split = plainSplit(node);
    return split != nullptr && !split->sharedTarget ? split : nullptr;
}

/// The splits at which a choice begins, that is those that are part of no other split's choice. Later ones
/// come first, so that a choice within a branch is rewritten before the choice that the branch belongs to:
/// the branch then begins with a node of which the first units are known.
RE_Scratch_List<RE_Split*> firstSplits(RE_Graph_Context& context, const RE_Collection::Nodes& nodes) {
    const std::uint32_t walk = context.nextWalk();
    RE_Scratch_List<RE_Split*> first(&context.scratch);
    for (RE_Node* node : nodes) {
        if (RE_Split* const split = plainSplit(node)) {
            for (RE_Node* way : {split->nextNode, split->alternative}) {
                if (RE_Split* const inner = innerSplit(way)) {
                    inner->walk = walk;
                }
            }
            first.push_back(split);
        }
    }
    std::erase_if(first, [walk](const RE_Split* split) { return split->walk == walk; });
    std::ranges::reverse(first);
    return first;
}

/// The units that a node begins with, where it holds them as a set; null for others. A loop that may make no
/// pass can begin with a unit of what follows, too, and so can a unit test with a fail target: neither is
/// answered.
const RE_Unit_Set* knownUnits(const RE_Node* node) {
    if (const auto* set = nodeAs<RE_Literal_Set>(node)) {
        return set->firstUnits.get();
    }
    if (const auto* loop = nodeAs<RE_Consume>(node)) {
        return loop->minimum > 0 ? loop->units.get() : nullptr;
    }
    const auto* const unit = nodeAs<RE_Unit_Test>(node);
    return unit != nullptr && !unit->hasFailNode() ? unit->table() : nullptr;
}

/// The unit that a literal begins with, where no other will do. Where case is ignored there may be several.
std::optional<char16_t> soleFirstUnit(const RE_Node* node) {
    if (const auto* string = nodeAs<RE_String>(node)) {
        return string->ignoreCase ? std::nullopt : std::optional(string->text[0]);
    }
    const auto* const unit = nodeAs<RE_Natural>(node);
    const bool sole = unit != nullptr && !unit->hasFailNode() && nodeAs<RE_Natural_I>(unit) == nullptr;
    return sole ? std::optional(static_cast<char16_t>(unit->ch)) : std::nullopt;
}

// Most branches begin with a node that answers at once. For the others the first units are gathered. A branch
// that may reach an end without consuming matches in front of any unit and at the end of the subject, so it
// can begin with everything; so can one of which too little is known.
RE_Branch_Start startOf(RE_Graph_Context& context, RE_Node* branch) {
    RE_Branch_Start start;
    RE_Node* leading = branch;
    while (leading->isStartToken()) {
        leading = leading->nextNode;
    }
    if (const RE_Unit_Set* const units = knownUnits(leading)) {
        start.addAll(*units);
        return start;
    }
    if (const std::optional<char16_t> unit = soleFirstUnit(leading)) {
        start.add(*unit);
        return start;
    }
    RE_First_Units first(context);
    if (first.gatherStart(start, branch, mostNodesOfBranch) && !first.mayBeEmpty && !first.endsBody) {
        if (first.mayBeAtEnd) {
            start.addEnd();
        }
    } else {
        start.addEverything();
    }
    return start;
}

/// Whether looking at the next unit rules out a quarter of the branches or more, on average over the columns
/// of the table. With less a dispatch would cost a look-up and spare next to nothing.
bool rulesOutEnough(RE_Dispatch::Branches branches) {
    std::size_t open = 0;
    for (const RE_Dispatch::Branch& branch : branches) {
        open += branch.start.count();
    }
    return open * 4 <= branches.size() * RE_Branch_Start::columns * 3;
}

/// One choice, with all splits that it is made of, and its branches in the order in which they are tried.
class Alternation {
public:
    Alternation(RE_Graph_Context& parserContext, RE_Split* first)
        : context(parserContext), splits(&parserContext.scratch), branches(&parserContext.scratch) {
        splits.push_back(first);
        // A stack of what is still to be taken apart. The alternative goes below the next node, so that
        // branches are found in the order of the pattern.
        RE_Scratch_List<RE_Node*> pending({first->alternative, first->nextNode}, &context.scratch);
        while (!pending.empty()) {
            RE_Node* const node = throughSkippable(pending.back());
            pending.pop_back();
            context.meter.spend();
            if (RE_Split* const split = innerSplit(node)) {
                splits.push_back(split);
                pending.push_back(split->alternative);
                pending.push_back(split->nextNode);
            } else {
                branches.push_back(node);
            }
        }
    }

    /// Puts one node in the place of the choice, or a shorter chain of splits, or leaves the graph as it is.
    void rewrite() {
        const std::size_t before = branches.size();
        joinLiterals();
        if (branches.size() == 1) {
            replaceWith(branches.front());
        } else if (!dispatch() && branches.size() < before) {
            relink();
        }
    }

private:
    /// Replaces each row of neighbouring literals that lead to one node by a literal set. A row of one stays
    /// what it is.
    void joinLiterals() {
        RE_Scratch_List<RE_Node*> joined(&context.scratch);
        RE_Branch_Literals literals(&context.scratch);
        const auto flush = [&] {
            if (literals.branches() > 0) {
                joined.push_back(literals.branches() > 1 ? literals.join(context) : literals.firstBranch());
                if (literals.branches() > 1) {
                    context.standsFor(joined.back(), splits.front());
                }
                literals.clear();
            }
        };
        RE_Branch_Literals::Literal literal(&context.scratch);
        for (RE_Node* branch : branches) {
            context.meter.spend();
            literal.read(branch);
            if (literals.add(branch, literal)) {
                continue;
            }
            // The branch does not fit what was gathered: another row begins with it, unless it is no literal
            // at all.
            flush();
            if (!literals.add(branch, literal)) {
                joined.push_back(branch);
            }
        }
        flush();
        branches = std::move(joined);
    }

    /// Replaces the choice by a dispatch, if the next unit tells the branches apart. True when it did.
    bool dispatch() {
        RE_Scratch_List<RE_Dispatch::Branch> starts(&context.scratch);
        starts.reserve(branches.size());
        for (RE_Node* branch : branches) {
            context.meter.spend();
            starts.push_back({branch, startOf(context, branch)});
        }
        if (!rulesOutEnough(starts)) {
            return false;
        }
        replaceWith(context.make<RE_Dispatch>(starts));
        return true;
    }

    /// Makes the first split an empty node that leads to this one, which inherits what the memo knows the
    /// choice by. The other splits are reached through the first alone, so nothing leads to them any more.
    void replaceWith(RE_Node* node) {
        RE_Split* const first = splits.front();
        context.standsFor(node, first);
        node->guarded = true;
        node->memoised = std::ranges::any_of(splits, [](const RE_Split* split) { return split->memoised; });
        node->memoIndex = first->memoIndex;
        node->memoScope = first->memoScope;
        first->skippable = true;
        context.hasSkippable = true;
        first->nextNode = node;
    }

    // Fewer branches need fewer of the splits. Those at the front are used again, the first one above all, as
    // other nodes lead to it; the rest drop out of the graph.
    void relink() {
        context.linksChanged();
        const std::size_t last = branches.size() - 2;
        for (std::size_t i = 0; i <= last; ++i) {
            splits[i]->nextNode = branches[i];
            splits[i]->alternative = i < last ? splits[i + 1] : branches[i + 1];
        }
    }

    RE_Graph_Context& context;
    RE_Scratch_List<RE_Split*> splits;
    RE_Scratch_List<RE_Node*> branches;
};

}  // namespace

RE_Node* joinAlternations(RE_Graph_Context& context, RE_Node* root) {
    if (context.facts->hasDynamicNodes || !context.hasMade<RE_Split>()) {
        return root;
    }
    {
        // Ends before the graph is walked again: the list takes scratch memory that the walk can then reuse.
        const RE_Scratch_List<RE_Split*> splits = firstSplits(context, context.nodes(root));
        if (splits.empty()) {
            return root;
        }
        for (RE_Split* split : splits) {
            Alternation(context, split).rewrite();
        }
    }
    return removeNullNodes(context, root);
}
