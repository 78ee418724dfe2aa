// From graph to program.
#pragma once

#include "regexp/graph/instruction.h"


class RE_Graph_Context;

/// The program of the graph from `entry` on. Its nodes must outlive it and change no more.
void lowerGraph(RE_Graph_Context& context, RE_Node* entry, RE_Program& program);
