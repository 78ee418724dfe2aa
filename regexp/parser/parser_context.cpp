#include "regexp/parser/parser_context.h"

#include "regexp/nodes/node.h"

#include <algorithm>

RE_ParserContext::RE_ParserContext(RE_Context* host, RE_Node* outerNode, RE_Flags patternFlags)
    : context(host), outer(outerNode), flags(patternFlags), facts(new RE_Graph_Facts) {}

RE_ParserContext::~RE_ParserContext() = default;

std::size_t RE_ParserContext::handOver(const std::vector<RE_Node*, RE_Allocator<RE_Node*>>& kept) {
    for (RE_Node* node : kept) {
        node->visited = true;
    }
    std::erase_if(facts->nodes, [](RE_Node* node) {
        if (node->visited) {
            node->visited = false;
            return false;
        }
        delete node;
        return true;
    });
    if (renumbers) {
        std::ranges::sort(facts->nodes, {}, &RE_Node::nodeId);
    }
    return facts->nodes.size();
}
