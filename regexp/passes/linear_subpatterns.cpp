// Joins the tests of a fail chain to a class, and neighbouring literals to a string.
//
// Neither changes an answer. The tests of a chain are tried at one position, without a choice, and lead to
// one node: a test of the union succeeds exactly where one of them does. The literals of a row are reached
// from their predecessor alone, so a mismatch within the row fails as it would at the start, by backtracking.
#include "regexp/passes/linear_subpatterns.h"

#include "regexp/nodes/consume.h"
#include "regexp/nodes/unit_union.h"
#include "regexp/nodes/units.h"
#include "regexp/passes/null_nodes.h"

#include <memory>
#include <string>

namespace {

// Bytes after which the label of a class names no more members. Only people read it.
constexpr std::size_t longestLabel = 60;

/// The node as a test of a single unit, or null. Lookarounds derive from the same base and are none.
RE_Consumable* asUnit(RE_Node* node) {
    auto* const unit = nodeAs<RE_Consumable>(node);
    return unit != nullptr && unit->isSingleUnit() ? unit : nullptr;
}

/// The fail target of a unit test when both can be taken together: same way on, and nothing else leads to it.
RE_Consumable* mergeable(RE_Consumable* unit) {
    RE_Consumable* const fail = asUnit(unit->failTarget);
    const bool together = fail != nullptr && !fail->sharedTarget && fail->nextNode == unit->nextNode;
    return together ? fail : nullptr;
}

// As a split, a run of at most one unit would lead on twice: after the unit and past it. A run leads there
// once, so the node after it is marked as shared by hand. The pass then treats that node alike whether the
// parser made the run early or the loop is still a split, and the finished graph does not depend on that.
void markAfterOptional(const RE_Collection::Nodes& nodes) {
    for (RE_Node* node : nodes) {
        if (const auto* run = nodeAs<RE_Consume>(node); run != nullptr && run->maximum == 1) {
            run->nextNode->sharedTarget = true;
        }
    }
}

/// The label of a test without its leading verb, for use within the label of the class.
std::string withoutVerb(const std::string& label) {
    return label.rfind("Match ", 0) == 0 ? label.substr(6) : label;
}

// The chain from `head` on becomes one class node, which takes over its way on and the fail target of its
// last member. The members are bypassed like empty nodes, since links into the chain lead to the head only.
void mergeChain(RE_Graph_Context& context, RE_Consumable* head) {
    RE_Unit_Union units(context.sets);
    std::string text;
    RE_Consumable* last = head;
    for (RE_Consumable* unit = head; unit != nullptr; unit = mergeable(unit)) {
        context.meter.spend();
        units.addConsumable(*unit);
        if (text.size() < longestLabel) {
            text += (text.empty() ? "" : "|") + withoutVerb(unit->label());
        }
        last = unit;
        unit->skippable = true;
    }
    auto* const whole = context.make<RE_Unit_Class>(context.sets.share(units.take()), text);
    for (const RE_Consumable* unit = head; context.parts != nullptr && unit != nullptr;
         unit = unit != last ? static_cast<const RE_Consumable*>(unit->failTarget) : nullptr) {
        context.standsFor(whole, unit);
    }
    whole->nextNode = head->nextNode;
    whole->failTarget = last->failTarget;
    head->nextNode = whole;
    context.hasSkippable = true;
}

}  // namespace

RE_Node* joinLinearSubpatterns(RE_Graph_Context& context, RE_Node* root) {
    if (context.hasUnitRuns) {
        const RE_Collection::Nodes& nodes = context.nodes(root);
        markAfterOptional(nodes);
        for (RE_Node* node : nodes) {
            RE_Consumable* const unit = asUnit(node);
            if (unit == nullptr || !unit->hasFailNode() || unit->skippable) {
                continue;
            }
            // A test that matches every unit never fails before the end of the subject, where no other test
            // in the chain matches either: what follows it in the chain is cut off first.
            unit->absorbFailNode();
            if (mergeable(unit) != nullptr) {
                mergeChain(context, unit);
            }
        }
        context.linksChanged();  // and so have the marks
    }
    root = removeNullNodes(context, root);
    if (context.hasMade<RE_Natural, RE_String>()) {
        constexpr RE_Class_Bits literals =
            RE_Node_Classes::bit<RE_Natural>() | RE_Node_Classes::bit<RE_String>();
        // Each string or literal joins as many literals after it as it can. Those are marked skippable and
        // passed over when their own turn comes.
        for (RE_Node* node : context.nodes(root)) {
            context.meter.spend();
            if (!node->skippable && (node->classes & literals) != 0) {
                node->joinString(context);
            }
        }
    }
    return removeNullNodes(context, root);
}
