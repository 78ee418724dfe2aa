// Pass: removes nodes that do nothing.
//
// Purpose: the match loop never visits an empty node in the middle of a chain.
// Before: any graph. After: no link leads to a skippable node. Cost: one walk,
// and none when nothing has become skippable since the last one.
#pragma once

#include "regexp/nodes/graph_context.h"

class RE_Node;

RE_Node* removeNullNodes(RE_Graph_Context& context, RE_Node* root);
