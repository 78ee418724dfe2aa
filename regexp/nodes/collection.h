// A walk over a graph: every node once, in the order in which it is first met.
#pragma once

#include "regexp/nodes/node.h"
#include "regexp/scratch_memory.h"

#include <memory_resource>
#include <vector>

/// Collects all nodes that can be reached from a first one, without recursion. While it lives it uses the
/// nodes' `visited` marks, so only one may exist for a graph at a time, and none while the graph is searched.
class RE_Collection {
public:
    using Nodes = std::pmr::vector<RE_Node*>;

    /// Walks the whole graph. Marks as `sharedTarget` every node that is met more than once.
    RE_Collection(RE_Node* root, std::pmr::memory_resource* memory);
    ~RE_Collection();
    RE_Collection(const RE_Collection&) = delete;
    RE_Collection& operator=(const RE_Collection&) = delete;

    /// The nodes of a walk that is over.
    static std::vector<RE_Node*, RE_Allocator<RE_Node*>> reachable(RE_Node* root) {
        RE_Scratch_Memory scratch;
        const RE_Collection walk(root, &scratch);
        return {walk.found.begin(), walk.found.end()};
    }

    const Nodes& nodes() const { return found; }

private:
    static constexpr std::size_t usualNodes = 32;

    /// Null is ignored.
    void add(RE_Node* node) {
        if (node == nullptr) {
            return;
        }
        node->sharedTarget = node->visited;
        if (!node->visited) {
            node->visited = true;
            found.push_back(node);
        }
    }

    Nodes found;
};
