// Adds the counts of searches up, and the parts of RE_Profile_Node that do not depend on the node's class.
//
// What a visit pushed is not reported by the node but read off the stack: every record above the height that
// the stack had before. Nodes need no code for profiles, and cannot forget to count.
#include "regexp/inspect/profile.h"

#include "regexp/graph_facts.h"
#include "regexp/inspect/profile_node.h"
#include "regexp/nodes/node.h"
#include "regexp/search_info.h"
#include "regexp/tree.h"

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

// The sheet has as many rows as the totals: both are made for the same greatest number.
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

// Notes the height of the stack and the refusals so far, to tell afterwards what the visit added.
RE_Node_Counting::RE_Node_Counting(const RE_Node* node, RE_Search_Info& info)
    : nodeId(node->nodeId), search(info), top(info.backtrack.top), refusals(info.refusals) {}

// Null when the search has no sheet. Nodes of dynamic texts have numbers beyond the table; all of them share
// row 0.
RE_Node_Counts* RE_Node_Counting::countsOf(std::uint64_t id) const {
    if (search.profile == nullptr) {
        return nullptr;
    }
    RE_Count_Table& counts = search.profile->counts;
    return &counts[id < counts.size() ? withinSize(id) : 0];
}

// A node may leave records of its helpers too; each is counted as theirs.
void RE_Node_Counting::notePushes() const {
    for (std::int32_t i = top + 1; i <= search.backtrack.top; ++i) {
        const RE_Node* const pusher = search.backtrack.records[static_cast<std::size_t>(i)].node;
        if (RE_Node_Counts* const counts = countsOf(pusher->nodeId)) {
            ++counts->pushes;
        }
    }
    if (RE_Node_Counts* const counts = countsOf(nodeId)) {
        counts->refusals += search.refusals - refusals;
    }
}

bool RE_Node_Counting::visited(bool matched) const {
    if (RE_Node_Counts* const counts = countsOf(nodeId)) {
        ++counts->visits;
        ++(matched ? counts->successes : counts->failures);
    }
    notePushes();
    return matched;
}

void RE_Node_Counting::popped() const {
    if (RE_Node_Counts* const counts = countsOf(nodeId)) {
        ++counts->pops;
    }
}

// Empty for a tree that was compiled without the option: then there is no profiler.
RE_Profile RE_Tree::profile() const {
    RE_Profile found;
    if (facts->profiler != nullptr) {
        const RE_Count_Table counts = facts->profiler->read(found.searches);
        found.texts = counts.front();
        for (const RE_Node* node : facts->nodes) {
            found.nodes.push_back({node->nodeId, node->label(), counts[withinSize(node->nodeId)]});
        }
    }
    return found;
}

void RE_Tree::clearProfile() const {
    if (facts->profiler != nullptr) {
        facts->profiler->clear();
    }
}
