// The stages of compiling a pattern.
#pragma once

/// What a graph becomes while a pattern is compiled, in this order: as it was parsed, without nodes that do
/// nothing, with units joined, and with loops over one unit taken together and a start finder.
enum class RE_Stage { parsed, null_nodes, linear, dot_star };
