// The memo of one search: a table of tried states for the pattern itself and one for each level of closed bodies.
//
// An evaluation of a closed body starts with an empty table, since states on the way of a body that succeeded have
// not failed. The candidate starts of one look-behind share theirs.
#pragma once

#include "regexp/memo.h"
#include "regexp/memory.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

class RE_Node;
class RE_Search_Info;
struct RE_TokenInfo;

/// A run of units that was measured up to the unit that ends it: it ends there from each of its positions.
struct RE_Measured_Run {
    const char16_t* begin = nullptr;
    const char16_t* end = nullptr;

    bool holds(const char16_t* p) const { return begin != nullptr && begin <= p && p <= end; }
};

/// When the memo of a search begins: after this many choices were taken up again, plus so many for each unit of the
/// subject. Most searches end before. Tests set both to 0, before any search, to see the memo at work at once.
struct RE_Memo_Delay {
    static inline std::uint64_t choices = 512;
    static inline std::uint64_t perUnit = 4;
};

class RE_Search_Memo : public RE_Memory {
public:
    /// Combinations of a node and more get rows from this one on.
    explicit RE_Search_Memo(std::uint32_t firstCombined) : rows(firstCombined) {}

    /// Records the state in which the search stands at (node, position); false when it was there already.
    bool insert(const RE_Search_Info& info, const RE_Node* node, std::size_t position);
    /// The last position in [first, last] at which `insert` would hold, or `RE_Memo_Table::nowhere`.
    std::size_t lastUntried(const RE_Search_Info& info, const RE_Node* node, std::size_t first,
                            std::size_t last);
    /// The first such position.
    std::size_t firstUntried(const RE_Search_Info& info, const RE_Node* node, std::size_t first,
                             std::size_t last);
    /// The run last measured by this node.
    RE_Measured_Run& run(const RE_Node* node);
    /// Forgets the states of this level (0 is the pattern itself).
    void clear(std::size_t level);
    /// Forgets the states of every level.
    void forgetStates();
    /// Forgets the runs measured by the nodes from this row on.
    void forgetRuns(std::uint32_t firstRow);

private:
    using Text = std::pair<std::size_t, std::size_t>;  // start, length

    RE_Memo_Table& table(const RE_Search_Info& info);
    std::uint32_t row(const RE_Search_Info& info, const RE_Node* node, std::size_t position);
    std::size_t textNumber(const RE_Search_Info& info, std::size_t token);

    std::vector<RE_Memo_Table, RE_Allocator<RE_Memo_Table>> tables;
    std::vector<RE_Measured_Run, RE_Allocator<RE_Measured_Run>> runs;
    RE_Memo_Rows rows;
    RE_Memo_Rows::Key key;  // scratch, kept for its storage
    std::vector<Text, RE_Allocator<Text>> texts;
    std::unordered_multimap<std::size_t, std::size_t, std::hash<std::size_t>, std::equal_to<std::size_t>,
                            RE_Allocator<std::pair<const std::size_t, std::size_t>>>
        textNumbers;
};
