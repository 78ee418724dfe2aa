// What the nodes of a pattern did: the counts that `RE_Tree::profile` returns.
//
// A search in progress is not yet in the profile. Counting slows a search down, by more for some nodes than
// for others: a profile says where the work is, not how long it takes.
#pragma once

#include "regexp/base/memory.h"

#include <cstdint>
#include <string>
#include <vector>

/// Of one node. `visits` is the sum of successes and failures.
struct CORVANE_REGEXP_EXPORT RE_Node_Counts {
    std::uint64_t visits = 0;     ///< times the match loop visited the node
    std::uint64_t successes = 0;  ///< visits that matched
    std::uint64_t failures = 0;   ///< visits that did not
    std::uint64_t pushes = 0;     ///< choices of the node that were pushed
    std::uint64_t pops = 0;       ///< choices of the node that were popped
    std::uint64_t refusals = 0;   ///< choices that the memo refused as tried before

    RE_Node_Counts& operator+=(const RE_Node_Counts& other);
    bool operator==(const RE_Node_Counts&) const = default;
};

/// By the numbers of nodes.
using RE_Count_Table = std::vector<RE_Node_Counts, RE_Allocator<RE_Node_Counts>>;

/// One row of a profile.
struct RE_Node_Profile {
    std::uint64_t nodeId;
    std::string label;
    RE_Node_Counts counts;
};

/// A copy of the counts at one moment; later searches do not change it.
struct CORVANE_REGEXP_EXPORT RE_Profile {
    std::uint64_t searches = 0;
    std::vector<RE_Node_Profile> nodes;  ///< every node, by number
    RE_Node_Counts texts;                ///< all nodes of dynamic texts, which are gone by now

    /// Of all nodes and texts together.
    RE_Node_Counts total() const;
};
