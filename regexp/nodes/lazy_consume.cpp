// Runs that are taken as short as possible: from one end to the next longer one at which the rest can begin.
//
// The next place at which the rest can begin is sought first, and then it is checked that the run reaches
// that far. Where both are near, the run is measured first, so that nothing is sought past its end.
//
// Invariant: an end that is passed over would have failed at the next node. Ends noted as failed hold for the
// state of the memo, as for greedy runs.
#include "regexp/nodes/consume.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/tokens.h"
#include "regexp/seek/scan.h"
#include "regexp/state/search_info.h"

#include <algorithm>

namespace {

/// The node that says where the rest can begin, where looking for it costs little: a test of a unit, a set of
/// literals, a short string, a reference. Null for others. One opening or closing of a token is looked
/// through.
const RE_Node* fewUnitsOf(const RE_Node* rest) {
    const bool bracket = rest->isStartToken() || rest->isEndToken();
    const RE_Node* const first = bracket ? rest->nextNode : rest;
    switch (first->kind) {
        case RE_Node_Kind::literal:
        case RE_Node_Kind::foldedLiteral:
        case RE_Node_Kind::namedClass:
        case RE_Node_Kind::unitClass:
        case RE_Node_Kind::literalSet:
        case RE_Node_Kind::matchToken:
            return first;
        case RE_Node_Kind::string:
            return static_cast<const RE_String*>(first)->length < RE_Step_Meter::unitsAStep ? first : nullptr;
        case RE_Node_Kind::other:
        case RE_Node_Kind::end:
        case RE_Node_Kind::range:
        case RE_Node_Kind::dotLine:
        case RE_Node_Kind::run:
        case RE_Node_Kind::split:
        case RE_Node_Kind::dispatch:
        case RE_Node_Kind::startToken:
        case RE_Node_Kind::endToken:
        case RE_Node_Kind::lineStart:
        case RE_Node_Kind::lineEnd:
        case RE_Node_Kind::textStart:
        case RE_Node_Kind::textEnd:
        case RE_Node_Kind::glance:
        case RE_Node_Kind::wordStart:
        case RE_Node_Kind::wordEnd:
        case RE_Node_Kind::passage:
            return nullptr;
    }
    __builtin_unreachable();
}

}  // namespace

// The first place in [from, last], which is near, at which the rest can begin. To look there takes no steps
// of its own, so the meter is put back.
//
// The end of the subject is cut off for the while, so that the seek does not scan further than it has to.
// Trap: the answer must not be kept beyond this call. It is nearer than what the seek table keeps.
const char16_t* RE_Consume::nearStart(const char16_t* from, const char16_t* last,
                                      RE_Search_Info& info) const {
    const RE_Node& first = *fewUnitsOf(nextNode);
    const std::int64_t room = info.meter.room();
    const char16_t* const subjectEnd = info.subjectEnd;
    const auto left = static_cast<std::uint64_t>(subjectEnd - last);
    const std::uint64_t width = first.kind == RE_Node_Kind::string ? first.width() : 1;
    const char16_t* const stop = last + std::min(left, width);
    const char16_t* found = nullptr;
    if (first.kind == RE_Node_Kind::matchToken) {
        found = static_cast<const RE_Match_Token&>(first).nextPlace(from, stop, info);
    } else {
        info.subjectEnd = stop;
        found = first.seek(from, info);
        info.subjectEnd = subjectEnd;
    }
    info.meter.setRoom(room);
    return found;
}

// The first end in [end, last] that is worth trying: one at which the rest can begin and that has not failed
// before; the run is known to extend up to `reached`. Ends at which the rest cannot begin are noted as failed
// when they are few: then all that failed are stepped over at once from the starts that follow. Where the run
// is seen to end, nothing is sought past that.
//
// The answer need not be reached by the run: that is for the caller to check.
const char16_t* RE_Consume::nextEnd(const char16_t* reached, const char16_t* end, const char16_t* last,
                                    RE_Search_Info& info) const {
    const bool seeks = info.requiredEnd == nullptr && nextSeeks(info);
    bool isNear = false;
    if (seeks && fewUnitsOf(nextNode) != nullptr) {
        const char16_t* const stop = runEnd(reached, nearby, info);
        isNear = stop >= last || stop - reached < nearby;
        last = isNear ? std::min(stop, last) : last;
        if (last < end) {
            return nullptr;
        }
    }
    // Two questions in turn, each of which may move the end forward: has the memo seen it fail, and can the
    // rest begin there? It is worth trying when both leave it where it is.
    for (std::size_t refused = 0;; ++refused) {
        const char16_t* const untried = info.firstUntried(this, end, last);
        if (untried == nullptr || !seeks || (refused > 0 && untried == end)) {
            return untried;
        }
        end = isNear ? nearStart(untried, last, info) : nextStart(untried, info);
        if (end == nullptr || end > last || end == untried) {
            return end != nullptr && end <= last ? end : nullptr;
        }
        const auto skipped = static_cast<std::size_t>(end - untried);
        // Long stretches are not noted: one seek passes over them again.
        if (skipped < RE_Step_Meter::unitsAStep) {
            info.noteFailed(this, untried, end - 1);
        }
        info.noteScan(refused > 0 ? RE_Step_Meter::unitsAStep : 0);
        if (refused % RE_SCAN_POLL_UNITS == RE_SCAN_POLL_UNITS - 1 && info.pollScan()) {
            return nullptr;
        }
    }
}

// Whether the run from `from` on extends up to `to`. How far it was seen to extend is remembered, as the
// starts that follow need to know the same.
bool RE_Consume::reaches(const char16_t* from, const char16_t* to, RE_Search_Info& info) const {
    if (to - from < longRun) {
        return runEnd(from, static_cast<std::uint64_t>(to - from), info) == to;
    }
    const RE_Measured_Run* const noted = info.measuredRun(reachRow);
    const RE_Measured_Run known =
        noted != nullptr && noted->begin != nullptr ? *noted : RE_Measured_Run{to, to};
    // The known stretch is extended where it begins in front of `from` and ends near it or later; or it is
    // joined from the left. Otherwise a new one begins.
    RE_Measured_Run run{from, from};
    if (known.begin <= from && from - known.end < longRun) {
        run = known;
    } else if (from < known.begin && known.begin <= to) {
        run.end = runEnd(from, static_cast<std::uint64_t>(known.begin - from), info);
        run.end = run.end == known.begin ? known.end : run.end;
    }
    if (run.end < to) {
        run.end = runEnd(run.end, static_cast<std::uint64_t>(to - run.end), info);
    }
    if (run.end < from) {  // there is a gap between the known one and this
        run = {from, runEnd(from, static_cast<std::uint64_t>(to - from), info)};
    }
    if (run.end - run.begin >= longRun) {
        info.noteRun(reachRow, run);
    }
    return run.end >= to;
}

// The record of a lazy run holds the end reached so far; its word is the farthest end allowed. The required
// units are measured at once, as no end lies within them.
bool RE_Consume::takeShortest(const char16_t* p, std::size_t& pos, RE_Search_Info& info) const {
    const char16_t* const end = runEnd(p, minimum, info);
    if (static_cast<std::uint64_t>(end - p) < minimum) {
        return false;
    }
    const std::uint64_t spare = static_cast<std::uint64_t>(info.subjectEnd - p);
    const std::size_t limit = info.indexOf(p + std::min(spare, maximum));
    // A possessive run has one end only; asking the memo could make it a longer one.
    const char16_t* const last = info.subjectBegin + limit;
    if (!possessive && (nextEnd(end, end, last, info) != end || !info.firstVisit(this, end))) {
        return takeLonger(end, limit, pos, info);
    }
    pos = info.indexOf(end);
    if (!possessive && pos < limit) {
        info.pushRecord(this, end, limit);
    }
    return true;
}

// Goes to the next end after `end`, up to index `limit`. When the run does not reach the place at which the
// rest can begin, it reaches no later one either, and the loop has failed.
bool RE_Consume::takeLonger(const char16_t* end, std::size_t limit, std::size_t& pos,
                            RE_Search_Info& info) const {
    const char16_t* const last = info.subjectBegin + limit;
    while (end < last) {
        info.noteScan(RE_Step_Meter::unitsAStep);
        const char16_t* const longer = nextEnd(end, end + 1, last, info);
        if (longer == nullptr || !reaches(end, longer, info)) {
            return false;
        }
        end = longer;
        if (info.firstVisit(this, end)) {
            pos = info.indexOf(end);
            if (end < last) {
                info.pushRecord(this, end, limit);
            }
            return true;
        }
    }
    return false;
}
