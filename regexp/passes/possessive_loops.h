// Pass: loops over one unit become possessive where backtracking into them could not help.
//
// Purpose: no choice is left, and no shorter run is tried, where what follows cannot begin with a unit of the
// run: `\w+\s`, `[^"]*"`, `a*` at the end of a pattern.
// Before: any graph; loops over one unit that are still splits or counters are not looked at.
// After: the same graph, such loops possessive, and tokens that hold nothing else linked to their loop.
// Cost: a walk for each loop over a bounded number of nodes after it.
//
// Patterns that call the host are left alone: the calls made on the way to a failure are part of what they
// do.
#pragma once

#include "regexp/nodes/graph_context.h"

class RE_Node;

RE_Node* makeLoopsPossessive(RE_Graph_Context& context, RE_Node* root);
