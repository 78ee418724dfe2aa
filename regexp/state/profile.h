// What the nodes of a pattern did, counted search by search.
//
// A search writes its counts on a sheet of its own, which nobody else touches, and adds them to those of the
// pattern when it is over. So any number of threads may search a profiled pattern, a step takes no lock, and
// a search in progress is not yet in the profile. Counting slows a search down, by more for some nodes than
// for others: a profile says where the work is, not how long it takes.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/base/within_size.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

/// Of one node. `visits` is the sum of successes and failures.
struct CORVANE_REGEXP_EXPORT RE_Node_Counts {
    std::uint64_t visits = 0;     ///< times the match loop visited the node
    std::uint64_t successes = 0;  ///< visits that matched
    std::uint64_t failures = 0;   ///< visits that did not
    std::uint64_t pushes = 0;     ///< choices of the node that were pushed
    std::uint64_t pops = 0;       ///< choices of the node that were popped
    std::uint64_t refusals = 0;   ///< choices that the memo refused as tried before

    RE_Node_Counts& operator+=(const RE_Node_Counts& other);
    bool operator==(const RE_Node_Counts&) const = default;
};

/// By the numbers of nodes.
using RE_Count_Table = std::vector<RE_Node_Counts, RE_Allocator<RE_Node_Counts>>;

/// One row of a profile.
struct RE_Node_Profile {
    std::uint64_t nodeId;
    std::string label;
    RE_Node_Counts counts;
};

/// A copy of the counts at one moment; later searches do not change it.
struct CORVANE_REGEXP_EXPORT RE_Profile {
    std::uint64_t searches = 0;
    std::vector<RE_Node_Profile> nodes;  ///< every node, by number
    RE_Node_Counts texts;                ///< all nodes of dynamic texts, which are gone by now

    /// Of all nodes and texts together.
    RE_Node_Counts total() const;
};

/// The counts of a pattern over all its searches, by the numbers of its nodes. No node has the number 0:
/// there are the counts of dynamic texts, the nodes of which have numbers beyond those of the pattern.
class CORVANE_REGEXP_EXPORT RE_Profiler : public RE_Memory {
public:
    explicit RE_Profiler(std::uint64_t greatestNodeId) : totals(withinSize(greatestNodeId) + 1) {}

    /// Counts one search more.
    void add(const RE_Count_Table& counts);
    void clear();
    /// Sets `searchCount` to the number of searches that the counts come from.
    RE_Count_Table read(std::uint64_t& searchCount) const;
    /// A table for one search.
    RE_Count_Table blank() const { return RE_Count_Table(totals.size()); }

private:
    // Protects the members below. Held for one addition a search, never during one.
    mutable std::mutex guard;
    RE_Count_Table totals;
    std::uint64_t searches = 0;
};

/// The counts of one search. Keeps the profiler alive, since a search may outlive its pattern.
class CORVANE_REGEXP_EXPORT RE_Profile_Sheet : public RE_Memory {
public:
    explicit RE_Profile_Sheet(std::shared_ptr<RE_Profiler> owner)
        : counts(owner->blank()), profiler(std::move(owner)) {}
    ~RE_Profile_Sheet() { profiler->add(counts); }
    RE_Profile_Sheet(const RE_Profile_Sheet&) = delete;
    RE_Profile_Sheet& operator=(const RE_Profile_Sheet&) = delete;

    RE_Count_Table counts;

private:
    std::shared_ptr<RE_Profiler> profiler;
};
