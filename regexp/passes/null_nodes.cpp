#include "regexp/passes/null_nodes.h"

#include "regexp/nodes/collection.h"

RE_Node* throughSkippable(RE_Node* node) {
    while (node != nullptr && node->isSkippable()) {
        node = node->next();
    }
    return node;
}

RE_Node* removeNullNodes(RE_ParserContext&, RE_Node* root) {
    const RE_Collection graph(root);
    // Last ones first: a long chain of empty nodes is then shortened from its end and never walked twice.
    for (auto node = graph.nodes().rbegin(); node != graph.nodes().rend(); ++node) {
        (*node)->bypassSkippable();
    }
    return throughSkippable(root);
}
