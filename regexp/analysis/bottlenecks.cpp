#include "regexp/analysis/bottlenecks.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

constexpr std::size_t usualNodes = 32;

class Bottlenecks {
public:
    explicit Bottlenecks(RE_Graph_Context& parserContext)
        : context(parserContext), reached(&parserContext.scratch), way(&parserContext.scratch) {}

    void keep(RE_Scratch_List<RE_Node*>& nodes, RE_Node* root) {
        if (!findWay(root)) {
            return;
        }
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
    struct Reached {
        RE_Node* node;
        std::size_t from;
    };
    static constexpr std::uint32_t besideWay = 0;

    /// Some way that leads there.
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
            if (!forEachStep(*reached[i].node, [&](RE_Node* target) { reach(target, i); })) {
                wayEnd = i;
                return true;
            }
        }
        return false;
    }

    /// Whether one node led to the next and none to any others.
    bool isOnlyWay() const {
        std::size_t node = 1;
        while (node < reached.size() && reached[node].from + 1 == node) {
            ++node;
        }
        return node == reached.size() && wayEnd + 1 == node;
    }

    void noteWay() {
        way.reserve(usualNodes);
        for (std::size_t at = wayEnd; at != 0; at = reached[at].from) {
            way.push_back(reached[at].node);
        }
        way.push_back(reached[0].node);
        std::reverse(way.begin(), way.end());
    }

    // Another way past a node of the first one leaves that one before the node and comes back to it behind the node.
    /// Leaves the bottlenecks at the front of the way, and returns how many there are.
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

    void exploreFrom(RE_Node* node) {
        reached.clear();
        reached.push_back({node, 0});
        while (!reached.empty()) {
            RE_Node* const at = reached.back().node;
            reached.pop_back();
            if (!forEachStep(*at, [this](RE_Node* target) { meet(target); })) {
                furthest = way.size();
            }
        }
    }

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
    std::size_t furthest =
        0;  ///< on the way, that can be come to without what lies behind where the exploration is
};

}  // namespace

void keepBottlenecks(RE_Graph_Context& context, RE_Node* root, RE_Scratch_List<RE_Node*>& nodes) {
    Bottlenecks(context).keep(nodes, root);
}
