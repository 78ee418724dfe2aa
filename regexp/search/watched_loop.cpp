// The match loop with an observer. It has to make the same decisions in the same order as unwatched_loop.h,
// or a trace would show a search that never happens: a change to one is a change to both. It is slower on
// purpose and in one way only: each visit is a virtual call and a report.
//
// Reports follow the facts: first the visit runs, then what it did is read off the search and reported.
#include "regexp/search/watched_loop.h"

#include "regexp/search/observer.h"
#include "regexp/search/unwatched_loop.h"

RE_Observer::~RE_Observer() = default;

namespace {

/// Reports to the observer of a search what one visit did. What a node did to the stack of choices is read
/// off the stack afterwards.
class Teller {
public:
    explicit Teller(RE_Search_Info& info) : search(info) {}

    /// Something is about to happen at `pos`: notes the state that the reports compare with.
    void begin(std::size_t pos) {
        from = pos;
        top = search.backtrack.top;
        refusals = search.refusals;
    }

    /// `node` was visited. `pos` is where it left the position.
    void stepped(const RE_Node* node, std::size_t pos, bool matched) {
        tell(RE_Trace_Kind::step, node, from, pos, matched);
        tellStack(node, pos);
    }

    /// Choices were popped, among them those that only undo. Reads records above the top, which stay intact
    /// until the next push, so this comes before the popped node resumes.
    void popped() {
        for (; top > search.backtrack.top; --top) {
            const RE_Backtrack_Record& record = search.backtrack.records[static_cast<std::size_t>(top)];
            const std::size_t position = search.indexOf(record.position);
            tell(RE_Trace_Kind::pop, record.node, position, position, true);
        }
    }

    /// The node whose choice was popped has taken it up.
    void resumed(const RE_Node* node, std::size_t pos) { tellStack(node, pos); }
    void bodyEnded(const RE_Node* node, std::size_t pos, bool completed) {
        tell(RE_Trace_Kind::body, node, from, pos, completed);
    }

private:
    // What is above the noted height was pushed by the visit. A refused push leaves no record, only a count.
    void tellStack(const RE_Node* node, std::size_t pos) const {
        for (std::int32_t i = top + 1; i <= search.backtrack.top; ++i) {
            const RE_Backtrack_Record& record = search.backtrack.records[static_cast<std::size_t>(i)];
            tell(RE_Trace_Kind::push, record.node, search.indexOf(record.position), pos, true);
        }
        if (search.refusals != refusals) {
            tell(RE_Trace_Kind::refuse, node, from, pos, false);
        }
    }

    void tell(RE_Trace_Kind kind, const RE_Node* node, std::size_t start, std::size_t end,
              bool succeeded) const {
        search.observer->observe({kind, node, start, end, succeeded}, search);
    }

    RE_Search_Info& search;
    std::size_t from = 0;
    std::int32_t top = -1;
    std::uint64_t refusals = 0;
};

// Ends the innermost open body. Returns where matching continues; null when a choice has to be resumed.
const RE_Node* endBody(RE_Search_Info& info, bool completed, std::size_t& pos, Teller& teller) {
    const RE_Node* const owner = info.bodies.back().node;
    teller.begin(pos);
    const RE_Node* const following = owner->bodyEnded(completed, pos, info);
    teller.bodyEnded(owner, pos, completed);
    return following;
}

// Resumes the latest choice. Without one in the innermost body, that body has failed, and its failure may
// lead on or backtrack further. Null when the run has failed: no choice is left above `floor` bodies.
const RE_Node* backtrack(RE_Search_Info& info, std::size_t& pos, std::size_t floor, Teller& teller) {
    // Nothing to pop: spares the report of a pop that is none.
    if (info.backtrack.top < info.backtrack.base && info.bodies.size() == floor) {
        return nullptr;
    }
    for (;;) {
        const RE_Node* node = nullptr;
        teller.begin(pos);
        if (const RE_Backtrack_Record* record = info.popChoice()) {
            const RE_Node* const chooser = record->node;
            teller.popped();
            node = chooser->resume(*record, pos, info);
            teller.resumed(chooser, pos);
        } else if (teller.popped(); info.wasInterrupted() || info.bodies.size() == floor) {
            return nullptr;
        } else {
            node = endBody(info, false, pos, teller);
        }
        if (node != nullptr) {
            return node;
        }
    }
}

/// What a visit led to: the node to continue at (null: a choice has to be resumed), or the end of the run.
struct Visit {
    const RE_Node* following;
    bool isOver = false;
};

Visit visit(const RE_Node* node, RE_Search_Info& info, std::size_t& pos, std::size_t floor, Teller& teller) {
    teller.begin(pos);
    const bool matched = node->match(info.subjectBegin, pos, info);
    teller.stepped(node, pos, matched);
    if (!matched) {
        return {orRedirected(node->failNode(), info)};
    }
    if (!node->isEnd()) {
        return {orRedirected(node->next(), info)};
    }
    // The end of a dynamic text leads on after the node that included it.
    if (const RE_Node* text = node->includedText(info)) {
        return {text};
    }
    if (info.bodies.size() == floor) {
        return {nullptr, true};
    }
    return {endBody(info, true, pos, teller)};
}

}  // namespace

bool runWatchedLoop(RE_Search_Info& info, const RE_Node* node, std::size_t& pos) {
    // A run may begin within open bodies. Those are not its own: it neither ends nor backtracks into them.
    const std::size_t floor = info.bodies.size();
    Teller teller(info);
    while (node != nullptr && info.takeStep()) {
        const Visit visited = visit(node, info, pos, floor, teller);
        if (visited.isOver) {
            return true;
        }
        node = visited.following != nullptr ? visited.following : backtrack(info, pos, floor, teller);
    }
    // A run that was broken off leaves bodies open.
    while (info.bodies.size() > floor) {
        info.closeBody(false);
    }
    return false;
}
