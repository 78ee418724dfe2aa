#include "regexp/inspect/loop_watch.h"

RE_Observer::~RE_Observer() = default;

void RE_Loop_Watch::begin(std::size_t pos) {
    from = pos;
    top = search.backtrack.top;
    refusals = search.refusals;
}

void RE_Loop_Watch::stepped(const RE_Node* node, std::size_t pos, bool matched) {
    tell(RE_Trace_Kind::step, node, from, pos, matched);
    tellStack(node, pos);
}

// Records stay readable above the top until the next push.
void RE_Loop_Watch::popped() {
    for (; top > search.backtrack.top; --top) {
        const RE_Backtrack_Record& record = search.backtrack.records[static_cast<std::size_t>(top)];
        const std::size_t position = search.indexOf(record.position);
        tell(RE_Trace_Kind::pop, record.node, position, position, true);
    }
}

void RE_Loop_Watch::resumed(const RE_Node* node, std::size_t pos) {
    tellStack(node, pos);
}

void RE_Loop_Watch::bodyEnded(const RE_Node* node, std::size_t pos, bool completed) {
    tell(RE_Trace_Kind::body, node, from, pos, completed);
}

void RE_Loop_Watch::tellStack(const RE_Node* node, std::size_t pos) const {
    for (std::int32_t i = top + 1; i <= search.backtrack.top; ++i) {
        const RE_Backtrack_Record& record = search.backtrack.records[static_cast<std::size_t>(i)];
        tell(RE_Trace_Kind::push, record.node, search.indexOf(record.position), pos, true);
    }
    if (search.refusals != refusals) {
        tell(RE_Trace_Kind::refuse, node, from, pos, false);
    }
}

void RE_Loop_Watch::tell(RE_Trace_Kind kind, const RE_Node* node, std::size_t start, std::size_t end,
                         bool succeeded) const {
    search.observer->observe({kind, node, start, end, succeeded}, search);
}
