// A walk over a finished graph that gathers the greatest number of each kind.
//
// Classes are recognised by `dynamic_cast` here, as a survey is made once for each sub-pattern and some of these
// classes have no bit of their own.
#include "regexp/nodes/continued_graph.h"

#include "regexp/nodes/links.h"
#include "regexp/nodes/loop_pass.h"
#include "regexp/nodes/tokens.h"

#include <algorithm>
#include <unordered_set>

namespace {

/// One walk, without recursion: graphs are as deep as patterns.
class Survey {
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
    /// Every kind of node that holds a number of a search has a case here. Trap: a new kind that is not added
    /// would share its numbers with the sub-pattern.
    void note(const RE_Node& node) {
        RE_Sub_Pattern_Place& place = graph.place;
        place.nodeId = std::max(place.nodeId, node.nodeId);
        place.memoRow = std::max(place.memoRow, node.memoIndex + 1);
        for (const RE_Memo_Scope* scope = node.memoScope; scope != nullptr; scope = scope->parent) {
            if (scope->kind == RE_Memo_Scope::Kind::pass) {
                notePass(scope->index);
            }
        }
        if (const auto* const start = dynamic_cast<const RE_Start_Pass*>(&node)) {
            notePass(start->pass);
        } else if (const auto* const end = dynamic_cast<const RE_End_Pass*>(&node)) {
            notePass(end->pass);
        } else if (const auto* const token = dynamic_cast<const RE_Token*>(&node)) {
            noteToken(token->number, token->name);
        } else if (const auto* const reader = dynamic_cast<const RE_Token_Fail*>(&node)) {
            // A reader by name has no number that counts; its token is met by itself, if it is there at all.
            noteToken(reader->name == nullptr ? reader->number : 0, nullptr);
        }
    }
    /// Numbers become counts, so that the first free number is what is kept.
    void notePass(std::size_t pass) {
        graph.place.passRegister = std::max(graph.place.passRegister, pass + 1);
    }
    void noteToken(std::size_t number, const char16_t* name) {
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
