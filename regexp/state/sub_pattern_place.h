// Where the numbers of a sub-pattern begin: the memo rows, registers, counts and node numbers that its search shares with
// the graph it continues in. Two nodes of one search must never share a number, since each would take what the other
// remembers for its own.
#pragma once

#include <cstddef>
#include <cstdint>

struct RE_Sub_Pattern_Place {
    std::uint32_t memoRow = 0;
    std::size_t passRegister = 0;
    std::uint64_t nodeId = 0;  ///< the last one that is taken
};
