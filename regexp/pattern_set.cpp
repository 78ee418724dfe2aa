// Stretch by stretch: a pattern that can start in the stretch is searched with, and its next match is kept.
//
// A search with one pattern goes beyond what the others have found, by as much as it has gone without a match before. So a
// pattern with few matches is searched with rarely, and all of its searches together go through the text once or a few
// times, however near the matches of the others are.
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

// A tree that was moved from matches nothing: its next match is past every end.
std::size_t RE_Pattern_Set::add(const RE_Tree& pattern) {
    const std::size_t number = members.size();
    const bool isEmpty = pattern.getRoot() == nullptr;
    try {
        members.push_back({&pattern});
        next.push_back({isEmpty ? anyStart : lastOffset, false});
        starts.add(isEmpty ? RE_Match_Beginnings() : pattern.getFacts().beginnings);
    } catch (...) {
        members.erase(members.begin() + static_cast<std::ptrdiff_t>(number), members.end());
        next.resize(number);
        throw;
    }
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
    forgetText();
}

void RE_Pattern_Set::forgetText() {
    for (std::size_t i = 0; i < members.size(); ++i) {
        next[i] = {members[i].tree->getRoot() == nullptr ? anyStart : 0, false};
    }
    lastOffset = stretchBegin = stretchEnd = 0;
}

void RE_Pattern_Set::forgetAnswersOfHost() {
    for (std::size_t i = 0; callsHost && i < members.size(); ++i) {
        const RE_Tree& tree = *members[i].tree;
        if (tree.getRoot() != nullptr && tree.getFacts().hasDynamicNodes) {
            next[i] = {};
        }
    }
}

std::optional<RE_Pattern_Set::Found> RE_Pattern_Set::find(std::size_t offset, std::size_t latestStart) {
    interrupted = false;
    const std::size_t latest = std::min(latestStart, subject.size());
    if (offset < lastOffset) {
        forgetText();
    }
    if (offset > latest) {
        return std::nullopt;
    }
    lastOffset = offset;
    forgetAnswersOfHost();
    const Earlier_Interrupt aside(isInterruptible);
    Best best{latest + 1, 0};
    for (std::size_t from = offset; from <= latest && from <= best.start; from = stretchEnd) {
        survey(from);
        if (!searchStretch(offset, latest, best)) {
            interrupted = true;
            return std::nullopt;
        }
    }
    return best.isMatch ? std::optional(show(best)) : std::nullopt;
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

// Finds out of each pattern whether it matches in the stretch and before `best`. False when the host asked to stop.
bool RE_Pattern_Set::searchStretch(std::size_t offset, std::size_t latest, Best& best) {
    for (std::size_t i = 0; i < next.size(); ++i) {
        const std::size_t from = std::max(next[i].start, offset);
        if (from >= stretchEnd || !best.isBeatenBy(from, i)) {
            continue;
        }
        const bool isKnown = next[i].isKnown && next[i].start == from;
        if (!isKnown && !starts.mayStart(i)) {
            next[i] = {stretchEnd, false};
            continue;
        }
        if (!isKnown && !search(i, from, latest, best)) {
            return false;
        }
        if (next[i].isKnown && best.isBeatenBy(next[i].start, i)) {
            best = {next[i].start, i, true};
        }
    }
    return true;
}

// Needed is the answer up to the end of the stretch, or to the best match.
bool RE_Pattern_Set::search(std::size_t pattern, std::size_t from, std::size_t latest, const Best& best) {
    Member& member = members[pattern];
    const RE_Tree& tree = *member.tree;
    const RE_Graph_Facts& facts = tree.getFacts();
    if (tree.isInterruptible() && utInterruptState::IsInterruptPending()) {
        return false;
    }
    const std::size_t needed = std::min(best.start, stretchEnd - 1);
    const std::size_t wanted = facts.hasDynamicNodes ? needed : std::max(needed, from + member.window);
    const std::size_t reach = std::min(wanted, latest);

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
        next[pattern] = {reach + 1, false};
        member.window = std::min(4 * member.window, subject.size() + 1);
        return true;
    }
    if (!view) {
        view.emplace(&info, info.matchStart, length, false);
    }
    const auto& slots = info.tokens->slots;
    member.tokens.assign(slots.begin(), slots.begin() + static_cast<std::ptrdiff_t>(info.tokens->count));
    member.length = length;
    next[pattern] = {info.indexOf(info.matchStart), true};
    return true;
}

RE_Pattern_Set::Found RE_Pattern_Set::show(const Best& best) {
    const Member& member = members[best.pattern];
    viewTokens.slots.assign(member.tokens.begin(), member.tokens.end());
    viewTokens.count = viewTokens.written = member.tokens.size();
    view->subjectBegin = subject.data();
    view->subjectEnd = subject.data() + subject.size();
    view->matchStart = best.start;
    view->matchLength = member.length;
    view->tokens = &viewTokens;
    return {best.pattern, &*view};
}
