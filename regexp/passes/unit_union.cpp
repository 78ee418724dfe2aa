#include "regexp/passes/unit_union.h"

#include <algorithm>
#include <utility>

void RE_Unit_Union::addAll(const RE_Unit_Set& set) {
    if (std::ranges::find(known, &set) != known.end()) {
        return;
    }
    known[added++ % known.size()] = &set;
    if (gathered == nullptr && sole == nullptr) {
        sole = &set;
    } else {
        table().addAll(set);
    }
}

void RE_Unit_Union::addConsumable(const RE_Consumable& unit) {
    if (const RE_Unit_Set* const units = unit.table()) {
        addAll(*units);
    } else {
        unit.addUnitsTo(table());
    }
}

void RE_Unit_Union::addText(std::u16string_view text, bool ignoreCase) {
    RE_Unit_Set& set = table();
    for (const char16_t unit : text) {
        if (ignoreCase) {
            RE_Case_Table::get().addFolding(set, unit, unit, false);
        } else {
            set.add(unit);
        }
    }
}

std::shared_ptr<const RE_Unit_Set> RE_Unit_Union::take() {
    if (gathered == nullptr && sole != nullptr) {
        return {std::shared_ptr<const void>(), sole};
    }
    table();
    return std::move(gathered);
}

RE_Unit_Set& RE_Unit_Union::table() {
    if (gathered == nullptr) {
        gathered = sole != nullptr ? pool.copyOf(*sole) : pool.blank();
    }
    return *gathered;
}
