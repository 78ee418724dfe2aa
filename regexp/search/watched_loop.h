// The match loop of searches that are observed. Chosen once for each attempt (match_loop.cpp); it never
// changes to the other loop in the middle of one.
#pragma once

#include <cstddef>

class RE_Node;
class RE_Search_Info;

/// `runMatchLoop` for the observer of the search, which is not null. Every node is visited by its virtual
/// functions. Matches from `pos` on and sets it to the end of the match; false when there is none or the
/// search was broken off.
bool runWatchedLoop(RE_Search_Info& info, const RE_Node* node, std::size_t& pos);
