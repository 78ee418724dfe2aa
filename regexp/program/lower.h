// From graph to program.
//
// Lowering comes last, when the passes are through: it copies what nodes test, and a node that changed
// afterwards would no longer be what the program runs. It may give up at any node, as the match loop
// continues there.
#pragma once

#include "regexp/program/instruction.h"

#include <memory>

class RE_Graph_Context;

/// The program of the graph from `entry` on, never null; its `entry` is null when it would leave at once. The
/// nodes must outlive it and change no more. Linear in the nodes that are lowered, of which there is a
/// greatest number.
std::unique_ptr<const RE_Program> lowerGraph(RE_Graph_Context& context, RE_Node* entry);
