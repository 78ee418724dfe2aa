// Puts together the units that are possible at some place: the members of a bracket expression, or first
// units of branches.
//
// A set of all 65,536 units takes 8 KiB and most unions need none of their own: they are one named class, or
// a few units below 128. So parts are only noted while the union is gathered, and a set is made at the end,
// if at all.
//
// Invariant: the union is what is in `low`, in the named classes, in the parts and in `gathered` together. A
// unit may be in several of them.
#pragma once

#include "regexp/graph/node.h"
#include "regexp/seek/set_pool.h"
#include "regexp/units/unit_set.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

/// Gathers units. Until they are taken they stay in their sets: most often no other one has to be made. Used
/// once, on one thread, while its pool lives.
class CORVANE_REGEXP_EXPORT RE_Unit_Union {
public:
    explicit RE_Unit_Union(RE_Set_Pool& setPool) : pool(setPool) {}

    /// Units below 128 are two words of bits, without a set.
    void add(char16_t unit) {
        if (unit < RE_Low_Units::unitCount) {
            low.add(unit);
        } else {
            table().add(unit);
        }
    }
    /// Both ends are included; `first` is not greater than `last`.
    void addRange(char16_t first, char16_t last) {
        if (last < RE_Low_Units::unitCount) {
            low.addRange(first, last);
        } else {
            table().addRange(first, last);
        }
    }
    /// The set of what cannot be noted otherwise, to add units to directly. Made on first use.
    RE_Unit_Set& table();
    /// Notes the set by its address. Trap: it must outlive not only this but whatever is taken, which may
    /// be this very set without ownership. Sets of nodes of the same compilation and sets of the process
    /// do.
    void addAll(const RE_Unit_Set& set);
    /// The units that a single-unit test matches.
    void addConsumable(const RE_Consumable& unit);
    /// Each unit of the text; where case does not count, each unit that has one of these as its lower-case
    /// form.
    void addText(std::u16string_view text, bool ignoreCase);
    /// All units that were added: a new set, or one of those added, which is not owned by the result. Must
    /// not be changed. Called once, and nothing is added afterwards.
    std::shared_ptr<const RE_Unit_Set> take();
    /// All other units, in the same way but always as a new set.
    std::shared_ptr<const RE_Unit_Set> takeOthers();

private:
    // More sets than this are merged as they come. One more place is for the union of the named classes.
    static constexpr std::size_t mostParts = 8;

    /// Makes a part of the named classes that were noted.
    void takeClasses();
    /// Whether all of `low` is in the set.
    bool holdsLow(const RE_Unit_Set& set) const;
    /// Puts the parts into `gathered`.
    void addParts();

    RE_Set_Pool& pool;
    std::shared_ptr<RE_Unit_Set> gathered;  ///< what is neither in a part nor low
    std::array<const RE_Unit_Set*, mostParts + 1> parts{};
    std::size_t partCount = 0;
    std::size_t classes = 0;  ///< digits, spaces and words, one bit each
    RE_Low_Units low;
};
