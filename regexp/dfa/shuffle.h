// Reads a subject by a small automaton with vector shuffles: for each letter one vector holds the next state
// of every state, and a step takes a cycle or two where a table in memory takes the time of a load.
//
// A shuffle by the current state gives the next one. Shuffling one row by another gives the row of both
// units, before any state is known: so four units are merged in parallel, and only one shuffle in four waits
// for the one before.
#pragma once

#include "regexp/base/memory.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

/// The rows of an automaton. Read-only once it is made.
struct RE_Shuffle_Table {
    static constexpr std::size_t mostStates = 16;
    static constexpr std::size_t blockUnits = 16;
    /// After so many blocks that end in the state in which they began, the units may be such as change
    /// nothing: a scan for other units would be faster, so the caller gets a chance.
    static constexpr std::size_t mostAlike = 3;
    static constexpr std::size_t directUnits = 256;
    static constexpr std::uint8_t stateBits = 0x0F;
    /// In an entry: a match may end before the unit.
    static constexpr std::uint8_t accepts = 0x10;

    using Row = std::array<std::uint8_t, mostStates>;
    /// The row of each unit, as its offset in bytes from the first. Greater units are not read here.
    std::array<std::uint16_t, directUnits> rowOf{};
    std::vector<Row, RE_Allocator<Row>> rows;  ///< one a letter; state 0 leads to itself
};

/// Reads blocks of units from `p` on, as far as they lie before `end`. Stops in front of a block with a unit
/// that has no row, over which a match may end, or after which the state is 0; and after some blocks that
/// change nothing. Returns how far it has come and puts the state there into `state`.
const char16_t* shuffleOver(const RE_Shuffle_Table& table, const char16_t* p, const char16_t* end,
                            std::uint8_t& state);
