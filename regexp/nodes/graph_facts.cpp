#include "regexp/graph/graph_facts.h"

#include "regexp/graph/node.h"
#include "regexp/nodes/literal_stretches.h"

RE_Graph_Facts::RE_Graph_Facts() = default;

RE_Graph_Facts::~RE_Graph_Facts() {
    for (RE_Node* node : nodes) {
        node->~RE_Node();
    }
}
