// Prefixes of a pattern's alternatives, taken together for one scan.
#pragma once

#include "regexp/graph/node.h"
#include "regexp/nodes/graph_context.h"
#include "regexp/seek/kernels.h"

#include <optional>

struct RE_Likely_Prefixes {
    RE_Prefix_Scan scan;
    double likelihood;  ///< the share of the positions of ordinary text that the scan stops at
};

/// The prefixes with which matches begin on the ways from `root`, or nothing when the first place is not known. With
/// `emptyCounts` a match may consume nothing.
std::optional<RE_Likely_Prefixes> prefixesFrom(RE_Graph_Context& context, RE_Node* root, bool emptyCounts);
