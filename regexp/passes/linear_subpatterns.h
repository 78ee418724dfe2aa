// Pass: makes one node of what is matched as a whole.
//
// Purpose: a fail chain of single-unit tests becomes one class test, a run of literals one string.
// Before: any graph. After: no literal leads to a literal that only it leads to. Cost: two walks, and a table
// for each class. Nodes that other paths reach as well stay as they are.
#pragma once

#include "regexp/nodes/graph_context.h"

class RE_Node;

RE_Node* joinLinearSubpatterns(RE_Graph_Context& context, RE_Node* root);
