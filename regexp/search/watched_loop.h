// The match loop of searches that are observed.
#pragma once

#include <cstddef>

class RE_Node;
class RE_Search_Info;

/// `runMatchLoop` for the observer of the search. Every node is visited by its virtual functions.
bool runWatchedLoop(RE_Search_Info& info, const RE_Node* node, std::size_t& pos);
