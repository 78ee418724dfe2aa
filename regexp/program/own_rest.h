// What follows a run of which shorter or longer ones may have to be tried, where nothing but that run and others like it
// has to be tried again.
//
// Machine code keeps such choices by itself, each an end of a run. It can do so when the rest of the pattern leaves
// nothing behind that would have to be undone: no choice but those that the code keeps, too, no token that something else
// has written, and no way on that belongs to another part of the pattern.
#pragma once

#include "regexp/graph/instruction.h"

#include <span>
#include <vector>

/// The instructions after `run`, to the end of the pattern, when they take no choice but those in `kept` and nothing but
/// the run leads to them: where they fail the next end of the run is tried. Empty otherwise. Takes time in proportion
/// to the program, and to the square of the instructions that write tokens.
std::vector<const RE_Instruction*> ownRest(const RE_Program& program, const RE_Instruction& run,
                                           std::span<const RE_Instruction* const> kept);
