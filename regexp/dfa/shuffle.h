// Goes through a small automaton by vector shuffles: the next state of every state stands in one vector for
// each letter, and a step takes a cycle or two where a table in memory takes the time of a load.
#pragma once

#include "regexp/base/memory.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Read-only once it is made.
struct RE_Shuffle_Table {
    static constexpr std::size_t mostStates = 16;
    static constexpr std::size_t blockUnits = 16;
    /// Behind so many blocks that began in the same state the units may be such as change nothing.
    static constexpr std::size_t mostAlike = 3;
    static constexpr std::size_t directUnits = 256;
    static constexpr std::uint8_t stateBits = 0x0F;
    /// In an entry: a match may end before the unit.
    static constexpr std::uint8_t accepts = 0x10;

    using Row = std::array<std::uint8_t, mostStates>;
    /// The row of each unit, by its place in `rows`. Greater units are for somebody else.
    std::array<std::uint16_t, directUnits> rowOf{};
    std::vector<Row, RE_Allocator<Row>> rows;  ///< one a letter; state 0 leads to itself
};

/// Goes over blocks of units from `p` on, as far as they lie before `end`, up to a block with a unit that has
/// no row, one over which a match may end, or one behind which the state is 0; and no further than some
/// blocks that change nothing. Returns how far it came and puts the state there into `state`.
const char16_t* shuffleOver(const RE_Shuffle_Table& table, const char16_t* p, const char16_t* end,
                            std::uint8_t& state);
