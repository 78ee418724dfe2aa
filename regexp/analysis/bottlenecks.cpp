// Finds bottlenecks with two walks, in place of a tree of dominators.
//
// The first walk finds some way from the root to the end. Bottlenecks can only be on it, as this way passes
// them, too. The second one follows the way node by node and looks which nodes of it can be reached without
// those in between. Node i of the way is a bottleneck when no detour that leaves the way before i returns to
// it after i.
//
// Walks mark nodes by their number and keep lists: nothing is recursive, and each node is gone through once a
// walk.
#include "regexp/analysis/bottlenecks.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

// Lists start with room for so many, which most patterns do not exceed.
constexpr std::size_t usualNodes = 32;

/// One computation. Used once.
class Bottlenecks {
public:
    explicit Bottlenecks(RE_Graph_Context& parserContext)
        : context(parserContext), reached(&parserContext.scratch), way(&parserContext.scratch) {}

    void keep(RE_Scratch_List<RE_Node*>& nodes, RE_Node* root) {
        if (!findWay(root)) {
            return;
        }
        // Most patterns with a required literal have no branches at all: each node on the way is a
        // bottleneck.
        if (isOnlyWay()) {
            std::erase_if(nodes, [this](const RE_Node* node) { return node->walk != number; });
            return;
        }
        noteWay();
        const std::size_t count = narrow();
        const auto last = way.begin() + static_cast<std::ptrdiff_t>(count);
        std::erase_if(nodes, [&](RE_Node* node) { return std::find(way.begin(), last, node) == last; });
    }

private:
    /// A node with the index of the one that it was reached from.
    struct Reached {
        RE_Node* node;
        std::size_t from;
    };
    /// The note in a node that was explored and is not on the way; nodes on the way note their index and one
    /// more.
    static constexpr std::uint32_t besideWay = 0;

    /// Walks until a node at which `forEachStep` says false. False when there is none. The way to it can be
    /// read off `reached`, backwards.
    bool findWay(RE_Node* root) {
        number = context.nextWalk();
        const auto reach = [&](RE_Node* node, std::size_t from) {
            if (node != nullptr && node->walk != number) {
                node->walk = number;
                reached.push_back({node, from});
            }
        };
        reached.reserve(usualNodes);
        reach(root, 0);
        for (std::size_t i = 0; i < reached.size(); ++i) {
            context.meter.spend();
            if (!forEachStep(*reached[i].node, [&](RE_Node* target) { reach(target, i); })) {
                wayEnd = i;
                return true;
            }
        }
        return false;
    }

    /// Whether each node led to the next one and to no other.
    bool isOnlyWay() const {
        std::size_t node = 1;
        while (node < reached.size() && reached[node].from + 1 == node) {
            ++node;
        }
        return node == reached.size() && wayEnd + 1 == node;
    }

    /// Reads the way off what was reached, and puts it in order.
    void noteWay() {
        way.reserve(usualNodes);
        for (std::size_t at = wayEnd; at != 0; at = reached[at].from) {
            way.push_back(reached[at].node);
        }
        way.push_back(reached[0].node);
        std::reverse(way.begin(), way.end());
    }

    /// Leaves the bottlenecks at the front of the way, and returns how many there are.
    ///
    /// `furthest` is the last index of the way that has been reached from the nodes before the current one.
    /// If it is the index of the current one, no detour led further: all ways pass here. The walk ends early
    /// when some detour has reached the end, since none of the other nodes can be a bottleneck then.
    std::size_t narrow() {
        number = context.nextWalk();
        for (std::size_t i = 0; i < way.size(); ++i) {
            way[i]->walk = number;
            way[i]->walkNote = static_cast<std::uint32_t>(i) + 1;
        }
        std::size_t count = 0;
        for (std::size_t i = 0; i < way.size() && furthest < way.size(); ++i) {
            RE_Node* const node = way[i];
            if (furthest == i) {
                way[count++] = node;
            }
            exploreFrom(node);
        }
        return count;
    }

    /// Follows all detours from a node of the way until they meet the way again. A node beside the way that
    /// an earlier exploration has met is not gone through again: how far it leads is in `furthest` already.
    void exploreFrom(RE_Node* node) {
        reached.clear();
        reached.push_back({node, 0});
        while (!reached.empty()) {
            RE_Node* const at = reached.back().node;
            reached.pop_back();
            context.meter.spend();
            if (!forEachStep(*at, [this](RE_Node* target) { meet(target); })) {
                furthest = way.size();
            }
        }
    }

    /// Takes a node that a detour, or the way itself, leads to.
    void meet(RE_Node* node) {
        if (node == nullptr) {
            return;
        }
        if (node->walk != number) {
            node->walk = number;
            node->walkNote = besideWay;
            reached.push_back({node, 0});
        } else if (node->walkNote != besideWay) {
            furthest = std::max<std::size_t>(furthest, node->walkNote - 1);
        }
    }

    RE_Graph_Context& context;
    RE_Scratch_List<Reached> reached;
    RE_Scratch_List<RE_Node*> way;
    std::uint32_t number = 0;
    std::size_t wayEnd = 0;  ///< where the way ends, in what was reached
    /// The last index of the way that can be reached without passing through the unexplored part before it.
    std::size_t furthest = 0;
};

}  // namespace

void keepBottlenecks(RE_Graph_Context& context, RE_Node* root, RE_Scratch_List<RE_Node*>& nodes) {
    Bottlenecks(context).keep(nodes, root);
}
