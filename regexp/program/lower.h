// From graph to program.
#pragma once

#include "regexp/program/instruction.h"

class RE_ParserContext;

/// The program of the graph behind `entry`. Its nodes must outlive it and change no more.
void lowerGraph(RE_ParserContext& context, RE_Node* entry, RE_Program& program);
