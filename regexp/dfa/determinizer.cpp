// Makes the automaton of a graph: a state for each list of threads that a search can reach.
//
// A list is in the order in which the match loop would try its threads, and ends with the first that has
// reached the end of the pattern: what the loop would try after a success is not part of a state. That is why
// the automaton finds the match of the loop, and not the longest. So this is the subset construction, with
// lists in place of sets; and it writes the tables that are made from its states.
#include "regexp/base/compile_meter.h"
#include "regexp/dfa/alphabet.h"
#include "regexp/dfa/dfa.h"
#include "regexp/dfa/ways.h"
#include "regexp/graph/graph_facts.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

/// Used once, on one thread, while other threads may search with the pattern: the graph is only read.
class RE_Determinizer {
public:
    /// Learns the letters and sides of the graph, which must outlive this. A graph that is too large, or that
    /// includes texts, is not looked at.
    RE_Determinizer(const RE_Graph_Facts& facts, RE_Compile_Meter& workMeter);
    /// Null where there is no automaton, or only a large one.
    std::unique_ptr<const RE_Dfa> run();

private:
    // Bounds of effort and size. The table has to stay in a near cache, or backtracking would be as fast: so many
    // entries are 128 KiB.
    static constexpr std::size_t mostNodes = 2000;
    static constexpr std::uint64_t workOfPage = 4;    // of its 256 letters
    static constexpr std::uint64_t workOfStay = 128;  // of a set of units and a scan for it
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

        /// Not by `<=>`, with which libstdc++ 12 compares only the first bytes of lists of unsigned numbers on big-endian
        /// machines.
        bool operator<(const State& other) const {
            if (begins != other.begins || side != other.side) {
                return std::tie(begins, side) < std::tie(other.begins, other.side);
            }
            return std::ranges::lexicographical_compare(threads, other.threads);
        }
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

    RE_Compile_Meter& meter;
    std::unique_ptr<RE_Dfa> dfa;
    RE_Alphabet alphabet;
    std::unique_ptr<RE_Unit_Sides> sides;
    std::unique_ptr<RE_Ways> ways;
    std::map<RE_Thread, std::uint32_t> threadNumbers;
    std::vector<RE_Thread> threads;
    std::map<State, std::uint32_t> stateNumbers;
    std::vector<const State*> states;  // by number; they lie in the map, whose nodes do not move
};

const RE_Dfa* RE_Dfa::obtain(const RE_Graph_Facts& facts, RE_Compile_Monitor* monitor) {
    RE_Speed_Ups& speedUps = facts.speedUps;
    return speedUps.obtain(speedUps.dfa, monitor, [&facts](RE_Making& making) {
        return RE_Determinizer(facts, making.meter).run();
    });
}

// Without `ways` there is no automaton. Sides split the alphabet further, so they come after it.
RE_Determinizer::RE_Determinizer(const RE_Graph_Facts& facts, RE_Compile_Meter& workMeter)
    : meter(workMeter), dfa(new RE_Dfa) {
    if (facts.nodes.size() > mostNodes || facts.hasDynamicNodes) {
        return;
    }
    alphabet.learn(facts, meter);
    if (alphabet.isComplete()) {
        sides = std::make_unique<RE_Unit_Sides>(facts, alphabet, meter);
    }
    if (sides != nullptr && sides->isComplete()) {
        ways = std::make_unique<RE_Ways>(facts, alphabet, *sides, facts.refusesEmpty, meter);
    }
}

// The first state is the dead one. The states of attempts come before those of searches, so that the latter
// can be cut off again where they are too many.
std::unique_ptr<const RE_Dfa> RE_Determinizer::run() {
    if (ways == nullptr || !alphabet.isComplete()) {
        return nullptr;
    }
    dfa->rowLength = alphabet.size() + 1;
    numberOf(State{});
    if (!add(Begins::attempt, dfa->attemptRows)) {
        return nullptr;
    }
    dfa->ambiguous = ways->areAmbiguous();
    const std::size_t attempts = states.size();
    if (!add(Begins::anyAttempt, dfa->searchRows)) {
        dfa->searchRows.clear();
        dfa->table.resize(attempts * dfa->rowLength);
    }
    writeLetters();
    writeShuffles();
    writeStays();
    return std::move(dfa);
}

// A state for each side begins; each row that is added may bring new states, which get rows in turn.
bool RE_Determinizer::add(Begins begins, RE_Dfa::Rows& starts) {
    for (std::size_t side = 0; side < sides->count(); ++side) {
        starts.push_back(static_cast<RE_Dfa::Entry>(numberOf({begins, side}) * dfa->rowLength));
    }
    for (std::size_t state = dfa->stateCount(); state < states.size() && fits(); ++state) {
        addRow(state);
    }
    return fits();
}

// Tested after each row: what exceeds the bounds by then is one row's worth of states.
bool RE_Determinizer::fits() const {
    return ways->isPossible() && states.size() * dfa->rowLength <= mostEntries;
}

// A copy: adding states may move the list, and `entry` adds some.
void RE_Determinizer::addRow(std::size_t state) {
    const State from = *states[state];
    for (std::size_t letter = 0; letter < dfa->rowLength; ++letter) {
        dfa->table.push_back(entry(from, letter));
    }
}

// Follows the threads in their order until one matches: those after it are never tried. Where attempts begin
// everywhere, the first match ends the search, as there is nothing more to know.
RE_Dfa::Entry RE_Determinizer::entry(const State& from, std::size_t letter) {
    meter.spend(1 + from.threads.size());
    std::vector<RE_Thread> following;
    ways->begin(from.side, letter, following);
    bool matches = std::ranges::any_of(
        from.threads, [this](std::uint32_t number) { return ways->follow(threads[number]); });
    matches = matches || (from.begins != Begins::nothing && ways->followStart());
    const RE_Dfa::Entry accepts = matches ? RE_Dfa::accepts : 0;
    const bool keepsBeginning = from.begins == Begins::anyAttempt;
    if (letter == ways->atEnd() || (matches && keepsBeginning)) {
        return accepts | RE_Dfa::dead;
    }
    State next{keepsBeginning ? Begins::anyAttempt : Begins::nothing, sides->of(letter)};
    for (const RE_Thread& thread : following) {
        next.threads.push_back(numberOf(thread));
    }
    return accepts | static_cast<RE_Dfa::Entry>(numberOf(std::move(next)) * dfa->rowLength);
}

// All states that have no thread left and begin nothing are one, whatever unit was read last: their side no
// longer matters, and they lead to each other only.
std::uint32_t RE_Determinizer::numberOf(State state) {
    if (state.begins == Begins::nothing && state.threads.empty()) {
        state.side = 0;
    }
    const auto [known, isNew] =
        stateNumbers.try_emplace(std::move(state), static_cast<std::uint32_t>(states.size()));
    if (isNew) {
        states.push_back(&known->first);
    }
    return known->second;
}

std::uint32_t RE_Determinizer::numberOf(const RE_Thread& thread) {
    const auto [known, isNew] = threadNumbers.try_emplace(thread, static_cast<std::uint32_t>(threads.size()));
    if (isNew) {
        threads.push_back(thread);
    }
    return known->second;
}

// Most of the 256 pages are equal: few patterns tell units apart in more than a few of them.
void RE_Determinizer::writeLetters() {
    using Page = std::array<std::uint8_t, RE_Dfa::pageUnits>;
    std::map<Page, std::size_t> pages;
    for (std::size_t page = 0; page < dfa->pageStart.size(); ++page) {
        meter.spend(workOfPage);
        Page letters;
        for (std::size_t i = 0; i < letters.size(); ++i) {
            const auto unit = static_cast<char16_t>(page * RE_Dfa::pageUnits + i);
            letters[i] = static_cast<std::uint8_t>(alphabet.letterOf(unit));
        }
        const auto [known, isNew] = pages.try_emplace(letters, dfa->letters.size());
        if (isNew) {
            dfa->letters.insert(dfa->letters.end(), letters.begin(), letters.end());
        }
        dfa->pageStart[page] = static_cast<std::uint16_t>(known->second);
    }
    for (std::size_t letter = 0; letter < alphabet.size(); ++letter) {
        dfa->sides.push_back(static_cast<std::uint8_t>(sides->of(letter)));
    }
}

// Only for automata whose states fit into one vector, one byte a state. Units at or above 256 have no row:
// the table reads them.
void RE_Determinizer::writeShuffles() {
    using Table = RE_Shuffle_Table;
    const std::size_t count = dfa->stateCount();
    if (count > Table::mostStates) {
        return;
    }
    Table& table = dfa->shuffles;
    table.rows.resize(alphabet.size());
    for (std::size_t letter = 0; letter < alphabet.size(); ++letter) {
        for (std::size_t state = 0; state < count; ++state) {
            const RE_Dfa::Entry to = dfa->table[state * dfa->rowLength + letter];
            const std::size_t next = (to & ~RE_Dfa::accepts) / dfa->rowLength;
            table.rows[letter][state] =
                static_cast<std::uint8_t>(next | ((to & RE_Dfa::accepts) != 0 ? Table::accepts : 0));
        }
    }
    for (std::size_t unit = 0; unit < table.rowOf.size(); ++unit) {
        table.rowOf[unit] =
            static_cast<std::uint16_t>(alphabet.letterOf(static_cast<char16_t>(unit)) * sizeof(Table::Row));
    }
}

// A set takes some kilobytes: where there are many states only the first ones, which are those near the
// start, have theirs.
void RE_Determinizer::writeStays() {
    constexpr std::size_t most = 16;
    dfa->stays.resize(dfa->stateCount());
    for (std::size_t state = 1; state < std::min(dfa->stays.size(), most); ++state) {
        meter.spend(workOfStay);
        writeStay(state);
    }
}

void RE_Determinizer::writeStay(std::size_t state) {
    const std::size_t row = state * dfa->rowLength;
    RE_Letters staying;
    RE_Letters matching;
    for (std::size_t letter = 0; letter < alphabet.size(); ++letter) {
        const RE_Dfa::Entry to = dfa->table[row + letter];
        staying[letter] = (to & ~RE_Dfa::accepts) == row;
        matching[letter] = to == (row | RE_Dfa::accepts);
    }
    if (staying.any() && (matching.none() || matching == staying)) {
        dfa->stays[state].reset(new RE_Dfa::Stay(alphabet.unitsOf(staying), matching.any()));
    }
}
