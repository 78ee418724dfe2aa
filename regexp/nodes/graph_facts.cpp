// Where facts end: here the classes are complete that they own by pointers.
#include "regexp/graph/graph_facts.h"

#include "regexp/graph/node.h"
#include "regexp/nodes/literal_stretches.h"

RE_Graph_Facts::RE_Graph_Facts() = default;

RE_Graph_Facts::~RE_Graph_Facts() {
    // Nodes are in memory of the store, which goes by itself: only their destructors are called.
    for (RE_Node* node : nodes) {
        node->~RE_Node();
    }
}
