// Where the numbers of a sub-pattern begin: the memo rows, registers, counts and node numbers that its search
// shares with the graph it continues in.
//
// Invariant: two nodes of one search never share a number, since each would take what the other remembers for
// its own.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/state/sub_pattern_place.h"

#include <cstddef>
#include <vector>

class RE_Node;

/// A finished graph that a pattern is to continue in.
struct RE_Continued_Graph {
    RE_Sub_Pattern_Place place;  ///< after all that the graph uses
    std::size_t tokenCount = 0;  ///< slots that it writes or reads
    /// The names of its slots, owned by its nodes; shorter than `tokenCount` where the last are unnamed.
    std::vector<const char16_t*, RE_Allocator<const char16_t*>> tokenNames;

    /// Surveys everything that can be reached from `entry` (null: nothing), through continuations too. Only
    /// reads: the graph may be searched by other threads meanwhile. Linear in its nodes, of which it keeps a
    /// set of its own, since the marks in the nodes belong to whoever compiles them.
    static RE_Continued_Graph from(RE_Node* entry);
};
