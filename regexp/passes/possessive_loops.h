// Pass: loops over one unit give nothing back where that could not help.
//
// Purpose: no choice is left behind, and no shorter run is tried, where what follows cannot begin with a unit
// of the run: `\w+\s`, `[^"]*"`, `a*` at the end of a pattern. Before: any graph. After: the same graph, such
// loops possessive.
// Cost: a walk for each loop over a bounded number of nodes behind it.
//
// Patterns that call the host are left alone: the calls made on the way to a failure are part of what they
// do.
#pragma once

#include "regexp/nodes/graph_context.h"

class RE_Node;

RE_Node* makeLoopsPossessive(RE_Graph_Context& context, RE_Node* root);
