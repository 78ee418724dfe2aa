#include "regexp/machine/unit_ranges.h"

#include <algorithm>
#include <bit>

namespace {

/// The first unit from `unit` on that is in the set, or, with `wanted` false, that is not; the `end` of the
/// units that count when there is none.
std::size_t nextUnit(const RE_Unit_Set& set, std::size_t unit, bool wanted,
                     std::size_t end = RE_Unit_Set::unitCount) {
    while (unit < end) {
        const std::uint64_t bits = wanted ? set.bits(unit / 64) : ~set.bits(unit / 64);
        const std::uint64_t behind = bits >> (unit % 64);
        if (behind != 0) {
            return std::min(unit + static_cast<std::size_t>(std::countr_zero(behind)), end);
        }
        unit = (unit / 64 + 1) * 64;
    }
    return end;
}

}  // namespace

RE_Unit_Ranges::RE_Unit_Ranges(const RE_Unit_Set& set, std::size_t end) {
    for (std::size_t low = nextUnit(set, 0, true, end); low < end && count <= most; ++count) {
        const std::size_t behind = nextUnit(set, low, false, end);
        if (count < most) {
            list[count] = {static_cast<char16_t>(low), static_cast<char16_t>(behind - 1)};
        }
        low = nextUnit(set, behind, true, end);
    }
}

RE_Units_Outside::RE_Units_Outside(const RE_Unit_Set& set, bool outside) {
    for (std::size_t unit = nextUnit(set, 0, !outside); unit < RE_Unit_Set::unitCount && count <= most;
         ++count) {
        if (count < most) {
            list[count] = static_cast<char16_t>(unit);
        }
        unit = nextUnit(set, unit + 1, !outside);
    }
}
