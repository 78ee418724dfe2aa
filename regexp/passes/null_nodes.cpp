#include "regexp/passes/null_nodes.h"

#include "regexp/nodes/collection.h"

RE_Node* removeNullNodes(RE_ParserContext& context, RE_Node* root) {
    if (!context.hasSkippable) {
        return root;
    }
    context.hasSkippable = false;
    const RE_Collection graph(root);
    for (RE_Node* node : graph.nodes()) {
        node->bypassSkippable();
    }
    return throughSkippable(root);
}
