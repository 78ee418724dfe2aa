// What follows a run of which shorter or longer ones may have to be tried, where that is all that has to be
// tried again.
//
// Machine code keeps one choice by itself, an end of a run. It can do so when the rest of the pattern leaves
// nothing behind that would have to be undone: no choice of its own, no token that something else has
// written, and no way on that belongs to another part of the pattern.
#pragma once

#include "regexp/graph/instruction.h"

#include <vector>

/// The instructions after `run`, to the end of the pattern, when they take no choice and nothing but the run
/// leads to them: where they fail the next end of the run is tried. Empty otherwise. Takes time in proportion
/// to the program, and to the square of the instructions that write tokens.
std::vector<const RE_Instruction*> ownRest(const RE_Program& program, const RE_Instruction& run);
