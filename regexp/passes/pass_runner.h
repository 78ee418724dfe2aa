// The passes that a parsed graph goes through, in their order.
//
// Invariant: between two passes the graph is complete, and it could be searched as it is. Nodes belong to the
// context throughout, also those that no link leads to any more.
#pragma once

#include "regexp/graph/stage.h"
#include "regexp/nodes/graph_context.h"

#include <functional>

class RE_Node;

/// Called with the graph as parsed, and after each pass that ran. It may read the graph but not change it.
using RE_Stage_Observer = std::function<void(RE_Stage, RE_Node* root)>;

/// Runs every pass that its option switches on and returns the new root. In the developer build the graph's
/// invariants are checked before the first pass and after each; a broken graph is a `std::logic_error`.
RE_Node* runPasses(RE_Graph_Context& context, RE_Node* root, const RE_Stage_Observer& observer = {});
