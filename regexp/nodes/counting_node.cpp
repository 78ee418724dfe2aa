// The parts of RE_Profile_Node that do not depend on the node's class.
//
// What a visit pushed is not reported by the node but read off the stack: every record above the height that the stack had
// before. Nodes need no code for profiles, and cannot forget to count.
#include "regexp/nodes/counting_node.h"

#include "regexp/graph/node.h"
#include "regexp/state/profiler.h"
#include "regexp/state/search_info.h"

RE_Node_Counting::RE_Node_Counting(const RE_Node* node, RE_Search_Info& info)
    : nodeId(node->nodeId), search(info), top(info.backtrack.top), refusals(info.refusals) {}

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
