// The loops of an automaton by two walks in depth: the first follows the edges and lists the states as it
// leaves them, the second follows the edges backward from the state left last. What the second reaches from
// such a state, and has not gathered before, is the strongly connected component of that state.
//
// Linear in states and edges. Both walks keep their path in a vector, since an automaton of a long pattern is
// a chain as long as the pattern, and recursion would need as much native stack.
#include "regexp/inspect/components.h"

#include <algorithm>
#include <utility>

RE_Components::RE_Components(const std::vector<RE_Automaton_State>& all, std::vector<bool> admitted)
    : states(all), open(std::move(admitted)), component(all.size(), none), backward(all.size()) {
    // States that are not admitted are as good as seen: neither walk enters them.
    std::vector<bool> unseen = open;
    for (std::size_t from = 0; from < states.size(); ++from) {
        for (const RE_Automaton_Edge& edge : states[from].edges) {
            if (open[from] && open[edge.target]) {
                backward[edge.target].push_back(from);
            }
        }
    }
    for (std::size_t root = 0; root < states.size(); ++root) {
        finishFrom(root, unseen);
    }
    // Last left first: that state's component has no edge into it from one not gathered yet.
    for (std::size_t i = finished.size(); i-- > 0;) {
        gather(finished[i]);
    }
}

// Lists the states that can be reached from `root` in the order in which the walk leaves them.
void RE_Components::finishFrom(std::size_t root, std::vector<bool>& unseen) {
    std::vector<std::pair<std::size_t, std::size_t>> path;  // state, edges followed
    const auto enter = [&](std::size_t state) {
        if (unseen[state]) {
            unseen[state] = false;
            path.emplace_back(state, 0);
        }
    };
    enter(root);
    while (!path.empty()) {
        // `enter` may move the path's storage, so the reference is not used after it.
        auto& [state, followed] = path.back();
        if (followed == states[state].edges.size()) {
            finished.push_back(state);
            path.pop_back();
        } else {
            enter(states[state].edges[followed++].target);
        }
    }
}

// Collects what reaches `root` backward. `members` is both the result and the queue of the walk.
void RE_Components::gather(std::size_t root) {
    if (!open[root]) {
        return;
    }
    std::vector<std::size_t> members{root};
    open[root] = false;
    for (std::size_t i = 0; i < members.size(); ++i) {
        for (const std::size_t before : backward[members[i]]) {
            if (open[before]) {
                open[before] = false;
                members.push_back(before);
            }
        }
    }
    // A component of one state is a loop only if the state has an edge to itself.
    const bool loops = members.size() > 1 || std::ranges::count(backward[root], root) != 0;
    for (const std::size_t member : members) {
        component[member] = loops ? root : none;
    }
}
