// The shuffles, compiled once for each instruction set and chosen at run time.
//
// A shuffle by the current state gives the next one. Shuffling one row by another gives the row of both
// units, before any state is known: so four units are merged in parallel, and only one shuffle in four waits
// for the one before.
//
// Trap: the guarded part exists once for each instruction set, as this file includes itself. Functions in it
// must be inlined or live in its namespace.
#include "regexp/dfa/dfa.h"

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

/// Whether all units of the block are below 256.
HWY_INLINE bool haveRows(const char16_t* p) {
    const auto* const units = reinterpret_cast<const std::uint16_t*>(p);
    const auto all = hn::Or(hn::LoadU(Units(), units), hn::LoadU(Units(), units + hn::Lanes(Units())));
    return hn::AllTrue(Units(), hn::Eq(hn::ShiftRight<8>(all), hn::Zero(Units())));
}

using Entries = hn::Vec<States>;

/// Entries without what they say besides the next state. The shuffles of some processors look at no other
/// bits anyway.
HWY_INLINE Entries asIndexes(Entries entries) {
#if HWY_ARCH_X86 && HWY_TARGET != HWY_EMU128
    return entries;
#else
    return hn::And(entries, hn::Set(States(), RE_Shuffle_Table::stateBits));
#endif
}

/// The row of two units, made of theirs: from each state over the first to the second. That a match may end
/// on the way is kept. Such rows are made while the state before them is not known yet, so that few shuffles
/// depend on each other.
HWY_INLINE Entries behindEachOther(Entries first, Entries second) {
    const auto accepted = hn::And(first, hn::Set(States(), RE_Shuffle_Table::accepts));
    return hn::Or(hn::TableLookupBytes(second, asIndexes(first)), accepted);
}

HWY_INLINE std::uint8_t stateOf(Entries entries) {
    return hn::GetLane(entries) & RE_Shuffle_Table::stateBits;
}

const char16_t* shuffleBlocks(const RE_Shuffle_Table& table, const char16_t* p, const char16_t* end,
                              std::uint8_t& state) {
    const auto* const rows = reinterpret_cast<const std::uint8_t*>(table.rows.data());
    std::size_t blocksAlike = 0;
    auto current = hn::Set(States(), state);
    for (; static_cast<std::size_t>(end - p) >= RE_Shuffle_Table::blockUnits && haveRows(p);
         p += RE_Shuffle_Table::blockUnits) {
        auto next = current;
        auto met = hn::Zero(States());
        for (std::size_t i = 0; i < RE_Shuffle_Table::blockUnits; i += 4) {
            const auto row = [&](std::size_t at) {
                return hn::LoadU(States(), rows + table.rowOf[p[i + at]]);
            };
            const auto four =
                behindEachOther(behindEachOther(row(0), row(1)), behindEachOther(row(2), row(3)));
            const auto entry = hn::TableLookupBytes(four, next);
            met = hn::Or(met, entry);
            next = asIndexes(entry);
        }
        // All lanes hold the same state: one is enough.
        const std::uint8_t before = stateOf(current);
        const std::uint8_t after = stateOf(next);
        // The block is not passed: the table has to read it unit by unit, to find where the match ends.
        if ((hn::GetLane(met) & RE_Shuffle_Table::accepts) != 0 || after == 0) {
            break;
        }
        current = next;
        blocksAlike = after == before ? blocksAlike + 1 : 0;
        if (blocksAlike == RE_Shuffle_Table::mostAlike) {
            p += RE_Shuffle_Table::blockUnits;
            break;
        }
    }
    state = stateOf(current);
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
