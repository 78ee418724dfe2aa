#include "regexp/parser/parser_context.h"

#include "regexp/nodes/seeker.h"

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

const RE_Collection::Nodes& RE_ParserContext::nodes(RE_Node* root) {
    if (walkedFrom == nullptr || (walkedFrom != root && nodeAs<RE_Seeker>(root) == nullptr)) {
        reached.reserve(made.size());
        reached.walk(root, nextWalk());
    } else if (walkedFrom != root) {
        reached.addFront(root);
    }
    walkedFrom = root;
    return reached.nodes();
}

RE_Node* RE_ParserContext::leadPastSkippable(RE_Node* root) {
    walkedFrom = throughSkippable(root);
    reached.reserve(made.size());
    reached.walkPastSkippable(walkedFrom, nextWalk());
    return walkedFrom;
}

std::size_t RE_ParserContext::handOver(RE_Node* root) {
    const RE_Collection::Nodes& kept = nodes(root);
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
    facts->store.keepChunksOf(facts->nodes);
    if (renumbers) {
        std::ranges::sort(facts->nodes, {}, &RE_Node::nodeId);
    }
    return facts->nodes.size();
}
