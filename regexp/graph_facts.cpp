#include "regexp/graph_facts.h"

#include "regexp/nodes/node.h"

RE_Graph_Facts::~RE_Graph_Facts() {
    for (RE_Node* node : nodes) {
        node->~RE_Node();
    }
}
