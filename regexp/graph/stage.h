// The stages of compiling a pattern, and how the graph of each is shown.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

/// What a graph becomes while a pattern is compiled, in this order: as it was parsed, without nodes that do
/// nothing, with units joined, and with loops over one unit taken together and a start finder.
enum class RE_Stage { parsed, null_nodes, linear, dot_star };

/// Further attributes of a node, by its number, as they stand in the graph language: `color=red`, or nothing.
using RE_Graph_Attributes = std::function<std::string(std::uint64_t nodeId)>;
