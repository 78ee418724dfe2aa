// The memo of states already tried: what keeps backtracking polynomial.
//
// A state is a choosing node, a subject position, and whatever else the future of the match depends on there:
// the counts of the loops around the node, whether their current pass has consumed anything yet, and the
// texts of tokens that something refers to. Everything but the position is folded into a row number; a row is
// a sparse bit set over positions, held for all rows together in one open-addressing table of 64-bit words.
//
// Why a second visit may be refused: compiled loops refuse passes that consume nothing, so no path returns to
// a state that it is still exploring. Whoever meets a recorded state again therefore meets one that has
// failed completely.
//
// Trap: whatever a node reads beside the subject must be in its rows (`RE_Search_Memo::row` puts them
// together). If it is not, the memo refuses ways that would have matched.
#pragma once

#include "regexp/base/memory.h"

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <unordered_map>
#include <utility>
#include <vector>

class RE_Node;

/// Set of (row, position) pairs that can be emptied at once.
class CORVANE_REGEXP_EXPORT RE_Memo_Table : public RE_Memory {
public:
    /// Adds the pair; false when it was there already.
    bool insert(std::uint32_t row, std::size_t position);
    /// Adds the pairs of all positions of [first, last].
    void insertAll(std::uint32_t row, std::size_t first, std::size_t last);
    /// The last position in [first, last] whose pair is not in the set, or `nowhere`. Takes a few look-ups,
    /// however long the range is.
    std::size_t lastAbsent(std::uint32_t row, std::size_t first, std::size_t last) const;
    /// The first such position.
    std::size_t firstAbsent(std::uint32_t row, std::size_t first, std::size_t last) const;
    static constexpr std::size_t nowhere = static_cast<std::size_t>(-1);
    bool contains(std::uint32_t row, std::size_t position) const;
    /// Empties the set in constant time: what it holds becomes a generation that is past.
    void clear();
    std::size_t bytes() const { return cells.capacity() * sizeof(Cell); }

private:
    struct Cell {
        std::uint64_t key;
        std::uint64_t bits;
        std::uint64_t generation;  ///< the cell is free unless this is the table's current one
    };

    // The words of a row are the leaves of a tree: a bit of a word of the next level says that the 64
    // positions, or words, below it are all in the set. A loop that fails at each of its ends, from start
    // after start, queries the same positions again and again: this way an answer looks at a few words,
    // however many there are.
    void noteFull(std::uint32_t row, std::size_t position);
    std::uint64_t& wordOf(std::uint32_t row, unsigned level, std::size_t at);
    std::uint64_t absentBits(std::uint32_t row, unsigned level, std::size_t at) const;
    std::size_t slotOf(std::uint64_t key) const;
    Cell& find(std::uint64_t key) { return cells[slotOf(key)]; }
    void grow();

    std::vector<Cell, RE_Allocator<Cell>> cells;
    std::size_t used = 0;
    std::uint64_t generation = 1;
};

/// Gives each distinct combination of words a number of its own, counting from a first number on. Rows below
/// that number are those of nodes whose state is the position alone.
class CORVANE_REGEXP_EXPORT RE_Memo_Rows : public RE_Memory {
public:
    using Key = std::pmr::vector<std::uint64_t>;

    RE_Memo_Rows(std::uint32_t firstRow, std::pmr::memory_resource* memory)
        : rows(memory), first(firstRow), next(firstRow) {}

    std::uint32_t row(const Key& key);
    void clear();

private:
    struct Hash {
        std::size_t operator()(const Key& key) const;
    };

    std::pmr::unordered_map<Key, std::uint32_t, Hash> rows;
    std::uint32_t first;
    std::uint32_t next;
};
