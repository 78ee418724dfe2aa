#include "regexp/passes/linear_subpatterns.h"

#include "regexp/nodes/consume.h"
#include "regexp/nodes/unit_union.h"
#include "regexp/nodes/units.h"
#include "regexp/passes/null_nodes.h"

#include <memory>
#include <string>

namespace {

constexpr std::size_t longestLabel = 60;

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

// As a split, a run of at most one unit would lead on twice: behind the unit and around it.
void markBehindOptional(const RE_Collection::Nodes& nodes) {
    for (RE_Node* node : nodes) {
        if (const auto* run = nodeAs<RE_Consume>(node); run != nullptr && run->maximum == 1) {
            run->nextNode->sharedTarget = true;
        }
    }
}

std::string withoutVerb(const std::string& label) {
    return label.rfind("Match ", 0) == 0 ? label.substr(6) : label;
}

// The chain from `head` on becomes one class node; its members are bypassed like empty nodes.
void mergeChain(RE_Graph_Context& context, RE_Consumable* head) {
    RE_Unit_Union units(context.sets);
    std::string text;
    RE_Consumable* last = head;
    for (RE_Consumable* unit = head; unit != nullptr; unit = mergeable(unit)) {
        units.addConsumable(*unit);
        if (text.size() < longestLabel) {
            text += (text.empty() ? "" : "|") + withoutVerb(unit->label());
        }
        last = unit;
        unit->skippable = true;
    }
    auto* const whole = context.make<RE_Unit_Class>(context.sets.share(units.take()), text);
    whole->nextNode = head->nextNode;
    whole->failTarget = last->failTarget;
    head->nextNode = whole;
    context.hasSkippable = true;
}

}  // namespace

RE_Node* joinLinearSubpatterns(RE_Graph_Context& context, RE_Node* root) {
    if (context.hasUnitRuns) {
        const RE_Collection::Nodes& nodes = context.nodes(root);
        markBehindOptional(nodes);
        for (RE_Node* node : nodes) {
            RE_Consumable* const unit = asUnit(node);
            if (unit == nullptr || !unit->hasFailNode() || unit->skippable) {
                continue;
            }
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
            RE_Asked_Classes::bit<RE_Natural>() | RE_Asked_Classes::bit<RE_String>();
        for (RE_Node* node : context.nodes(root)) {
            if (!node->skippable && (node->classes & literals) != 0) {
                node->joinString(context);
            }
        }
    }
    return removeNullNodes(context, root);
}
