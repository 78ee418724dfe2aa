// Ownership of the nodes during a compilation, and the walks over the unfinished graph.
#include "regexp/nodes/graph_context.h"

#include "regexp/base/within_size.h"
#include "regexp/nodes/seeker.h"

#include <algorithm>
#include <span>

namespace {

// A walk passes so many nodes in the time of one unit of work.
constexpr std::size_t nodesAWork = 8;

// Sorts by node number. The numbers mostly lie close together; then each has a place of its own and sorting
// is linear. Relies on distinct numbers: of two nodes with the same one, the places would keep the later.
void sortByNumber(std::span<RE_Node*> nodes, std::uint64_t lastNumber, RE_Scratch_Memory* memory) {
    // Numbers that are sparser than this are sorted by comparisons.
    static constexpr std::size_t maximumPlacesPerNode = 16;
    const std::uint64_t first = (*std::ranges::min_element(nodes, {}, &RE_Node::nodeId))->nodeId;
    const std::uint64_t count = lastNumber - first + 1;
    if (count / maximumPlacesPerNode > nodes.size()) {
        std::ranges::sort(nodes, {}, &RE_Node::nodeId);
        return;
    }
    RE_Scratch_List<RE_Node*> places(withinSize(count), nullptr, memory);
    for (RE_Node* node : nodes) {
        places[withinSize(node->nodeId - first)] = node;
    }
    std::ranges::copy_if(places, nodes.begin(), [](const RE_Node* node) { return node != nullptr; });
}

}  // namespace

RE_Graph_Context::RE_Graph_Context(RE_Context* host, RE_Node* outerNode, RE_Flags patternFlags,
                                   RE_Compile_Meter* outerMeter)
    : meter(outerMeter != nullptr ? *outerMeter : unbounded),
      context(host),
      outer(outerNode),
      flags(patternFlags),
      facts(new RE_Graph_Facts) {}

RE_Graph_Context::~RE_Graph_Context() {
    for (RE_Node* node : made) {
        if (node != nullptr) {
            node->~RE_Node();
        }
    }
}

// A start finder in front of a root that has been walked from leads to nothing new: no walk is taken for it.
const RE_Collection::Nodes& RE_Graph_Context::nodes(RE_Node* root) {
    if (walkedFrom == nullptr || (walkedFrom != root && nodeAs<RE_Seeker>(root) == nullptr)) {
        reached.reserve(made.size());
        reached.walk(root, nextWalk());
    } else if (walkedFrom != root) {
        reached.addFront(root);
    }
    walkedFrom = root;
    meter.spend(1 + reached.nodes().size() / nodesAWork);
    return reached.nodes();
}

RE_Node* RE_Graph_Context::leadPastSkippable(RE_Node* root) {
    walkedFrom = throughSkippable(root);
    reached.reserve(made.size());
    reached.walkPastSkippable(walkedFrom, nextWalk());
    meter.spend(1 + reached.nodes().size() / nodesAWork);
    return walkedFrom;
}

// Nodes are kept in the order of their numbers, which is mostly that in which they were made, not in that of the walk.
std::size_t RE_Graph_Context::handOver(RE_Node* root) {
    const RE_Collection::Nodes& kept = nodes(root);
    meter.spend(1 + made.size() / nodesAWork);
    facts->nodes.reserve(kept.size());
    for (RE_Node* node : kept) {
        node->visited = true;
    }
    for (RE_Node* node : made) {
        if (node->visited) {
            node->visited = false;
            facts->nodes.push_back(node);
            node->initSeek();
        } else {
            node->~RE_Node();
        }
    }
    made.clear();
    // Chunks in which no node is left go back to the host.
    facts->store.keepChunksOf(facts->nodes);
    if (renumbers) {
        sortByNumber(facts->nodes, nodeCount, &scratch);
    }
    return facts->nodes.size();
}
