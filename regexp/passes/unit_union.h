// Puts the units together that may stand at some place.
#pragma once

#include "regexp/nodes/node.h"
#include "regexp/parser/set_pool.h"
#include "regexp/unit_set.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

/// Gathers units. Until they are taken they lie in their sets: most often no other one has to be made.
class RE_Unit_Union {
public:
    explicit RE_Unit_Union(RE_Set_Pool& setPool) : pool(setPool) {}

    void add(char16_t unit) {
        if (unit < lowUnits) {
            low[unit / 64] |= std::uint64_t{1} << (unit % 64);
        } else {
            table().add(unit);
        }
    }
    /// The set outlives what is made of it here: it belongs to a node, or to the process.
    void addAll(const RE_Unit_Set& set);
    void addConsumable(const RE_Consumable& unit);
    void addText(std::u16string_view text, bool ignoreCase);
    /// All of them: a set of their own, or one that was added. Called once.
    std::shared_ptr<const RE_Unit_Set> take();

private:
    static constexpr std::size_t lowUnits = 128;
    static constexpr std::size_t mostParts = 8;

    RE_Unit_Set& table();
    bool holdsLow(const RE_Unit_Set& set) const;
    void addParts();

    RE_Set_Pool& pool;
    std::shared_ptr<RE_Unit_Set> gathered;  ///< what is neither in a part nor low
    std::array<const RE_Unit_Set*, mostParts + 1> parts{};
    std::size_t partCount = 0;
    std::size_t classes = 0;  ///< digits, spaces and words, one bit each
    std::array<std::uint64_t, lowUnits / 64> low{};
};
