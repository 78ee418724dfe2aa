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
#include "regexp/search/start_table.h"
#include "regexp/search/thread_state.h"
#include "regexp/seek/seek_table.h"
#include "regexp/state/earlier_interrupt.h"
#include "regexp/state/results.h"
#include "regexp/tree.h"

#include <algorithm>
#include <new>
#include <vector>

/// All that a set keeps.
class RE_Pattern_Set::Work : public RE_Memory {
public:
    std::size_t add(const RE_Tree& pattern);
    std::size_t size() const { return members.size(); }
    void reserve(std::size_t patterns) { members.reserve(patterns); }
    void use(std::u16string_view text);
    std::optional<Found> find(std::size_t offset, std::size_t latestStart);
    bool wasInterrupted() const { return interrupted; }

private:
    /// Of a pattern: at or after the offset no match starts before `start`. If it is known, one starts there.
    struct Next {
        std::size_t start = 0;
        std::size_t pattern = 0;
        bool isKnown = false;

        bool isBefore(const Next& other) const {
            return start != other.start ? start < other.start : pattern < other.pattern;
        }
    };
    struct Member {
        const RE_Tree* tree;
        RE_Seek_Table seeks{};
        std::size_t length = 0;                                          ///< of the next match
        std::vector<RE_TokenInfo, RE_Allocator<RE_TokenInfo>> tokens{};  ///< in effect in it
        /// Units to search through when no other pattern has a match before. Grows where there was nothing.
        std::size_t window = leastWindow;
    };
    static constexpr std::size_t leastWindow = 1024;
    static constexpr std::size_t stretchUnits = 256;

    void forget(bool answersOfHostOnly);
    void orderQueue();
    void changeFirst(std::size_t start, bool isKnown);
    void survey(std::size_t from);
    bool searchWithFirst(std::size_t from, std::size_t latest);
    Found show(const Next& match);

    /// A heap of the patterns: that with the least start comes first, of equal ones that which was added first.
    std::vector<Next, RE_Allocator<Next>> queue;
    std::vector<Member, RE_Allocator<Member>> members;
    RE_Start_Table starts;
    std::u16string_view subject = u"";
    std::size_t lastOffset = 0;
    std::size_t stretchBegin = 0;  ///< of what was surveyed
    std::size_t stretchEnd = 0;    ///< past the end of the text where the stretch reaches up to it
    std::optional<RE_Results> view;
    RE_Token_Stack viewTokens;
    bool callsHost = false;        ///< one of the patterns does
    bool isInterruptible = false;  ///< one of them is
    bool interrupted = false;
};

RE_Pattern_Set::RE_Pattern_Set() : work(std::make_unique<Work>()) {}

RE_Pattern_Set::RE_Pattern_Set(std::span<const RE_Tree* const> patterns) : RE_Pattern_Set() {
    work->reserve(patterns.size());
    for (const RE_Tree* pattern : patterns) {
        work->add(*pattern);
    }
}

RE_Pattern_Set::~RE_Pattern_Set() = default;

std::size_t RE_Pattern_Set::add(const RE_Tree& pattern) {
    return work->add(pattern);
}

std::size_t RE_Pattern_Set::size() const {
    return work->size();
}

void RE_Pattern_Set::use(std::u16string_view text) {
    work->use(text);
}

std::optional<RE_Pattern_Set::Found> RE_Pattern_Set::find(std::size_t offset, std::size_t latestStart) {
    return work->find(offset, latestStart);
}

bool RE_Pattern_Set::wasInterrupted() const {
    return work->wasInterrupted();
}

std::size_t RE_Pattern_Set::Work::add(const RE_Tree& pattern) {
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

void RE_Pattern_Set::Work::use(std::u16string_view text) {
    subject = text.data() != nullptr ? text : std::u16string_view(u"");
    for (Member& member : members) {
        member.seeks.clear();
        member.window = leastWindow;
    }
    forget(false);
    stretchBegin = stretchEnd = 0;
}

void RE_Pattern_Set::Work::forget(bool answersOfHostOnly) {
    for (Next& each : queue) {
        const RE_Tree& tree = *members[each.pattern].tree;
        if (!answersOfHostOnly || (tree.getRoot() != nullptr && tree.getFacts().hasDynamicNodes)) {
            each = {0, each.pattern, false};
        }
    }
    orderQueue();
    lastOffset = answersOfHostOnly ? lastOffset : 0;
}

void RE_Pattern_Set::Work::orderQueue() {
    std::make_heap(queue.begin(), queue.end(),
                   [](const Next& one, const Next& other) { return other.isBefore(one); });
}

// One way down in place of the two that popping and pushing would take.
void RE_Pattern_Set::Work::changeFirst(std::size_t start, bool isKnown) {
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

std::optional<RE_Pattern_Set::Found> RE_Pattern_Set::Work::find(std::size_t offset, std::size_t latestStart) {
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
    const RE_Earlier_Interrupt aside(isInterruptible);
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
void RE_Pattern_Set::Work::survey(std::size_t from) {
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
bool RE_Pattern_Set::Work::searchWithFirst(std::size_t from, std::size_t latest) {
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

RE_Pattern_Set::Found RE_Pattern_Set::Work::show(const Next& match) {
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
