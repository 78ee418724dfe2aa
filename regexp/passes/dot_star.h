// Pass: loops over one unit become a node that measures the whole run at once.
//
// Purpose: such a loop leaves one choice in place of one for every pass.
// Before: any graph.
// After: no loop that the parser builds over a single-unit test is left as a split or counter loop, and no
// link leads to a skippable node.
// Also: a split whose second way only repeats its first is dropped, and an atomic group that holds nothing
// but a run becomes a possessive run.
// Cost: a few walks.
//
// Why the answers stay the same: the run tries the same ends in the same order as the loop did, and a unit
// test has no effect but its unit. Possessive runs keep the end that the atomic group would have kept.
#pragma once

#include "regexp/nodes/graph_context.h"

class RE_Node;

RE_Node* rewriteDotStar(RE_Graph_Context& context, RE_Node* root);
