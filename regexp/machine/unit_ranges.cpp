#include "regexp/machine/unit_ranges.h"

#include <bit>

namespace {

constexpr std::size_t blocks = RE_Unit_Set::unitCount / 64;

/// The first unit from `unit` on that is in the set, or, with `wanted` false, that is not; the number of units
/// when there is none.
std::size_t nextUnit(const RE_Unit_Set& set, std::size_t unit, bool wanted) {
    while (unit < RE_Unit_Set::unitCount) {
        const std::uint64_t bits = wanted ? set.bits(unit / 64) : ~set.bits(unit / 64);
        const std::uint64_t behind = bits >> (unit % 64);
        if (behind != 0) {
            return unit + static_cast<std::size_t>(std::countr_zero(behind));
        }
        unit = unit / 64 + 1 < blocks ? (unit / 64 + 1) * 64 : RE_Unit_Set::unitCount;
    }
    return unit;
}

}  // namespace

RE_Unit_Ranges::RE_Unit_Ranges(const RE_Unit_Set& set) {
    for (std::size_t low = nextUnit(set, 0, true); low < RE_Unit_Set::unitCount && count <= most; ++count) {
        const std::size_t behind = nextUnit(set, low, false);
        if (count < most) {
            list[count] = {static_cast<char16_t>(low), static_cast<char16_t>(behind - 1)};
        }
        low = nextUnit(set, behind, true);
    }
}

RE_Units_Outside::RE_Units_Outside(const RE_Unit_Set& set) {
    for (std::size_t unit = nextUnit(set, 0, false); unit < RE_Unit_Set::unitCount && count <= most;
         ++count) {
        if (count < most) {
            list[count] = static_cast<char16_t>(unit);
        }
        unit = nextUnit(set, unit + 1, false);
    }
}
