// Pictures of graphs, drawn by the program `dot` of Graphviz. It is run only for a picture; the text needs no
// program.
#pragma once

#include <string>

namespace tool {

// The graph as "svg" or "png"; "dot" is the text itself. Throws UsageError for any other format, and
// std::runtime_error when there is no `dot` or it fails.
std::string drawGraph(const std::string& text, const std::string& format);

}  // namespace tool
