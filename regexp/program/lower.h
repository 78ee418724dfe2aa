// From graph to program.
//
// Lowering comes last, when the passes are through: it copies what nodes test, and a node that changed
// afterwards would no longer be what the program runs. It may give up at any node, as the match loop
// continues there.
#pragma once

#include "regexp/graph/instruction.h"

class RE_Graph_Context;

/// The program of the graph from `entry` on. Its nodes must outlive it and change no more.
void lowerGraph(RE_Graph_Context& context, RE_Node* entry, RE_Program& program);
