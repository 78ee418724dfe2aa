// A walk over a graph: every node once, in the order in which it is first met.
#pragma once

#include "regexp/nodes/node.h"

#include <vector>

/// Collects all nodes that can be reached from a first one, without recursion. While it lives it uses the
/// nodes' `visited` marks, so only one may exist for a graph at a time, and none while the graph is searched.
class RE_Collection {
public:
    using Nodes = std::vector<RE_Node*, RE_Allocator<RE_Node*>>;

    /// Walks the whole graph. Marks as `sharedTarget` every node that is met more than once.
    explicit RE_Collection(RE_Node* root);
    ~RE_Collection();
    RE_Collection(const RE_Collection&) = delete;
    RE_Collection& operator=(const RE_Collection&) = delete;

    /// The nodes of a walk that is over.
    static Nodes reachable(RE_Node* root) {
        const RE_Collection walk(root);  // keeps its list until the marks are taken back
        return walk.found;
    }

    /// Adds one node (null is ignored); called back by the nodes.
    void add(RE_Node* node);

    const Nodes& nodes() const { return found; }

private:
    static constexpr std::size_t usualNodes = 32;

    Nodes found;
};
