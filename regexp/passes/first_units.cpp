#include "regexp/passes/first_units.h"

#include "regexp/nodes/anchors.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/split.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/trivial.h"

bool RE_First_Units::gather(RE_Node* from, std::size_t mostNodes) {
    follow(from);
    while (known && !pending.empty()) {
        RE_Node* const node = pending.back();
        pending.pop_back();
        visit(node);
        known = known && seen.size() <= mostNodes;
    }
    return known;
}

void RE_First_Units::follow(RE_Node* node) {
    if (node != nullptr && seen.insert(node).second) {
        pending.push_back(node);
    }
}

void RE_First_Units::visit(RE_Node* node) {
    if (!visitConsuming(node)) {
        visitOther(node);
    }
}

bool RE_First_Units::visitConsuming(RE_Node* node) {
    if (auto* unit = dynamic_cast<RE_Consumable*>(node); unit != nullptr && unit->isSingleUnit()) {
        unit->addUnitsTo(*units);
        follow(unit->failTarget);
    } else if (auto* string = dynamic_cast<RE_String*>(node)) {
        addFirst(*string);
    } else if (auto* set = dynamic_cast<RE_Literal_Set*>(node)) {
        units->addAll(*set->firstUnits);
    } else if (auto* consume = dynamic_cast<RE_Consume*>(node)) {
        units->addAll(*consume->units);
        if (consume->minimum == 0) {
            follow(consume->nextNode);
        }
    } else {
        return false;
    }
    return true;
}

void RE_First_Units::visitOther(RE_Node* node) {
    if (auto* atomic = dynamic_cast<RE_Atomic*>(node)) {
        follow(atomic->body);
        if (atomic->bodyMinimum == 0) {
            follow(atomic->nextNode);
        }
    } else if (auto* end = dynamic_cast<RE_End_Of_Tree*>(node)) {
        mayBeEmpty = mayBeEmpty || !end->endsBody;
        endsBody = endsBody || end->endsBody;
        known = known && end->continuation == nullptr;
    } else if (dynamic_cast<RE_Match_Token*>(node) != nullptr) {
        known = false;
    } else if (!visitTest(node)) {
        const auto* const split = dynamic_cast<RE_Split*>(node);
        const bool never = node->isStartToken() || node->isEndToken() || node->isSkippable() ||
                           dynamic_cast<RE_Null*>(node) != nullptr ||
                           (split != nullptr && !split->isCounter) ||
                           dynamic_cast<RE_Dispatch*>(node) != nullptr;
        tested = tested || !never;
        followWays(node);
    }
}

// Tests that say which unit comes next, if any does: what follows them is as good as consumed.
bool RE_First_Units::visitTest(RE_Node* node) {
    if (auto* ahead = dynamic_cast<RE_Lookaround_Assertion*>(node)) {
        if (ahead->behind || ahead->negative || ahead->glanceEnd == nullptr || ahead->glanceWidth == 0) {
            return false;
        }
        follow(ahead->body);
        follow(ahead->failTarget);
        return true;
    }
    if (dynamic_cast<RE_End_Line*>(node) != nullptr) {
        units->add(u'\n');
    } else if (dynamic_cast<RE_End_Word*>(node) != nullptr) {
        units->addAll(RE_Unit_Classes::get().noWords);
    } else if (dynamic_cast<RE_End_String*>(node) == nullptr) {
        return false;
    }
    mayBeAtEnd = true;
    return true;
}

void RE_First_Units::followWays(RE_Node* node) {
    struct Ways : RE_Link_Visitor {
        explicit Ways(RE_First_Units& first) : units(first) {}
        void link(RE_Node*& target, RE_Link kind) override {
            if (kind != RE_Link::body && kind != RE_Link::helper) {
                units.follow(target);
            }
        }
        RE_First_Units& units;
    } ways(*this);
    node->visitLinks(ways);
}

void RE_First_Units::addFirst(const RE_String& string) {
    if (string.ignoreCase) {
        RE_Case_Table::get().addFolding(*units, string.text[0], string.text[0], false);
    } else {
        units->add(string.text[0]);
    }
}
