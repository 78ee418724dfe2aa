// A walk over a graph: every node once, in the order in which it is first met.
//
// Passes rely on that order: each node but the root comes after some node that leads to it, and the order
// depends on nothing but the graph.
#pragma once

#include "regexp/base/scratch_memory.h"
#include "regexp/graph/node.h"

#include <cstdint>
#include <vector>

/// Collects all nodes that can be reached from a first one, without recursion. A walk marks the nodes by its
/// number, so none is made while the graph is searched. Used for one compilation; lists are reused from walk
/// to walk.
class CORVANE_REGEXP_EXPORT RE_Collection {
public:
    using Nodes = RE_Scratch_List<RE_Node*>;

    explicit RE_Collection(RE_Scratch_Memory* memory) : found(memory) {}
    RE_Collection(const RE_Collection&) = delete;
    RE_Collection& operator=(const RE_Collection&) = delete;

    /// Walks the whole graph. Marks as `sharedTarget` every node that is met more than once. No node bears the number.
    void walk(RE_Node* root, std::uint32_t number);
    /// The same, and makes each link on the way lead past nodes that do nothing. The root does something.
    /// Nodes that were passed over are not collected.
    void walkPastSkippable(RE_Node* root, std::uint32_t number);
    /// For so many nodes at the most.
    void reserve(std::size_t nodes) { found.reserve(nodes); }
    /// Takes a node that leads to all the others.
    void addFront(RE_Node* node) { found.push_back(node); }

    /// The nodes of a walk that is over, also of a graph that is finished. The marks are removed again. Not
    /// while the graph is searched by anybody.
    static std::vector<RE_Node*, RE_Allocator<RE_Node*>> reachable(RE_Node* root);

    const Nodes& nodes() const { return found; }

private:
    /// Null is ignored. The first link to a node clears what an earlier walk has found about `sharedTarget`;
    /// the second one sets it.
    void add(RE_Node* node, std::uint32_t number) {
        if (node == nullptr) {
            return;
        }
        const bool isNew = node->walk != number;
        node->sharedTarget = !isNew;
        if (isNew) {
            node->walk = number;
            found.push_back(node);
        }
    }

    Nodes found;
};
