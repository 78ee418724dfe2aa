#include "regexp/passes/null_nodes.h"

#include "regexp/nodes/collection.h"

RE_Node* removeNullNodes(RE_ParserContext&, RE_Node* root) {
    const RE_Collection graph(root);
    for (RE_Node* node : graph.nodes()) {
        node->bypassSkippable();
    }
    return throughSkippable(root);
}
