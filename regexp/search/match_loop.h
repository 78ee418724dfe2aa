// The loop that runs a graph over a subject.
#pragma once

#include <cstddef>

class RE_Node;
class RE_Search_Info;

/// Runs the graph from `node` at index `pos` (code units from the subject's first). True when an end without
/// a continuation was reached, with `pos` behind the match; false when no choice is left or the host asked to
/// stop. Closed bodies are run by the same loop: the native stack does not grow with pattern or subject.
bool runMatchLoop(RE_Search_Info& info, const RE_Node* node, std::size_t& pos);
