// The passes that a parsed graph goes through, in their order.
#pragma once

#include "regexp/graph/stage.h"
#include "regexp/nodes/graph_context.h"

#include <functional>

class RE_Node;

/// Called after each stage that ran.
using RE_Stage_Observer = std::function<void(RE_Stage, RE_Node* root)>;

/// Runs every pass that its option switches on and returns the new root. In the developer build the graph's
/// invariants are checked before the first pass and after each.
RE_Node* runPasses(RE_Graph_Context& context, RE_Node* root, const RE_Stage_Observer& observer = {});
