#include "regexp/inspect/components.h"

#include <algorithm>
#include <utility>

RE_Components::RE_Components(const std::vector<RE_Automaton_State>& all, std::vector<bool> admitted)
    : states(all), open(std::move(admitted)), component(all.size(), none), backward(all.size()) {
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
    for (std::size_t i = finished.size(); i-- > 0;) {
        gather(finished[i]);
    }
}

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
        auto& [state, followed] = path.back();
        if (followed == states[state].edges.size()) {
            finished.push_back(state);
            path.pop_back();
        } else {
            enter(states[state].edges[followed++].target);
        }
    }
}

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
    const bool loops = members.size() > 1 || std::ranges::count(backward[root], root) != 0;
    for (const std::size_t member : members) {
        component[member] = loops ? root : none;
    }
}
