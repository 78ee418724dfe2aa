// The search: start position after start position, or from candidate to candidate where the root can seek.
#include "regexp/tree.h"

#include "host/code_page.h"
#include "regexp/graph_facts.h"
#include "regexp/inspect/observer.h"
#include "regexp/match_loop.h"
#include "regexp/match_sequence.h"
#include "regexp/nodes/consume.h"
#include "regexp/search_info.h"
#include "regexp/seek/required_literal.h"
#include "regexp/unwatched_loop.h"

#include <algorithm>
#include <new>

namespace {

std::uint64_t nextAskingAt(const RE_Graph_Facts& facts, const RE_Search_Info& info) {
    return facts.needed.empty() ? RE_Step_Meter::unlimited : info.meter.taken() + RE_Asking_Delay::steps;
}

// The last start from `p` on that need not be tried, where the one at `p` has failed; null when no other need be.
const char16_t* lastInVain(const RE_Graph_Facts& facts, const char16_t* p, RE_Search_Info& info) {
    const char16_t* next = p + 1;
    for (const auto& literal : facts.needed) {
        next = next <= info.subjectEnd ? literal->nextStart(next, info) : nullptr;
        // A step behind the scan sees whether the budget sufficed for it.
        if (!info.takeStep() || next == nullptr) {
            return nullptr;
        }
    }
    return next - 1;
}

}  // namespace

RE_Results* RE_Tree::match(const std::u16string& subject, std::size_t offset) const {
    return match(subject.data(), subject.size(), offset);
}

RE_Results* RE_Tree::match(const char16_t* subject, std::size_t length, std::size_t offset) const {
    RE_Seek_Table table;
    return searchFrom(subject, length, offset, &table);
}

RE_Results* RE_Tree::match(const char16_t* subject, std::size_t length, std::size_t offset,
                           RE_Seek_Table* table) const {
    return searchFrom(subject, length, offset, table);
}

RE_Results* RE_Tree::match(const char* subject, std::size_t offset) const {
    if (subject == nullptr) {
        return nullptr;
    }
    std::size_t length = 0;
    const RE_Host_Block<char16_t> converted(lcp_to_utf16(subject, &length));
    RE_Results* const results = match(converted.get(), length, offset);
    if (results != nullptr) {
        results->subjectBegin = results->subjectEnd = nullptr;
    }
    return results;
}

RE_Results* RE_Tree::match(const char16_t* subject, std::size_t length, std::size_t offset,
                           const RE_Search_Limits& limits, RE_Search_Report& report) const {
    report = {};
    if (subject == nullptr || offset > length) {
        return nullptr;
    }
    RE_Match_Sequence search(*this, {subject, length}, &limits);
    search.find(offset);
    report = search.report();
    RE_Results* const match = search.releaseMatch();
    if (match == nullptr && report.outcome == RE_Search_Outcome::matched) {
        report.outcome = RE_Search_Outcome::memoryFull;
    }
    return match;
}

RE_Results* RE_Tree::trace(const char16_t* subject, std::size_t length, std::size_t offset,
                           RE_Observer& observer) const {
    RE_Seek_Table table;
    return searchFrom(subject, length, offset, &table, &observer);
}

bool RE_Tree::match_bool(const char16_t* position, std::size_t* length, RE_Search_Info* info) const {
    *length = 0;
    if (root == nullptr) {
        return false;
    }
    info->prepare(*facts);
    RE_Search_Scope scope(*info);  // choices that the state holds from before are not this run's
    const std::size_t start = info->indexOf(position);
    std::size_t pos = start;
    // A scan that was broken off may have led to an end too early.
    const bool completed = runMatchLoop(*info, root, pos) && !info->wasInterrupted();
    *length = completed ? pos - start : 0;
    scope.leave();
    return completed;
}

RE_Results* RE_Tree::searchFrom(const char16_t* subject, std::size_t length, std::size_t offset,
                                RE_Seek_Table* table, RE_Observer* observer) const {
    if (subject == nullptr || offset > length || root == nullptr) {
        return nullptr;
    }
    RE_Search_Info info(subject, length, tokenCount, table, interruptible);
    info.prepare(*facts);
    info.rejectEmpty = !allowEmptyMatch;
    info.observer = observer;
    std::size_t matchLength = 0;
    if (!findMatch(info, offset, matchLength) || info.pollInterrupt()) {
        return nullptr;
    }
    return new (std::nothrow) RE_Results(&info, info.matchStart, matchLength, true);
}

namespace {

// Starts that lie near are found before a seeker would have begun.
constexpr std::ptrdiff_t nearby = 4;

/// The first position from `p` on at which a match may start, or null.
const char16_t* nextStart(const RE_Node* root, const RE_Attempt_Start& start, const char16_t* p,
                          RE_Search_Info& info) {
    const char16_t* found = nullptr;
    if (start.units != nullptr) {
        const char16_t* const stop = p + std::min(info.subjectEnd - p, nearby);
        found = std::find_if(p, stop, [&](char16_t unit) { return start.units->contains(unit); });
        found = found != stop ? found : nullptr;
    }
    found = found != nullptr ? found : root->seek(p, info);
    tellSeek(info, root, p, found);
    return found;
}

/// An attempt at the start that the state is at, for nobody who watches.
[[gnu::always_inline]] inline bool attemptUnwatched(const RE_Attempt_Start& start, RE_Search_Info& info,
                                                    std::size_t& length) {
    const char16_t* p = info.matchStart;
    // A seeker is a step too, also where it is passed by.
    const bool mayBegin = !start.skipsSeeker || info.takeStep();
    // A scan that was broken off may have led to an end too early.
    if (!mayBegin || !runUnwatchedLoop(info, start.entry, p) || info.wasInterrupted()) {
        return false;
    }
    length = static_cast<std::size_t>(p - info.matchStart);
    return true;
}

}  // namespace

// Ends at the subject's end itself, so that a pattern may match the empty text there. A start that leaves
// fewer units than any match needs is not tried; patterns that call the host are run at every start.
bool RE_Tree::findMatch(RE_Search_Info& info, std::size_t offset, std::size_t& length) const {
    const std::uint64_t needed = facts->hasDynamicNodes ? 0 : facts->minimumLength;
    if (needed > info.subjectLength() - offset) {
        return false;
    }
    const RE_Attempt_Start& start = facts->start;
    const char16_t* p = info.subjectBegin + offset;
    const char16_t* const last = info.subjectEnd - needed;
    std::uint64_t askingAt = nextAskingAt(*facts, info);
    info.resetForStart(p);
    for (; p <= last; ++p) {
        if (start.rootSeeks) {
            p = nextStart(root, start, p, info);
            if (p == nullptr || p > last) {
                return false;
            }
        }
        info.moveStart(p);
        if (info.observer != nullptr ? attemptWatched(info, length) : attemptUnwatched(start, info, length)) {
            return true;
        }
        if (info.wasInterrupted() || info.pollInterrupt()) {
            return false;
        }
        if (facts->leadingLoop != nullptr) {
            p = facts->leadingLoop->lastHopelessStart(p, info);
        }
        if (info.meter.taken() >= askingAt) {
            p = lastInVain(*facts, p, info);
            if (p == nullptr) {
                return false;
            }
            askingAt = nextAskingAt(*facts, info);
        }
    }
    return false;
}

bool RE_Tree::attempt(RE_Search_Info& info, const char16_t* p, std::size_t& length) const {
    info.resetForStart(p);
    return info.observer != nullptr ? attemptWatched(info, length)
                                    : attemptUnwatched(facts->start, info, length);
}

bool RE_Tree::attemptWatched(RE_Search_Info& info, std::size_t& length) const {
    const char16_t* const p = info.matchStart;
    std::size_t pos = info.indexOf(p);
    tellStart(info, p);
    const bool matched = runMatchLoop(info, root, pos) && !info.wasInterrupted();
    length = matched ? pos - info.indexOf(p) : 0;
    tellFinish(info, p, length, matched);
    return matched;
}
