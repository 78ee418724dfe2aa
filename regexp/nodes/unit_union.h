// Puts the units together that may stand at some place.
#pragma once

#include "regexp/graph/node.h"
#include "regexp/seek/set_pool.h"
#include "regexp/units/unit_set.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

/// Gathers units. Until they are taken they lie in their sets: most often no other one has to be made.
class CORVANE_REGEXP_EXPORT RE_Unit_Union {
public:
    explicit RE_Unit_Union(RE_Set_Pool& setPool) : pool(setPool) {}

    void add(char16_t unit) {
        if (unit < RE_Low_Units::unitCount) {
            low.add(unit);
        } else {
            table().add(unit);
        }
    }
    void addRange(char16_t first, char16_t last) {
        if (last < RE_Low_Units::unitCount) {
            low.addRange(first, last);
        } else {
            table().addRange(first, last);
        }
    }
    /// A set that is being gathered, to add others to.
    RE_Unit_Set& table();
    /// The set outlives what is made of it here: it belongs to a node, or to the process.
    void addAll(const RE_Unit_Set& set);
    void addConsumable(const RE_Consumable& unit);
    void addText(std::u16string_view text, bool ignoreCase);
    /// All of them: a set of their own, or one that was added. Called once.
    std::shared_ptr<const RE_Unit_Set> take();
    /// All others, in the same way.
    std::shared_ptr<const RE_Unit_Set> takeOthers();

private:
    static constexpr std::size_t mostParts = 8;

    void takeClasses();
    bool holdsLow(const RE_Unit_Set& set) const;
    void addParts();

    RE_Set_Pool& pool;
    std::shared_ptr<RE_Unit_Set> gathered;  ///< what is neither in a part nor low
    std::array<const RE_Unit_Set*, mostParts + 1> parts{};
    std::size_t partCount = 0;
    std::size_t classes = 0;  ///< digits, spaces and words, one bit each
    RE_Low_Units low;
};
