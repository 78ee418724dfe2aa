// Vector scans over units: where a unit, a pair of units or a unit of a class occurs first or last.
//
// Each picks the widest instructions of the machine at run time. The result does not depend on which these
// are: a scan returns the first (or last) position for which the scalar test of the same name holds, and
// tests compare it with a plain loop over that test.
//
// None reads outside of what its arguments span; where a probe or prefix reaches further, its declaration
// says how far. The scans know neither steps nor interrupts: callers cut them into blocks (`scan.h`) and
// count.
#pragma once

#include "regexp/units/unit_set.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

/// One or two units, either of which counts: a literal unit, or a literal unit and its other case. Equal when
/// there is one.
struct RE_Unit_Pair {
    char16_t one;
    char16_t other;

    bool holds(char16_t unit) const { return unit == one || unit == other; }
};

/// A set of units prepared for scanning. Two table look-ups decide units below 0x80 exactly; others are
/// looked up in the set one by one, which is rare in most texts.
class CORVANE_REGEXP_EXPORT RE_Class_Scan {
public:
    /// `set` must outlive the scan. With `wanted` false it seeks units outside of the set. The classes that
    /// escapes name are copied from a table of the process in place of being prepared again.
    RE_Class_Scan(const RE_Unit_Set& set, bool wanted)
        : RE_Class_Scan(RE_Unit_Classes::numberOf(set) == RE_Unit_Classes::count ? prepared(set, wanted)
                                                                                 : known(set, wanted)) {}

    bool holds(char16_t unit) const { return units->contains(unit) == sought; }

    std::uint8_t rows[16];  ///< by low four bits: one bit for each value of the next three bits
    bool othersMayHold;     ///< some unit from 0x80 on is looked for

private:
    RE_Class_Scan() = default;
    static RE_Class_Scan prepared(const RE_Unit_Set& set, bool wanted);
    /// For one of the classes that escapes name.
    static const RE_Class_Scan& known(const RE_Unit_Set& set, bool wanted);

    const RE_Unit_Set* units;
    bool sought;
};

/// Two units of a literal at their distances from its start, chosen to be rare; a third where two are not
/// rare enough. A position where all are met is a candidate: the text may still differ.
struct RE_Literal_Probe {
    RE_Unit_Pair first;
    RE_Unit_Pair second;
    std::size_t firstAt;
    std::size_t secondAt;
    const char16_t* text = nullptr;  ///< the whole literal, where case counts; else the caller compares it
    std::size_t length = 0;
    bool hasThird = false;
    RE_Unit_Pair third{};
    std::size_t thirdAt = 0;
};

/// Up to eight prefixes, each known at up to four places, prepared for one scan for all of them. A unit is
/// known by one byte: its low byte, or itself up to 0xFF. So a candidate may pass the test by accident, but
/// no prefix is missed.
///
/// Eight, as a prefix is a bit of a byte: two shuffles give, for each unit, the prefixes that allow it at a
/// place, and `and` over the places leaves the prefixes that are possible as a whole.
struct RE_Prefix_Scan {
    static constexpr std::size_t mostPrefixes = 8;
    static constexpr std::size_t mostUnits = 4;

    std::uint8_t low[mostUnits][16] = {};   ///< by low four bits of the byte: one bit for each prefix
    std::uint8_t high[mostUnits][16] = {};  ///< by high four bits
    std::size_t depth = 0;                  ///< places tested, at least 1
    std::size_t distance[mostUnits] = {};   ///< of each place from the start of the prefix, in units
    bool saturates = false;                 ///< units from 0x100 on count as 0xFF

    /// What the scan knows of a unit.
    std::uint8_t byteOf(char16_t unit) const {
        return static_cast<std::uint8_t>(saturates && unit > 0xFF ? 0xFF : unit & 0xFF);
    }
    /// `byte` may be at the place `at` of prefix number `prefix`.
    void allow(std::size_t prefix, std::size_t at, std::uint8_t byte) {
        const auto bit = static_cast<std::uint8_t>(1U << prefix);
        low[at][byte & 0x0F] = static_cast<std::uint8_t>(low[at][byte & 0x0F] | bit);
        high[at][byte >> 4] = static_cast<std::uint8_t>(high[at][byte >> 4] | bit);
    }
    /// The same for many bytes at once, one bit for each. The groups of sixteen that have any are found
    /// first.
    void allowAll(std::size_t prefix, std::size_t at, const std::array<std::uint64_t, 4>& bytes) {
        const auto bit = static_cast<std::uint8_t>(1U << prefix);
        std::uint64_t lows = 0;
        for (std::size_t group = 0; group < 16; ++group) {
            const std::uint64_t ofGroup = bytes[group / 4] >> (16 * (group % 4)) & 0xFFFF;
            if (ofGroup != 0) {
                lows |= ofGroup;
                high[at][group] = static_cast<std::uint8_t>(high[at][group] | bit);
            }
        }
        for (; lows != 0; lows &= lows - 1) {
            std::uint8_t& row = low[at][std::countr_zero(lows)];
            row = static_cast<std::uint8_t>(row | bit);
        }
    }
    /// The greatest distance.
    std::size_t reach() const { return *std::max_element(distance, distance + depth); }
    /// The scalar form of the test. Units up to `reach()` past `p` must be readable.
    bool mayStandAt(const char16_t* p) const {
        unsigned prefixes = 0xFF;
        for (std::size_t i = 0; i < depth; ++i) {
            const std::uint8_t byte = byteOf(p[distance[i]]);
            prefixes &= low[i][byte & 0x0F] & static_cast<unsigned>(high[i][byte >> 4]);
        }
        return prefixes != 0;
    }
};

// Forward: the first position in [p, end) that passes, or `end`.
const char16_t* findUnit(const char16_t* p, const char16_t* end, RE_Unit_Pair unit);
const char16_t* findClass(const char16_t* p, const char16_t* end, const RE_Class_Scan& scan);
/// Where the units of the probe are met, and the text if there is one. Units up to `end` plus the largest
/// distance, and the whole text from each position on, must be readable.
const char16_t* findProbe(const char16_t* p, const char16_t* end, const RE_Literal_Probe& probe);

/// Where a prefix is possible. Units up to `end` plus the reach must be readable.
const char16_t* findPrefix(const char16_t* p, const char16_t* end, const RE_Prefix_Scan& scan);

// Backward: the last position in [p, end) that passes, or null. The same units must be readable.
const char16_t* findLastUnit(const char16_t* p, const char16_t* end, RE_Unit_Pair unit);
const char16_t* findLastClass(const char16_t* p, const char16_t* end, const RE_Class_Scan& scan);
const char16_t* findLastProbe(const char16_t* p, const char16_t* end, const RE_Literal_Probe& probe);
