// Pass: alternations look at the subject before they choose.
//
// Purpose: literals that lead on to the same node are looked for in one walk, and of other branches only
// those are tried that can begin with the next unit. A choice with one way open leaves no record.
// Before: loops over one unit are nodes of their own.
// After: chains of splits of which something can be said are an `RE_Literal_Set` or an `RE_Dispatch`.
// Cost: a walk, and one over a bounded number of nodes for each branch.
//
// The new node takes over the memo row and the scope of the first split of its chain: the others are reached
// through that one alone, at the same position. Patterns that call the host are left alone: the calls made on
// the way to a failure are part of what they do.
#pragma once

#include "regexp/nodes/graph_context.h"

class RE_Node;

RE_Node* joinAlternations(RE_Graph_Context& context, RE_Node* root);
