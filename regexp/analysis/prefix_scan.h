// Prefixes of a pattern's alternatives, taken together for one scan.
//
// A prefix is a sequence of sets of units, one for each of its first places. The scan stops at every position
// at which some prefix fits, so no start is passed over; it may stop in vain, as units are compared by one
// byte and as only a few places are looked at. Here the places are chosen, and the byte.
#pragma once

#include "regexp/graph/node.h"
#include "regexp/nodes/graph_context.h"
#include "regexp/seek/kernels.h"

#include <optional>

/// A scan and how often it can be expected to stop.
struct RE_Likely_Prefixes {
    RE_Prefix_Scan scan;
    double likelihood;  ///< the share of the positions of ordinary text that the scan stops at
};

/// The prefixes with which matches begin on the ways from `root`, or nothing when the first place is not
/// known. With `emptyCounts` a match may consume nothing, so a branch that can be empty has no first unit;
/// without it such a match is refused anyway. Walks a bounded number of nodes for each of at most 64
/// branches.
std::optional<RE_Likely_Prefixes> prefixesFrom(RE_Graph_Context& context, RE_Node* root, bool emptyCounts);
