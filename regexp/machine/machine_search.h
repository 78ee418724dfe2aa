// A search by machine code.
#pragma once

#include <cstddef>

struct RE_Graph_Facts;
class RE_Search_Info;
class RE_Node;

/// Tries start after start from `p` to `last`. The graph must have machine code. Puts the match into the state and
/// its length, in units, into `length`.
bool findByMachineCode(const RE_Graph_Facts& facts, const RE_Node* root, const char16_t* p, const char16_t* last,
                       RE_Search_Info& info, std::size_t& length);
