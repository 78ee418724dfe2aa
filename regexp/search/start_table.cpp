// A row of bits for each unit below 0x80 and one for all others.
#include "regexp/search/start_table.h"

#include <algorithm>

void RE_Start_Table::add(const RE_Match_Beginnings& beginnings) {
    if (patterns % groupSize == 0) {
        groups.emplace_back();
    }
    Group& group = groups.back();
    const std::uint64_t bit = std::uint64_t{1} << (patterns % groupSize);
    ++patterns;
    if (!beginnings.isKnown) {
        group.anywhere |= bit;
        return;
    }
    beginnings.low.forEach([&group, bit](char16_t unit) { group.starting[unit] |= bit; });
    group.starting[above] |= beginnings.above ? bit : 0;
}

void RE_Start_Table::survey(const char16_t* begin, const char16_t* end) {
    std::array<bool, above + 1> seen{};
    for (const char16_t* p = begin; p != end; ++p) {
        seen[std::min<std::size_t>(*p, above)] = true;
    }
    for (Group& group : groups) {
        group.surveyed = group.anywhere;
        for (std::size_t row = 0; row < seen.size(); ++row) {
            group.surveyed |= seen[row] ? group.starting[row] : 0;
        }
    }
}
