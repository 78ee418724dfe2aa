#include "regexp/analysis/first_units.h"

#include "regexp/nodes/anchors.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/links.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/split.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/trivial.h"
#include "regexp/nodes/units.h"

#include <array>
#include <optional>

namespace {

using Meetings = std::array<std::array<bool, RE_Unit_Classes::count>, RE_Unit_Classes::count>;

Meetings meetingsOfClasses() {
    const auto classes = RE_Unit_Classes::get().all();
    Meetings meetings{};
    for (std::size_t i = 0; i < classes.size(); ++i) {
        for (std::size_t j = 0; j < classes.size(); ++j) {
            meetings[i][j] = classes[i]->meets(*classes[j]);
        }
    }
    return meetings;
}

bool meet(const RE_Unit_Set& one, const RE_Unit_Set& other) {
    const std::size_t number = RE_Unit_Classes::numberOf(one);
    const std::size_t otherNumber = RE_Unit_Classes::numberOf(other);
    if (number == RE_Unit_Classes::count || otherNumber == RE_Unit_Classes::count) {
        return one.meets(other);
    }
    static const Meetings meetings = meetingsOfClasses();
    return meetings[number][otherNumber];
}

}  // namespace

bool RE_First_Units::gather(RE_Node* from, std::size_t mostNodes) {
    const bool isKnown = run(from, mostNodes);
    if (isKnown) {
        units = gathered.take();
    }
    return isKnown;
}

bool RE_First_Units::gatherStart(RE_Branch_Start& into, RE_Node* from, std::size_t mostNodes) {
    start = &into;
    return run(from, mostNodes);
}

bool RE_First_Units::avoids(const RE_Unit_Set& set, RE_Node* from, std::size_t mostNodes) {
    avoided = &set;
    return run(from, mostNodes);
}

bool RE_First_Units::run(RE_Node* from, std::size_t mostNodes) {
    follow(from);
    while (known && !pending.empty()) {
        RE_Node* const node = pending.back();
        pending.pop_back();
        visit(node);
        known = known && seen <= mostNodes;
    }
    return known;
}

void RE_First_Units::follow(RE_Node* node) {
    if (node != nullptr && node->walk != walk) {
        node->walk = walk;
        ++seen;
        pending.push_back(node);
    }
}

void RE_First_Units::visit(RE_Node* node) {
    if (!visitConsuming(node)) {
        visitOther(node);
    }
}

bool RE_First_Units::visitConsuming(RE_Node* node) {
    if (auto* unit = nodeAs<RE_Unit_Test>(node)) {
        addConsumable(*unit);
        follow(unit->failTarget);
    } else if (auto* string = nodeAs<RE_String>(node)) {
        addFirst(*string);
    } else if (auto* set = nodeAs<RE_Literal_Set>(node)) {
        addSet(*set->firstUnits);
    } else if (auto* consume = nodeAs<RE_Consume>(node)) {
        addSet(*consume->units);
        if (consume->minimum == 0) {
            follow(consume->nextNode);
        }
    } else {
        return false;
    }
    return true;
}

void RE_First_Units::visitOther(RE_Node* node) {
    if (auto* atomic = nodeAs<RE_Atomic>(node)) {
        follow(atomic->body);
        if (atomic->bodyMinimum == 0) {
            follow(atomic->nextNode);
        }
    } else if (auto* end = nodeAs<RE_End_Of_Tree>(node)) {
        mayBeEmpty = mayBeEmpty || !end->endsBody;
        endsBody = endsBody || end->endsBody;
        known = known && end->continuation == nullptr;
    } else if (nodeAs<RE_Match_Token>(node) != nullptr) {
        known = false;
    } else if (!visitTest(node)) {
        const auto* const split = nodeAs<RE_Split>(node);
        const bool never = node->isStartToken() || node->isEndToken() || node->isSkippable() ||
                           nodeAs<RE_Null>(node) != nullptr || (split != nullptr && !split->isCounter) ||
                           nodeAs<RE_Dispatch>(node) != nullptr;
        tested = tested || !never;
        forEachWay(*node, [this](RE_Node* target) { follow(target); });
    }
}

// Tests that say which unit comes next, if any does: what follows them is as good as consumed.
bool RE_First_Units::visitTest(RE_Node* node) {
    if (auto* ahead = nodeAs<RE_Lookaround_Assertion>(node)) {
        if (ahead->behind || ahead->negative || ahead->glanceEnd == nullptr || ahead->glanceWidth == 0) {
            return false;
        }
        follow(ahead->body);
        // Where the body of a condition does not match its fail target is taken, whatever unit comes next.
        tested = tested || ahead->failTarget != nullptr;
        follow(ahead->failTarget);
        return true;
    }
    if (nodeAs<RE_End_Line>(node) != nullptr) {
        addUnit(u'\n');
    } else if (nodeAs<RE_End_Word>(node) != nullptr) {
        addSet(RE_Unit_Classes::get().noWords);
    } else if (nodeAs<RE_End_String>(node) == nullptr) {
        return false;
    }
    mayBeAtEnd = true;
    return true;
}

void RE_First_Units::addUnit(char16_t unit) {
    if (start != nullptr) {
        start->add(unit);
    } else if (avoided == nullptr) {
        gathered.add(unit);
    } else {
        known = known && !avoided->contains(unit);
    }
}

void RE_First_Units::addSet(const RE_Unit_Set& set) {
    if (start != nullptr) {
        start->addAll(set);
    } else if (avoided == nullptr) {
        gathered.addAll(set);
    } else {
        known = known && !meet(*avoided, set);
    }
}

void RE_First_Units::addConsumable(const RE_Consumable& unit) {
    if (const RE_Unit_Set* const table = unit.table()) {
        addSet(*table);
    } else if (avoided == nullptr && start == nullptr) {
        gathered.addConsumable(unit);
    } else if (unit.kind == RE_Node_Kind::literal) {
        addUnit(static_cast<char16_t>(static_cast<const RE_Natural&>(unit).ch));
    } else if (unit.kind == RE_Node_Kind::dotLine) {
        addSet(RE_Unit_Classes::allOfLine());
    } else if (unit.matchesAnyChar()) {
        addSet(RE_Unit_Classes::allUnits());
    } else if (const std::optional<RE_Low_Units> low = lowUnitsOf(unit)) {
        low->forEach([this](char16_t member) { addUnit(member); });
    } else {
        RE_Unit_Set set;
        unit.addUnitsTo(set);
        addSet(set);
    }
}

void RE_First_Units::addFirst(const RE_String& string) {
    const char16_t unit = string.text[0];
    if (!string.ignoreCase) {
        addUnit(unit);
        return;
    }
    RE_Case_Table::get().forEachForm(unit, [this](char16_t form) { addUnit(form); });
}
