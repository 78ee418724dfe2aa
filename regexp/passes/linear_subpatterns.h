// Pass: makes one node of what is matched as a whole.
//
// Purpose: a fail chain of single-unit tests becomes one class test, a run of literals one string.
// Before: any graph.
// After: no literal leads to a literal that only it leads to, apart from units of zero and from neighbours of
// which one ignores case and the other does not; no link leads to a skippable node.
// Cost: two walks, and a table for each class.
//
// Nodes that other paths reach as well stay as they are: those paths would enter the new node in its middle.
#pragma once

#include "regexp/nodes/graph_context.h"

class RE_Node;

RE_Node* joinLinearSubpatterns(RE_Graph_Context& context, RE_Node* root);
