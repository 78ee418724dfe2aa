// One search of a finished graph: from start position to start position, each attempt run by the fastest means that
// the search allows.
#pragma once

#include <cstddef>

class RE_Search_Info;
struct RE_Graph_Facts;

/// Makes a state ready for searches with the pattern. With `asks` attempts may ask the automaton, as those may that nobody
/// watches or limits.
void makeReady(RE_Search_Info& info, const RE_Graph_Facts& facts, bool asks);

/// Finds the leftmost match that starts at or after index `offset`, and not after index `latestStart`. True: `info.matchStart` is where it starts, `length`
/// its length in code units. The state must have been prepared for the graph.
bool findMatch(const RE_Graph_Facts& facts, RE_Search_Info& info, std::size_t offset, std::size_t& length,
               std::size_t latestStart = static_cast<std::size_t>(-1));

/// The same of a single attempt, at `p`.
bool attemptAt(const RE_Graph_Facts& facts, RE_Search_Info& info, const char16_t* p, std::size_t& length);
