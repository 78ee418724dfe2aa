// Pass: loops over one unit become a node that measures the whole run at once.
//
// Purpose: such a loop leaves one choice in place of one for every pass.
// Before: any graph. After: no loop that the parser builds over a single-unit test is left as a split or
// counter loop.
// Also: a split whose second way only repeats its first is dropped, and a closed loop becomes a possessive
// one.
// Cost: a few walks.
#pragma once

#include "regexp/nodes/graph_context.h"

class RE_Node;

RE_Node* rewriteDotStar(RE_Graph_Context& context, RE_Node* root);
