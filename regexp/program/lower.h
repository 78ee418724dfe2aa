// From graph to program.
#pragma once

#include "regexp/program/instruction.h"

#include <memory>

class RE_Graph_Context;

/// The program of the graph from `entry` on. Its nodes must outlive it and change no more.
std::unique_ptr<const RE_Program> lowerGraph(RE_Graph_Context& context, RE_Node* entry);
