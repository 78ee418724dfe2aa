// Pass: puts a node in front of the graph that finds where a match may start.
//
// Purpose: positions at which no match can start are skipped by a scan in place of an attempt each.
// Before: any graph. After: the same graph, behind an `RE_Seeker` when one helps. Cost: one walk over the
// nodes that can be reached without consuming.
//
// Patterns that call the host get none: the calls are part of what such a pattern does.
#pragma once

#include "regexp/nodes/graph_context.h"

class RE_Node;

RE_Node* chooseStartFinder(RE_Graph_Context& context, RE_Node* root);
