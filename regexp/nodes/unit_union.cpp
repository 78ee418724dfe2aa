// Making as few sets as possible of the parts of a union.
#include "regexp/nodes/unit_union.h"

#include "regexp/nodes/units.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace {

// Digits, spaces and words are the first of the named classes. Their complements are treated like any other
// set.
constexpr std::size_t plainClasses = 3;

/// The union of these classes, a bit each, as a set of the process. All eight are made on the first use
/// that needs one, so that `[\w\s]` and the like share a set in all patterns.
const RE_Unit_Set& unionOfClasses(std::size_t classes) {
    const auto named = RE_Unit_Classes::get().all();
    if (std::has_single_bit(classes)) {
        return *named[static_cast<std::size_t>(std::countr_zero(classes))];
    }
    static const auto unions = [&named] {
        std::array<RE_Unit_Set, std::size_t{1} << plainClasses> all;
        for (std::size_t i = 0; i < all.size(); ++i) {
            for (std::size_t number = 0; number < plainClasses; ++number) {
                if ((i >> number & 1) != 0) {
                    all[i].addAll(*named[number]);
                }
            }
        }
        return all;
    }();
    return unions[classes];
}

/// Orders sets by which of them to copy. A set with the last unit mostly holds nearly all units, so that
/// little is left to be added to it; it comes first. Among equals the one that varies in fewer blocks does.
bool holdsMore(const RE_Unit_Set* one, const RE_Unit_Set* other) {
    const bool oneIsOpen = one->contains(0xFFFF);
    return oneIsOpen != other->contains(0xFFFF) ? oneIsOpen : one->variedBlocks() < other->variedBlocks();
}

}  // namespace

// A named class is a bit, a set that is known already is nothing new, and others are noted while there is
// room.
void RE_Unit_Union::addAll(const RE_Unit_Set& set) {
    const std::size_t number = RE_Unit_Classes::numberOf(set);
    const auto last = parts.begin() + static_cast<std::ptrdiff_t>(partCount);
    if (number < plainClasses) {
        classes |= std::size_t{1} << number;
    } else if (std::find(parts.begin(), last, &set) != last) {
        return;
    } else if (partCount < mostParts) {
        parts[partCount++] = &set;
    } else {
        table().addAll(set);
    }
}

// By kind for the commonest nodes. A counting node has no such kind and is asked like all others.
void RE_Unit_Union::addConsumable(const RE_Consumable& unit) {
    if (const RE_Unit_Set* const units = unit.table()) {
        addAll(*units);
        return;
    }
    switch (unit.kind) {
        case RE_Node_Kind::literal:
            add(static_cast<char16_t>(static_cast<const RE_Natural&>(unit).ch));
            break;
        case RE_Node_Kind::range: {
            const auto& range = static_cast<const RE_Range&>(unit);
            addRange(static_cast<char16_t>(range.low), static_cast<char16_t>(range.high));
            break;
        }
        case RE_Node_Kind::dotLine:
            addAll(RE_Unit_Classes::allOfLine());
            break;
        case RE_Node_Kind::other:
        case RE_Node_Kind::end:
        case RE_Node_Kind::foldedLiteral:
        case RE_Node_Kind::namedClass:
        case RE_Node_Kind::unitClass:
        case RE_Node_Kind::string:
        case RE_Node_Kind::run:
        case RE_Node_Kind::split:
        case RE_Node_Kind::dispatch:
        case RE_Node_Kind::literalSet:
        case RE_Node_Kind::startToken:
        case RE_Node_Kind::endToken:
        case RE_Node_Kind::matchToken:
        case RE_Node_Kind::lineStart:
        case RE_Node_Kind::lineEnd:
        case RE_Node_Kind::textStart:
        case RE_Node_Kind::textEnd:
        case RE_Node_Kind::glance:
        case RE_Node_Kind::wordStart:
        case RE_Node_Kind::wordEnd:
        case RE_Node_Kind::passage:
            if (unit.matchesAnyChar()) {
                addAll(RE_Unit_Classes::allUnits());
            } else {
                unit.addUnitsTo(table());
            }
    }
}

void RE_Unit_Union::addText(std::u16string_view text, bool ignoreCase) {
    for (const char16_t unit : text) {
        if (ignoreCase) {
            RE_Case_Table::get().forEachForm(unit, [this](char16_t form) { add(form); });
        } else {
            add(unit);
        }
    }
}

// Uses the place that is kept free for it.
void RE_Unit_Union::takeClasses() {
    if (classes != 0) {
        parts[partCount++] = &unionOfClasses(classes);
    }
}

// One part that holds everything else is the result itself: a pointer that owns nothing.
std::shared_ptr<const RE_Unit_Set> RE_Unit_Union::take() {
    takeClasses();
    if (gathered == nullptr && partCount == 1 && holdsLow(*parts[0])) {
        return {std::shared_ptr<const void>(), parts[0]};
    }
    addParts();
    gathered->add(low);
    return std::move(gathered);
}

// The complement of the parts without the low units is the complement of all. Copying and negating in one
// go saves a pass over the set in the two commonest cases, low units alone and one part.
std::shared_ptr<const RE_Unit_Set> RE_Unit_Union::takeOthers() {
    takeClasses();
    if (gathered == nullptr && partCount == 0) {
        return pool.copyOf(low, true);
    }
    if (gathered == nullptr && partCount == 1) {
        gathered = pool.copyOf(*parts[0], true);
    } else {
        addParts();
        gathered->negate();
    }
    gathered->remove(low);
    return std::move(gathered);
}

// Copies the part that saves most and adds the others. Without parts the set is there anyway, or is made
// empty.
void RE_Unit_Union::addParts() {
    const auto last = parts.begin() + static_cast<std::ptrdiff_t>(partCount);
    std::sort(parts.begin(), last, holdsMore);
    auto part = parts.begin();
    if (gathered == nullptr && part != last) {
        gathered = pool.copyOf(**part++);
    }
    RE_Unit_Set& all = table();
    std::for_each(part, last, [&all](const RE_Unit_Set* set) { all.addAll(*set); });
}

bool RE_Unit_Union::holdsLow(const RE_Unit_Set& set) const {
    return (low.words[0] & ~set.bits(0)) == 0 && (low.words[1] & ~set.bits(1)) == 0;
}

RE_Unit_Set& RE_Unit_Union::table() {
    if (gathered == nullptr) {
        gathered = pool.blank();
    }
    return *gathered;
}
