// Where facts end: here the classes are complete that they own by pointers.
#include "regexp/graph/graph_facts.h"

#include "regexp/graph/node.h"
#include "regexp/nodes/literal_stretches.h"

#include <atomic>

RE_Graph_Facts::RE_Graph_Facts() = default;

std::uint64_t RE_Graph_Facts::nextSerial() {
    static constinit std::atomic<std::uint64_t> last{0};
    return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

RE_Graph_Facts::~RE_Graph_Facts() {
    // Nodes are in memory of the store, which goes by itself: only their destructors are called.
    for (RE_Node* node : nodes) {
        node->~RE_Node();
    }
}
