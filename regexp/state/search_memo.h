// The memo of one search: a table of tried states for the pattern itself and one for each level of closed
// bodies.
//
// States on the way of a body that succeeded have not failed: its table is emptied then. The states of a body
// that failed stay, as a body sees nothing of what is around it; only a look-behind, which must end in one
// place, empties its own each time. The candidate starts of one look-behind share theirs.
//
// How a closed body ended is remembered as well, by where it was entered, so that bodies within the loops of
// other bodies do not multiply.
//
// Invariant: what is recorded has failed, or is still being explored by the path that recorded it. Whoever
// lets a path succeed must see to it that its states are forgotten or out of reach.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/base/memory_pool.h"
#include "regexp/state/memo.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory_resource>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

class RE_Node;
class RE_Search_Info;
struct RE_TokenInfo;

/// How a closed body ended when it was entered at some position before.
struct RE_Body_Outcome {
    enum class Kind { unknown, failed, completed };

    Kind kind = Kind::unknown;
    std::size_t end = 0;  ///< where a completed body led to
};

/// Belongs to one search, and to one thread. Rows below `firstCombined` are the numbers of nodes; `outcomes`
/// has rows of its own.
class CORVANE_REGEXP_EXPORT RE_Search_Memo : public RE_Memory {
public:
    /// Combinations of a node and more get rows from this one on.
    explicit RE_Search_Memo(std::uint32_t firstCombined) : rows(firstCombined, &pool) {}

    /// Records the state that the search is in at (node, position); false when it was there already.
    bool insert(const RE_Search_Info& info, const RE_Node* node, std::size_t position);
    /// The last position in [first, last] at which `insert` would succeed, or `RE_Memo_Table::nowhere`.
    /// Records nothing.
    std::size_t lastUntried(const RE_Search_Info& info, const RE_Node* node, std::size_t first,
                            std::size_t last);
    /// The first such position.
    std::size_t firstUntried(const RE_Search_Info& info, const RE_Node* node, std::size_t first,
                             std::size_t last);
    /// Records the states at the positions of [first, last] as failed. Records none of them where they differ
    /// by more than the position: an omission costs time only.
    void insertAll(const RE_Search_Info& info, const RE_Node* node, std::size_t first, std::size_t last);
    /// Forgets the states of this level (0 is the pattern itself).
    void clear(std::size_t level);
    /// The outcome noted for a body of `node` entered at `start`.
    RE_Body_Outcome outcome(const RE_Node* node, std::size_t start) const;
    void noteOutcome(const RE_Node* node, std::size_t start, RE_Body_Outcome outcome);
    /// Prepares for the search after a match that ended at `position`. The states on the way of the match
    /// have not failed; of them that search can meet those at the match's end only, so these are set apart.
    void searchFrom(std::size_t position);
    /// Forgets the states of every level.
    void forgetStates();
    /// Forgets all that holds for the subject. Storage is kept.
    void forgetSubject();
    /// Bytes of memory held, by and large.
    std::size_t bytes() const;

private:
    using Place = std::pair<std::size_t, std::size_t>;  // start, length

    struct Place_Hash {
        std::size_t operator()(const Place& place) const {
            const std::uint64_t mixed = place.first * std::uint64_t{0x9E3779B97F4A7C15u} ^ place.second;
            return static_cast<std::size_t>(mixed ^ mixed >> 32);
        }
    };
    template <class Key, class Hash>
    using Numbers = std::pmr::unordered_map<Key, std::size_t, Hash>;

    RE_Memo_Table& table(const RE_Search_Info& info);
    bool isSetApart(const RE_Search_Info& info, std::size_t position) const;
    std::size_t lastAbsent(const RE_Search_Info& info, std::uint32_t row, std::size_t first,
                           std::size_t last);
    std::size_t firstAbsent(const RE_Search_Info& info, std::uint32_t row, std::size_t first,
                            std::size_t last);
    std::uint32_t row(const RE_Search_Info& info, const RE_Node* node, std::size_t position);
    std::size_t tokenState(const RE_Search_Info& info, std::size_t token);
    std::size_t textNumber(const RE_Search_Info& info, Place place);

    // What is forgotten between two searches is taken from the pool again, not from the host. Declared first:
    // the containers below release into it.
    RE_Memory_Pool pool;
    std::vector<RE_Memo_Table, RE_Allocator<RE_Memo_Table>> tables;
    RE_Memo_Table apart;  // the pattern's own states at the position set apart, met since then
    std::size_t setApart = RE_Memo_Table::nowhere;
    RE_Memo_Rows rows;
    RE_Memo_Rows::Key key{&pool};                    // scratch, kept for its storage
    Numbers<Place, Place_Hash> placeNumbers{&pool};  // of token texts, by where they are
    Numbers<std::u16string_view, std::hash<std::u16string_view>> textNumbers{&pool};
    RE_Memo_Table outcomes;  // two rows a node: bodies that failed, bodies that completed
    Numbers<Place, Place_Hash> outcomeEnds{
        &pool};  // (node, start) of completed bodies that consumed something
};
