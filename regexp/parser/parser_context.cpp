#include "regexp/parser/parser_context.h"

#include "regexp/nodes/collection.h"

#include <algorithm>

RE_ParserContext::RE_ParserContext(RE_Context* host, RE_Node* outerNode, RE_Flags patternFlags)
    : context(host), outer(outerNode), flags(patternFlags), facts(new RE_Graph_Facts) {}

RE_ParserContext::~RE_ParserContext() {
    for (RE_Node* node : made) {
        if (node != nullptr) {
            node->~RE_Node();
        }
    }
}

std::size_t RE_ParserContext::handOver(RE_Node* root) {
    const RE_Collection kept(root, &scratch);
    facts->nodes.reserve(kept.nodes().size());
    for (RE_Node* node : made) {
        if (node->visited) {
            facts->nodes.push_back(node);
            node->initSeek();
        } else {
            node->~RE_Node();
        }
    }
    made.clear();
    facts->store.keepChunksOf(facts->nodes);
    if (renumbers) {
        std::ranges::sort(facts->nodes, {}, &RE_Node::nodeId);
    }
    return facts->nodes.size();
}
