// The node graph as DOT text.
#include "regexp/graph_facts.h"
#include "regexp/nodes/collection.h"
#include "regexp/nodes/label_text.h"
#include "regexp/tree.h"

#include <string>

namespace {

const char* edgeStyle(RE_Link kind) {
    switch (kind) {
        case RE_Link::next:
            return "";
        case RE_Link::fail:
            return " [label=\"fail\", style=dashed]";
        case RE_Link::alternative:
            return " [label=\"Alt\", style=dotted]";
        case RE_Link::body:
            return " [label=\"body\", color=blue]";
        case RE_Link::item:
            return " [label=\"item\", color=blue]";
        case RE_Link::done:
            return " [label=\"Done\"]";
        case RE_Link::helper:
            return " [color=gray]";
    }
    return "";
}

struct Edge_Writer : RE_Link_Visitor {
    Edge_Writer(std::string& text, const RE_Node* node) : out(text), from(node) {}
    void link(RE_Node*& target, RE_Link kind) override {
        if (target != nullptr) {
            out += "  n" + std::to_string(from->nodeId) + " -> n" + std::to_string(target->nodeId) +
                   edgeStyle(kind) + ";\n";
        }
    }
    std::string& out;
    const RE_Node* from;
};

}  // namespace

void RE_Node::graph(std::string& out) {
    appendGraphNode(out, nodeId, label());
    Edge_Writer edges(out, this);
    visitLinks(edges);
}

std::string RE_Tree::graph() const {
    std::string out = "digraph regexp {\n";
    if (facts != nullptr) {
        for (RE_Node* node : facts->nodes) {
            node->graph(out);
        }
    }
    return out + "}\n";
}
