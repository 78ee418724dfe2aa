// The walk over the nodes in front of the first unit, and what it makes of each form of meaning.
//
// A test that consumes nothing is passed as if it held, which only makes the answer larger. A test that names
// the next unit ends the way, as the consumption of that unit would.
#include "regexp/analysis/first_units.h"

#include "regexp/graph/meaning.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/units.h"

#include <array>
#include <optional>

using namespace RE_Meanings;

namespace {

// The named classes are compared again and again in patterns of many loops. Each pair of them is compared
// once per process, on first use.
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

/// Whether some unit is in both sets.
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

void RE_First_Units::followTested(RE_Node* next, RE_Node* otherwise) {
    tested = true;
    follow(next);
    follow(otherwise);
}

struct RE_First_Units::Reader {
    RE_First_Units& first;

    void operator()(const Unknown&) const { first.known = false; }
    void operator()(const Nothing& node) const { first.follow(node.next); }
    void operator()(const Unit& node) const {
        first.addConsumable(*node.test);
        first.follow(node.otherwise);
    }
    void operator()(const Text& node) const { first.addFirst(*node.string); }
    void operator()(const Texts& node) const { first.addSet(*node.set->firstUnits); }
    void operator()(const Run& node) const {
        first.addSet(*node.loop->units);
        if (node.loop->minimum == 0) {
            first.follow(node.next);
        }
    }
    // A test that names the next unit is as good as the consumption of it. It may also hold at the end of the
    // subject, where there is none. One without a next node is a negative assertion: what follows it is at
    // its fail target, and what it accepts says nothing about the match.
    void operator()(const Edge& node) const {
        if (node.after.isAny() || node.next == nullptr) {
            first.followTested(node.next, node.otherwise);
            return;
        }
        node.after.visitAccepted([this](const auto& accepted) { first.addAccepted(accepted); });
        first.mayBeAtEnd = first.mayBeAtEnd || node.after.holdsAtLimit();
        first.tested = first.tested || node.otherwise != nullptr;
        first.follow(node.otherwise);
    }
    void operator()(const Mark& node) const { first.follow(node.next); }
    void operator()(const Choice& node) const {
        node.forEach([this](RE_Node* way) { first.follow(way); });
    }
    // Whether a counter leads into the body or out of it depends on the count, which the walk does not know:
    // both ways are followed, and count as tested.
    void operator()(const Count_Start& node) const { first.followTested(node.next); }
    void operator()(const Count& node) const { first.followTested(node.body, node.exit); }
    void operator()(const Pass& node) const { first.followTested(node.next, node.exit); }
    // An atomic group begins with its body, or with what follows when the body may consume nothing. A
    // lookaround that looks ahead, has to hold, and consumes units by a glance rules out all other first
    // units: its body is read in place of what follows. The rest of them are passed like any test.
    void operator()(const Body& node) const {
        if (node.atomic != nullptr) {
            first.follow(node.body);
            first.follow(node.atomic->bodyMinimum == 0 ? node.next : nullptr);
            return;
        }
        const RE_Lookaround_Assertion& look = *node.look;
        // Nothing is consumed after it: what it asks for is all that can follow.
        if (look.isLast) {
            first.follow(node.body);
            return;
        }
        const bool consumesAhead =
            !look.behind && !look.negative && look.glanceEnd != nullptr && look.glanceWidth != 0;
        if (!consumesAhead) {
            first.followTested(node.next, node.otherwise);
            return;
        }
        first.follow(node.body);
        first.tested = first.tested || node.otherwise != nullptr;
        first.follow(node.otherwise);
    }
    // A reference may be to any text, also to an empty one.
    void operator()(const Reference&) const { first.known = false; }
    void operator()(const Condition& node) const { first.followTested(node.next, node.otherwise); }
    void operator()(const Host_Call& node) const { first.followTested(node.next); }
    void operator()(const Host_Text&) const { first.known = false; }
    // The end of a sub-pattern leads into a graph that the walk does not enter.
    void operator()(const End& node) const {
        (node.ofBody && !node.ofLast ? first.endsBody : first.mayBeEmpty) = true;
        first.known = first.known && node.continuation == nullptr;
    }
};

bool RE_First_Units::run(RE_Node* from, std::size_t mostNodes) {
    follow(from);
    while (known && !pending.empty()) {
        RE_Node* const node = pending.back();
        pending.pop_back();
        meter.spend();
        visitMeaning(*node, Reader{*this});
        // Counted when a node is put on the list: the bound holds for the nodes met, not only for those read.
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

// In the order of what is cheapest: a table, few units, and only then a whole set of its own, which takes 8
// KiB on the native stack.
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
    // The text is in lower case when case is ignored; every unit that folds to its first one can begin the
    // match.
    const char16_t unit = string.text[0];
    if (!string.ignoreCase) {
        addUnit(unit);
        return;
    }
    RE_Case_Table::get().forEachForm(unit, [this](char16_t form) { addUnit(form); });
}
