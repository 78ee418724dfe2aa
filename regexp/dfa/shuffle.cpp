#include "regexp/dfa/shuffle.h"

// This file is compiled once for each instruction set: everything up to the end of the guarded part below.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "regexp/dfa/shuffle.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace corvane_dfa {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR

// Without vectors the table in memory is as good.
const char16_t* shuffleBlocks(const RE_Shuffle_Table&, const char16_t* p, const char16_t*, std::uint8_t&) {
    return p;
}

#else

using Units = hn::FixedTag<std::uint16_t, 8>;
using States = hn::FixedTag<std::uint8_t, RE_Shuffle_Table::mostStates>;

HWY_INLINE bool haveRows(const char16_t* p) {
    const auto* const units = reinterpret_cast<const std::uint16_t*>(p);
    const auto all = hn::Or(hn::LoadU(Units(), units), hn::LoadU(Units(), units + hn::Lanes(Units())));
    return hn::AllTrue(Units(), hn::Eq(hn::ShiftRight<8>(all), hn::Zero(Units())));
}

const char16_t* shuffleBlocks(const RE_Shuffle_Table& table, const char16_t* p, const char16_t* end,
                              std::uint8_t& state) {
    const auto* const rows = reinterpret_cast<const std::uint8_t*>(table.rows.data());
    const auto stateBits = hn::Set(States(), RE_Shuffle_Table::stateBits);
    auto current = hn::Set(States(), state);
    for (; static_cast<std::size_t>(end - p) >= RE_Shuffle_Table::blockUnits && haveRows(p);
         p += RE_Shuffle_Table::blockUnits) {
        auto next = current;
        auto met = hn::Zero(States());
        for (std::size_t i = 0; i < RE_Shuffle_Table::blockUnits; ++i) {
            const auto entry = hn::TableLookupBytes(hn::LoadU(States(), rows + table.rowOf[p[i]]), next);
            met = hn::Or(met, entry);
            next = hn::And(entry, stateBits);
        }
        if ((hn::GetLane(met) & RE_Shuffle_Table::accepts) != 0 || hn::GetLane(next) == 0) {
            break;
        }
        current = next;
    }
    state = hn::GetLane(current);
    return p;
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace corvane_dfa
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace corvane_dfa {
HWY_EXPORT(shuffleBlocks);
}  // namespace corvane_dfa

namespace {

using Shuffle = const char16_t* (*)(const RE_Shuffle_Table&, const char16_t*, const char16_t*, std::uint8_t&);

/// The function for this machine.
Shuffle chooseShuffle() {
    using namespace corvane_dfa;
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    return &HWY_DYNAMIC_DISPATCH(shuffleBlocks);
}

}  // namespace

const char16_t* shuffleOver(const RE_Shuffle_Table& table, const char16_t* p, const char16_t* end,
                            std::uint8_t& state) {
    static const Shuffle chosen = chooseShuffle();
    return chosen(table, p, end, state);
}

#endif  // HWY_ONCE
