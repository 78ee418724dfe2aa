// The node graph as text in the graph language (DOT).
//
// For people and tools that draw. Nodes are named by their numbers, so a graph can be compared with a trace
// of a search.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/graph/node.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Further attributes of a node, by its number, as they stand in the graph language: `color=red`, or nothing.
struct RE_Graph_Attributes : std::function<std::string(std::uint64_t nodeId)> {
    using function::function;
};

/// Where nodes write themselves to. Nodes and links are kept apart: a link that is named inside a cluster
/// would draw both its ends into it.
struct CORVANE_REGEXP_EXPORT RE_Graph_Output {
    std::string nodes;
    std::string links;
    const RE_Graph_Attributes& attributes;

    /// Writes one node, with the attributes that the caller gives it, or one link.
    void addNode(const RE_Node* node);
    void addLink(const RE_Node* from, const RE_Node* to, RE_Link kind);
};

/// What a kind of link is called, in graphs and in traces. Every kind has a name and a look of its own.
CORVANE_REGEXP_EXPORT const char* linkName(RE_Link kind);

/// The whole text. Capture groups are drawn as clusters. Changes nothing in the nodes, so that graphs which
/// are searched meanwhile can be written.
std::string writeGraph(const std::vector<RE_Node*, RE_Allocator<RE_Node*>>& nodes, RE_Node* root,
                       const RE_Graph_Attributes& attributes);
