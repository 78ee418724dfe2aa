// What follows a run of which shorter or longer ones may have to be tried, where that is all that has to be
// tried again.
#pragma once

#include "regexp/graph/instruction.h"

#include <vector>

/// The instructions behind `run`, to the end of the pattern, when they take no choice and nothing but the run
/// leads to them: where they fail it is to the run to go on. Empty otherwise.
std::vector<const RE_Instruction*> ownRest(const RE_Program& program, const RE_Instruction& run);
