// Makes the automaton of a graph: a state for each list of threads that a search can reach.
//
// A list is in the order in which the match loop would try its threads, and ends with the first that has
// reached the end of the pattern: what the loop would try after a success is not part of a state. That is why
// the automaton finds the match of the loop, and not the longest.
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

/// Used once, while the pattern is compiled, and on one thread.
class RE_Determinizer {
public:
    /// Learns the letters and sides of the graph, which must outlive this. A graph that is too large, or that
    /// includes texts, is not looked at.
    explicit RE_Determinizer(const RE_Graph_Facts& facts);
    /// Null where there is no automaton, or only a large one.
    std::unique_ptr<const RE_Dfa> run();

private:
    // Bounds of effort and size. The table has to stay in a near cache, or backtracking would be as fast: so many
    // entries are 128 KiB.
    static constexpr std::size_t mostNodes = 2000;
    static constexpr std::size_t mostEntries = std::size_t{1} << 15;

    /// What begins at a place besides the threads that reach it: after them, as a search tries earlier starts
    /// first.
    enum class Begins : std::uint32_t { nothing, attempt, anyAttempt };
    using Threads = std::vector<std::uint32_t>;
    /// What decides about everything that follows: the threads, the side of the unit read last, and whether
    /// attempts begin.
    struct State {
        Begins begins = Begins::nothing;
        std::size_t side = 0;
        Threads threads{};  ///< by their numbers, in the order in which they are tried

        auto operator<=>(const State&) const = default;
    };

    /// Adds the states that a search can reach from its start. False when they are too many.
    bool add(Begins begins, RE_Dfa::Rows& starts);
    bool fits() const;
    void addRow(std::size_t state);
    /// The entry of a state and a letter.
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
    std::vector<const State*> states;  // by number; they lie in the map, whose nodes do not move
};
