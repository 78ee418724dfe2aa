// The loops of an automaton: which of its states can reach each other.
//
// Two states are on a common loop exactly if they have the same component. This is what growth.cpp asks of
// two states before it looks for a text that leads around.
#pragma once

#include "regexp/inspect/automaton.h"

#include <cstddef>
#include <vector>

/// The strongly connected components of the states for which `admitted` is set. Refers to `all`, which has to
/// outlive it and must not change.
class RE_Components {
public:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    RE_Components(const std::vector<RE_Automaton_State>& all, std::vector<bool> admitted);

    /// The component of a state that lies on a loop, named by one of its states; `none` for states on no loop
    /// and for those that are not admitted.
    std::size_t of(std::size_t state) const { return component[state]; }

private:
    void finishFrom(std::size_t root, std::vector<bool>& unseen);
    void gather(std::size_t root);

    const std::vector<RE_Automaton_State>& states;
    // Admitted and not gathered yet.
    std::vector<bool> open;
    std::vector<std::size_t> component;
    // The sources of the edges into a state, both ends admitted. An edge that is there twice is listed twice.
    std::vector<std::vector<std::size_t>> backward;
    // Admitted states in the order in which the first walk left them.
    std::vector<std::size_t> finished;
};
