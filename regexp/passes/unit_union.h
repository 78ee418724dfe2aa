// Puts the units together that may stand at some place.
#pragma once

#include "regexp/nodes/node.h"
#include "regexp/parser/set_pool.h"
#include "regexp/unit_set.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string_view>

/// Gathers units, of which no table is made as long as they are those of one set.
class RE_Unit_Union {
public:
    explicit RE_Unit_Union(RE_Set_Pool& setPool) : pool(setPool) {}

    void add(char16_t unit) { table().add(unit); }
    /// The set outlives what is made of it here: it belongs to a node, or to the process.
    void addAll(const RE_Unit_Set& set);
    void addConsumable(const RE_Consumable& unit);
    void addText(std::u16string_view text, bool ignoreCase);
    /// All of them: a set of their own, or one that was added. Called once.
    std::shared_ptr<const RE_Unit_Set> take();

private:
    RE_Unit_Set& table();

    RE_Set_Pool& pool;
    std::shared_ptr<RE_Unit_Set> gathered;
    const RE_Unit_Set* sole = nullptr;  ///< the first set that was added, as long as it is all there is
    /// Some that were added: many nodes share their sets.
    std::array<const RE_Unit_Set*, 8> known{};
    std::size_t added = 0;
};
