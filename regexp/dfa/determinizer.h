// Makes the automaton of a graph: a state for each list of threads that a search can come to.
#pragma once

#include "regexp/dfa/alphabet.h"
#include "regexp/dfa/dfa.h"
#include "regexp/dfa/sides.h"
#include "regexp/dfa/ways.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

class RE_Determinizer {
public:
    RE_Determinizer(const RE_Graph_Facts& facts, bool refusesEmpty);
    /// Null where there is none, or a large one only.
    std::unique_ptr<const RE_Dfa> run();

private:
    static constexpr std::size_t mostNodes = 2000;
    static constexpr std::size_t mostEntries = std::size_t{1} << 15;

    /// What begins at a place besides the threads that come to it: after them, as a search tries earlier
    /// starts first.
    enum class Begins : std::uint32_t { nothing, attempt, anyAttempt };
    using Threads = std::vector<std::uint32_t>;
    struct State {
        Begins begins = Begins::nothing;
        std::size_t side = 0;
        Threads threads{};  ///< by their numbers, in the order in which they are tried

        auto operator<=>(const State&) const = default;
    };

    bool add(Begins begins, RE_Dfa::Rows& starts);
    bool fits() const;
    void addRow(std::size_t state);
    RE_Dfa::Entry entry(const State& from, std::size_t letter);
    std::uint32_t numberOf(State state);
    std::uint32_t numberOf(const RE_Thread& thread);
    void writeLetters();
    void writeShuffles();
    void writeStays();
    void writeStay(std::size_t state);

    std::unique_ptr<RE_Dfa> dfa;
    RE_Alphabet alphabet;
    std::unique_ptr<RE_Unit_Sides> sides;
    std::unique_ptr<RE_Ways> ways;
    std::map<RE_Thread, std::uint32_t> threadNumbers;
    std::vector<RE_Thread> threads;
    std::map<State, std::uint32_t> stateNumbers;
    std::vector<const State*> states;
};
