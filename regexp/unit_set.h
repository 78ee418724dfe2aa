// Exact sets of UTF-16 units, and the host's case mapping and classes held as tables.
//
// The tables are filled from the host's functions once per process, so the match loop never calls the host.
#pragma once

#include "regexp/memory.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

/// A set of units: one bit for each of the 65,536.
class RE_Unit_Set : public RE_Memory {
public:
    static constexpr std::size_t unitCount = 0x10000;

    bool contains(char16_t unit) const { return (words[unit >> 6] >> (unit & 63) & 1) != 0; }
    void add(char16_t unit) { words[unit >> 6] |= std::uint64_t{1} << (unit & 63); }
    void addRange(char16_t low, char16_t high);
    void addAll(const RE_Unit_Set& other);
    void negate();
    std::size_t size() const;

    template <class Predicate>
    void addWhere(Predicate predicate) {
        for (std::size_t unit = 0; unit < unitCount; ++unit) {
            if (predicate(static_cast<char16_t>(unit))) {
                add(static_cast<char16_t>(unit));
            }
        }
    }

private:
    std::uint64_t words[unitCount / 64] = {};
};

/// The host's simple case mapping, unit by unit.
class RE_Case_Table {
public:
    static const RE_Case_Table& get();

    char16_t lower(char16_t unit) const { return lowerOf[unit]; }
    char16_t upper(char16_t unit) const { return upperOf[unit]; }
    bool hasCase(char16_t unit) const { return lowerOf[unit] != upperOf[unit]; }
    /// The units for which either mapping gives another unit.
    const std::vector<char16_t>& casedUnits() const { return cased; }
    bool isCased(char16_t unit) const { return lowerOf[unit] != unit || upperOf[unit] != unit; }
    /// This unit and no other has this unit as its lower-case form.
    bool foldsAlone(char16_t unit) const { return lowerOf[unit] == unit && !foldTargets.contains(unit); }

private:
    RE_Case_Table();

    char16_t lowerOf[RE_Unit_Set::unitCount];
    char16_t upperOf[RE_Unit_Set::unitCount];
    RE_Unit_Set foldTargets;
    std::vector<char16_t> cased;
};

/// The classes that escapes name.
struct RE_Unit_Classes {
    static const RE_Unit_Classes& get();

    RE_Unit_Set digits;
    RE_Unit_Set spaces;
    RE_Unit_Set words;  ///< letters, digits and the underscore
    RE_Unit_Set noDigits;
    RE_Unit_Set noSpaces;
    RE_Unit_Set noWords;

private:
    RE_Unit_Classes();
};

/// Adds the units of a test that looks at a unit's two case forms only: the caseless units from `low` to `high`, and
/// every unit with case for which `holds`.
template <class Predicate>
void addFolding(RE_Unit_Set& set, char16_t low, char16_t high, Predicate holds) {
    const RE_Case_Table& cases = RE_Case_Table::get();
    for (std::size_t unit = low; unit <= high; ++unit) {
        if (!cases.isCased(static_cast<char16_t>(unit))) {
            set.add(static_cast<char16_t>(unit));
        }
    }
    for (const char16_t unit : cases.casedUnits()) {
        if (holds(unit)) {
            set.add(unit);
        }
    }
}

/// Whether a unit counts as part of a word: the class that the word anchors and `\w` share.
inline bool isWordUnit(char16_t unit) {
    return RE_Unit_Classes::get().words.contains(unit);
}
