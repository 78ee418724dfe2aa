// Pass: removes nodes that do nothing.
//
// Purpose: the match loop never visits an empty node in the middle of a chain.
// Before: any graph.
// After: no link leads to a skippable node.
// Cost: one walk, and none when nothing has become skippable since the last one.
//
// Every pass that marks nodes as skippable sets `hasSkippable` and ends with this, so that later passes may
// compare links without looking through empty nodes. An empty node matches everywhere, consumes nothing and
// has one way on: bypassing it changes nothing but the number of steps.
#pragma once

#include "regexp/nodes/graph_context.h"

class RE_Node;

/// Returns the new root, which is another node where the old one did nothing.
RE_Node* removeNullNodes(RE_Graph_Context& context, RE_Node* root);
