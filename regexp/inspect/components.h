// The loops of an automaton: which of its states can reach each other.
#pragma once

#include "regexp/inspect/automaton.h"

#include <cstddef>
#include <vector>

/// The strongly connected components of the states for which `admitted` is set.
class RE_Components {
public:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    RE_Components(const std::vector<RE_Automaton_State>& all, std::vector<bool> admitted);

    /// The number of the component of a state that lies on a loop; `none` for other states.
    std::size_t of(std::size_t state) const { return component[state]; }

private:
    void finishFrom(std::size_t root, std::vector<bool>& unseen);
    void gather(std::size_t root);

    const std::vector<RE_Automaton_State>& states;
    std::vector<bool> open;
    std::vector<std::size_t> component;
    std::vector<std::vector<std::size_t>> backward;
    std::vector<std::size_t> finished;
};
