// Measuring of runs, and greedy runs from the longest end to the shortest.
//
// Two things are remembered for a search, both in rows of the node's own: the last long run, which ends at
// the same place from each of its positions, and the last stretch without a place at which the rest can
// begin. Without them a search could go through one long run again from each of its positions.
#include "regexp/nodes/consume.h"

#include "regexp/graph/meaning.h"
#include "regexp/nodes/anchors.h"
#include "regexp/nodes/graph_context.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/unit_union.h"
#include "regexp/seek/scan.h"
#include "regexp/state/search_info.h"

#include <algorithm>
#include <utility>

namespace {

// The units of the item, as a set. A table that the item has already lives as long as the graph does, so it
// is borrowed; other items have theirs gathered.
std::shared_ptr<const RE_Unit_Set> unitsOf(RE_Graph_Context& context, const RE_Consumable& item) {
    if (const RE_Unit_Set* const table = item.table()) {
        return {std::shared_ptr<const void>(), table};
    }
    RE_Unit_Union units(context.sets);
    units.addConsumable(item);
    return context.sets.share(units.take());
}

}  // namespace

RE_Consume::RE_Consume(RE_Graph_Context& context, RE_Consumable* repeated, std::uint64_t least,
                       std::uint64_t most, Order order)
    : RE_Node(context),
      item(repeated),
      units(unitsOf(context, *repeated)),
      minimum(least),
      maximum(most),
      lazy(order == Order::lazy),
      stops(context.sets.othersThan(*units)),
      takesAll(units->holdsAllFrom(0)),
      reachRow(lazy ? context.nextMemoRow() : 0) {
    memoIndex = context.nextMemoRow();
    repeated->isItem = true;
}

const char16_t* RE_Consume::runEnd(const char16_t* p, std::uint64_t most, RE_Search_Info& info) const {
    const std::uint64_t left = static_cast<std::uint64_t>(info.subjectEnd - p);
    const char16_t* const limit = p + std::min(left, most);
    const char16_t* const end = shortRunEnd(p, limit);
    return end != nullptr ? end : scanOn(p, limit, info);
}

// The first `shortRun` units have been seen to belong to the run. The rest is scanned for a unit that does
// not, block by block, so that interrupts are seen. When one was, the end is too near, and nobody may
// remember it.
const char16_t* RE_Consume::scanOn(const char16_t* p, const char16_t* limit, RE_Search_Info& info) const {
    const char16_t* const start = p;
    p += shortRun;
    // Nothing ends a run of all units: it has the steps of a scan, and need not be looked at.
    if (takesAll && p < limit) {
        p = limit;
        info.pollScan();
    }
    while (p < limit) {
        const std::uint64_t block =
            std::min<std::uint64_t>(static_cast<std::uint64_t>(limit - p), RE_SCAN_POLL_UNITS);
        const char16_t* const stop = p + block;
        p = findClass(p, stop, stops);
        if (p != stop || info.pollScan()) {
            break;
        }
    }
    info.noteScan(static_cast<std::size_t>(p - start));
    return p;
}

// A run that reaches the one known ends where that ends. A position past the known run's end belongs to
// another run.
const char16_t* RE_Consume::endOfRunFrom(const char16_t* p, RE_Search_Info& info) const {
    const RE_Measured_Run* const known = info.measuredRun(memoIndex);
    if (known == nullptr || known->begin == nullptr || p >= known->begin) {
        return scanOn(p, info.subjectEnd, info);
    }
    const char16_t* const end = runEnd(p, static_cast<std::uint64_t>(known->begin - p), info);
    return end == known->begin ? known->end : end;
}

const char16_t* RE_Consume::wholeRunEnd(const char16_t* p, RE_Search_Info& info) const {
    const char16_t* const end = shortRunEnd(p, info.subjectEnd);
    return end != nullptr ? end : longRunEnd(p, info);
}

// Searches return to a long run from each of its positions, so the last one is remembered.
const char16_t* RE_Consume::longRunEnd(const char16_t* p, RE_Search_Info& info) const {
    if (const RE_Measured_Run* known = info.measuredRun(memoIndex); known != nullptr && known->holds(p)) {
        return known->end;
    }
    const char16_t* const end = endOfRunFrom(p, info);
    if (end - p >= longRun && !info.wasInterrupted()) {
        info.noteRun(memoIndex, {p, end});
    }
    return end;
}

const char16_t* RE_Consume::lastHopelessStart(const char16_t* p, RE_Search_Info& info) const {
    // With a maximum, ends from a later start may be farther than those that were tried. Only a run that is
    // shorter than the minimum is hopeless, and with a minimum below 2 such a run has no other positions.
    if (maximum != noMaximum && minimum < 2) {
        return p;
    }
    const RE_Measured_Run& measured = info.leadingRun;
    // Nothing was noted: the run reached the maximum, so it was long enough.
    if (isNotedUpTo() && measured.begin != p) {
        return p;
    }
    const char16_t* const end = measured.begin == p ? measured.end : wholeRunEnd(p, info);
    return maximum == noMaximum || static_cast<std::uint64_t>(end - p) < minimum ? end : p;
}

bool RE_Consume::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    const char16_t* const p = subject + pos;
    if (lazy) {
        return takeShortest(p, pos, info);
    }
    const char16_t* const end = maximum == noMaximum ? wholeRunEnd(p, info) : runEnd(p, maximum, info);
    if (static_cast<std::uint64_t>(end - p) < minimum) {
        return false;
    }
    if (possessive) {
        if (leads && static_cast<std::uint64_t>(end - p) < maximum) {
            info.leadingRun = {p, end};
        }
        pos = info.indexOf(end);
        return true;
    }
    return takeLongest(p + minimum, end, pos, info);
}

RE_Node* RE_Consume::resume(const RE_Backtrack_Record& record, std::size_t& pos, RE_Search_Info& info) const {
    const char16_t* const end = record.position;
    const std::size_t word = info.poppedWord();
    const bool going =
        lazy ? takeLonger(end, word, pos, info) : takeLongest(info.subjectBegin + word, end - 1, pos, info);
    return going ? nextNode : nullptr;
}

// Takes the longest end in [from, end] that is worth trying, and leaves the shorter ones as a choice. Without
// a shorter end there is no choice and no record.
bool RE_Consume::takeLongest(const char16_t* from, const char16_t* end, std::size_t& pos,
                             RE_Search_Info& info) const {
    const char16_t* const taken = lastEnd(from, end, info);
    if (taken == nullptr) {
        return false;
    }
    if (taken > from) {
        if (!info.countChoice()) {
            return false;
        }
        info.pushRecord(this, taken, info.indexOf(from));
    }
    pos = info.indexOf(taken);
    return true;
}

void RE_Consume::leaveChoice(const char16_t* taken, const char16_t* limit, RE_Search_Info& info) const {
    if (taken != limit) {
        info.pushRecord(this, taken, info.indexOf(limit));
    }
}

// A reference may be to another text each time; within a look-behind it does not seek at all.
bool RE_Consume::nextSeeks(const RE_Search_Info& info) const {
    return (nextNode->kind != RE_Node_Kind::matchToken || info.requiredEnd == nullptr) && restSeeks();
}

const char16_t* RE_Consume::nextStart(const char16_t* p, RE_Search_Info& info) const {
    return nextNode->kind == RE_Node_Kind::matchToken
               ? static_cast<const RE_Match_Token*>(nextNode)->nextPlace(p, info.subjectEnd, info)
               : nextNode->seek(p, info);
}

// The last place in [from, last] at which the rest can begin, or null. The end of a look-behind body holds at
// another place each time, and a reference is to another text: what they answer is not remembered as barren.
const char16_t* RE_Consume::lastStart(const char16_t* from, const char16_t* last,
                                      RE_Search_Info& info) const {
    if (nextNode->kind == RE_Node_Kind::matchToken) {
        return static_cast<const RE_Match_Token*>(nextNode)->lastPlace(from, last, info);
    }
    const bool bracket = nextNode->isStartToken() || nextNode->isEndToken();
    return nodeAs<RE_End_Match>(bracket ? nextNode->nextNode : nextNode) == nullptr
               ? info.lastStartOf(nextNode, this, from, last)
               : info.lastStartWithin(nextNode, from, last);
}

// Steps over ends that failed before and ends at which the rest cannot begin, until neither rules out the
// candidate. The latter are noted as failed: then all are stepped over at once from the starts that follow.
// An end that is stepped over would have failed at the next node, so none is lost.
const char16_t* RE_Consume::lastEnd(const char16_t* from, const char16_t* end, RE_Search_Info& info) const {
    const bool seeks = nextSeeks(info);
    std::size_t looked = 0;
    for (const char16_t* candidate = end;; --candidate) {
        candidate = info.lastUntried(this, from, candidate);
        if (candidate == nullptr) {
            return nullptr;
        }
        // A step for the end that is tried.
        info.noteScan(RE_Step_Meter::unitsAStep);
        const char16_t* const startable = seeks ? lastStart(from, candidate, info) : candidate;
        if (startable == candidate) {
            if (info.firstVisit(this, candidate)) {
                return candidate;
            }
        } else if (info.wasInterrupted()) {
            return nullptr;
        } else {
            const char16_t* const refused = startable != nullptr ? startable + 1 : from;
            info.noteFailed(this, refused, candidate);
            candidate = refused;
        }
        // Ends may be refused one after the other, millions of them: the host is polled now and then.
        const bool stop = ++looked % RE_SCAN_POLL_UNITS == 0 && info.pollScan();
        if (candidate == from || stop) {
            return nullptr;
        }
    }
}

void RE_Consume::visitLinks(RE_Link_Visitor& visitor) {
    RE_Node::visitLinks(visitor);
    RE_Node* link = item;
    visitor.link(link, RE_Link::item);
    setItem(link);
}

void RE_Consume::combineLengths() {
    RE_Node::combineLengths();
    minLength = minLength > unboundedLength - minimum ? unboundedLength : minLength + minimum;
    maxBounded = maxBounded && maximum != noMaximum && maxLength < unboundedLength - maximum;
    maxLength = maxBounded ? maxLength + maximum : unboundedLength;
}

std::string RE_Consume::label() const {
    std::string text = "Consume";
    if (lazy) {
        text += " Lazy";
    }
    if (possessive) {
        text += " Possessive";
    }
    if (minimum == 0 && maximum == noMaximum) {
        return text;
    }
    return text + "{" + std::to_string(minimum) + "," +
           (maximum == noMaximum ? "" : std::to_string(maximum)) + "}";
}

RE_Meaning RE_Consume::meaning() const {
    return RE_Meanings::Run{this, nextNode};
}
