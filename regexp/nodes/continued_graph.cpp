// A walk over a finished graph that gathers the greatest number of each kind.
#include "regexp/nodes/continued_graph.h"

#include "regexp/nodes/links.h"

#include <algorithm>
#include <unordered_set>

namespace {

/// One walk, without recursion: graphs are as deep as patterns.
class Survey : RE_Number_Visitor {
public:
    void add(RE_Node* node) {
        if (node != nullptr && known.insert(node).second) {
            pending.push_back(node);
        }
    }

    RE_Continued_Graph run() {
        while (!pending.empty()) {
            RE_Node& node = *pending.back();
            pending.pop_back();
            note(node);
            forEachLink(node, [this](RE_Node* target, RE_Link) { add(target); });
            add(node.next());  // the end of a sub-pattern leads into a graph of its own
        }
        return std::move(graph);
    }

private:
    void note(const RE_Node& node) {
        RE_Sub_Pattern_Place& place = graph.place;
        place.nodeId = std::max(place.nodeId, node.nodeId);
        place.memoRow = std::max(place.memoRow, node.memoIndex + 1);
        for (const RE_Memo_Scope* scope = node.memoScope; scope != nullptr; scope = scope->parent) {
            if (scope->kind == RE_Memo_Scope::Kind::pass) {
                pass(scope->index);
            }
        }
        node.visitNumbers(*this);
    }
    /// Numbers become counts, so that the first free number is what is kept.
    void pass(std::size_t number) override {
        graph.place.passRegister = std::max(graph.place.passRegister, number + 1);
    }
    void token(std::size_t number, const char16_t* name) override {
        graph.tokenCount = std::max(graph.tokenCount, number + 1);
        if (name != nullptr) {
            graph.tokenNames.resize(std::max(graph.tokenNames.size(), number + 1));
            graph.tokenNames[number] = name;
        }
    }

    RE_Continued_Graph graph;
    std::unordered_set<const RE_Node*> known;
    std::vector<RE_Node*> pending;
};

}  // namespace

RE_Continued_Graph RE_Continued_Graph::from(RE_Node* entry) {
    Survey survey;
    survey.add(entry);
    return survey.run();
}
