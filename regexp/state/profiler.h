// Counts what the nodes of a pattern do, search by search.
//
// A search writes its counts on a sheet of its own, which nobody else touches, and adds them to those of the
// pattern when it is over. So any number of threads may search a profiled pattern, and a step takes no lock.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/base/within_size.h"
#include "regexp/state/profile.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

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
