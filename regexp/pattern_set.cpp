// The patterns stand in a queue by where each may match next. While the first of them does not know that it matches there,
// it is searched with and goes back in the queue; when it does, no other can match before.
//
// A search with one pattern goes beyond what is needed, by as much as it has gone without a match before. So a pattern with
// few matches is searched with rarely, and all of its searches together go through the text once or a few times, however
// near the matches of the others are.
#include "regexp/pattern_set.h"

#include "host/interrupt.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/search/search.h"
#include "regexp/search/thread_state.h"
#include "regexp/tree.h"

#include <algorithm>
#include <new>

namespace {

/// Hands a request to stop back that came before the call.
class Earlier_Interrupt {
public:
    explicit Earlier_Interrupt(bool watches) : wasPending(watches && utInterruptState::IsInterruptPending()) {
        if (wasPending) {
            utInterruptState::SetInterruptPending(false);
        }
    }
    ~Earlier_Interrupt() {
        if (wasPending) {
            utInterruptState::SetInterruptPending(true);
        }
    }
    Earlier_Interrupt(const Earlier_Interrupt&) = delete;
    Earlier_Interrupt& operator=(const Earlier_Interrupt&) = delete;

private:
    bool wasPending;
};

}  // namespace

RE_Pattern_Set::RE_Pattern_Set(std::span<const RE_Tree* const> patterns) {
    members.reserve(patterns.size());
    for (const RE_Tree* pattern : patterns) {
        add(*pattern);
    }
}

std::size_t RE_Pattern_Set::add(const RE_Tree& pattern) {
    const std::size_t number = members.size();
    const bool isEmpty = pattern.getRoot() == nullptr;
    members.push_back({&pattern});
    try {
        queue.push_back({lastOffset, number, false});
        starts.add(isEmpty ? RE_Match_Beginnings() : pattern.getFacts().beginnings);
    } catch (...) {
        members.pop_back();
        queue.resize(number);
        throw;
    }
    orderQueue();
    callsHost = callsHost || (!isEmpty && pattern.getFacts().hasDynamicNodes);
    isInterruptible = isInterruptible || pattern.isInterruptible();
    stretchEnd = stretchBegin;  // to be surveyed again
    return number;
}

void RE_Pattern_Set::use(std::u16string_view text) {
    subject = text.data() != nullptr ? text : std::u16string_view(u"");
    for (Member& member : members) {
        member.seeks.clear();
        member.window = leastWindow;
    }
    forget(false);
    stretchBegin = stretchEnd = 0;
}

void RE_Pattern_Set::forget(bool answersOfHostOnly) {
    for (Next& each : queue) {
        const RE_Tree& tree = *members[each.pattern].tree;
        if (!answersOfHostOnly || (tree.getRoot() != nullptr && tree.getFacts().hasDynamicNodes)) {
            each = {0, each.pattern, false};
        }
    }
    orderQueue();
    lastOffset = answersOfHostOnly ? lastOffset : 0;
}

void RE_Pattern_Set::orderQueue() {
    std::make_heap(queue.begin(), queue.end(),
                   [](const Next& one, const Next& other) { return other.isBefore(one); });
}

// One way down in place of the two that popping and pushing would take.
void RE_Pattern_Set::changeFirst(std::size_t start, bool isKnown) {
    const Next changed{start, queue.front().pattern, isKnown};
    std::size_t place = 0;
    for (std::size_t child = 1; child < queue.size(); child = 2 * place + 1) {
        const bool hasBrother = child + 1 < queue.size();
        child += hasBrother && queue[child + 1].isBefore(queue[child]) ? 1U : 0U;
        if (!queue[child].isBefore(changed)) {
            break;
        }
        queue[place] = queue[child];
        place = child;
    }
    queue[place] = changed;
}

std::optional<RE_Pattern_Set::Found> RE_Pattern_Set::find(std::size_t offset, std::size_t latestStart) {
    interrupted = false;
    const std::size_t latest = std::min(latestStart, subject.size());
    if (offset < lastOffset) {
        forget(false);
    } else if (callsHost) {
        forget(true);
    }
    if (offset > latest || queue.empty()) {
        return std::nullopt;
    }
    lastOffset = offset;
    const Earlier_Interrupt aside(isInterruptible);
    for (;;) {
        const Next& first = queue.front();
        const std::size_t from = std::max(first.start, offset);
        if (from > latest) {
            return std::nullopt;
        }
        if (first.isKnown && first.start == from) {
            return show(first);
        }
        survey(from);
        if (!starts.mayStart(first.pattern)) {
            changeFirst(stretchEnd, false);
        } else if (!searchWithFirst(from, latest)) {
            interrupted = true;
            return std::nullopt;
        }
    }
}

// The stretch that is there may have begun before: then it rules out less than it could.
void RE_Pattern_Set::survey(std::size_t from) {
    if (stretchBegin <= from && from < stretchEnd) {
        return;
    }
    const std::size_t end = from + std::min(subject.size() - from, stretchUnits);
    starts.survey(subject.data() + from, subject.data() + end);
    stretchBegin = from;
    stretchEnd = end == subject.size() ? end + 1 : end;
}

// Needed is the answer up to the end of the stretch. False when the host asked to stop. A tree that was moved from matches
// nothing.
bool RE_Pattern_Set::searchWithFirst(std::size_t from, std::size_t latest) {
    Member& member = members[queue.front().pattern];
    if (member.tree->getRoot() == nullptr) {
        changeFirst(anyStart, false);
        return true;
    }
    const RE_Tree& tree = *member.tree;
    const RE_Graph_Facts& facts = tree.getFacts();
    if (tree.isInterruptible() && utInterruptState::IsInterruptPending()) {
        return false;
    }
    const std::size_t ahead = facts.hasDynamicNodes ? from : from + member.window;
    const std::size_t reach = std::min(std::max(stretchEnd - 1, ahead), latest);

    RE_Thread_State state(facts, subject, &member.seeks, tree.isInterruptible());
    RE_Search_Info& info = state.info();
    if (info.tokens == nullptr) {
        throw std::bad_alloc();
    }
    std::size_t length = 0;
    const bool found = findMatch(facts, info, from, length, reach) && !info.pollInterrupt();
    state.keep();
    if (info.wasInterrupted()) {
        return false;
    }
    if (!found) {
        changeFirst(reach + 1, false);
        member.window = std::min(4 * member.window, subject.size() + 1);
        return true;
    }
    if (!view) {
        view.emplace(&info, info.matchStart, length, false);
    }
    const auto& slots = info.tokens->slots;
    member.tokens.assign(slots.begin(), slots.begin() + static_cast<std::ptrdiff_t>(info.tokens->count));
    member.length = length;
    changeFirst(info.indexOf(info.matchStart), true);
    return true;
}

RE_Pattern_Set::Found RE_Pattern_Set::show(const Next& match) {
    const Member& member = members[match.pattern];
    viewTokens.slots.assign(member.tokens.begin(), member.tokens.end());
    viewTokens.count = viewTokens.written = member.tokens.size();
    view->subjectBegin = subject.data();
    view->subjectEnd = subject.data() + subject.size();
    view->matchStart = match.start;
    view->matchLength = member.length;
    view->tokens = &viewTokens;
    return {match.pattern, &*view};
}
