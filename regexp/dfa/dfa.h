// A pattern as a deterministic finite automaton: where a match that begins at some place ends, and whether
// any match begins at or after one, each decided by reading every unit once.
//
// It is made of the graph, where the units to both sides decide what each node does, and reaches exactly the
// answer of the match loop: the end of the match that the loop would find first, not of the longest one. It
// knows nothing of tokens.
//
// Invariant: complete when it is made. No state is added during a search, so searches share it without locks,
// and the memory that it takes is known when it is made.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/seek/kernels.h"
#include "regexp/units/unit_set.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

class RE_Compile_Monitor;
class RE_Search_Info;
struct RE_Graph_Facts;

/// The rows of a small automaton, for reading by vector shuffles: for each letter one vector holds the next state
/// of every state, and a step takes a cycle or two where a table in memory takes the time of a load. Read-only
/// once it is made.
struct RE_Shuffle_Table {
    static constexpr std::size_t mostStates = 16;
    static constexpr std::size_t blockUnits = 16;
    /// After so many blocks that end in the state in which they began, the units may be such as change
    /// nothing: a scan for other units would be faster, so the caller gets a chance.
    static constexpr std::size_t mostAlike = 3;
    static constexpr std::size_t directUnits = 256;
    static constexpr std::uint8_t stateBits = 0x0F;
    /// In an entry: a match may end before the unit.
    static constexpr std::uint8_t accepts = 0x10;

    using Row = std::array<std::uint8_t, mostStates>;
    /// The row of each unit, as its offset in bytes from the first. Greater units are not read here.
    std::array<std::uint16_t, directUnits> rowOf{};
    std::vector<Row, RE_Allocator<Row>> rows;  ///< one a letter; state 0 leads to itself
};

/// Reads blocks of units from `p` on, as far as they lie before `end`. Stops in front of a block with a unit
/// that has no row, over which a match may end, or after which the state is 0; and after some blocks that
/// change nothing. Returns how far it has come and puts the state there into `state`.
const char16_t* shuffleOver(const RE_Shuffle_Table& table, const char16_t* p, const char16_t* end,
                            std::uint8_t& state);

/// Read-only once it is made: any number of threads may query it. Owned by the compiled pattern.
class RE_Dfa : public RE_Memory {
public:
    /// The automaton of the pattern, made now unless that was tried before. Null where the pattern has a node that an
    /// automaton cannot represent, and where it would need too many states. Takes time and memory within fixed bounds,
    /// whatever the pattern. Any thread may call it, also while others search; one that is being made by another thread
    /// counts as none. The monitor (may be null) is asked several times a millisecond whether to go on; if not, it may be
    /// tried again.
    static const RE_Dfa* obtain(const RE_Graph_Facts& facts, RE_Compile_Monitor* monitor);

    struct Answer {
        const char16_t* end;    ///< null when there is none, and when the search was broken off
        std::size_t unitsRead;  ///< until that was known
    };
    /// The end of the match that an attempt at `p` finds. Reads up to the subject's end at most; counts steps
    /// and polls the host like any scan.
    Answer matchEnd(const char16_t* p, RE_Search_Info& info) const;
    /// The first place up to `stop` at which a match ends that begins at or after `p`. It is not the end of
    /// the first match: it is to tell whether any match follows.
    Answer firstEnd(const char16_t* p, const char16_t* stop, RE_Search_Info& info) const;
    /// Whether `firstEnd` may be called: its states are left out where they would be too many.
    bool knowsAllStarts() const { return !searchRows.empty(); }
    /// Whether attempts can reach one place in more than one way over the same units, and so try the rest
    /// again.
    bool isAmbiguous() const { return ambiguous; }
    std::size_t stateCount() const { return table.size() / rowLength; }

private:
    friend class RE_Determinizer;

    /// An entry is the index at which the row of the next state begins, so that a step needs no
    /// multiplication. The row of the state that nothing leads out of is the first, so `dead` is 0. The
    /// highest bit says that a match ends before the unit.
    using Entry = std::uint32_t;
    static constexpr Entry dead = 0;
    static constexpr Entry accepts = Entry{1} << 31;

    /// The units over which a state leads to itself: runs of them are passed by a vector scan for a unit that
    /// is not among them.
    struct Stay {
        RE_Unit_Set units;
        RE_Class_Scan leaves;
        bool matches;  ///< before each of them a match may end

        Stay(const RE_Unit_Set& set, bool matching) : units(set), leaves(units, false), matches(matching) {}
    };
    using Stays = std::vector<std::unique_ptr<const Stay>, RE_Allocator<std::unique_ptr<const Stay>>>;
    using Rows = std::vector<Entry, RE_Allocator<Entry>>;

    /// How far a run has come: the position, the state there, and the last end.
    struct Place {
        const char16_t* p;
        Entry row;
        const char16_t* end;  ///< of the match found last, or null
    };

    RE_Dfa() = default;
    std::size_t letterOf(char16_t unit) const { return letters[pageStart[unit >> 8] + (unit & 0xFFU)]; }
    Entry startAt(const Rows& rows, const char16_t* p, const RE_Search_Info& info) const;
    Answer run(Entry row, const char16_t* start, const char16_t* limit, bool first,
               RE_Search_Info& info) const;
    void readSome(Place& place, const char16_t* stop, bool first) const;
    void readByTable(Place& place, const char16_t* stop, bool first) const;
    bool readByShuffles(Place& place, const char16_t* stop) const;
    void skipStay(Place& place, const char16_t* stop) const;

    // Units to letters by two tables: the page of a unit, and the letters of that page. Pages that are equal share one.
    static constexpr std::size_t pageUnits = 256;
    std::array<std::uint16_t, RE_Unit_Set::unitCount / pageUnits> pageStart{};
    std::vector<std::uint8_t, RE_Allocator<std::uint8_t>> letters;  ///< pages that differ, one after another
    std::vector<std::uint8_t, RE_Allocator<std::uint8_t>>
        sides;                  ///< of each letter, as the unit before a start
    std::size_t rowLength = 1;  ///< one entry a letter, and the last one for the subject's end
    bool ambiguous = false;
    Rows table;
    Stays stays;  ///< of each state; null where it does not lead to itself
    // Where an attempt begins, and a search for one that matches: by the side of the unit before.
    Rows attemptRows;
    Rows searchRows;
    RE_Shuffle_Table shuffles;  ///< the same of an automaton of a few states; else no rows
};
