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

constexpr std::size_t mostNodesOfBranch = 64;

RE_Split* plainSplit(RE_Node* node) {
    auto* const split = nodeAs<RE_Split>(node);
    const bool plain = split != nullptr && !split->isCounter && split->guarded && !split->skippable;
    return plain ? split : nullptr;
}

/// The split at `node` when a split that leads there can take it over.
RE_Split* innerSplit(RE_Node* node) {
    RE_Split* const split = plainSplit(node);
    return split != nullptr && !split->sharedTarget ? split : nullptr;
}

/// The splits that no other split leads to alone, the last ones first, so that a choice within a branch is
/// rewritten before the choice of the branch.
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

/// The units that a node begins with, where it has them at hand.
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

/// The unit that a literal begins with, where no other will do.
std::optional<char16_t> soleFirstUnit(const RE_Node* node) {
    if (const auto* string = nodeAs<RE_String>(node)) {
        return string->ignoreCase ? std::nullopt : std::optional(string->text[0]);
    }
    const auto* const unit = nodeAs<RE_Natural>(node);
    const bool sole = unit != nullptr && !unit->hasFailNode() && nodeAs<RE_Natural_I>(unit) == nullptr;
    return sole ? std::optional(static_cast<char16_t>(unit->ch)) : std::nullopt;
}

// Most branches begin with a node that says it all.
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

/// Whether looking at the next unit rules out a quarter of the branches or more.
bool rulesOutEnough(RE_Dispatch::Branches branches) {
    std::size_t open = 0;
    for (const RE_Dispatch::Branch& branch : branches) {
        open += branch.start.count();
    }
    return open * 4 <= branches.size() * RE_Branch_Start::columns * 3;
}

/// One choice, with all splits that it is made of.
class Alternation {
public:
    Alternation(RE_Graph_Context& parserContext, RE_Split* first)
        : context(parserContext), splits(&parserContext.scratch), branches(&parserContext.scratch) {
        splits.push_back(first);
        RE_Scratch_List<RE_Node*> pending({first->alternative, first->nextNode}, &context.scratch);
        while (!pending.empty()) {
            RE_Node* const node = throughSkippable(pending.back());
            pending.pop_back();
            if (RE_Split* const split = innerSplit(node)) {
                splits.push_back(split);
                pending.push_back(split->alternative);
                pending.push_back(split->nextNode);
            } else {
                branches.push_back(node);
            }
        }
    }

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
    void joinLiterals() {
        RE_Scratch_List<RE_Node*> joined(&context.scratch);
        RE_Branch_Literals literals(&context.scratch);
        const auto flush = [&] {
            if (literals.branches() > 0) {
                joined.push_back(literals.branches() > 1 ? literals.join(context) : literals.firstBranch());
                literals.clear();
            }
        };
        RE_Branch_Literals::Literal literal(&context.scratch);
        for (RE_Node* branch : branches) {
            literal.read(branch);
            if (literals.add(branch, literal)) {
                continue;
            }
            flush();
            if (!literals.add(branch, literal)) {
                joined.push_back(branch);
            }
        }
        flush();
        branches = std::move(joined);
    }

    bool dispatch() {
        RE_Scratch_List<RE_Dispatch::Branch> starts(&context.scratch);
        starts.reserve(branches.size());
        for (RE_Node* branch : branches) {
            starts.push_back({branch, startOf(context, branch)});
        }
        if (!rulesOutEnough(starts)) {
            return false;
        }
        replaceWith(context.make<RE_Dispatch>(starts));
        return true;
    }

    void replaceWith(RE_Node* node) {
        RE_Split* const first = splits.front();
        node->guarded = true;
        node->memoised = std::ranges::any_of(splits, [](const RE_Split* split) { return split->memoised; });
        node->memoIndex = first->memoIndex;
        node->memoScope = first->memoScope;
        first->skippable = true;
        context.hasSkippable = true;
        first->nextNode = node;
    }

    // Fewer branches need fewer of the splits.
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
