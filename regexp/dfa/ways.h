// The ways of a graph from one unit to the next.
//
// A thread stands where a way through the graph has come to between two units. With the next unit known, and
// the one before, all that a node can ask is decided: anchors, loops that give nothing back, tests of one
// unit to either side. So a thread leads to threads behind that unit, in the order in which a search would
// try them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

class RE_Alphabet;
class RE_Compile_Meter;
class RE_Consume;
class RE_Node;
class RE_Unit_Sides;
struct RE_Graph_Facts;

struct RE_Thread {
    static constexpr std::size_t mostCounters = 4;
    using Counts = std::array<std::uint32_t, mostCounters>;

    const RE_Node* node = nullptr;
    std::uint32_t within = 0;  ///< units that the node has consumed so far
    Counts counts{};           ///< of the counted loops that the thread is in, else 0

    auto operator<=>(const RE_Thread&) const = default;
};

class RE_Ways {
public:
    using Letter = std::size_t;
    static constexpr std::size_t mostPasses = 32;

    /// All must outlive this. Alphabet and sides are those of the pattern.
    RE_Ways(const RE_Graph_Facts& graphFacts, const RE_Alphabet& letters, const RE_Unit_Sides& unitSides,
            bool refusesEmptyMatch, RE_Compile_Meter& workMeter);

    /// The most nodes that are visited, all ways together.
    static constexpr std::size_t mostVisits = std::size_t{1} << 16;

    /// False when something was met that cannot be decided by the units to both sides, and behind too many
    /// nodes.
    bool isPossible() const { return possible && visits <= mostVisits; }
    /// Whether two ways came to one place over the same units: then a search tries it twice, or much more
    /// often.
    bool areAmbiguous() const { return ambiguous; }
    /// Stands for the subject's end where the next unit is asked for.
    Letter atEnd() const;
    /// Begins the ways from a state on, over the next unit.
    void begin(std::size_t side, Letter next, std::vector<RE_Thread>& into);
    /// Follows one thread of the state. Threads behind the unit are added to those known already. True when
    /// the end of the pattern was reached before the unit: then no thread behind this one counts.
    bool follow(const RE_Thread& thread);
    /// The same from the pattern's beginning.
    bool followStart();

private:
    using Passes = std::array<bool, mostPasses>;
    struct Way {
        RE_Thread thread;
        Passes passes{};        ///< those that began since the last unit and have to consume
        bool consumes = false;  ///< is one to go over the unit, later than those found before
        auto operator<=>(const Way&) const = default;
    };

    bool run(const RE_Thread& thread);
    void go(const Way& way, const RE_Node* node);
    void goOver(const RE_Node* node, RE_Thread thread, std::uint32_t within);
    struct Reader;  ///< of what the nodes mean
    void visitText(const Way& way);
    void visitRun(const Way& way, const RE_Consume& loop);
    std::uint32_t* countOf(RE_Thread& thread, const RE_Node* counter);
    bool hasNext() const { return nextLetter != atEnd(); }
    char16_t nextUnit() const;

    const RE_Graph_Facts& facts;
    const RE_Alphabet& alphabet;
    const RE_Unit_Sides& sides;
    RE_Compile_Meter& meter;
    bool rejectEmpty;
    bool possible = true;
    bool ambiguous = false;
    std::size_t visits = 0;
    std::map<const RE_Node*, std::size_t> counters;

    // Of the state at hand.
    std::size_t side = 0;
    Letter nextLetter = 0;
    bool fresh = false;  // nothing was consumed yet
    bool reached = false;
    std::vector<RE_Thread>* behind = nullptr;
    std::set<RE_Thread> known;  // behind the unit
    std::set<Way> met;
    std::vector<Way> pending;
};
