// Pass: lookaheads with which the pattern ends.
//
// Purpose: what such a lookahead asks for follows every match, so its body tells about matches as if it were a part of
// them: units that a run before it cannot give up, literals without which there is no match.
// Before: any graph.
// After: the same graph; such assertions, and the ends of their bodies, say so. What reasons about matches enters the body
// in place of what follows the assertion.
// Cost: one walk, where the pattern has lookarounds.
#pragma once

#include "regexp/nodes/graph_context.h"

class RE_Node;

RE_Node* findLastLookaheads(RE_Graph_Context& context, RE_Node* root);
