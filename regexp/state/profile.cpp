// Adds the counts of searches up.
#include "regexp/state/profile.h"

#include "regexp/state/profiler.h"

RE_Node_Counts& RE_Node_Counts::operator+=(const RE_Node_Counts& other) {
    visits += other.visits;
    successes += other.successes;
    failures += other.failures;
    pushes += other.pushes;
    pops += other.pops;
    refusals += other.refusals;
    return *this;
}

RE_Node_Counts RE_Profile::total() const {
    RE_Node_Counts all = texts;
    for (const RE_Node_Profile& node : nodes) {
        all += node.counts;
    }
    return all;
}

void RE_Profiler::add(const RE_Count_Table& counts) {
    const std::lock_guard lock(guard);
    for (std::size_t i = 0; i < totals.size(); ++i) {
        totals[i] += counts[i];
    }
    ++searches;
}

void RE_Profiler::clear() {
    const std::lock_guard lock(guard);
    totals.assign(totals.size(), {});
    searches = 0;
}

RE_Count_Table RE_Profiler::read(std::uint64_t& searchCount) const {
    const std::lock_guard lock(guard);
    searchCount = searches;
    return totals;
}
